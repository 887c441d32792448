// What the service writes to the log of the other threads while the log is on: whole lines, the tick masked.
#include "base/Logging.h"
#include "service/PushCallbacks.h"
#include "service/WebSocketService.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"

#include <QFile>
#include <QRegularExpression>
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
    void commands_data();
    void commands();
    void keyEvents();
    void images();
    void callbacksWithoutAService();

private:
    /// Stops the service and compares all its lines: those of its start with a client, these, and those of its end.
    void compareLines(const QStringList &expected);
    /// The lines of a client that comes.
    static QStringList connectionLines();
    /// What follows a client's request, up to its reply.
    QStringList requestLines(const QString &request, const QStringList &inTheDispatcher) const;
    QStringList enablePushes();

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

void ServiceLogTest::compareLines(const QStringList &expected)
{
    m_service->stop();
    const QString port = QString::number(m_service->port());
    const QStringList start{
        logLine("WebSocketThread::WebSocketThread()", QStringLiteral("Enter, nWebSocketPort=") + port),
        logLine("WebSocketThread::WebSocketThread()", "Leave !"),
        logLine("WebSocketThread::run()", "Enter..."),
        logLine("WebSocketService::WebSocketService()", QStringLiteral("Enter, m_nPort=") + port),
        logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Enter..."),
        logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Leave !"),
        logLine("WebSocketService::SetupMVSignPadSDKAPINameList()", "Enter..."),
        logLine("WebSocketService::SetupMVSignPadSDKAPINameList()", "Leave !"),
        logLine("SignObjManager::SignObjManager()", "Enter..."),
        logLine("SignObjManager::SignObjManager()", "Leave !"),
        logLine("WebSocketService::WebSocketService()", "m_pSignObjMgr=P"),
        logLine("WebSocketService::WebSocketService()", "Leave !"),
        logLine("WebSocketThread::run()", "b4 call exec()..."),
    };
    const QStringList end{
        logLine("WebSocketThread::run()", "after call exec() and Leave !"),
        logLine("WebSocketThread::~WebSocketThread()", "Enter..."),
        logLine("WebSocketService::~WebSocketService()", "Enter..."),
        logLine("SignObjManager::~SignObjManager()", "Enter..."),
        logLine("SignObjManager::UnInitialDevice()", "Enter..."),
        logLine("SignObjManager::UnInitialDevice()", "Leave, bResult=0"),
        logLine("SignObjManager::~SignObjManager()", "Leave !"),
        logLine("WebSocketService::~WebSocketService()", "Leave !"),
        logLine("WebSocketThread::~WebSocketThread()", "after call delete m_pWebSocketService..."),
        logLine("WebSocketThread::~WebSocketThread()", "Leave !"),
    };
    QCOMPARE(maskedLines(threadLog()), start + connectionLines() + expected + end);
}

QStringList ServiceLogTest::connectionLines()
{
    return {logLine("WebSocketService::onNewConnection()", "Enter..."),
            logLine("WebSocketService::onNewConnection()", "Leave !")};
}

