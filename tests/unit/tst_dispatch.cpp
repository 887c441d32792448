// From the request of a client to the call that reaches the maker's library and back: every command, its exact number
// of parameters and the conversion of each.
#include "service/PushCallbacks.h"
#include "tests/sdk/support/SdkTestCase.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QFile>
#include <QImage>
#include <QTcpSocket>
#include <QTest>
#include <QThread>

#include <thread>

namespace {

const char invalid[] = R"({"API":"Invalid API request","Result":"-1"})";

/// One call that has to reach the library, and what the library answers.
struct Scripted {
    const char *call;
    recording::Answer answer;
};

using Script = std::vector<Scripted>;

} // namespace

Q_DECLARE_METATYPE(Script)

class DispatchTest : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void reachesTheLibrary_data();
    void reachesTheLibrary();
    void wrongCountReachesNothing_data();
    void wrongCountReachesNothing();
    void withoutDevice_data();
    void withoutDevice();
    void withoutLibrary_data();
    void withoutLibrary();
    void initialDeviceTakesTheModelByItsNumber_data();
    void initialDeviceTakesTheModelByItsNumber();
    void confirmedSignatureTakesTwoSettings_data();
    void confirmedSignatureTakesTwoSettings();
    void confirmedSignatureAsksTheDateFlag();
    void clientsShareOnePad();
    void padIsCalledOnTheServiceThread();
    void padIsReleasedWhenTheServiceStops();
    void padIsReleasedAfterTheClients();
    void pushDuringARequestFollowsTheReply_data();
    void pushDuringARequestFollowsTheReply();
    void restartForgetsThePad();

private:
    /// Initialises the pad of this device ID; false when that fails.
    bool startPad(int id);
    QString ask(const QString &command) { return m_client->command(command); }

    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
    std::unique_ptr<RunningService> m_service;
    std::unique_ptr<SignClient> m_client;
    const char *m_release = nullptr; ///< the call that a stop of the service brings, while a pad is initialised
};

void DispatchTest::initTestCase()
{
    qRegisterMetaType<Script>();
}

void DispatchTest::init()
{
    SdkTestCase::init();
    m_warnings.reset(new WarningTrap);
    m_home.removeConfig();
    m_release = nullptr;
    m_service.reset(new RunningService);
    m_client.reset(new SignClient);
    QVERIFY(m_service->waitUntilListening());
    QVERIFY(m_client->connectTo(m_service->port()));
}

