/// How a model binds itself to the library: what it asks for, and what it makes of a library that is not whole.

#include "device/SignObjAlder.h"
#include "device/SignObjCedar.h"
#include "device/SignObjManager.h"
#include "tests/sdk/support/ModelTestCase.h"
#include "tests/unit/support/Patience.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

const char *const openOneDevice = "--open-device";

/// Shows the bound members.
class BoundAlder : public SignObjAlder
{
public:
    using AlderSdk::m_pfn_MVAlder_AboutBox;
    using AlderSdk::m_pfn_MVAlder_Base64EncodeExFree;
    using AlderSdk::m_pfn_MVAlder_Clear;
    using AlderSdk::m_pfn_MVAlder_InitialDevice;
    using AlderSdk::m_pfn_MVAlder_SignPadEventCallback;
    using AlderSdk::m_pfn_MVAlder_WPSBase64Encode;
    using AlderSdk::m_pfn_MVAlder_WPSBase64EncodeFree;
    using AlderSdk::m_pSDKLibrary;
};

} // namespace

class TestBinding : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void resolvesItsNamesInOrder_data();
    void resolvesItsNamesInOrder();
    void resolvesOnAfterAMissingName();
    void membersOfACompleteLibrary();
    void membersOfALibraryWithoutAboutBox();
    void membersWithoutLibrary();
    void aboutBoxIsNotNeeded();
    void unusableLibrary_data();
    void unusableLibrary();
    void destructorOnlyUnloads();
    void looksInTheWorkingDirectoryAnew();
    void twoObjectsShareTheLibrary();
};

static QStringList familyNames(const char *family, const QString &names)
{
    QStringList result;
    for (const QString &name : names.split(QLatin1Char(' '))) {
        result << QLatin1String(family) + name;
    }
    return result;
}

/// The library's names that a process asks the dynamic linker for while it opens a device, in order.
static QStringList lookupsOfAProcessThatOpens(int nDeviceID)
{
    const QTemporaryDir traces;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LD_DEBUG"), QStringLiteral("symbols"));
    environment.insert(QStringLiteral("LD_DEBUG_OUTPUT"), traces.filePath(QStringLiteral("trace")));
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {QLatin1String(openOneDevice), QString::number(nDeviceID)});
    process.waitForFinished(patienceMs);

    QStringList lookups;
    const QRegularExpression lookup(QStringLiteral("symbol=(MV[A-Z][a-z]+_\\w+);"));
    for (const QString &name : QDir(traces.path()).entryList(QDir::Files)) {
        QFile trace(traces.filePath(name));
        trace.open(QIODevice::ReadOnly);
        while (!trace.atEnd()) {
            const QRegularExpressionMatch match = lookup.match(QString::fromUtf8(trace.readLine()));
            if (match.hasMatch() && (lookups.isEmpty() || lookups.last() != match.captured(1))) {
                lookups << match.captured(1);
            }
        }
    }
    return lookups;
}

static int runAndOpen(int nDeviceID)
{
    SignObjManager manager;
    manager.InitialDevice(nDeviceID, 800, 480);
    return 0;
}

