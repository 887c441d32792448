// What main() does before the event loop, on the program with its log on and a pgrep of the test's own.
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/StartLines.h"

#include <QFile>
#include <QProcess>
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

void MainTest::firstCopy()
{
    QVERIFY(start("4711\\n"));
    const QStringList expected = linesOfFirstCopy(2, QStringLiteral("mvsignpadsdk_wssvr"));
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
    QCOMPARE(maskedLines(mainLog()),
             linesOfSecondCopy(2, QStringLiteral("mvsignpadsdk_wssvr"), {QStringLiteral("4712")}));
    QCOMPARE(maskedLines(mainLog()).filter(QStringLiteral("SysTrayMenuMgr")), QStringList());
}

QTEST_GUILESS_MAIN(MainTest)

#include "tst_main.moc"
