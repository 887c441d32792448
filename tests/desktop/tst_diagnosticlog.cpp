// A diagnostic build writes its log: whole lines of both files, the tick masked.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/StartLines.h"

#include <QRegularExpression>
#include <QSysInfo>
#include <QTest>

class DiagnosticLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void mainThreadLines();
    void otherThreadsLines();
    void secondCopy();
    void ticksNeverDecrease();

private:
    void runOnce();

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    quint16 m_port = 0;
};

void DiagnosticLogTest::initTestCase()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
}

void DiagnosticLogTest::init()
{
    removeLogs();
    m_port = freePort();
    m_program.reset(new TrayProgram(*m_desktop, QStringLiteral(MVSIGNPAD_DIAGNOSTIC_PROGRAM)));
}

void DiagnosticLogTest::cleanup()
{
    m_program.reset();
    removeLogs();
}

/// Starts with the service on, one request, launch at log-in on and off, service off and on, exit.
void DiagnosticLogTest::runOnce()
{
    QVERIFY(m_desktop->writeSettings(
        {QStringLiteral("StartWebService=true"), QStringLiteral("WebSocketPort=%1").arg(m_port)}));
    QVERIFY(m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QCOMPARE(client.command(QStringLiteral("Clear")), QStringLiteral(R"({"API":"Clear","Result":"0"})"));
    QVERIFY(m_desktop->chooseMenuEntry(1));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=true")), patienceMs);
    QVERIFY(m_desktop->chooseMenuEntry(1));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=false")), patienceMs);
    QVERIFY(m_desktop->chooseMenuEntry(0));
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void DiagnosticLogTest::mainThreadLines()
{
    runOnce();
    if (QTest::currentTestFailed())
        return;
    const char start[] = "SysTrayMenuMgr::StartCreateSystemTrayIcon()";
    const char tray[] = "SysTrayMenuMgr::CreateSystemTray()";
    const char open[] = "SysTrayMenuMgr::OpenWebSocketService()";
    const char launch[] = "SysTrayMenuMgr::AutoLaunchService()";
    const char service[] = "SysTrayMenuMgr::StartWebSocketService()";
    const char write[] = "SysTrayMenuMgr::WriteDataToINIFIle()";
    const QStringList expected =
        linesOfFirstCopy(1, QStringLiteral("mvsignpadsdk_wssvr"))
        + QStringList{logLine("SysTrayMenuMgr::Initialize()", "Leave !"),
                      logLine("main()", "after call SysTrayMenuMgr.Initialize()..."),
                      logLine(start, "Enter, bSysTrayAvailable=1"),
                      logLine(start, "b4 call CreateSystemTray()..."),
                      logLine(tray, "Enter..."),
                      logLine(tray, "System Tray Available..."),
                      logLine("SysTrayMenuMgr::LoadDataFromINIFIle()",
                              QStringLiteral("Enter, OSKernelType=linux, OSProductType=") + QSysInfo::productType()),
                      logLine("SysTrayMenuMgr::LoadDataFromINIFIle()", "Leave !"),
                      logLine(tray, "after call LoadDataFromINIFIle()..."),
                      logLine(open, "Enter, bOpenService=1"),
                      logLine(open, "after call m_pWebSocketThread->start()..."),
                      logLine(open, "Leave !"),
                      logLine(tray, "after call pSysTrayIcon->show()..."),
                      logLine(tray, "Leave !"),
                      logLine(start, "Leave !"),
                      logLine(launch, "Enter..."),
                      logLine(launch, "INIDATA.bAutoLaunch = TRUE..."),
                      logLine(write, "Enter..."),
                      logLine(write, "Leave !"),
                      logLine(launch, "Leave !"),
                      logLine(launch, "Enter..."),
                      logLine(launch, "INIDATA.bAutoLaunch = false !"),
                      logLine(write, "Enter..."),
                      logLine(write, "Leave !"),
                      logLine(launch, "Leave !"),
                      logLine(service, "Enter..."),
                      logLine(open, "Enter, bOpenService=0"),
                      logLine(open, "b4 call m_pWebSocketThread->quit()..."),
                      logLine(open, "after call m_pWebSocketThread = nullptr..."),
                      logLine(open, "Leave !"),
                      logLine(write, "Enter..."),
                      logLine(write, "Leave !"),
                      logLine(service, "Leave !"),
                      logLine("SysTrayMenuMgr::ExitWebSocketService()", "Enter..."),
                      logLine(write, "Enter..."),
                      logLine(write, "Leave !"),
                      logLine(open, "Enter, bOpenService=0"),
                      logLine(open, "Leave !"),
                      logLine("SysTrayMenuMgr::ExitWebSocketService()", "Leave !"),
                      logLine("SysTrayMenuMgr::~SysTrayMenuMgr()", "Enter..."),
                      logLine("SysTrayMenuMgr::~SysTrayMenuMgr()", "Leave !"),
                      logLine("main()", "Leave with nRet=0")};
    QCOMPARE(wrongLine(maskedLines(mainLog()), expected, maskedLines(threadLog())), QString());
}

void DiagnosticLogTest::otherThreadsLines()
{
    runOnce();
    if (QTest::currentTestFailed())
        return;
    const QString port = QString::number(m_port);
    const char thread[] = "WebSocketThread::WebSocketThread()";
    const char run[] = "WebSocketThread::run()";
    const char service[] = "WebSocketService::WebSocketService()";
    const char text[] = "WebSocketService::processTextMessage()";
    const char dispatcher[] = "WebSocketService::ProcessMVSignSDKWebSocketAPICommand()";
    const QString length = QString::number(QStringLiteral("ws://localhost:%1/MVSignSDK/Clear").arg(m_port).size());
    const QStringList expected{
        logLine("CheckSysTrayThread::CheckSysTrayThread()", "Enter..."),
        logLine("CheckSysTrayThread::CheckSysTrayThread()", "Leave !"),
        logLine("CheckSysTrayThread::run()", "Enter..."),
        logLine("CheckSysTrayThread::run()", "i=0, bSysTrayAvailable=1"),
        logLine("CheckSysTrayThread::run()", "Leave !"),
        logLine(thread, QStringLiteral("Enter, nWebSocketPort=") + port),
        logLine(thread, "Leave !"),
        logLine(run, "Enter..."),
        logLine(service, QStringLiteral("Enter, m_nPort=") + port),
        logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Enter..."),
        logLine("WebSocketService::LoadWPSSettingsFromConfigureFile()", "Leave !"),
        logLine("WebSocketService::SetupMVSignPadSDKAPINameList()", "Enter..."),
        logLine("WebSocketService::SetupMVSignPadSDKAPINameList()", "Leave !"),
        logLine("SignObjManager::SignObjManager()", "Enter..."),
        logLine("SignObjManager::SignObjManager()", "Leave !"),
        logLine(service, "m_pSignObjMgr=P"),
        logLine(service, "Leave !"),
        logLine(run, "b4 call exec()..."),
        logLine("WebSocketService::onNewConnection()", "Enter..."),
        logLine("WebSocketService::onNewConnection()", "Leave !"),
        logLine(text, QStringLiteral("Enter, message.length=") + length),
        logLine(dispatcher, QStringLiteral("Enter, strMsg.length=") + length),
        logLine(dispatcher, "Rx Cmd: CLEAR"),
        logLine("SignObjManager::Clear()", "Enter..."),
        logLine("SignObjManager::Clear()", "Leave !"),
        logLine(dispatcher, "Leave !"),
        logLine(text, "Leave !"),
        logLine(run, "after call exec() and Leave !"),
        logLine("WebSocketThread::~WebSocketThread()", "Enter..."),
        logLine("WebSocketService::~WebSocketService()", "Enter..."),
        logLine("SignObjManager::~SignObjManager()", "Enter..."),
        logLine("SignObjManager::UnInitialDevice()", "Enter..."),
        logLine("SignObjManager::UnInitialDevice()", "Leave, bResult=0"),
        logLine("SignObjManager::~SignObjManager()", "Leave !"),
        logLine("WebSocketService::~WebSocketService()", "Leave !"),
        logLine("WebSocketThread::~WebSocketThread()", "after call delete m_pWebSocketService..."),
        logLine("WebSocketThread::~WebSocketThread()", "Leave !")};
    QCOMPARE(wrongLine(maskedLines(threadLog()), expected, maskedLines(mainLog())), QString());
}

void DiagnosticLogTest::secondCopy()
{
    QVERIFY(m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    const int before = maskedLines(mainLog()).size();
    TrayProgram second(*m_desktop, QStringLiteral(MVSIGNPAD_DIAGNOSTIC_PROGRAM));
    QVERIFY(second.start());
    QVERIFY(second.waitForEnd());
    QCOMPARE(second.exitStatus(), 1);
    QStringList lines = maskedLines(mainLog()).mid(before);
    // The process identifiers of the two copies, in either order.
    lines.replaceInStrings(QRegularExpression(QStringLiteral("stdstrOutput\\[1\\]=[0-9]+")),
                           QStringLiteral("stdstrOutput[1]=PID"));
    QCOMPARE(lines, linesOfSecondCopy(1, QStringLiteral("mvsignpadsdk_wssvr"), {QStringLiteral("PID")}));
}

void DiagnosticLogTest::ticksNeverDecrease()
{
    runOnce();
    if (QTest::currentTestFailed())
        return;
    const QRegularExpression tick(QStringLiteral("\\]:<([0-9]+)>-"));
    for (const QString &log : {mainLog(), threadLog()}) {
        qlonglong previous = 1;
        for (const QString &logged : loggedLines(log)) {
            const qlonglong value = tick.match(logged).captured(1).toLongLong();
            QVERIFY2(value >= previous, qPrintable(logged));
            previous = value;
        }
        QVERIFY(previous > 1);
    }
}

QTEST_GUILESS_MAIN(DiagnosticLogTest)

#include "tst_diagnosticlog.moc"
