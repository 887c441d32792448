// What the service writes to the log of the other threads while the log is on: whole lines, the tick masked.
#include "base/Logging.h"
#include "service/WebSocketService.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"

#include <QFile>
#include <QTcpServer>
#include <QTest>

namespace {

const char dispatcher[] = "WebSocketService::ProcessMVSignSDKWebSocketAPICommand()";

} // namespace

class ServiceLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void offWritesNothing();
    void lifeOfAService();
    void portInUse();
    void textMessage();
    void commandWithParameters();
    void unknownCommandHasNoName();
    void binaryMessage();
    void commandNames_data();
    void commandNames();
    void keyEvents();
    void images();

private:
    /// Stops the service and checks that its lines came in this order, others between them allowed.
    void compareInOrder(const QStringList &expected);

    PrivateHome m_home;
    std::unique_ptr<RunningService> m_service;
    std::unique_ptr<SignClient> m_client;
};

void ServiceLogTest::init()
{
    removeLogs();
    g_bEnableLog = true;
    m_service.reset(new RunningService);
    QVERIFY(m_service->waitUntilListening());
    m_client.reset(new SignClient);
    QVERIFY(m_client->connectTo(m_service->port()));
}

void ServiceLogTest::cleanup()
{
    m_service.reset();
    m_client.reset();
    g_bEnableLog = false;
    QVERIFY(!QFile::exists(mainLog())); // all of it belongs to the other file
    removeLogs();
}

void ServiceLogTest::compareInOrder(const QStringList &expected)
{
    m_service->stop();
    QCOMPARE(flawOfLog(threadLog(), expected), QString());
}

void ServiceLogTest::offWritesNothing()
{
    g_bEnableLog = false;
    m_service->stop();
    removeLogs();
    m_service->start();
    QVERIFY(m_service->waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(m_service->port()));
    QCOMPARE(client.command(QStringLiteral("Clear")), QStringLiteral(R"({"API":"Clear","Result":"0"})"));
    m_service->stop();
    QVERIFY(!QFile::exists(threadLog()));
}

void ServiceLogTest::lifeOfAService()
{
    QVERIFY(m_client->close());
    QTRY_VERIFY_WITH_TIMEOUT(
        maskedLines(threadLog()).contains(logLine("WebSocketService::socketDisconnected()", "Leave !")), patienceMs);
    const QString port = QString::number(m_service->port());
    compareInOrder({logLine("WebSocketThread::WebSocketThread()", QStringLiteral("Enter, nWebSocketPort=") + port),
                    logLine("WebSocketThread::run()", "Enter..."),
                    logLine("WebSocketService::WebSocketService()", QStringLiteral("Enter, m_nPort=") + port),
                    logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Enter..."),
                    logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Leave !"),
                    logLine("WebSocketService::SetupMVSignPadSDKAPINameList()", "Enter..."),
                    logLine("WebSocketService::SetupMVSignPadSDKAPINameList()", "Leave !"),
                    logLine("WebSocketService::WebSocketService()", "m_pSignObjMgr=P"),
                    logLine("WebSocketService::WebSocketService()", "Leave !"),
                    logLine("WebSocketThread::run()", "b4 call exec()..."),
                    logLine("WebSocketService::onNewConnection()", "Enter..."),
                    logLine("WebSocketService::onNewConnection()", "Leave !"),
                    logLine("WebSocketService::socketDisconnected()", "Enter..."),
                    logLine("WebSocketService::socketDisconnected()", "Leave !"),
                    logLine("WebSocketThread::run()", "after call exec() and Leave !"),
                    logLine("WebSocketThread::~WebSocketThread()", "Enter..."),
                    logLine("WebSocketService::~WebSocketService()", "Enter..."),
                    logLine("WebSocketService::~WebSocketService()", "Leave !"),
                    logLine("WebSocketThread::~WebSocketThread()", "after call delete m_pWebSocketService..."),
                    logLine("WebSocketThread::~WebSocketThread()", "Leave !")});
}

