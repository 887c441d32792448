// At log-in the tray may come after the program: it waits for it, and serves it soon after it has come.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/StatusNotifierItem.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/LogFiles.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

/// Two looks of the program and time for a loaded machine; Qt alone would wait 25 seconds for a host that is silent.
const int soonMs = 10000;

} // namespace

class LateTrayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void trayAtTheStart_data();
    void trayAtTheStart();
    void lateXembedTray();
    void lateStatusNotifierHost();
    void startingOverDoesNotAskTheGuardAgain();
    void statusNotifierHostThatAnswersLate();
    void statusNotifierHostThatLeavesBeforeTheStart();

private:
    bool startWaiting();

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    quint16 m_port = 0;
};

void LateTrayTest::init()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    m_port = freePort();
    QVERIFY(m_desktop->writeSettings(
        {QStringLiteral("StartWebService=true"), QStringLiteral("WebSocketPort=%1").arg(m_port)}));
    m_program.reset(new TrayProgram(*m_desktop));
}

void LateTrayTest::cleanup()
{
    m_program.reset();
    m_desktop.reset();
    removeLogs();
}

/// Starts the program where there is no tray; true when it has begun to look for one and done all else.
bool LateTrayTest::startWaiting()
{
    const QString begun = logLine("main()", "after call SysTrayMenuMgr.Initialize()...");
    const auto isWaiting = [&] {
        return m_desktop->isOnTheBus(m_program->process().processId()) && maskedLines(mainLog()).contains(begun);
    };
    m_program->switchLogOn();
    return m_program->start() && QTest::qWaitFor(isWaiting, patienceMs) && m_program->isRunning()
           && m_desktop->iconArea().isEmpty() && TrayProgram::startsOfAService() == 0;
}

void LateTrayTest::trayAtTheStart_data()
{
    QTest::addColumn<bool>("xembed");
    QTest::newRow("XEmbed") << true;
    QTest::newRow("StatusNotifier") << false;
}

void LateTrayTest::trayAtTheStart()
{
    QFETCH(bool, xembed);
    QVERIFY(xembed ? m_desktop->startTrayer() : m_desktop->startStatusNotifierHost());
    QVERIFY(m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void LateTrayTest::lateXembedTray()
{
    QVERIFY(startWaiting());
    QVERIFY(m_desktop->startTrayer());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY2(timer.elapsed() <= soonMs, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void LateTrayTest::lateStatusNotifierHost()
{
    QVERIFY(startWaiting());
    const qint64 process = m_program->process().processId();
    QVERIFY(m_desktop->startStatusNotifierHost());
    QElapsedTimer timer;
    timer.start();
    const StatusNotifierItem item(m_desktop->busAddress());
    QTRY_COMPARE_WITH_TIMEOUT(item.registeredItems().size(), 1, patienceMs);
    QVERIFY2(timer.elapsed() <= soonMs, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(m_desktop->waitForIcon());
    // Whoever started the program still has hold of it.
    QVERIFY(m_program->isRunning());
    QCOMPARE(m_program->process().processId(), process);
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void LateTrayTest::startingOverDoesNotAskTheGuardAgain()
{
    m_program.reset(new TrayProgram(*m_desktop, QStringLiteral(MVSIGNPAD_DIAGNOSTIC_PROGRAM)));
    QVERIFY(startWaiting());
    // An editor that is opened on a file of the program's name while the program waits.
    const QString notes = QFileInfo(QStringLiteral(MVSIGNPAD_DIAGNOSTIC_PROGRAM)).fileName() + QStringLiteral(".txt");
    QProcess editor;
    editor.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("read end"), notes});
    QVERIFY(editor.waitForStarted());
    QVERIFY(m_desktop->startStatusNotifierHost());
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    const QString reason = logLine("CheckSysTrayThread::run()",
                                   "b4 call StartOver(), for a StatusNotifier host that came after Qt had looked...");
    QCOMPARE(maskedLines(threadLog()).count(reason), 1);
    QCOMPARE(maskedLines(mainLog()).count(logLine("main()", "1st instance is running, keep going...")), 2);
    QCOMPARE(maskedLines(mainLog()).count(logLine("DetectSigngleInstance::IsSingleInstance()", "Enter...")), 1);
    editor.closeWriteChannel();
    QVERIFY(editor.waitForFinished());
}

void LateTrayTest::statusNotifierHostThatAnswersLate()
{
    QVERIFY(m_desktop->startStatusNotifierHost());
    m_desktop->suspendLastHelper();
    QVERIFY(startWaiting());
    m_desktop->resumeLastHelper();
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void LateTrayTest::statusNotifierHostThatLeavesBeforeTheStart()
{
    // A bus that knows of trays, but no tray: the XEmbed one that comes is served.
    QVERIFY(m_desktop->startStatusNotifierHost());
    m_desktop->endLastHelper();
    QTRY_VERIFY_WITH_TIMEOUT(!m_desktop->hasStatusNotifierHost(), patienceMs);
    QVERIFY(startWaiting());
    QVERIFY(m_desktop->startTrayer());
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

QTEST_GUILESS_MAIN(LateTrayTest)

#include "tst_latetray.moc"