QStringList ServiceLogTest::requestLines(const QString &request, const QStringList &inTheDispatcher) const
{
    const QString length = QString::number(request.size());
    return QStringList{
               logLine("WebSocketService::processTextMessage()", QStringLiteral("Enter, message.length=") + length),
               logLine(dispatcher, QStringLiteral("Enter, strMsg.length=") + length)}
           + inTheDispatcher
           + QStringList{logLine(dispatcher, "Leave !"), logLine("WebSocketService::processTextMessage()", "Leave !")};
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
    const QString gone = logLine("WebSocketService::socketDisconnected()", "Leave !");
    QTRY_VERIFY_WITH_TIMEOUT(maskedLines(threadLog()).contains(gone), patienceMs);
    compareLines({logLine("WebSocketService::socketDisconnected()", "Enter..."), gone});
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
    const QString port = QString::number(m_service->port());
    // No names and no manager.
    QCOMPARE(
        maskedLines(threadLog()),
        (QStringList{logLine("WebSocketThread::WebSocketThread()", QStringLiteral("Enter, nWebSocketPort=") + port),
                     logLine("WebSocketThread::WebSocketThread()", "Leave !"),
                     logLine("WebSocketThread::run()", "Enter..."),
                     logLine("WebSocketService::WebSocketService()", QStringLiteral("Enter, m_nPort=") + port),
                     logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Enter..."),
                     logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Leave !"),
                     logLine("WebSocketService::WebSocketService()", "Leave !"), waiting,
                     logLine("WebSocketThread::run()", "after call exec() and Leave !"),
                     logLine("WebSocketThread::~WebSocketThread()", "Enter..."),
                     logLine("WebSocketService::~WebSocketService()", "Enter..."),
                     logLine("WebSocketService::~WebSocketService()", "Leave !"),
                     logLine("WebSocketThread::~WebSocketThread()", "after call delete m_pWebSocketService..."),
                     logLine("WebSocketThread::~WebSocketThread()", "Leave !")}));
}

void ServiceLogTest::textMessage()
{
    const QString request = QStringLiteral("ws://localhost:%1/MVSignSDK/Clear").arg(m_service->port());
    QVERIFY(!m_client->request(request).isNull());
    compareLines(
        requestLines(request, {logLine(dispatcher, "Rx Cmd: CLEAR"), logLine("SignObjManager::Clear()", "Enter..."),
                               logLine("SignObjManager::Clear()", "Leave !")}));
}

void ServiceLogTest::commandWithParameters()
{
    const QString request = QStringLiteral("ws://localhost:%1/MVSignSDK/UpdateWPSSettings?id=1&dt=0&af=0&pw=3&name=a")
                                .arg(m_service->port());
    QVERIFY(!m_client->request(request).isNull());
    compareLines(requestLines(request, {logLine(dispatcher, "Rx Cmd: UPDATEWPSSETTINGS"),
                                        logLine("WebSocketService::ParseUrlParameters()", "Enter..."),
                                        logLine("WebSocketService::ParseUrlParameters()", "Leave !"),
                                        logLine("WebSocketService::UpdateWPSSettingsToConfigureFile()", "Enter..."),
                                        logLine("WebSocketService::UpdateWPSSettingsToConfigureFile()", "Leave !")}));
}

void ServiceLogTest::unknownCommandHasNoName()
{
    QVERIFY(!m_client->request(QStringLiteral("hello")).isNull());
    compareLines(requestLines(QStringLiteral("hello"), {}));
}

void ServiceLogTest::binaryMessage()
{
    QCOMPARE(m_client->binaryRequest("abc"), QByteArray("abc"));
    QCOMPARE(m_client->binaryRequest(QByteArray(1000, 'x')), QByteArray(1000, 'x'));
    const char tag[] = "WebSocketService::processBinaryMessage()";
    // The tick and the message are cut at 255 bytes together.
    const QString tick = loggedLines(threadLog())
                             .filter(QLatin1String(tag))
                             .value(2)
                             .section(QRegularExpression(QStringLiteral("[<>]")), 1, 1);
    const QString cut = QStringLiteral("Enter, message=") + QString(237 - tick.size(), QLatin1Char('x'));
    compareLines(
        {logLine(tag, "Enter, message=abc"), logLine(tag, "Leave !"), logLine(tag, cut), logLine(tag, "Leave !")});
}