void TestBinding::resolvesItsNamesInOrder_data()
{
    QTest::addColumn<int>("nDeviceID");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("Alder")
        << 2
        << familyNames(
               "MVAlder_",
               QStringLiteral(
                   "InitialDevice UnInitialDevice OpenLCD Clear GetHWPenID GetHWPadID GetHWVersion DisplayHWVersion "
                   "SetPenStyle "
                   "SetPenWidth SignPadEventCallback GetTotalInkPointsNumber GetInkPointData GetInkPointDataTimeInfo "
                   "FreeInkPointDataTimeInfo SaveDrawingImage SetSaveClipImageMargin GetDeviceInfo AboutBox "
                   "GetAboutInfo "
                   "Base64Encode Base64EncodeFree Base64Decode GetTotalDecodeInkPointsNumber GetDecodeInkPointData "
                   "SetPenColor "
                   "GetDeviceConfirmOrCancelKeyStatus GetSVGImageBase64Data FreeSVGImageBase64Data "
                   "SetRealTimeSignBase64DataCallback InitialWPSSignCanvas WPSBase64Encode WPSBase64EncodeFree "
                   "Base64EncodeEx "
                   "Base64EncodeExFree"));
    QTest::newRow("Birch")
        << 5
        << familyNames(
               "MVBirch_",
               QStringLiteral(
                   "InitialDevice UnInitialDevice OpenLCD Clear GetHWPenID GetHWPadID GetHWVersion DisplayHWVersion "
                   "SetPenStyle "
                   "SetPenWidth SignPadEventCallback GetTotalInkPointsNumber GetInkPointData GetInkPointDataTimeInfo "
                   "FreeInkPointDataTimeInfo SaveDrawingImage SetSaveClipImageMargin GetDeviceInfo AboutBox "
                   "GetAboutInfo "
                   "Base64Encode Base64EncodeFree Base64Decode GetTotalDecodeInkPointsNumber GetDecodeInkPointData "
                   "SetPenColor "
                   "GetDeviceConfirmOrCancelKeyStatus GetSVGImageBase64Data FreeSVGImageBase64Data Base64EncodeEx "
                   "Base64EncodeExFree"));
    QTest::newRow("Cedar")
        << 7
        << familyNames(
               "MVCedar_",
               QStringLiteral(
                   "InitialDevice UnInitialDevice OpenLCD Clear GetHWPenID GetHWPadID GetHWVersion DisplayHWVersion "
                   "SetPenStyle "
                   "SetPenWidth SignPadEventCallback GetTotalInkPointsNumber GetInkPointData GetInkPointDataTimeInfo "
                   "FreeInkPointDataTimeInfo SaveDrawingImage SetSaveClipImageMargin GetDeviceInfo AboutBox "
                   "GetAboutInfo "
                   "Base64Encode Base64EncodeFree Base64Decode GetTotalDecodeInkPointsNumber GetDecodeInkPointData "
                   "SetPenColor "
                   "GetDeviceConfirmOrCancelKeyStatus SetDisplayedFPImageAt GetFPImageBase64Data FreeFPImageBase64Data "
                   "GetSVGImageBase64Data FreeSVGImageBase64Data Base64EncodeEx Base64EncodeExFree"));
    const QString small = QStringLiteral(
        "InitialDevice UnInitialDevice Clear GetHWPadID GetHWVersion SetPenStyle SetPenWidth SignPadEventCallback "
        "GetTotalInkPointsNumber GetInkPointData GetInkPointDataTimeInfo FreeInkPointDataTimeInfo SaveDrawingImage "
        "SetSaveClipImageMargin GetDeviceInfo AboutBox GetAboutInfo Base64Encode Base64EncodeFree Base64Decode "
        "GetTotalDecodeInkPointsNumber GetDecodeInkPointData SetPenColor GetDeviceConfirmOrCancelKeyStatus "
        "GetSVGImageBase64Data FreeSVGImageBase64Data Base64EncodeEx Base64EncodeExFree");
    QTest::newRow("Maple") << 3 << familyNames("MVMaple_", small);
    QTest::newRow("Rowan") << 4 << familyNames("MVRowan_", small);
}

void TestBinding::resolvesItsNamesInOrder()
{
    QFETCH(int, nDeviceID);
    QFETCH(QStringList, names);
    QCOMPARE(lookupsOfAProcessThatOpens(nDeviceID), names);
}

void TestBinding::resolvesOnAfterAMissingName()
{
    useLibrary(QStringLiteral("without-InitialDevice"));
    const QStringList lookups = lookupsOfAProcessThatOpens(4);
    QCOMPARE(lookups.size(), 28);
    QCOMPARE(lookups.first(), QStringLiteral("MVRowan_InitialDevice"));
    QCOMPARE(lookups.last(), QStringLiteral("MVRowan_Base64EncodeExFree"));
}

void TestBinding::membersOfACompleteLibrary()
{
    BoundAlder pad;
    QVERIFY(pad.m_pSDKLibrary);
    QVERIFY(pad.m_pSDKLibrary->isLoaded());
    QVERIFY(pad.m_pfn_MVAlder_InitialDevice);
    QVERIFY(pad.m_pfn_MVAlder_Clear);
    QVERIFY(pad.m_pfn_MVAlder_SignPadEventCallback);
    QVERIFY(pad.m_pfn_MVAlder_AboutBox);
    QVERIFY(pad.m_pfn_MVAlder_WPSBase64Encode);
    QVERIFY(pad.m_pfn_MVAlder_WPSBase64EncodeFree);
    QVERIFY(pad.m_pfn_MVAlder_Base64EncodeExFree);
}

void TestBinding::membersOfALibraryWithoutAboutBox()
{
    useLibrary(QStringLiteral("without-AboutBox"));
    BoundAlder pad;
    QVERIFY(pad.m_pSDKLibrary->isLoaded());
    QVERIFY(pad.m_pfn_MVAlder_InitialDevice);
    QVERIFY(!pad.m_pfn_MVAlder_AboutBox);
    QVERIFY(pad.m_pfn_MVAlder_Base64EncodeExFree);
}

