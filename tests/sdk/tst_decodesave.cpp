/// Decode, GetDecodeFilePath and SaveDrawImage: what goes into files, and below which path.

#include "tests/sdk/support/ModelTestCase.h"

#include <QTemporaryDir>

#include <climits>

class TestDecodeSave : public ModelTestCase
{
    Q_OBJECT

public:
    using ModelTestCase::ModelTestCase;

private Q_SLOTS:
    void decodePath_data();
    void decodePath();
    void decodeKeepsThePathOfTheLastCall();
    void decodeKeepsThePathOfARejectedCall();
    void decodeKeepsThePathBeforeTheCall();
    void decodeKeepsThePathWithoutTheFunction();
    void decodeData_data();
    void decodeData();
    void decodeOfOtherTypesHasNoPoints_data();
    void decodeOfOtherTypesHasNoPoints();
    void decodeWithoutPoints_data();
    void decodeWithoutPoints();
    void decodedPoints();

    void savePath_data();
    void savePath();
    void saveArgumentsPassThrough();
    void saveError_data();
    void saveError();
};

/// Texts with their spelling as an array of code points.
static void addHostilePaths()
{
    const auto row = [](const char *name, const QString &path, const char *spelling) {
        QTest::newRow(name) << path << QByteArray(spelling);
    };
    row("not ASCII", QString::fromUtf8("签名.png"), "\\u{7B7E}\\u{540D}.png");
    row("beyond the basic plane",
        QString::fromUtf8("a\xF0\x9F\x96\x8A"
                          "b"),
        "a\\u{1F58A}b");
    row("last code point", QString::fromUtf8("\xF4\x8F\xBF\xBF"), "\\u{10FFFF}");
    row("lone high surrogate", QLatin1String("a") + QString(QChar(0xD83D)) + QLatin1String("b"), "a\\u{FFFD}b");
    row("lone low surrogate", QLatin1String("a") + QString(QChar(0xDE00)), "a\\u{FFFD}");
    row("swapped surrogates", QString(QChar(0xDE00)) + QChar(0xD83D), "\\u{FFFD}\\u{FFFD}");
    row("control characters", QStringLiteral("a\n\t\x7F"), "a\\u{A}\\u{9}\\u{7F}");
    row("blank", QStringLiteral(" "), " ");
    row("a hundred pens", QString::fromUtf8("\xF0\x9F\x96\x8A").repeated(100),
        QByteArray("\\u{1F58A}").repeated(100).constData());
    row("embedded NUL ends it", QString::fromUtf8("a\0b", 3), "a");
}

void TestDecodeSave::decodePath_data()
{
    QTest::addColumn<QString>("strPath");
    QTest::addColumn<QByteArray>("spelling");
    const auto row = [](const char *path, const char *spelling) {
        QTest::newRow(path) << QString::fromUtf8(path) << QByteArray(spelling);
    };
    row("a.png", "a.png");
    row("", "");
    row("/home/u/a.png", "/home/u/a.png");
    row("dir/a.png", "dir/a.png");
    row("../a.png", "../a.png");
    row("/tmp/a.png", "/tmp/a.png");
    addHostilePaths();
}

void TestDecodeSave::decodePath()
{
    QFETCH(QString, strPath);
    QFETCH(QByteArray, spelling);
    expect(spelled("MV*_Base64Decode(ID, 1, \"QUJD\", \"/tmp/") + spelling.toStdString() + "\")", number(0));
    QCOMPARE(pad().Decode(1, strPath, QStringLiteral("QUJD")), QString());
    QCOMPARE(pad().GetDecodeFilePath(), QStringLiteral("/tmp/") + strPath);
}