void ServiceLogTest::commands_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("logged");
    QTest::addColumn<bool>("takesParameters");
    const auto row = [](const char *command, const char *logged) {
        QTest::newRow(command) << QString::fromLatin1(command) << QString::fromLatin1(logged) << false;
    };
    const auto rowWithParameters = [](const char *command, const char *logged) {
        QTest::newRow(command) << QString::fromLatin1(command) << QString::fromLatin1(logged) << true;
    };
    row("Clear", "CLEAR");
    row("CloseLCD", "CLOSELCD");
    row("Decode?type=&data=", "DECODE");
    rowWithParameters("DisplayDeviceInfoInLCD?show=1", "DISPLAYDEVICEINFOINLCD");
    rowWithParameters("Encode?type=1", "ENCODE");
    row("GetAboutInfo", "GETABOUTINFO");
    row("GetDecodeFilePath", "GETDECODEFILEPATH");
    row("GetDeviceConfirmOrCancelKeyStatus", "GETDEVICECONFIRMORCANCELKEYSTATUS");
    rowWithParameters("GetDeviceInfo?type=1", "GETDEVICEINFO");
    rowWithParameters("GetFingerPrintImage?FPImageOnly=1", "GETFINGERPRINTIMAGE");
    row("GetInks", "GETINKS");
    row("GetPointer", "GETPOINTER");
    row("GetSize", "GETSIZE");
    rowWithParameters("InitialDevice?id=9&width=1&height=1", "INITIALDEVICE");
    row("IsValid", "ISVALID");
    row("OpenLCD", "OPENLCD");
    row("PadID", "PADID");
    row("PenID", "PENID");
    rowWithParameters("SaveDrawingImage?type=1&dpi=1&path=a", "SAVEDRAWINGIMAGE");
    rowWithParameters("SetClip?width=1&height=1", "SETCLIP");
    rowWithParameters("SetDisplayedFPImageAt", "SETDISPLAYEDFPIMAGEAT");
    rowWithParameters("SetPenColor?R=1", "SETPENCOLOR");
    rowWithParameters("SetPenStyle?Style=1", "SETPENSTYLE");
    rowWithParameters("SetPenWidth?Width=1", "SETPENWIDTH");
    row("UninitialDevice", "UNINITIALDEVICE");
    row("VersionID", "VERSIONID");
    rowWithParameters("GetWPSSettings?id=1", "GETWPSSETTINGS");
    rowWithParameters("UpdateWPSSettings", "UPDATEWPSSETTINGS");
    rowWithParameters("WPSSignConfirmed?id=1", "WPSSIGNCONFIRMED");
    row("WPSGetInks", "WPSGETINKS");
    rowWithParameters("InitialWPSSignCanvas?width=1&height=1", "INITWPSSIGNCANVAS");
    row("GetSVGImageBase64Data", "GETSVGIMAGEBASE64DATA");
    rowWithParameters("EnableRealtimeSigningNotification?type=1", "ENABLEREALTIMESIGNINGNOTIFICATION");
    row("GetOpaqueInks", "GETOPAQUEINKS");
}

/// The service's own lines for each command; those of the pads and their manager are left to the tests of these.
void ServiceLogTest::commands()
{
    QFETCH(QString, command);
    QFETCH(QString, logged);
    QFETCH(bool, takesParameters);
    QVERIFY(!m_client->command(command).isNull());
    m_service->stop();
    QStringList inTheDispatcher{logLine(dispatcher, QStringLiteral("Rx Cmd: ") + logged)};
    if (takesParameters)
        inTheDispatcher << logLine("WebSocketService::ParseUrlParameters()", "Enter...")
                        << logLine("WebSocketService::ParseUrlParameters()", "Leave !");
    const QString request = QStringLiteral("ws://localhost:%1/MVSignSDK/").arg(m_service->port()) + command;
    const QStringList lines = maskedLines(threadLog());
    const int begin = lines.indexOf(connectionLines().constLast()) + 1;
    const int end = lines.indexOf(logLine("WebSocketThread::run()", "after call exec() and Leave !"));
    QCOMPARE(lines.mid(begin, end - begin).filter(QStringLiteral("[WebSocketService::")),
             requestLines(request, inTheDispatcher));
}