void TestBinding::membersWithoutLibrary()
{
    const QTemporaryDir empty;
    QVERIFY(QDir::setCurrent(empty.path()));
    BoundAlder pad;
    QVERIFY(pad.m_pSDKLibrary);
    QVERIFY(!pad.m_pSDKLibrary->isLoaded());
    QVERIFY(!pad.m_pfn_MVAlder_InitialDevice);
    QVERIFY(!pad.m_pfn_MVAlder_Clear);
    QVERIFY(!pad.m_pfn_MVAlder_Base64EncodeExFree);
}

void TestBinding::aboutBoxIsNotNeeded()
{
    useLibrary(QStringLiteral("without-AboutBox"));
    SignObjManager manager;
    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    QCOMPARE(manager.InitialDevice(2, 800, 480), true);
    expect("MVAlder_Clear(2)");
    manager.Clear();
    expect("MVAlder_GetAboutInfo(2, buf)", recording::outputText("About"));
    QCOMPARE(manager.GetAboutInfo(), QStringLiteral("About"));
    expect("MVAlder_UnInitialDevice(2)");
    QCOMPARE(manager.UnInitialDevice(), true);
}

void TestBinding::unusableLibrary_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isDirectory");
    QFile library(QStringLiteral(SDK_VARIANTS_DIR "/complete/libmvsignpadsdk.so"));
    QVERIFY(library.open(QIODevice::ReadOnly));
    const QByteArray whole = library.readAll();
    QByteArray otherMachine = whole;
    otherMachine[18] = 0x7F; // the field that names the processor
    QTest::newRow("a text") << QByteArray("This is no library.\n") << false;
    QTest::newRow("empty file") << QByteArray() << false;
    QTest::newRow("a directory") << QByteArray() << true;
    QTest::newRow("only the beginning") << whole.left(200) << false;
    QTest::newRow("another machine's") << otherMachine << false;
}

void TestBinding::unusableLibrary()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isDirectory);
    const QTemporaryDir directory;
    QVERIFY(QDir::setCurrent(directory.path()));
    if (isDirectory) {
        QVERIFY(QDir::current().mkdir(QStringLiteral("libmvsignpadsdk.so")));
    } else {
        QFile file(QStringLiteral("libmvsignpadsdk.so"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    for (const Model &model : allModels) {
        SignObjManager manager;
        QCOMPARE(manager.InitialDevice(model.nDeviceID, 800, 480), false);
        QCOMPARE(manager.IsValid(), false);
        QCOMPARE(manager.GetDeviceConfirmOrCancelKeyStatus(), -1);
        QCOMPARE(manager.GetPointer(), QStringLiteral("[]"));
        QCOMPARE(manager.UnInitialDevice(), false);
    }
}

void TestBinding::destructorOnlyUnloads()
{
    recorder().traceLoading();
    for (const Model &model : allModels) {
        expect("load");
        const auto pad = newPad(model);
        QVERIFY(recorder().isLoaded());
        expect("unload");
    }
}

void TestBinding::looksInTheWorkingDirectoryAnew()
{
    const QTemporaryDir empty;
    SignObjManager manager;
    QVERIFY(QDir::setCurrent(empty.path()));
    QCOMPARE(manager.InitialDevice(4, 800, 480), false);

    useLibrary(QStringLiteral("complete"));
    expect("MVRowan_InitialDevice(4, null, 0, 0, 800, 480)", number(1));
    QCOMPARE(manager.InitialDevice(4, 800, 480), true);
    expect("MVRowan_GetAboutInfo(4, buf)", recording::outputText("About"));
    QCOMPARE(manager.GetAboutInfo(), QStringLiteral("About"));

    useLibrary(QStringLiteral("without-GetAboutInfo"));
    expect("MVRowan_UnInitialDevice(4)");
    expect("MVRowan_InitialDevice(4, null, 0, 0, 800, 480)", number(1));
    QCOMPARE(manager.InitialDevice(4, 800, 480), true);
    QCOMPARE(manager.GetAboutInfo(), QString());

    QVERIFY(QDir::setCurrent(empty.path()));
    expect("MVRowan_UnInitialDevice(4)");
    QCOMPARE(manager.InitialDevice(4, 800, 480), false);
}

void TestBinding::twoObjectsShareTheLibrary()
{
    recorder().traceLoading();
    expect("load");
    auto cedar = newPad(allModels[2]);
    auto maple = newPad(allModels[3]);
    cedar.reset();
    expect("MVMaple_Clear(3)");
    maple->Clear();
    expect("unload");
    maple.reset();
    QVERIFY(!recorder().isLoaded());
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], openOneDevice) == 0) {
        return runAndOpen(QByteArray(argv[2]).toInt());
    }
    TestBinding test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_binding.moc"