void TestDecodeSave::decodeKeepsThePathOfTheLastCall()
{
    QCOMPARE(pad().GetDecodeFilePath(), QString());
    expectCall(R"(MV*_Base64Decode(ID, 1, "AA==", "/tmp/first"))");
    pad().Decode(1, QStringLiteral("first"), QStringLiteral("AA=="));
    QCOMPARE(pad().GetDecodeFilePath(), QStringLiteral("/tmp/first"));
    expectCall(R"(MV*_Base64Decode(ID, 2, "BB==", "/tmp/second"))");
    pad().Decode(2, QStringLiteral("second"), QStringLiteral("BB=="));
    QCOMPARE(pad().GetDecodeFilePath(), QStringLiteral("/tmp/second"));
    expectCall(R"(MV*_Base64Decode(ID, 3, "CC==", "/tmp//home/u/a.png"))");
    pad().Decode(3, QStringLiteral("/home/u/a.png"), QStringLiteral("CC=="));
    QCOMPARE(pad().GetDecodeFilePath(), QStringLiteral("/tmp//home/u/a.png"));
}

void TestDecodeSave::decodeKeepsThePathOfARejectedCall()
{
    expectCall(R"(MV*_Base64Decode(ID, 6, "rubbish", "/tmp/a.png"))", number(-1));
    expectCall("MV*_GetTotalDecodeInkPointsNumber(ID)", number(0));
    QCOMPARE(pad().Decode(6, QStringLiteral("a.png"), QStringLiteral("rubbish")), QStringLiteral("[]"));
    QCOMPARE(pad().GetDecodeFilePath(), QStringLiteral("/tmp/a.png"));
}

void TestDecodeSave::decodeKeepsThePathBeforeTheCall()
{
    recording::Answer decoded = number(0);
    QString pathInTheCall;
    decoded.effect = [this, &pathInTheCall] { pathInTheCall = pad().GetDecodeFilePath(); };
    expectCall(R"(MV*_Base64Decode(ID, 1, "QUJD", "/tmp/a.png"))", decoded);
    pad().Decode(1, QStringLiteral("a.png"), QStringLiteral("QUJD"));
    QCOMPARE(pathInTheCall, QStringLiteral("/tmp/a.png"));
}

void TestDecodeSave::decodeKeepsThePathWithoutTheFunction()
{
    useLibrary(QStringLiteral("without-Base64Decode"));
    QCOMPARE(pad().Decode(6, QStringLiteral("a.png"), QStringLiteral("QUJD")), QString());
    QCOMPARE(pad().GetDecodeFilePath(), QString());
}

void TestDecodeSave::decodeData_data()
{
    QTest::addColumn<QString>("strData");
    QTest::addColumn<QByteArray>("spelling");
    QTest::newRow("base64") << QStringLiteral("ab+/Z===") << QByteArray("ab+/Z===");
    QTest::newRow("empty") << QStringLiteral("") << QByteArray("");
    QTest::newRow("null") << QString() << QByteArray("");
    QTest::newRow("not ASCII") << QString::fromUtf8("é\xF0\x9F\x96\x8A") << QByteArray(R"(\xC3\xA9\xF0\x9F\x96\x8A)");
    QTest::newRow("not base64") << QStringLiteral("\"\n%20 ") << QByteArray(R"("\x0A%20 )");
    QTest::newRow("embedded NUL ends it") << QString::fromUtf8("QU\0JD", 5) << QByteArray("QU");
}

void TestDecodeSave::decodeData()
{
    QFETCH(QString, strData);
    QFETCH(QByteArray, spelling);
    expect(spelled("MV*_Base64Decode(ID, 3, \"") + spelling.toStdString() + "\", \"/tmp/a\")");
    QCOMPARE(pad().Decode(3, QStringLiteral("a"), strData), QString());
}

void TestDecodeSave::decodeOfOtherTypesHasNoPoints_data()
{
    QTest::addColumn<int>("nType");
    for (const int nType : {0, 1, 5, 7, -6, INT_MAX, INT_MIN}) {
        QTest::newRow(qPrintable(QString::number(nType))) << nType;
    }
}

void TestDecodeSave::decodeOfOtherTypesHasNoPoints()
{
    QFETCH(int, nType);
    expect(spelled("MV*_Base64Decode(ID, ") + std::to_string(nType) + ", \"QUJD\", \"/tmp/a\")", number(0));
    QCOMPARE(pad().Decode(nType, QStringLiteral("a"), QStringLiteral("QUJD")), QString());
}

void TestDecodeSave::decodeWithoutPoints_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("smallest") << INT_MIN;
}

void TestDecodeSave::decodeWithoutPoints()
{
    QFETCH(int, count);
    expectCall(R"(MV*_Base64Decode(ID, 6, "QUJD", "/tmp/a"))");
    expectCall("MV*_GetTotalDecodeInkPointsNumber(ID)", number(count));
    QCOMPARE(pad().Decode(6, QStringLiteral("a"), QStringLiteral("QUJD")), QStringLiteral("[]"));
}

