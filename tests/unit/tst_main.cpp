// What main() does before the event loop, on the program with its log on and a pgrep of the test's own.
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateHome.h"

#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <QTest>

class MainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void firstCopy();
    void secondCopy();

private:
    /// Starts the program with one argument where pgrep prints this; false when that fails.
    bool start(const QByteArray &answerOfPgrep);
    /// The lines that the single-instance guard writes.
    static QStringList linesOfTheGuard(const QStringList &answers, bool bSecondCopy);

    PrivateHome m_home;
    QProcess m_program;
};

void MainTest::init()
{
    removeLogs();
}

void MainTest::cleanup()
{
    m_program.kill();
    m_program.waitForFinished();
    removeLogs();
}

bool MainTest::start(const QByteArray &answerOfPgrep)
{
    QFile script(m_home.path(QStringLiteral("pgrep")));
    if (!script.open(QIODevice::WriteOnly) || !script.setPermissions(QFile::ReadOwner | QFile::ExeOwner))
        return false;
    script.write("#!/bin/sh\nprintf '" + answerOfPgrep + "'\n");
    script.close();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), m_home.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent"));
    m_program.setProcessEnvironment(environment);
    m_program.start(QStringLiteral(MVSIGNPAD_DIAGNOSTIC_PROGRAM), {QStringLiteral("argument")});
    return m_program.waitForStarted(patienceMs);
}

QStringList MainTest::linesOfTheGuard(const QStringList &answers, bool bSecondCopy)
{
    const char isRunning[] = "DetectSigngleInstance::IsProcessRunning()";
    QStringList lines{logLine("main()", "Enter, argc=2"),
                      logLine("DetectSigngleInstance::DetectSigngleInstance()", "Enter..."),
                      logLine("DetectSigngleInstance::DetectSigngleInstance()", "Leave !"),
                      logLine("DetectSigngleInstance::IsSingleInstance()", "Enter..."),
                      logLine(isRunning, "Enter..."),
                      logLine(isRunning, "stdprocessName=mvsignpadsdk_wssvr"),
                      logLine(isRunning, QStringLiteral("strOutputParts.size=%1").arg(answers.size()))};
    for (int i = 0; i < answers.size(); ++i)
        lines << logLine(isRunning, QStringLiteral("stdstrOutput[%1]=%2").arg(i).arg(answers.at(i)));
    return lines << logLine(isRunning, QStringLiteral("Leave with bRet=%1").arg(bSecondCopy ? 1 : 0))
                 << logLine("DetectSigngleInstance::IsSingleInstance()",
                            QStringLiteral("Leave with bRet=%1").arg(bSecondCopy ? 0 : 1));
}

void MainTest::firstCopy()
{
    QVERIFY(start("4711\\n"));
    const QString product = QStringLiteral("Enter, OSProductType=") + QSysInfo::productType();
    QStringList expected = linesOfTheGuard({QStringLiteral("PID"), QString()}, false);
    expected << logLine("main()", "1st instance is running, keep going...")
             << logLine("main()", "First instance coming, keep going...")
             << logLine("SysTrayMenuMgr::SysTrayMenuMgr()", product)
             << logLine("SysTrayMenuMgr::SysTrayMenuMgr()", "m_nOSProductID=0")
             << logLine("SysTrayMenuMgr::SysTrayMenuMgr()", "Leave !")
             << logLine("SysTrayMenuMgr::Initialize()", "Enter...");
    // The thread that looks for the tray writes into the same buffer from here on, on purpose: the tags alone are sure.
    const QStringList expectedTags{QStringLiteral("[SysTrayMenuMgr::Initialize()]"), QStringLiteral("[main()]")};
    QTRY_COMPARE_WITH_TIMEOUT(maskedLines(mainLog()).size(), expected.size() + expectedTags.size(), patienceMs);
    const QStringList lines = maskedLines(mainLog());
    QCOMPARE(lines.mid(0, expected.size()), expected);
    for (int i = 0; i < expectedTags.size(); ++i)
        QVERIFY2(lines.at(expected.size() + i).startsWith(expectedTags.at(i)),
                 qPrintable(lines.join(QLatin1Char('\n'))));
    QCOMPARE(m_program.state(), QProcess::Running);
}

void MainTest::secondCopy()
{
    QVERIFY(start("4711\\n4712\\n"));
    QVERIFY(m_program.waitForFinished(patienceMs));
    QCOMPARE(m_program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(m_program.exitCode(), 1);
    const QStringList expected = linesOfTheGuard({QStringLiteral("PID"), QStringLiteral("4712"), QString()}, true)
                                 << logLine("main()", "2nd instance is running, exit NOW !");
    QCOMPARE(maskedLines(mainLog()).mid(0, expected.size()), expected);
    QCOMPARE(maskedLines(mainLog()).filter(QStringLiteral("SysTrayMenuMgr")), QStringList());
}

QTEST_GUILESS_MAIN(MainTest)

#include "tst_main.moc"
