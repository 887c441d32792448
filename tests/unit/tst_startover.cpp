// Starting over: the same process, the same arguments, once. The test starts itself as the program that does it.
#include "tests/unit/support/Patience.h"
#include "tray/StartOver.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>

#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace {

const char programArgument[] = "--start-over";

/// Tells who it is and with what it was started, and starts over.
int RunProgram(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    std::printf("%d", static_cast<int>(getpid()));
    for (int i = 1; i < argc; ++i)
        std::printf("|%s", argv[i]);
    std::printf(HasStartedOver() ? "|fresh\n" : "\n");
    std::fflush(stdout);
    StartOver();
    std::printf("goes on\n");
    return 7;
}

} // namespace

class StartOverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsOverOnce();
    void inheritedMarkMeansNothing();

private:
    static QByteArray outputOf(QProcess &program);
};

QByteArray StartOverTest::outputOf(QProcess &program)
{
    program.start(QCoreApplication::applicationFilePath(),
                  {QLatin1String(programArgument), QStringLiteral("two words"), QString(), QStringLiteral("签")});
    if (!program.waitForFinished(patienceMs) || program.exitCode() != 7)
        return "no end";
    return program.readAllStandardOutput();
}

void StartOverTest::startsOverOnce()
{
    QProcess program;
    const QList<QByteArray> lines = outputOf(program).split('\n');
    QCOMPARE(lines.size(), 4);
    QVERIFY2(lines.at(0).endsWith("|--start-over|two words||签"), lines.at(0).constData());
    QCOMPARE(lines.at(1), lines.at(0) + "|fresh"); // the same process, too
    QCOMPARE(lines.at(2), QByteArray("goes on"));
    QCOMPARE(lines.at(3), QByteArray());
}

void StartOverTest::inheritedMarkMeansNothing()
{
    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("MVSIGNPAD_STARTED_OVER"), QString::number(QCoreApplication::applicationPid()));
    program.setProcessEnvironment(environment);
    const QList<QByteArray> lines = outputOf(program).split('\n');
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(1), lines.at(0) + "|fresh");
}

int main(int argc, char *argv[])
{
    if (argc > 1 && std::strcmp(argv[1], programArgument) == 0)
        return RunProgram(argc, argv);
    QCoreApplication application(argc, argv);
    StartOverTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_startover.moc"
