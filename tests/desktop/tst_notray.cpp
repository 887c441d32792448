// A desktop whose tray never comes: the program gives up by itself and leaves nothing behind.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/LogFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

class NoTrayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsAfterThirtySeconds();
};

void NoTrayTest::endsAfterThirtySeconds()
{
    removeLogs();
    DesktopSession desktop;
    QVERIFY(desktop.isUsable());
    // Beside the program the diagnostic build, under a name that the one does not take for the other.
    const QTemporaryDir directory;
    const QString copy = directory.filePath(QStringLiteral("diagnostic-copy"));
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_DIAGNOSTIC_PROGRAM), copy));
    TrayProgram program(desktop);
    TrayProgram diagnostic(desktop, copy);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(program.start() && diagnostic.start());
    QVERIFY(program.waitForEnd(60000));
    const qint64 seconds = timer.elapsed() / 1000;
    QVERIFY(diagnostic.waitForEnd());
    QVERIFY2(seconds >= 29 && seconds <= 35, qPrintable(QString::number(seconds)));
    for (TrayProgram *ended : {&program, &diagnostic}) {
        QCOMPARE(ended->exitStatus(), 0);
        QCOMPARE(ended->output(), QByteArray());
    }
    QCOMPARE(QDir(desktop.home()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
             QStringList());

    const char start[] = "SysTrayMenuMgr::StartCreateSystemTrayIcon()";
    QCOMPARE(
        flawOfLog(mainLog(), {logLine("main()", "Enter, argc=1"),
                              logLine("DetectSigngleInstance::IsProcessRunning()", "stdprocessName=diagnostic-copy"),
                              logLine(start, "Enter, bSysTrayAvailable=0"), logLine(start, "b4 call closed()...")}),
        QString());
    QCOMPARE(flawOfLog(threadLog(), {logLine("CheckSysTrayThread::run()", "i=60, bSysTrayAvailable=0")}), QString());
    // The program itself wrote none of this.
    QCOMPARE(maskedLines(mainLog()).count(logLine("main()", "Enter, argc=1")), 1);
    QCOMPARE(maskedLines(threadLog()).count(logLine("CheckSysTrayThread::run()", "Enter...")), 1);
    removeLogs();
}

QTEST_GUILESS_MAIN(NoTrayTest)

#include "tst_notray.moc"