void ServiceLogTest::portInUse()
{
    m_service->stop();
    removeLogs();
    QTcpServer holder;
    QVERIFY(holder.listen(QHostAddress::Any, m_service->port()));
    m_service->start();
    const QString waiting = logLine("WebSocketThread::run()", "b4 call exec()...");
    QTRY_VERIFY_WITH_TIMEOUT(maskedLines(threadLog()).contains(waiting), patienceMs);
    m_service->stop();
    // No manager was made.
    QVERIFY(!maskedLines(threadLog()).contains(logLine("WebSocketService::WebSocketService()", "m_pSignObjMgr=P")));
    QVERIFY(maskedLines(threadLog()).contains(logLine("WebSocketThread::~WebSocketThread()", "Leave !")));
}

void ServiceLogTest::textMessage()
{
    const QString prefix = QStringLiteral("ws://localhost:%1/MVSignSDK/").arg(m_service->port());
    QVERIFY(!m_client->request(prefix + QStringLiteral("Clear")).isNull());
    const QString length = QString::number(prefix.size() + 5);
    compareInOrder(
        {logLine("WebSocketService::processTextMessage()", QStringLiteral("Enter, message.length=") + length),
         logLine(dispatcher, QStringLiteral("Enter, strMsg.length=") + length), logLine(dispatcher, "Rx Cmd: CLEAR"),
         logLine(dispatcher, "Leave !"), logLine("WebSocketService::processTextMessage()", "Leave !")});
}

void ServiceLogTest::commandWithParameters()
{
    QVERIFY(!m_client->command(QStringLiteral("UpdateWPSSettings?id=1&dt=0&af=0&pw=3&name=a")).isNull());
    compareInOrder({logLine(dispatcher, "Rx Cmd: UPDATEWPSSETTINGS"),
                    logLine("WebSocketService::ParseUrlParameters()", "Enter..."),
                    logLine("WebSocketService::ParseUrlParameters()", "Leave !"),
                    logLine("WebSocketService::UpdateWPSSettingsToConfigureFile()", "Enter..."),
                    logLine("WebSocketService::UpdateWPSSettingsToConfigureFile()", "Leave !"),
                    logLine(dispatcher, "Leave !")});
}

void ServiceLogTest::unknownCommandHasNoName()
{
    QVERIFY(!m_client->request(QStringLiteral("hello")).isNull());
    compareInOrder({logLine("WebSocketService::processTextMessage()", "Enter, message.length=5"),
                    logLine(dispatcher, "Enter, strMsg.length=5"), logLine(dispatcher, "Leave !")});
    QVERIFY(maskedLines(threadLog()).filter(QStringLiteral("Rx Cmd")).isEmpty());
}

void ServiceLogTest::binaryMessage()
{
    QCOMPARE(m_client->binaryRequest("abc"), QByteArray("abc"));
    QCOMPARE(m_client->binaryRequest(QByteArray(1000, 'x')), QByteArray(1000, 'x'));
    compareInOrder({logLine("WebSocketService::processBinaryMessage()", "Enter, message=abc"),
                    logLine("WebSocketService::processBinaryMessage()", "Leave !")});
}