void TestDecodeSave::decodedPoints()
{
    expectCall(R"(MV*_Base64Decode(ID, 6, "QUJD", "/tmp/a"))", number(-5));
    expectCall("MV*_GetTotalDecodeInkPointsNumber(ID)", number(2));
    expectCall("MV*_GetDecodeInkPointData(ID, 0, 1)", number(INT_MIN));
    expectCall("MV*_GetDecodeInkPointData(ID, 0, 2)", number(INT_MAX));
    expectCall("MV*_GetDecodeInkPointData(ID, 0, 3)", number(-1));
    expectCall("MV*_GetDecodeInkPointData(ID, 1, 1)", number(0));
    expectCall("MV*_GetDecodeInkPointData(ID, 1, 2)", number(70000));
    expectCall("MV*_GetDecodeInkPointData(ID, 1, 3)", number(1));
    QCOMPARE(pad().Decode(6, QStringLiteral("a"), QStringLiteral("QUJD")),
             QStringLiteral(R"([{"bStrokeEnd":"-1","x":"-2147483648","y":"2147483647"},)"
                            R"({"bStrokeEnd":"1","x":"0","y":"70000"}])"));
}

void TestDecodeSave::savePath_data()
{
    QTest::addColumn<QString>("strPath");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QByteArray>("spelling");
    const auto row = [](const char *path, const char *expected) {
        QTest::newRow(path) << QString::fromUtf8(path) << QString::fromUtf8(expected) << QByteArray(expected);
    };
    row("sig.png", "/tmp/sig.png");
    row("", "/tmp/");
    row("..", "/tmp/..");
    row("a\\b.png", "/tmp/a\\b.png");
    row("out/sig.png", "out/sig.png");
    row("./sig.png", "./sig.png");
    row("../sig.png", "../sig.png");
    row("sig.png/", "sig.png/");
    row("/", "/");
    row("/home/u/sig.png", "/home/u/sig.png");
    row("/tmp/sig.png", "/tmp/sig.png");
    QTest::newRow("beyond the basic plane")
        << QString::fromUtf8("\xF0\x9F\x96\x8A.png") << QString::fromUtf8("/tmp/\xF0\x9F\x96\x8A.png")
        << QByteArray("/tmp/\\u{1F58A}.png");
    QTest::newRow("as it stands, beyond the basic plane")
        << QString::fromUtf8("/\xF0\x9F\x96\x8A/签") << QString::fromUtf8("/\xF0\x9F\x96\x8A/签")
        << QByteArray("/\\u{1F58A}/\\u{7B7E}");
    const QString loneSurrogate = QString(QChar(0xD83D));
    QTest::newRow("lone surrogate") << loneSurrogate << QString(QStringLiteral("/tmp/") + loneSurrogate)
                                    << QByteArray("/tmp/\\u{FFFD}");
    QTest::newRow("a full-width solidus is no slash")
        << QString(QChar(0xFF0F)) << QString(QStringLiteral("/tmp/") + QChar(0xFF0F)) << QByteArray("/tmp/\\u{FF0F}");
}

void TestDecodeSave::savePath()
{
    QFETCH(QString, strPath);
    QFETCH(QString, expected);
    QFETCH(QByteArray, spelling);
    expect(spelled("MV*_SaveDrawingImage(ID, 2, \"") + spelling.toStdString() + "\", 300)", number(0));
    QCOMPARE(pad().SaveDrawImage(2, 300, strPath), expected);
    QCOMPARE(pad().GetDecodeFilePath(), QString());
}

void TestDecodeSave::saveArgumentsPassThrough()
{
    expectCall(R"(MV*_SaveDrawingImage(ID, -2147483648, "/tmp/a", 2147483647))", number(0));
    QCOMPARE(pad().SaveDrawImage(INT_MIN, INT_MAX, QStringLiteral("a")), QStringLiteral("/tmp/a"));
    expectCall(R"(MV*_SaveDrawingImage(ID, 2147483647, "/tmp/a", -1))", number(0));
    QCOMPARE(pad().SaveDrawImage(INT_MAX, -1, QStringLiteral("a")), QStringLiteral("/tmp/a"));
}

void TestDecodeSave::saveError_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("expected");
    QTest::newRow("-3") << -3 << QStringLiteral("-3");
    QTest::newRow("1") << 1 << QStringLiteral("1");
    QTest::newRow("smallest") << INT_MIN << QStringLiteral("-2147483648");
    QTest::newRow("largest") << INT_MAX << QStringLiteral("2147483647");
}

void TestDecodeSave::saveError()
{
    QFETCH(int, code);
    QFETCH(QString, expected);
    expectCall(R"(MV*_SaveDrawingImage(ID, 4, "/no/such/dir/a.jpg", 96))", number(code));
    QCOMPARE(pad().SaveDrawImage(4, 96, QStringLiteral("/no/such/dir/a.jpg")), expected);
}

MV_TEST_EVERY_MODEL(QCoreApplication, TestDecodeSave)
#include "tst_decodesave.moc"
