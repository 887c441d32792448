/// The recording SDK itself: what it exports, and that it forgives nothing.

#include "tests/sdk/support/SdkTestCase.h"

#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>

using Problems = std::vector<std::string>;

class TestRecorder : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void exportsExactlyTheFamilies();
    void variantLacksOneNameOfEveryFamily_data();
    void variantLacksOneNameOfEveryFamily();
    void answersWhatIsExpected();
    void reportsCallNobodyExpected();
    void reportsWrongArguments();
    void reportsCallsLeftOver();
    void reportsTextNotGivenBack();
    void reportsTextGivenBackTwice();
    void reportsTextGivenBackThroughTheWrongFunction_data();
    void reportsTextGivenBackThroughTheWrongFunction();
    void reportsTextGivenBackAlthoughToBeKept();
    void reportsForeignText();
    void spellsPathsAndData();
    void outlivesTheLibrary();
    void reportsLibraryLeftLoaded();

private:
    template <typename Signature>
    static Signature *resolve(QLibrary &library, const char *name)
    {
        return reinterpret_cast<Signature *>(library.resolve(name));
    }
};

static QStringList exportsOf(const QString &variant)
{
    const QString library = QStringLiteral(SDK_VARIANTS_DIR "/") + variant + QStringLiteral("/libmvsignpadsdk.so");
    QProcess nm;
    nm.start(QStringLiteral("nm"),
             {QStringLiteral("-D"), QStringLiteral("--defined-only"), QStringLiteral("-P"), library});
    nm.waitForFinished();
    QStringList names;
    for (const QByteArray &line : nm.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty()) {
            names << QString::fromLatin1(line.left(line.indexOf(' ')));
        }
    }
    return names;
}

void TestRecorder::exportsExactlyTheFamilies()
{
    const QStringList names = exportsOf(QStringLiteral("complete"));
    const auto countOf = [&names](const char *prefix) { return names.filter(QLatin1String(prefix)).size(); };
    QCOMPARE(countOf("MVAlder_"), 35);
    QCOMPARE(countOf("MVBirch_"), 31);
    QCOMPARE(countOf("MVCedar_"), 34);
    QCOMPARE(countOf("MVMaple_"), 28);
    QCOMPARE(countOf("MVRowan_"), 28);
    QCOMPARE(names.size(), 156);
}

void TestRecorder::variantLacksOneNameOfEveryFamily_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("exports");
    QTest::newRow("all families") << QStringLiteral("AboutBox") << 151;
    QTest::newRow("three families") << QStringLiteral("OpenLCD") << 153;
    QTest::newRow("one family") << QStringLiteral("GetFPImageBase64Data") << 155;
    QTest::newRow("part of another name") << QStringLiteral("Base64Encode") << 151;
}

void TestRecorder::variantLacksOneNameOfEveryFamily()
{
    QFETCH(QString, name);
    QFETCH(int, exports);
    const QStringList names = exportsOf(QStringLiteral("without-") + name);
    QCOMPARE(names.filter(QRegularExpression(QLatin1Char('_') + name + QLatin1Char('$'))), QStringList());
    QCOMPARE(names.size(), exports);
}

void TestRecorder::answersWhatIsExpected()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    const auto initialDevice = resolve<bool(int, void *, int, int, int, int)>(library, "MVAlder_InitialDevice");
    const auto getVersion = resolve<int(int, char *, int)>(library, "MVRowan_GetHWVersion");
    const auto encode = resolve<char *(int, int)>(library, "MVBirch_Base64Encode");
    const auto giveBack = resolve<void(int, char *)>(library, "MVBirch_Base64EncodeFree");

    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    expect("MVRowan_GetHWVersion(4, buf, 32)", recording::outputText("V1", -7));
    expect("MVBirch_Base64Encode(5, 3)", text("QUJD"));
    expect("MVBirch_Base64EncodeFree(5, #1)");
    expect("MVBirch_Base64Encode(5, 3)");
    QCOMPARE(initialDevice(2, nullptr, 0, 0, 800, 480), true);
    char version[32] = "untouched";
    QCOMPARE(getVersion(4, version, 32), -7);
    QCOMPARE(QByteArray(version, 6), QByteArray("V1\0ouc", 6));
    char *image = encode(5, 3);
    QCOMPARE(QByteArray(image), QByteArray("QUJD"));
    giveBack(5, image);
    QCOMPARE(encode(5, 3), static_cast<char *>(nullptr));
    library.unload();
    QCOMPARE(recorder().finish(), Problems());
}

void TestRecorder::reportsCallNobodyExpected()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    resolve<int(int)>(library, "MVCedar_Clear")(7);
    library.unload();
    QCOMPARE(recorder().finish(), Problems({"unexpected: MVCedar_Clear(7)"}));
}

void TestRecorder::reportsWrongArguments()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    expect("MVCedar_SetPenWidth(7, 3)");
    resolve<int(int, int)>(library, "MVCedar_SetPenWidth")(7, 4);
    library.unload();
    QCOMPARE(recorder().finish(),
             Problems({"unexpected: MVCedar_SetPenWidth(7, 4) instead of MVCedar_SetPenWidth(7, 3)",
                       "never called: MVCedar_SetPenWidth(7, 3)"}));
}

