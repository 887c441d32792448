// A desktop whose tray never comes: the program gives up by itself and leaves nothing behind.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/StartLines.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace {

/// The tick of the log's first such line; 0 when there is none.
qint64 tickOf(const QString &log, const char *tag, const char *message)
{
    const int index = maskedLines(log).indexOf(logLine(tag, message));
    return loggedLines(log).value(index).section(QRegularExpression(QStringLiteral("[<>]")), 1, 1).toLongLong();
}

} // namespace

class NoTrayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsAfterThirtySeconds();

private:
    /// Both files hold the lines of the diagnostic copy, and nothing of the program itself.
    static void compareLog();
};

void NoTrayTest::endsAfterThirtySeconds()
{
    removeLogs();
    DesktopSession desktop;
    QVERIFY(desktop.isUsable());
    // Beside the program, on a desktop whose tray is there and does not answer, the diagnostic build, under a name that
    // the one does not take for the other.
    DesktopSession silentDesktop;
    QVERIFY(silentDesktop.isUsable() && silentDesktop.startStatusNotifierHost());
    silentDesktop.suspendLastHelper();
    const QTemporaryDir directory;
    const QString copy = directory.filePath(QStringLiteral("diagnostic-copy"));
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_DIAGNOSTIC_PROGRAM), copy));
    TrayProgram program(desktop);
    TrayProgram diagnostic(silentDesktop, copy);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(program.start() && diagnostic.start());
    // A busy machine starts slowly; questions that are not counted would take 85 seconds.
    for (TrayProgram *waiting : {&program, &diagnostic}) {
        const bool ended = waiting->waitForEnd();
        const QStringList lastSaid = loggedLines(mainLog()) + loggedLines(threadLog());
        QVERIFY2(ended, qPrintable(lastSaid.join(QLatin1Char('\n'))));
        const qint64 seconds = timer.elapsed() / 1000;
        QVERIFY2(seconds >= 29 && seconds <= 60, qPrintable(QString::number(seconds)));
        QCOMPARE(waiting->exitStatus(), 0);
        QCOMPARE(waiting->output(), QByteArray());
    }
    QCOMPARE(QDir(desktop.home()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
             QStringList());
    QCOMPARE(silentDesktop.settingsLines(), QStringList());

    compareLog();
    if (QTest::currentTestFailed())
        return;
    // A tray that does not answer does not keep the main thread waiting either.
    const qint64 initialize = tickOf(mainLog(), "SysTrayMenuMgr::Initialize()", "Leave !")
                              - tickOf(mainLog(), "SysTrayMenuMgr::Initialize()", "Enter...");
    QVERIFY2(initialize < 1000, qPrintable(QString::number(initialize)));
    removeLogs();
}

void NoTrayTest::compareLog()
{
    const char start[] = "SysTrayMenuMgr::StartCreateSystemTrayIcon()";
    const QStringList ofMain = linesOfFirstCopy(1, QStringLiteral("diagnostic-copy"))
                               + QStringList{logLine("SysTrayMenuMgr::Initialize()", "Leave !"),
                                             logLine("main()", "after call SysTrayMenuMgr.Initialize()..."),
                                             logLine(start, "Enter, bSysTrayAvailable=0"),
                                             logLine(start, "b4 call closed()..."),
                                             logLine(start, "Leave !"),
                                             logLine("SysTrayMenuMgr::~SysTrayMenuMgr()", "Enter..."),
                                             logLine("SysTrayMenuMgr::~SysTrayMenuMgr()", "Leave !"),
                                             logLine("main()", "Leave with nRet=0")};
    const QStringList ofThread{logLine("CheckSysTrayThread::CheckSysTrayThread()", "Enter..."),
                               logLine("CheckSysTrayThread::CheckSysTrayThread()", "Leave !"),
                               logLine("CheckSysTrayThread::run()", "Enter..."),
                               logLine("CheckSysTrayThread::run()", "i=60, bSysTrayAvailable=0"),
                               logLine("CheckSysTrayThread::run()", "Leave !")};
    QCOMPARE(wrongLine(maskedLines(mainLog()), ofMain, maskedLines(threadLog())), QString());
    QCOMPARE(wrongLine(maskedLines(threadLog()), ofThread, maskedLines(mainLog())), QString());
}

QTEST_GUILESS_MAIN(NoTrayTest)

#include "tst_notray.moc"