void DispatchTest::cleanup()
{
    if (m_release)
        expect(m_release, number(0));
    m_service.reset();
    m_client.reset();
    SdkTestCase::cleanup();
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

bool DispatchTest::startPad(int id)
{
    const char *const families[] = {"Alder", "Maple", "Rowan", "Birch", nullptr, "Cedar"};
    const char *const releases[] = {"MVAlder_UnInitialDevice(2)",
                                    "MVMaple_UnInitialDevice(3)",
                                    "MVRowan_UnInitialDevice(4)",
                                    "MVBirch_UnInitialDevice(5)",
                                    nullptr,
                                    "MVCedar_UnInitialDevice(7)"};
    const QString call =
        QStringLiteral("MV%1_InitialDevice(%2, null, 0, 0, 400, 300)").arg(QLatin1String(families[id - 2])).arg(id);
    expect(call.toStdString(), number(1));
    const QString reply = ask(QStringLiteral("InitialDevice?id=%1&width=400&height=300").arg(id));
    m_release = releases[id - 2];
    return reply == QLatin1String(R"({"API":"InitialDevice","Result":"1"})");
}

void DispatchTest::reachesTheLibrary_data()
{
    using recording::output;
    using recording::outputInts;
    using recording::outputText;

    QTest::addColumn<int>("pad");
    QTest::addColumn<QString>("command");
    QTest::addColumn<Script>("script");
    QTest::addColumn<QString>("reply");
    const auto pad = [](int id, const char *command, const Script &script, const char *reply) {
        QTest::newRow(command) << id << QString::fromUtf8(command) << script << QString::fromUtf8(reply);
    };
    const auto row = [pad](const char *command, const Script &script, const char *reply) {
        pad(2, command, script, reply);
    };
    const auto cedar = [pad](const char *command, const Script &script, const char *reply) {
        pad(7, command, script, reply);
    };

    // In the order of the commands.
    row("Clear", {{"MVAlder_Clear(2)", {}}}, R"({"API":"Clear","Result":"0"})");
    row("Clear?x=1&y=2", {{"MVAlder_Clear(2)", {}}}, R"({"API":"Clear","Result":"0"})");
    row("CloseLCD", {{"MVAlder_OpenLCD(2, 0)", number(5)}}, R"({"API":"CloseLCD","Result":"0"})");

    row("Decode?type=1&data=QUJD==", {{R"(MVAlder_Base64Decode(2, 1, "QUJD==", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?type=1&path=a.png&data=QUJD", {{R"(MVAlder_Base64Decode(2, 1, "QUJD", "/tmp/a.png"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?type=4&path=/home/u/a=b?c.png&data=a?b=c&d",
        {{R"(MVAlder_Base64Decode(2, 4, "a?b=c&d", "/tmp//home/u/a=b?c.png"))", number(-1)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?type=6&path=a&data=QQ==",
        {{R"(MVAlder_Base64Decode(2, 6, "QQ==", "/tmp/a"))", number(0)},
         {"MVAlder_GetTotalDecodeInkPointsNumber(2)", number(1)},
         {"MVAlder_GetDecodeInkPointData(2, 0, 1)", number(10)},
         {"MVAlder_GetDecodeInkPointData(2, 0, 2)", number(-20)},
         {"MVAlder_GetDecodeInkPointData(2, 0, 3)", number(1)}},
        R"({"API":"Decode","Result":"[{\"bStrokeEnd\":\"1\",\"x\":\"10\",\"y\":\"-20\"}]"})");
    row("Decode?type=x&data=y", {{R"(MVAlder_Base64Decode(2, 0, "y", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?type= 2 &data= y", {{R"(MVAlder_Base64Decode(2, 2, " y", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?type=1&extra=2&data=y", {{R"(MVAlder_Base64Decode(2, 0, "y", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?type=1&data=y&path=", {}, invalid);
    row("Decode?type=1&path=&data=x", {}, invalid);
    row("Decode?type=1&path=a&data=", {}, invalid);
    row("Decode?type=&path=a&data=x", {}, invalid);
    row("Decode?type=&data=x", {}, invalid);
    row("Decode?type=1&data=", {}, invalid);

    // Markers that are missing are not looked for: what stands at the places counted from them is taken.
    row("Decode", {{R"(MVAlder_Base64Decode(2, 0, "localhost:PORT/MVSignSDK/Decode", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?type=1",
        {{R"(MVAlder_Base64Decode(2, 1, "localhost:PORT/MVSignSDK/Decode?type=1", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?data=QQ==",
        {{R"(MVAlder_Base64Decode(2, 0, "localhost:PORT/MVSignSDK/Decode?data=QQ==", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");
    row("Decode?path=a&type=1&data=b", {{R"(MVAlder_Base64Decode(2, 0, "b", "/tmp/"))", number(0)}},
        R"({"API":"Decode","Result":""})");

    row("DisplayDeviceInfoInLCD?show=1", {{"MVAlder_DisplayHWVersion(2, true)", number(0)}},
        R"({"API":"DisplayDeviceInfoInLCD","Result":"0"})");
    row("DisplayDeviceInfoInLCD?show=0", {{"MVAlder_DisplayHWVersion(2, false)", number(0)}},
        R"({"API":"DisplayDeviceInfoInLCD","Result":"0"})");
    row("DisplayDeviceInfoInLCD?show=-7", {{"MVAlder_DisplayHWVersion(2, true)", number(0)}},
        R"({"API":"DisplayDeviceInfoInLCD","Result":"0"})");
    row("DisplayDeviceInfoInLCD?show=true", {{"MVAlder_DisplayHWVersion(2, false)", number(0)}},
        R"({"API":"DisplayDeviceInfoInLCD","Result":"0"})");
    row("Encode?type=4", {{"MVAlder_Base64Encode(2, 4)", text("QUJD")}, {"MVAlder_Base64EncodeFree(2, #1)", {}}},
        R"({"API":"Encode","Result":"QUJD"})");
    row("Encode?Type=4", {{"MVAlder_Base64Encode(2, 0)", text("QUJD")}, {"MVAlder_Base64EncodeFree(2, #1)", {}}},
        R"({"API":"Encode","Result":"QUJD"})");
    row("Encode?type=-3", {{"MVAlder_Base64Encode(2, -3)", text("\"\\\n")}, {"MVAlder_Base64EncodeFree(2, #1)", {}}},
        R"({"API":"Encode","Result":"\"\\\n"})");
    row("GetAboutInfo", {{"MVAlder_GetAboutInfo(2, buf)", outputText("Pad \xe7\xad\xbe")}},
        R"({"API":"GetAboutInfo","Result":"Pad 签"})");
    row("GetDecodeFilePath", {}, R"({"API":"GetDecodeFilePath","Result":""})");
    row("GetDeviceConfirmOrCancelKeyStatus", {{"MVAlder_GetDeviceConfirmOrCancelKeyStatus(2)", number(1)}},
        R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"1"})");
    pad(2, "GetDeviceConfirmOrCancelKeyStatus?none", {{"MVAlder_GetDeviceConfirmOrCancelKeyStatus(2)", number(-1)}},
        R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"-1"})");
    row("GetDeviceInfo?type=7", {{"MVAlder_GetDeviceInfo(2, 7, buf)", outputInts({3, 12})}},
        R"({"API":"GetDeviceInfo","Result":"3.12"})");
    row("GetDeviceInfo?type=8", {}, R"({"API":"GetDeviceInfo","Result":""})");
    cedar(
        "GetFingerPrintImage?FPImageOnly=1",
        {{"MVCedar_GetFPImageBase64Data(7, 3, 1)", text("RlA=")}, {"MVCedar_FreeFPImageBase64Data(7, #1)", {}}},
        R"({"API":"GetFingerPrintImage","Result":"[{\"EventType\":\"3\",\"Image\":\"RlA=\",\"ImageLength\":\"4\"}]"})");
    cedar(
        "GetFingerPrintImage?FPImageOnly=0",
        {{"MVCedar_GetFPImageBase64Data(7, 3, 0)", text("RlA=")}, {"MVCedar_FreeFPImageBase64Data(7, #1)", {}}},
        R"({"API":"GetFingerPrintImage","Result":"[{\"EventType\":\"3\",\"Image\":\"RlA=\",\"ImageLength\":\"4\"}]"})");
    row("GetFingerPrintImage?FPImageOnly=2", {}, R"({"API":"GetFingerPrintImage","Result":""})");
    row("GetInks", {{"MVAlder_Base64Encode(2, 3)", text("QUJD")}, {"MVAlder_Base64EncodeFree(2, #1)", {}}},
        R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"QUJD\",\"ImageLength\":\"4\"}]"})");
    row("GetPointer",
        {{"MVAlder_GetTotalInkPointsNumber(2)", number(1)},
         {"MVAlder_GetInkPointData(2, point 0)", recording::point(1, 2, 3, 1)},
         {"MVAlder_GetInkPointDataTimeInfo(2, 0)", text("t")},
         {"MVAlder_FreeInkPointDataTimeInfo(2, #1)", {}}},
        R"({"API":"GetPointer","Result":"[{\"Time\":\"t\",\"bStrokeEnd\":\"1\",\"pressure\":\"3\",\"x\":\"1\",\"y\":\"2\"}]"})");
    row("GetSize", {{"MVAlder_GetTotalInkPointsNumber(2)", number(1234567)}},
        R"({"API":"GetSize","Result":"1234567"})");
    row("IsValid", {{"MVAlder_GetDeviceInfo(2, 1, buf)", output("\x01")}}, R"({"API":"IsValid","Result":"1"})");
    row("IsValid?foo=bar", {{"MVAlder_GetDeviceInfo(2, 1, buf)", output("\x01", 1)}},
        R"({"API":"IsValid","Result":"0"})");
    row("OpenLCD", {{"MVAlder_OpenLCD(2, 1)", number(0)}}, R"({"API":"OpenLCD","Result":"0"})");
    row("PadID", {{"MVAlder_GetHWPadID(2, buf, 32)", outputText("pad 9")}}, R"({"API":"PadID","Result":"pad 9"})");
    row("PenID", {{"MVAlder_GetHWPenID(2, buf, 32)", outputText("pen 7")}}, R"({"API":"PenID","Result":"pen 7"})");
    row("SaveDrawingImage?type=2&dpi=300&path=sig.png",
        {{R"(MVAlder_SaveDrawingImage(2, 2, "/tmp/sig.png", 300))", number(0)}},
        R"({"API":"SaveDrawingImage","Result":"/tmp/sig.png"})");
    row("SaveDrawingImage?path=out/签.png&dpi=72&type=4",
        {{R"(MVAlder_SaveDrawingImage(2, 4, "out/\u{7B7E}.png", 72))", number(0)}},
        R"({"API":"SaveDrawingImage","Result":"out/签.png"})");
    row("SaveDrawingImage?type=2&dpi=300&path=a=b", {{R"(MVAlder_SaveDrawingImage(2, 2, "/tmp/a", 300))", number(-3)}},
        R"({"API":"SaveDrawingImage","Result":"-3"})");
    row("SetClip?width=0&height=40", {{"MVAlder_SetSaveClipImageMargin(2, 1, 0, 40)", number(0)}},
        R"({"API":"SetClip","Result":"0"})");
    row("SetClip?width=0&height=0", {{"MVAlder_SetSaveClipImageMargin(2, 0, 0, 0)", number(0)}},
        R"({"API":"SetClip","Result":"0"})");
    row("SetClip?width=-1&height=50", {}, R"({"API":"SetClip","Result":"0"})");
    row("SetClip?height=7&width=3", {{"MVAlder_SetSaveClipImageMargin(2, 1, 3, 7)", number(0)}},
        R"({"API":"SetClip","Result":"0"})");
    cedar("SetDisplayedFPImageAt?CanvasWidth=1&CanvasHeight=2&Left=3&Top=4&Width=5&Height=6",
          {{"MVCedar_SetDisplayedFPImageAt(7, null, 1, 2, 3, 4, 5, 6)", number(0)}},
          R"({"API":"SetDisplayedFPImageAt","Result":"0"})");
    cedar("SetDisplayedFPImageAt?Height=6&Width=5&Top=4&Left=3&CanvasHeight=2&CanvasWidth=1",
          {{"MVCedar_SetDisplayedFPImageAt(7, null, 1, 2, 3, 4, 5, 6)", number(0)}},
          R"({"API":"SetDisplayedFPImageAt","Result":"0"})");
    row("SetPenColor?R=1&G=2&B=3", {{"MVAlder_SetPenColor(2, 1, 2, 3)", number(0)}},
        R"({"API":"SetPenColor","Result":"0"})");
    row("SetPenColor?B=255&G=-1&R=70000", {{"MVAlder_SetPenColor(2, 70000, -1, 255)", number(0)}},
        R"({"API":"SetPenColor","Result":"0"})");
    row("SetPenColor?r=1&g=2&b=3", {{"MVAlder_SetPenColor(2, 0, 0, 0)", number(0)}},
        R"({"API":"SetPenColor","Result":"0"})");
    row("SetPenStyle?Style=0", {{"MVAlder_SetPenStyle(2, true)", number(0)}}, R"({"API":"SetPenStyle","Result":"0"})");
    row("SetPenStyle?Style=1", {{"MVAlder_SetPenStyle(2, false)", number(0)}}, R"({"API":"SetPenStyle","Result":"0"})");
    row("SetPenStyle?Style=-5", {{"MVAlder_SetPenStyle(2, false)", number(0)}},
        R"({"API":"SetPenStyle","Result":"0"})");
    row("SetPenStyle?Style=on", {{"MVAlder_SetPenStyle(2, true)", number(0)}}, R"({"API":"SetPenStyle","Result":"0"})");
    row("SetPenStyle?style=1", {{"MVAlder_SetPenStyle(2, true)", number(0)}}, R"({"API":"SetPenStyle","Result":"0"})");
    row("SetPenWidth?Width=5", {{"MVAlder_SetPenWidth(2, 5)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=5&Width=7", {{"MVAlder_SetPenWidth(2, 7)", number(0)}},
        R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?width=5", {{"MVAlder_SetPenWidth(2, 0)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=abc", {{"MVAlder_SetPenWidth(2, 0)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=1.5", {{"MVAlder_SetPenWidth(2, 0)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=0x10", {{"MVAlder_SetPenWidth(2, 0)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width= 12 ", {{"MVAlder_SetPenWidth(2, 12)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=010", {{"MVAlder_SetPenWidth(2, 10)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=2147483647", {{"MVAlder_SetPenWidth(2, 2147483647)", number(0)}},
        R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=-2147483648", {{"MVAlder_SetPenWidth(2, -2147483648)", number(0)}},
        R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=2147483648", {{"MVAlder_SetPenWidth(2, 0)", number(0)}},
        R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?Width=4294967301", {{"MVAlder_SetPenWidth(2, 0)", number(0)}},
        R"({"API":"SetPenWidth","Result":"0"})");
    row("SetPenWidth?", {{"MVAlder_SetPenWidth(2, 0)", number(0)}}, R"({"API":"SetPenWidth","Result":"0"})");
    row("VersionID", {{"MVAlder_GetHWVersion(2, buf, 32)", outputText("V1.2")}},
        R"({"API":"VersionID","Result":"V1.2"})");
    row("WPSGetInks", {{"MVAlder_Base64EncodeEx(2, 2, 0)", text("QUJD")}, {"MVAlder_Base64EncodeExFree(2, #1)", {}}},
        R"({"API":"WPSGetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"QUJD\",\"ImageLength\":\"4\"}]"})");
    row("InitialWPSSignCanvas?width=800&height=480", {{"MVAlder_InitialWPSSignCanvas(2, 800, 480)", number(1)}},
        R"({"API":"InitialWPSSignCanvas","Result":"1"})");
    row("InitialWPSSignCanvas?height=1&width=2", {{"MVAlder_InitialWPSSignCanvas(2, 2, 1)", number(0)}},
        R"({"API":"InitialWPSSignCanvas","Result":"0"})");
    row("GetSVGImageBase64Data",
        {{"MVAlder_GetSVGImageBase64Data(2)", text("PHN2Zz4=")}, {"MVAlder_FreeSVGImageBase64Data(2, #1)", {}}},
        R"({"API":"GetSVGImageBase64Data","Result":"PHN2Zz4="})");
    row("EnableRealtimeSigningNotification?type=3",
        {{"MVAlder_SetRealTimeSignBase64DataCallback(2, 3, callback)", number(1)}},
        R"({"API":"EnableRealtimeSigningNotification","Result":"1"})");
    row("EnableRealtimeSigningNotification?Type=3",
        {{"MVAlder_SetRealTimeSignBase64DataCallback(2, 0, callback)", number(0)}},
        R"({"API":"EnableRealtimeSigningNotification","Result":"0"})");
    row("GetOpaqueInks", {{"MVAlder_Base64EncodeEx(2, 3, 0)", text("QUJD")}, {"MVAlder_Base64EncodeExFree(2, #1)", {}}},
        R"({"API":"GetOpaqueInks","Result":"[{\"EventType\":\"0\",\"Image\":\"QUJD\",\"ImageLength\":\"4\"}]"})");
}

void DispatchTest::reachesTheLibrary()
{
    QFETCH(int, pad);
    QFETCH(QString, command);
    QFETCH(Script, script);
    QFETCH(QString, reply);
    QVERIFY(startPad(pad));
    for (const Scripted &step : script) {
        const QString call =
            QString::fromUtf8(step.call).replace(QLatin1String("PORT"), QString::number(m_service->port()));
        expect(call.toStdString(), step.answer);
    }
    QCOMPARE(ask(command), reply);
}

void DispatchTest::wrongCountReachesNothing_data()
{
    QTest::addColumn<QString>("command");
    const char *const commands[] = {
        "DisplayDeviceInfoInLCD",
        "DisplayDeviceInfoInLCD?show=1&x=1",
        "Encode",
        "Encode?type=1&x=1",
        "GetDeviceInfo",
        "GetDeviceInfo?type=1&x=1",
        "GetFingerPrintImage",
        "GetFingerPrintImage?FPImageOnly=1&x=1",
        "InitialDevice",
        "InitialDevice?id=2",
        "InitialDevice?id=2&width=400",
        "InitialDevice?id=2&width=400&height=300&x=1",
        "InitialDevice?id=2&width=400&width=300",
        "SaveDrawingImage",
        "SaveDrawingImage?type=1&dpi=2",
        "SaveDrawingImage?type=1&dpi=2&path=a&x=1",
        "SetClip",
        "SetClip?width=1",
        "SetClip?width=1&height=2&x=3",
        "SetClip?width=1&width=2",
        "SetDisplayedFPImageAt",
        "SetDisplayedFPImageAt?CanvasWidth=1&CanvasHeight=2&Left=3&Top=4&Width=5",
        "SetDisplayedFPImageAt?CanvasWidth=1&CanvasHeight=2&Left=3&Top=4&Width=5&Height=6&x=7",
        "SetPenColor",
        "SetPenColor?R=255&G=0",
        "SetPenColor?R=255&G=0&B=0&A=0",
        "SetPenColor?R=1&R=2&R=3",
        "SetPenStyle",
        "SetPenStyle?Style=1&x=1",
        "SetPenWidth",
        "SetPenWidth?Width=5&Extra=1",
        "SetPenWidth?Width=5&",
        "GetWPSSettings",
        "GetWPSSettings?id=1&x=1",
        "UpdateWPSSettings",
        "UpdateWPSSettings?id=2&dt=1&af=1&pw=4",
        "UpdateWPSSettings?id=2&dt=1&af=1&pw=4&name=A&x=1",
        "WPSSignConfirmed",
        "WPSSignConfirmed?id=1&x=1",
        "InitialWPSSignCanvas",
        "InitialWPSSignCanvas?width=1",
        "InitialWPSSignCanvas?width=1&height=2&x=3",
        "EnableRealtimeSigningNotification",
        "EnableRealtimeSigningNotification?type=1&x=1",
    };
    for (const char *command : commands)
        QTest::newRow(command) << QString::fromLatin1(command);
}

void DispatchTest::wrongCountReachesNothing()
{
    QFETCH(QString, command);
    QVERIFY(startPad(2));
    QCOMPARE(ask(command), QString::fromLatin1(invalid));
}

void DispatchTest::withoutDevice_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *command, const char *result) {
        QTest::newRow(command) << QString::fromLatin1(command) << QString::fromLatin1(result);
    };
    row("Clear", "0");
    row("CloseLCD", "0");
    row("Decode?type=6&path=a&data=b", "");
    row("DisplayDeviceInfoInLCD?show=1", "0");
    row("Encode?type=1", "");
    row("GetAboutInfo", "");
    row("GetDecodeFilePath", "");
    row("GetDeviceConfirmOrCancelKeyStatus", "-1");
    row("GetDeviceInfo?type=1", "");
    row("GetFingerPrintImage?FPImageOnly=1", "");
    row("GetInks", "");
    row("GetPointer", "[]");
    row("GetSize", "0");
    row("InitialDevice?id=9&width=400&height=300", "0");
    row("IsValid", "0");
    row("OpenLCD", "0");
    row("PadID", "");
    row("PenID", "");
    row("SaveDrawingImage?type=1&dpi=300&path=a", "");
    row("SetClip?width=1&height=1", "0");
    row("SetDisplayedFPImageAt?CanvasWidth=1&CanvasHeight=2&Left=3&Top=4&Width=5&Height=6", "0");
    row("SetPenColor?R=0&G=0&B=255", "0");
    row("SetPenStyle?Style=1", "0");
    row("SetPenWidth?Width=5", "0");
    row("UninitialDevice", "0");
    row("VersionID", "");
    row("GetWPSSettings?id=2",
        R"({\"CurrentPenWidth\":\"3\",\"EnableAutoFit\":\"0\",\"EnableDateTime\":\"0\",\"Name\":\"\"})");
    row("UpdateWPSSettings?id=1&dt=0&af=0&pw=3&name=", "0");
    row("WPSSignConfirmed?id=1", "");
    row("WPSGetInks", "");
    row("InitialWPSSignCanvas?width=1&height=1", "0");
    row("GetSVGImageBase64Data", "");
    row("EnableRealtimeSigningNotification?type=1", "0");
    row("GetOpaqueInks", "");
}

void DispatchTest::withoutDevice()
{
    QFETCH(QString, command);
    QFETCH(QString, result);
    const QString api = command.section(QLatin1Char('?'), 0, 0);
    QCOMPARE(ask(command), QStringLiteral("{\"API\":\"%1\",\"Result\":\"%2\"}").arg(api, result));
}

void DispatchTest::withoutLibrary_data()
{
    withoutDevice_data();
}

void DispatchTest::withoutLibrary()
{
    QFETCH(QString, command);
    QFETCH(QString, result);
    QVERIFY(QDir::setCurrent(m_home.path()));
    QCOMPARE(ask(QStringLiteral("InitialDevice?id=2&width=400&height=300")),
             QStringLiteral(R"({"API":"InitialDevice","Result":"0"})"));
    const QString api = command.section(QLatin1Char('?'), 0, 0);
    QCOMPARE(ask(command), QStringLiteral("{\"API\":\"%1\",\"Result\":\"%2\"}").arg(api, result));
}

void DispatchTest::initialDeviceTakesTheModelByItsNumber_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("call");
    QTest::addColumn<QString>("release");
    QTest::newRow("Alder") << QStringLiteral("InitialDevice?id=2&width=400&height=300")
                           << QStringLiteral("MVAlder_InitialDevice(2, null, 0, 0, 400, 300)")
                           << QStringLiteral("MVAlder_UnInitialDevice(2)");
    QTest::newRow("Birch, keys in another order") << QStringLiteral("InitialDevice?height=300&width=400&id=5")
                                                  << QStringLiteral("MVBirch_InitialDevice(5, null, 0, 0, 400, 300)")
                                                  << QStringLiteral("MVBirch_UnInitialDevice(5)");
    QTest::newRow("Cedar, negative size") << QStringLiteral("InitialDevice?id=7&width=-1&height=0")
                                          << QStringLiteral("MVCedar_InitialDevice(7, null, 0, 0, -1, 0)")
                                          << QStringLiteral("MVCedar_UnInitialDevice(7)");
    QTest::newRow("Maple, misspelt size")
        << QStringLiteral("InitialDevice?id=3&Width=400&Height=300")
        << QStringLiteral("MVMaple_InitialDevice(3, null, 0, 0, 0, 0)") << QStringLiteral("MVMaple_UnInitialDevice(3)");
    QTest::newRow("Rowan, spaces") << QStringLiteral("InitialDevice?id= 4 &width= 1 &height= 2 ")
                                   << QStringLiteral("MVRowan_InitialDevice(4, null, 0, 0, 1, 2)")
                                   << QStringLiteral("MVRowan_UnInitialDevice(4)");
}

void DispatchTest::initialDeviceTakesTheModelByItsNumber()
{
    QFETCH(QString, command);
    QFETCH(QString, call);
    QFETCH(QString, release);
    expect(call.toStdString(), number(1));
    QCOMPARE(ask(command), QStringLiteral(R"({"API":"InitialDevice","Result":"1"})"));
    expect(release.toStdString(), number(0));
    QCOMPARE(ask(QStringLiteral("UninitialDevice")), QStringLiteral(R"({"API":"UninitialDevice","Result":"1"})"));
    QCOMPARE(ask(QStringLiteral("UninitialDevice")), QStringLiteral(R"({"API":"UninitialDevice","Result":"0"})"));
}

void DispatchTest::confirmedSignatureTakesTwoSettings_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<bool>("stamped");
    // The spreadsheet alone stamps a name; the stamp needs the drawing as a file, the others do with its path.
    QTest::newRow("writer") << QStringLiteral("1") << false;
    QTest::newRow("spreadsheet") << QStringLiteral("2") << true;
    QTest::newRow("presentation") << QStringLiteral("3") << false;
    QTest::newRow("any other is the writer") << QStringLiteral("17") << false;
}

void DispatchTest::confirmedSignatureTakesTwoSettings()
{
    QFETCH(QString, id);
    QFETCH(bool, stamped);
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=2&dt=0&af=1&pw=9&name=Signer")),
             QStringLiteral(R"({"API":"UpdateWPSSettings","Result":"0"})"));
    QVERIFY(startPad(2));
    expect("MVAlder_SetSaveClipImageMargin(2, 1, 5, 5)", number(0));
    recording::Answer saved = number(0);
    saved.effect = [] {
        QImage drawing(40, 20, QImage::Format_ARGB32);
        drawing.fill(Qt::transparent);
        drawing.save(QStringLiteral("/tmp/MVeSignWPS.png"));
    };
    expect(R"(MVAlder_SaveDrawingImage(2, 3, "/tmp/MVeSignWPS.png", 300))", saved);
    const QString path =
        stamped ? QStringLiteral("/tmp/MVeSignWPS_dt_name.png") : QStringLiteral("/tmp/MVeSignWPS.png");
    QFile::remove(QStringLiteral("/tmp/MVeSignWPS_dt_name.png"));
    QCOMPARE(ask(QStringLiteral("WPSSignConfirmed?id=") + id),
             QStringLiteral("{\"API\":\"WPSSignConfirmed\",\"Result\":\"%1\"}").arg(path));
    QCOMPARE(QFile::exists(QStringLiteral("/tmp/MVeSignWPS_dt_name.png")), stamped);
}

/// Fitting the picture is the office suite's own business.
void DispatchTest::confirmedSignatureAsksTheDateFlag()
{
    QVERIFY(startPad(2));
    const auto confirmed = [this](const char *settings) {
        ask(QStringLiteral("UpdateWPSSettings?id=1&pw=3&name=&") + QLatin1String(settings));
        expect("MVAlder_SetSaveClipImageMargin(2, 1, 5, 5)", number(0));
        expect(R"(MVAlder_SaveDrawingImage(2, 3, "/tmp/MVeSignWPS.png", 300))", number(0));
        return ask(QStringLiteral("WPSSignConfirmed?id=1"));
    };
    QCOMPARE(confirmed("dt=0&af=1"), QStringLiteral(R"({"API":"WPSSignConfirmed","Result":"/tmp/MVeSignWPS.png"})"));
    QCOMPARE(confirmed("dt=1&af=0"),
             QStringLiteral(R"({"API":"WPSSignConfirmed","Result":"/tmp/MVeSignWPS_dt_name.png"})"));
}

void DispatchTest::padIsCalledOnTheServiceThread()
{
    QVERIFY(startPad(2));
    const QThread *caller = nullptr;
    recording::Answer cleared;
    cleared.effect = [&caller] { caller = QThread::currentThread(); };
    expect("MVAlder_Clear(2)", cleared);
    QCOMPARE(ask(QStringLiteral("Clear")), QStringLiteral(R"({"API":"Clear","Result":"0"})"));
    QCOMPARE(caller, m_service->thread());
}

void DispatchTest::clientsShareOnePad()
{
    QVERIFY(startPad(2));
    SignClient second;
    QVERIFY(second.connectTo(m_service->port()));
    expect("MVAlder_SetPenWidth(2, 3)", number(0));
    QCOMPARE(second.command(QStringLiteral("SetPenWidth?Width=3")),
             QStringLiteral(R"({"API":"SetPenWidth","Result":"0"})"));
    expect("MVAlder_UnInitialDevice(2)", number(0));
    QCOMPARE(second.command(QStringLiteral("UninitialDevice")),
             QStringLiteral(R"({"API":"UninitialDevice","Result":"1"})"));
    m_release = nullptr;
    QCOMPARE(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")),
             QStringLiteral(R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"-1"})"));
}

void DispatchTest::padIsReleasedWhenTheServiceStops()
{
    QVERIFY(startPad(5));
    QVERIFY(recorder().isLoaded());
    expect("MVBirch_UnInitialDevice(5)", number(0));
    m_release = nullptr;
    m_service->stop();
    QVERIFY(!recorder().isLoaded());
}

void DispatchTest::padIsReleasedAfterTheClients()
{
    QVERIFY(startPad(2));
    // While the pad is being released the connection is closed already, and the server is not: the sockets go first.
    recording::Answer released = number(0);
    bool closedBefore = false;
    bool listensStill = false;
    released.effect = [&, this] {
        closedBefore = m_client->waitForDisconnect();
        QTcpSocket later;
        later.connectToHost(QHostAddress(QHostAddress::LocalHost), m_service->port());
        listensStill = later.waitForConnected(patienceMs);
    };
    expect("MVAlder_UnInitialDevice(2)", released);
    m_release = nullptr;
    m_service->stop();
    QVERIFY(closedBefore);
    QVERIFY(listensStill);
}

void DispatchTest::pushDuringARequestFollowsTheReply_data()
{
    QTest::addColumn<bool>("isOfAnotherThread");
    QTest::newRow("from that very call") << false;
    QTest::newRow("from another thread, which does not send it itself") << true;
}

/// A push that comes while the service runs a request follows the reply.
void DispatchTest::pushDuringARequestFollowsTheReply()
{
    QFETCH(bool, isOfAnotherThread);
    QVERIFY(startPad(2));
    recording::Answer cleared;
    cleared.effect = [isOfAnotherThread] {
        const auto push = [] { WebSocketServiceSignPadEventCallback(1); };
        if (isOfAnotherThread)
            std::thread(push).join();
        else
            push();
    };
    ask(QStringLiteral("EnableRealtimeSigningNotification"));
    m_client->forget();
    expect("MVAlder_Clear(2)", cleared);
    m_client->sendCommand(QStringLiteral("Clear"));
    QVERIFY(m_client->waitForMessages(2));
    QCOMPARE(m_client->messages(),
             (QStringList{QStringLiteral(R"({"API":"Clear","Result":"0"})"),
                          QStringLiteral(R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"1"})")}));
}

void DispatchTest::restartForgetsThePad()
{
    QVERIFY(startPad(2));
    expect("MVAlder_GetTotalInkPointsNumber(2)", number(3));
    QCOMPARE(ask(QStringLiteral("GetSize")), QStringLiteral(R"({"API":"GetSize","Result":"3"})"));
    expect("MVAlder_UnInitialDevice(2)", number(0));
    m_release = nullptr;
    m_service->stop();
    m_service->start();
    QVERIFY(m_service->waitUntilListening());
    QVERIFY(m_client->waitForDisconnect() && m_client->connectTo(m_service->port()));
    QCOMPARE(ask(QStringLiteral("GetSize")), QStringLiteral(R"({"API":"GetSize","Result":"0"})"));
    QCOMPARE(ask(QStringLiteral("UninitialDevice")), QStringLiteral(R"({"API":"UninitialDevice","Result":"0"})"));
}

QTEST_MAIN(DispatchTest)

#include "tst_dispatch.moc"