void TestRecorder::reportsCallsLeftOver()
{
    expect("MVMaple_Clear(3)");
    QCOMPARE(recorder().finish(), Problems({"never called: MVMaple_Clear(3)"}));
    QCOMPARE(recorder().finish(), Problems());
}

void TestRecorder::reportsTextNotGivenBack()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    expect("MVMaple_GetSVGImageBase64Data(3)", text("PHN2Zz4="));
    resolve<char *(int)>(library, "MVMaple_GetSVGImageBase64Data")(3);
    library.unload();
    QCOMPARE(recorder().finish(), Problems({"never given back: text #1 of MVMaple_GetSVGImageBase64Data"}));
}

void TestRecorder::reportsTextGivenBackTwice()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    expect("MVMaple_GetSVGImageBase64Data(3)", text("PHN2Zz4="));
    expect("MVMaple_FreeSVGImageBase64Data(3, #1)");
    expect("MVMaple_FreeSVGImageBase64Data(3, unknown text)");
    char *svg = resolve<char *(int)>(library, "MVMaple_GetSVGImageBase64Data")(3);
    const auto giveBack = resolve<void(int, char *)>(library, "MVMaple_FreeSVGImageBase64Data");
    giveBack(3, svg);
    giveBack(3, svg);
    library.unload();
    QCOMPARE(recorder().finish(), Problems({"MVMaple_FreeSVGImageBase64Data was given a text that is not out"}));
}

void TestRecorder::reportsTextGivenBackThroughTheWrongFunction_data()
{
    QTest::addColumn<QByteArray>("giveBack");
    QTest::newRow("another kind") << QByteArray("MVAlder_FreeSVGImageBase64Data");
    QTest::newRow("a kind with a longer name") << QByteArray("MVAlder_Base64EncodeExFree");
    QTest::newRow("another family") << QByteArray("MVBirch_Base64EncodeFree");
}

void TestRecorder::reportsTextGivenBackThroughTheWrongFunction()
{
    QFETCH(QByteArray, giveBack);
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    expect("MVAlder_Base64Encode(2, 3)", text("QUJD"));
    expect(giveBack.toStdString() + "(2, #1)");
    char *image = resolve<char *(int, int)>(library, "MVAlder_Base64Encode")(2, 3);
    resolve<void(int, char *)>(library, giveBack.constData())(2, image);
    library.unload();
    QCOMPARE(recorder().finish(), Problems({giveBack.toStdString() + " was given a text of MVAlder_Base64Encode"}));
}

void TestRecorder::reportsTextGivenBackAlthoughToBeKept()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    recording::Answer kept = text("t0");
    kept.keepsText = true;
    expect("MVAlder_GetInkPointDataTimeInfo(2, 0)", kept);
    expect("MVAlder_FreeInkPointDataTimeInfo(2, #1)");
    char *time = resolve<char *(int, int)>(library, "MVAlder_GetInkPointDataTimeInfo")(2, 0);
    resolve<void(int, char *)>(library, "MVAlder_FreeInkPointDataTimeInfo")(2, time);
    library.unload();
    QCOMPARE(recorder().finish(),
             Problems({"MVAlder_FreeInkPointDataTimeInfo was given a text that the caller was to keep"}));
}

void TestRecorder::reportsForeignText()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    char foreign[] = "mine";
    expect("MVAlder_Base64EncodeFree(2, unknown text)");
    resolve<void(int, char *)>(library, "MVAlder_Base64EncodeFree")(2, foreign);
    library.unload();
    QCOMPARE(recorder().finish(), Problems({"MVAlder_Base64EncodeFree was given a text that is not out"}));
    QCOMPARE(QByteArray(foreign), QByteArray("mine"));
}

void TestRecorder::spellsPathsAndData()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    const auto decode = resolve<int(int, int, const char *, const wchar_t *)>(library, "MVAlder_Base64Decode");
    expect(R"(MVAlder_Base64Decode(2, 6, "a\xC3\xA9\x0A", "/tmp/\u{1F58A}\u{D800}"))");
    expect("MVAlder_Base64Decode(2, 6, null, null)");
    const wchar_t path[] = {L'/', L't', L'm', L'p', L'/', wchar_t(0x1F58A), wchar_t(0xD800), 0};
    decode(2, 6, "a\xC3\xA9\n", path);
    decode(2, 6, nullptr, nullptr);
    library.unload();
    QCOMPARE(recorder().finish(), Problems());
}

void TestRecorder::outlivesTheLibrary()
{
    recorder().traceLoading();
    expect("load");
    expect("unload");
    expect("load");
    expect("MVRowan_Clear(4)");
    expect("unload");
    for (const bool calls : {false, true}) {
        QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
        QVERIFY(library.load());
        QVERIFY(recorder().isLoaded());
        if (calls) {
            resolve<int(int)>(library, "MVRowan_Clear")(4);
        }
        QVERIFY(library.unload());
        QVERIFY(!recorder().isLoaded());
    }
}

void TestRecorder::reportsLibraryLeftLoaded()
{
    QLibrary library(QStringLiteral("./libmvsignpadsdk.so"));
    QVERIFY(library.load());
    QCOMPARE(recorder().finish(), Problems({"the library is still loaded"}));
    library.unload();
}

QTEST_GUILESS_MAIN(TestRecorder)
#include "tst_recorder.moc"
