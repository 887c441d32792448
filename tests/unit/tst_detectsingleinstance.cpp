#include "tray/DetectSigngleInstance.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <vector>

class DetectSingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void answerIsCountedInParts_data();
    void answerIsCountedInParts();
    void asksPgrepForTheWholeCommandLine();
    void singleInstanceAsksForTheFileName();
    void singleInstanceIsTheOpposite();
    void missingPgrepCountsAsAlone();
    void failingPgrepCountsAsAlone();
    void exitStatusOfPgrepDoesNotMatter();
    void realPgrepCountsProcesses();
    void isAQObject();

private:
    /// Puts a pgrep first (and alone) on the search path that runs these shell commands.
    /// Puts a pgrep of these shell commands into the place of the real one; false when that fails.
    bool usePgrep(const QByteArray &commands);

    QByteArray m_path;
    std::unique_ptr<QTemporaryDir> m_directory;
};

void DetectSingleInstanceTest::init()
{
    m_path = qgetenv("PATH");
    m_directory.reset(new QTemporaryDir);
    QVERIFY(m_directory->isValid());
}

void DetectSingleInstanceTest::cleanup()
{
    qputenv("PATH", m_path);
}

bool DetectSingleInstanceTest::usePgrep(const QByteArray &commands)
{
    QFile script(m_directory->filePath(QStringLiteral("pgrep")));
    if (!script.open(QIODevice::WriteOnly))
        return false;
    script.write("#!/bin/sh\n" + commands + "\n");
    script.close();
    qputenv("PATH", QFile::encodeName(m_directory->path()));
    return script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void DetectSingleInstanceTest::answerIsCountedInParts_data()
{
    QTest::addColumn<QByteArray>("answer"); // as the shell's printf spells it
    QTest::addColumn<bool>("running");
    QTest::newRow("nothing") << QByteArray("") << false;
    QTest::newRow("one process") << QByteArray("4711\\n") << false;
    QTest::newRow("one process without line feed") << QByteArray("4711") << false;
    QTest::newRow("two processes") << QByteArray("4711\\n4712\\n") << true;
    QTest::newRow("two processes, last line open") << QByteArray("4711\\n4712") << false;
    QTest::newRow("three processes, last line open") << QByteArray("4711\\n4712\\n4713") << true;
    QTest::newRow("ten processes") << QByteArray("1\\n2\\n3\\n4\\n5\\n6\\n7\\n8\\n9\\n10\\n") << true;
    QTest::newRow("one line with CR LF") << QByteArray("4711\\r\\n") << true;
    QTest::newRow("one line with CR") << QByteArray("4711\\r") << false;
    QTest::newRow("empty lines") << QByteArray("\\n\\n") << true;
    QTest::newRow("lines behind a zero byte") << QByteArray("4711\\n\\0004712\\n4713\\n") << false;
    QTest::newRow("no numbers") << QByteArray("a b c") << false;
}

void DetectSingleInstanceTest::answerIsCountedInParts()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, running);
    QVERIFY(usePgrep("printf '" + answer + "'"));
    DetectSigngleInstance detector(nullptr);
    QCOMPARE(detector.IsProcessRunning(QStringLiteral("anything")), running);
}

void DetectSingleInstanceTest::asksPgrepForTheWholeCommandLine()
{
    const QByteArray record = QFile::encodeName(m_directory->filePath(QStringLiteral("arguments")));
    QVERIFY(usePgrep("printf '%s|' \"$@\" > '" + record + "'"));
    DetectSigngleInstance detector(nullptr);
    detector.IsProcessRunning(QStringLiteral("a name; touch /tmp/x $(y) 签"));
    QFile file(QFile::decodeName(record));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("-f|a name; touch /tmp/x $(y) 签|"));
}

void DetectSingleInstanceTest::singleInstanceAsksForTheFileName()
{
    const QByteArray record = QFile::encodeName(m_directory->filePath(QStringLiteral("arguments")));
    QVERIFY(usePgrep("printf '%s|' \"$@\" > '" + record + "'"));
    DetectSigngleInstance detector(nullptr);
    QVERIFY(detector.IsSingleInstance());
    QFile file(QFile::decodeName(record));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("-f|tst_detectsingleinstance|"));
}

void DetectSingleInstanceTest::singleInstanceIsTheOpposite()
{
    DetectSigngleInstance detector(nullptr);
    QVERIFY(usePgrep("printf '4711\\n'"));
    QCOMPARE(detector.IsSingleInstance(), true);
    QVERIFY(usePgrep("printf '4711\\n4712\\n'"));
    QCOMPARE(detector.IsSingleInstance(), false);
}

void DetectSingleInstanceTest::missingPgrepCountsAsAlone()
{
    qputenv("PATH", QFile::encodeName(m_directory->path()));
    DetectSigngleInstance detector(nullptr);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(detector.IsProcessRunning(QStringLiteral("anything")), false);
    QCOMPARE(detector.IsSingleInstance(), true);
    QVERIFY(timer.elapsed() < 5000);
}

void DetectSingleInstanceTest::failingPgrepCountsAsAlone()
{
    QVERIFY(usePgrep("kill -9 $$"));
    DetectSigngleInstance detector(nullptr);
    QCOMPARE(detector.IsProcessRunning(QStringLiteral("anything")), false);
}

void DetectSingleInstanceTest::exitStatusOfPgrepDoesNotMatter()
{
    QVERIFY(usePgrep("printf '4711\\n4712\\n'; echo trouble >&2; exit 3"));
    DetectSigngleInstance detector(nullptr);
    QCOMPARE(detector.IsProcessRunning(QStringLiteral("anything")), true);
}

void DetectSingleInstanceTest::realPgrepCountsProcesses()
{
    const QString marker = QStringLiteral("instance-marker-%1").arg(QCoreApplication::applicationPid());
    DetectSigngleInstance detector(nullptr);
    QCOMPARE(detector.IsProcessRunning(marker), false);

    std::vector<std::unique_ptr<QProcess>> copies;
    for (const bool running : {false, true}) {
        copies.emplace_back(new QProcess);
        copies.back()->start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("read end"), marker});
        QVERIFY(copies.back()->waitForStarted());
        QCOMPARE(detector.IsProcessRunning(marker), running);
    }
    for (const auto &copy : copies) {
        copy->closeWriteChannel();
        QVERIFY(copy->waitForFinished());
    }
    QCOMPARE(detector.IsProcessRunning(marker), false);
}

void DetectSingleInstanceTest::isAQObject()
{
    QObject parent;
    auto *detector = new DetectSigngleInstance(&parent);
    QCOMPARE(detector->parent(), &parent);
    QCOMPARE(detector->metaObject()->className(), "DetectSigngleInstance");
    QCOMPARE(detector->metaObject()->methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(detector->metaObject()->propertyCount(), QObject::staticMetaObject.propertyCount());
}

QTEST_GUILESS_MAIN(DetectSingleInstanceTest)

#include "tst_detectsingleinstance.moc"