/// The callbacks are called on the service's own thread: the lines of two threads may mix.
void ServiceLogTest::keyEvents()
{
    SignClient second;
    QVERIFY(second.connectTo(m_service->port()));
    const QStringList enabling = enablePushes();
    QVERIFY(!enabling.isEmpty());
    QMetaObject::invokeMethod(g_pWebSocketService, [] {
        for (const int event : {1, 0, 5})
            WebSocketServiceSignPadEventCallback(event);
    });
    QVERIFY(m_client->waitForMessages(4) && second.waitForMessages(3));

    const char callback[] = "WebSocketServiceSignPadEventCallback()";
    const char tag[] = "WebSocketService::ProcessSignPadEvent()";
    const QString confirm = logLine(tag, "nEventID == SIGNPAD_ENTER_BUTTON...");
    const QString cancel = logLine(tag, "nEventID == SIGNPAD_CANCEL_BUTTON...");
    const QString sent = logLine(tag, "after call pClient->sendTextMessage(strResponseMsg), i = %1");
    QStringList lines = connectionLines() + enabling;
    for (const char *event : {"1", "0", "5"})
        lines << logLine(callback, QStringLiteral("Enter, nEventID=") + QLatin1String(event))
              << logLine(callback, "Leave !");
    lines << logLine(tag, "Enter, nEventID=1") << confirm << sent.arg(0) << confirm << sent.arg(1)
          << logLine(tag, "Leave !");
    lines << logLine(tag, "Enter, nEventID=0") << cancel << sent.arg(0) << cancel << sent.arg(1)
          << logLine(tag, "Leave !");
    lines << logLine(tag, "Enter, nEventID=5") << sent.arg(0) << sent.arg(1) << logLine(tag, "Leave !");
    compareLines(lines);
}

void ServiceLogTest::images()
{
    const QStringList enabling = enablePushes();
    QVERIFY(!enabling.isEmpty());
    QMetaObject::invokeMethod(g_pWebSocketService, [] {
        char text[] = "QUJD";
        WebSocketServiceSignBase64DataCallback(text);
    });
    QVERIFY(m_client->waitForMessages(2));
    const char callback[] = "WebSocketServiceSignBase64DataCallback()";
    const char tag[] = "WebSocketService::ProcessSignBase64Data()";
    compareLines(enabling
                 + QStringList{logLine(callback, "Enter..."), logLine(callback, "Leave !"), logLine(tag, "Enter..."),
                               logLine(tag, "after call pClient->sendTextMessage(strResponseMsg), i = 0"),
                               logLine(tag, "Leave !")});
}

void ServiceLogTest::callbacksWithoutAService()
{
    m_service->stop();
    removeLogs();
    WebSocketServiceSignPadEventCallback(1);
    WebSocketServiceSignBase64DataCallback(nullptr);
    QCOMPARE(maskedLines(threadLog()),
             (QStringList{logLine("WebSocketServiceSignPadEventCallback()", "Enter, nEventID=1"),
                          logLine("WebSocketServiceSignPadEventCallback()", "Leave !"),
                          logLine("WebSocketServiceSignBase64DataCallback()", "Enter..."),
                          logLine("WebSocketServiceSignBase64DataCallback()", "Leave !")}));
}

/// Has the service push, and returns the lines of that; none when it fails.
QStringList ServiceLogTest::enablePushes()
{
    const QString request =
        QStringLiteral("ws://localhost:%1/MVSignSDK/EnableRealtimeSigningNotification").arg(m_service->port());
    if (m_client->request(request).isNull()) // which is answered with a rejection, but takes effect
        return {};
    return requestLines(request, {logLine(dispatcher, "Rx Cmd: ENABLEREALTIMESIGNINGNOTIFICATION"),
                                  logLine("WebSocketService::ParseUrlParameters()", "Enter..."),
                                  logLine("WebSocketService::ParseUrlParameters()", "Leave !")});
}

QTEST_GUILESS_MAIN(ServiceLogTest)

#include "tst_servicelog.moc"
