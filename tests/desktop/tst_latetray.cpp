// At log-in the tray may come after the program: it waits for it, and serves it soon after it has come.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/StatusNotifierItem.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
const int soonMs = 10000; // an instrumented program takes its time to start
#else
const int soonMs = 1000;
#endif

} // namespace

class LateTrayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void trayAtTheStart_data();
    void trayAtTheStart();
    void xembedTrayTenSecondsLate();
    void statusNotifierHostTenSecondsLate();
    void statusNotifierHostThatLeavesBeforeTheStart();

private:
    bool startWaiting(int seconds);
    void exitThroughMenu();

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
}

/// Starts the program where there is no tray; true when it runs that long without doing anything.
bool LateTrayTest::startWaiting(int seconds)
{
    if (!m_program->start())
        return false;
    QTest::qWait(seconds * 1000);
    return m_program->isRunning() && m_desktop->iconArea().isEmpty() && TrayProgram::waitForSilence(m_port);
}

void LateTrayTest::exitThroughMenu()
{
    QVERIFY(TrayProgram::waitForListening(m_port));
    QVERIFY(m_desktop->chooseMenuEntry(2));
    QVERIFY(m_program->waitForEnd());
    QCOMPARE(m_program->exitStatus(), 0);
    QCOMPARE(m_program->output(), QByteArray());
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
    exitThroughMenu();
}

void LateTrayTest::xembedTrayTenSecondsLate()
{
    QVERIFY(startWaiting(10));
    QVERIFY(m_desktop->startTrayer());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY2(timer.elapsed() <= soonMs, qPrintable(QString::number(timer.elapsed())));
    exitThroughMenu();
}

void LateTrayTest::statusNotifierHostTenSecondsLate()
{
    QVERIFY(startWaiting(10));
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
    exitThroughMenu();
}

void LateTrayTest::statusNotifierHostThatLeavesBeforeTheStart()
{
    // A bus that knows of trays, but no tray: the XEmbed one that comes is served.
    QVERIFY(m_desktop->startStatusNotifierHost());
    m_desktop->endLastHelper();
    QTRY_VERIFY_WITH_TIMEOUT(!m_desktop->hasStatusNotifierHost(), patienceMs);
    QVERIFY(startWaiting(1));
    QVERIFY(m_desktop->startTrayer());
    QVERIFY(m_desktop->waitForIcon());
    exitThroughMenu();
}

QTEST_GUILESS_MAIN(LateTrayTest)

#include "tst_latetray.moc"