void ServiceLogTest::commandNames_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("logged");
    const auto row = [](const char *command, const char *logged) {
        QTest::newRow(command) << QString::fromLatin1(command) << QString::fromLatin1(logged);
    };
    row("Clear", "CLEAR");
    row("CloseLCD", "CLOSELCD");
    row("Decode?type=&data=", "DECODE");
    row("DisplayDeviceInfoInLCD?show=1", "DISPLAYDEVICEINFOINLCD");
    row("Encode?type=1", "ENCODE");
    row("GetAboutInfo", "GETABOUTINFO");
    row("GetDecodeFilePath", "GETDECODEFILEPATH");
    row("GetDeviceConfirmOrCancelKeyStatus", "GETDEVICECONFIRMORCANCELKEYSTATUS");
    row("GetDeviceInfo?type=1", "GETDEVICEINFO");
    row("GetFingerPrintImage?FPImageOnly=1", "GETFINGERPRINTIMAGE");
    row("GetInks", "GETINKS");
    row("GetPointer", "GETPOINTER");
    row("GetSize", "GETSIZE");
    row("InitialDevice?id=9&width=1&height=1", "INITIALDEVICE");
    row("IsValid", "ISVALID");
    row("OpenLCD", "OPENLCD");
    row("PadID", "PADID");
    row("PenID", "PENID");
    row("SaveDrawingImage?type=1&dpi=1&path=a", "SAVEDRAWINGIMAGE");
    row("SetClip?width=1&height=1", "SETCLIP");
    row("SetDisplayedFPImageAt", "SETDISPLAYEDFPIMAGEAT");
    row("SetPenColor?R=1", "SETPENCOLOR");
    row("SetPenStyle?Style=1", "SETPENSTYLE");
    row("SetPenWidth?Width=1", "SETPENWIDTH");
    row("UninitialDevice", "UNINITIALDEVICE");
    row("VersionID", "VERSIONID");
    row("GetWPSSettings?id=1", "GETWPSSETTINGS");
    row("UpdateWPSSettings", "UPDATEWPSSETTINGS");
    row("WPSSignConfirmed?id=1", "WPSSIGNCONFIRMED");
    row("WPSGetInks", "WPSGETINKS");
    row("InitialWPSSignCanvas?width=1&height=1", "INITWPSSIGNCANVAS");
    row("GetSVGImageBase64Data", "GETSVGIMAGEBASE64DATA");
    row("EnableRealtimeSigningNotification?type=1", "ENABLEREALTIMESIGNINGNOTIFICATION");
    row("GetOpaqueInks", "GETOPAQUEINKS");
}

void ServiceLogTest::commandNames()
{
    QFETCH(QString, command);
    QFETCH(QString, logged);
    QVERIFY(!m_client->command(command).isNull());
    compareInOrder({logLine(dispatcher, QStringLiteral("Rx Cmd: ") + logged), logLine(dispatcher, "Leave !")});
    QCOMPARE(maskedLines(threadLog()).filter(QStringLiteral("Rx Cmd")).size(), 1);
}

void ServiceLogTest::keyEvents()
{
    SignClient second;
    QVERIFY(second.connectTo(m_service->port()));
    QVERIFY(!second.command(QStringLiteral("EnableRealtimeSigningNotification?type=1")).isNull());
    for (const int event : {1, 0, 5})
        WebSocketServiceSignPadEventCallback(event);
    QVERIFY(m_client->waitForMessages(3));
    const char tag[] = "WebSocketService::ProcessSignPadEvent()";
    const QString confirm = logLine(tag, "nEventID == SIGNPAD_ENTER_BUTTON...");
    const QString cancel = logLine(tag, "nEventID == SIGNPAD_CANCEL_BUTTON...");
    const QString sent = logLine(tag, "after call pClient->sendTextMessage(strResponseMsg), i = %1");
    compareInOrder({confirm, sent.arg(0), confirm, sent.arg(1), cancel, sent.arg(0), cancel, sent.arg(1), sent.arg(0),
                    sent.arg(1)});
    QCOMPARE(maskedLines(threadLog()).count(confirm), 2);
    QCOMPARE(maskedLines(threadLog()).count(cancel), 2);
}

void ServiceLogTest::images()
{
    QVERIFY(!m_client->command(QStringLiteral("EnableRealtimeSigningNotification?type=1")).isNull());
    char text[] = "QUJD";
    WebSocketServiceSignBase64DataCallback(text);
    QVERIFY(m_client->waitForMessages(2));
    compareInOrder({logLine("WebSocketService::ProcessSignBase64Data()",
                            QStringLiteral("after call pClient->sendTextMessage(strResponseMsg), i = 0"))});
}

QTEST_GUILESS_MAIN(ServiceLogTest)

#include "tst_servicelog.moc"
