#include "base/Logging.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <clocale>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char mainLog[] = "/tmp/mvsignpadsdk_wssvr.log";
const char threadLog[] = "/tmp/mvsignpadsdk_wssvr_inthread.log";

QByteArray content(const char *path)
{
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
}

QByteArray withTickMasked(const char *path)
{
    QString text = QString::fromUtf8(content(path));
    text.replace(QRegularExpression(QStringLiteral("<[0-9]+>")), QStringLiteral("<N>"));
    return text.toUtf8();
}

void writeLine(const char *message)
{
    MV_LOG("LoggingTest::writeLine()", "%s", message);
}

} // namespace

class LoggingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void isOffByDefault();
    void offLeavesNoFileAndEvaluatesNothing();
    void narrowLine();
    void insideThreadLine();
    void linesAreAppended();
    void removedFileComesBack();
    void wideLine();
    void wideTextIsCutAt256Bytes();
    void wideTextWithoutNarrowForm();
    void switchActsAtTheNextSite();
    void sitesOfBothKinds();
    void longMessageIsCut_data();
    void longMessageIsCut();
    void formattedArguments();
    void tickIsTheMonotonicClock();
    void ticksOfAFileNeverDecrease();
    void unwritableFileIsSkipped();
    void onlyTheUserCanRead();
    void foreignFilesAreLeftAlone();
    void sizeIsBounded();

private:
    void removeFiles() const;
    bool m_wasEnabled = true;
};

void LoggingTest::removeFiles() const
{
    QFile::remove(QString::fromLatin1(mainLog));
    QFile::remove(QString::fromLatin1(threadLog));
}

void LoggingTest::init()
{
    m_wasEnabled = g_bEnableLog;
    removeFiles();
}

void LoggingTest::cleanup()
{
    g_bEnableLog = false;
    removeFiles();
}

void LoggingTest::isOffByDefault()
{
    QCOMPARE(m_wasEnabled, false);
}

void LoggingTest::offLeavesNoFileAndEvaluatesNothing()
{
    int evaluated = 0;
    MV_LOG("LoggingTest", "%d", ++evaluated);
    MV_LOG_INSIDE_THREAD("LoggingTest", "%d", ++evaluated);
    QCOMPARE(evaluated, 0);
    QVERIFY(!QFile::exists(QString::fromLatin1(mainLog)));
    QVERIFY(!QFile::exists(QString::fromLatin1(threadLog)));
}

void LoggingTest::narrowLine()
{
    MyDebug("main()", "<12345>-Enter, argc=1", "\n");
    QCOMPARE(content(mainLog), QByteArray("[main()]:<12345>-Enter, argc=1, \n"));
    QVERIFY(!QFile::exists(QString::fromLatin1(threadLog)));
}

void LoggingTest::insideThreadLine()
{
    MyDebug_InsideThread("CheckSysTrayThread::run()", "<7>-i=3, bSysTrayAvailable=1", "\n");
    QCOMPARE(content(threadLog), QByteArray("[CheckSysTrayThread::run()]:<7>-i=3, bSysTrayAvailable=1, \n"));
    QVERIFY(!QFile::exists(QString::fromLatin1(mainLog)));
}

void LoggingTest::linesAreAppended()
{
    MyDebug("a", "one", "\n");
    MyDebug("b", "%s %n", "tail");
    QCOMPARE(content(mainLog), QByteArray("[a]:one, \n[b]:%s %n, tail"));
}

void LoggingTest::removedFileComesBack()
{
    MyDebug("a", "one", "\n");
    removeFiles();
    MyDebug("a", "two", "\n");
    QCOMPARE(content(mainLog), QByteArray("[a]:two, \n"));
}

void LoggingTest::wideLine()
{
    MyDebug(L"main()", L"<5>-Enter...", L"\n");
    QCOMPARE(content(mainLog), QByteArray("[main()]:<5>-Enter..., \n"));
}

/// The terminator takes one of the 256 bytes, and a character of several bytes is not cut in two.
void LoggingTest::wideTextIsCutAt256Bytes()
{
    const std::wstring longText(1000, L'x');
    const std::wstring textOf300Bytes(100, L'签');
    MyDebug(longText.c_str(), textOf300Bytes.c_str(), longText.c_str());
    QCOMPARE(content(mainLog),
             '[' + QByteArray(255, 'x') + "]:" + QByteArray("签").repeated(85) + ", " + QByteArray(255, 'x'));
}

void LoggingTest::wideTextWithoutNarrowForm()
{
    // In the "C" locale U+7B7E has no narrow form; the call must neither crash nor write rubbish.
    const QByteArray locale(std::setlocale(LC_CTYPE, nullptr));
    std::setlocale(LC_CTYPE, "C");
    MyDebug(L"main()", L"\u7b7e", L"\n");
    std::setlocale(LC_CTYPE, locale.constData());
    QCOMPARE(content(mainLog), QByteArray("[main()]:, \n"));
}

void LoggingTest::switchActsAtTheNextSite()
{
    writeLine("before");
    g_bEnableLog = true;
    writeLine("on");
    g_bEnableLog = false;
    writeLine("after");
    QCOMPARE(withTickMasked(mainLog), QByteArray("[LoggingTest::writeLine()]:<N>-on, \n"));
}

void LoggingTest::sitesOfBothKinds()
{
    g_bEnableLog = true;
    MV_LOG("main()", "Enter, argc=%d", 1);
    MV_LOG_INSIDE_THREAD("WebSocketThread::run()", "b4 call exec()...");
    QCOMPARE(withTickMasked(mainLog), QByteArray("[main()]:<N>-Enter, argc=1, \n"));
    QCOMPARE(withTickMasked(threadLog), QByteArray("[WebSocketThread::run()]:<N>-b4 call exec()..., \n"));
}

void LoggingTest::longMessageIsCut_data()
{
    QTest::addColumn<int>("length");
    for (const int length : {200, 254, 255, 256, 257, 1000, 100000})
        QTest::addRow("%d", length) << length;
}

void LoggingTest::longMessageIsCut()
{
    QFETCH(int, length);
    g_bEnableLog = true;
    writeLine(QByteArray(length, 'm').constData());
    const QByteArray line = content(mainLog);
    const QByteArray head("[LoggingTest::writeLine()]:");
    QVERIFY(line.startsWith(head + "<"));
    QVERIFY(line.endsWith("m, \n"));
    const int message = line.size() - head.size() - 3;
    const int tick = line.indexOf("-m") + 1 - head.size();
    QCOMPARE(message, qMin(tick + length, 255));
}

void LoggingTest::formattedArguments()
{
    g_bEnableLog = true;
    MV_LOG("T", "nID=%d, strPath=%s, p=%lx, big=%d", -7, "/tmp/\u7b7e", 0xbeefUL, std::numeric_limits<int>::min());
    QCOMPARE(withTickMasked(mainLog),
             QByteArray("[T]:<N>-nID=-7, strPath=/tmp/\xe7\xad\xbe, p=beef, big=-2147483648, \n"));
}

void LoggingTest::tickIsTheMonotonicClock()
{
    timespec before{};
    timespec after{};
    clock_gettime(CLOCK_MONOTONIC, &before);
    const std::uint64_t tick = GetTickCount();
    clock_gettime(CLOCK_MONOTONIC, &after);
    QVERIFY(tick
            >= static_cast<std::uint64_t>(before.tv_sec) * 1000 + static_cast<std::uint64_t>(before.tv_nsec) / 1000000);
    QVERIFY(tick
            <= static_cast<std::uint64_t>(after.tv_sec) * 1000 + static_cast<std::uint64_t>(after.tv_nsec) / 1000000);
}

void LoggingTest::ticksOfAFileNeverDecrease()
{
    g_bEnableLog = true;
    for (int i = 0; i < 50; ++i) {
        writeLine("tick");
        QTest::qSleep(1);
    }
    qulonglong previous = 0;
    const QList<QByteArray> lines = content(mainLog).trimmed().split('\n');
    QCOMPARE(lines.size(), 50);
    for (const QByteArray &line : lines) {
        const int start = line.indexOf('<') + 1;
        bool ok = false;
        const qulonglong tick = line.mid(start, line.indexOf('>') - start).toULongLong(&ok);
        QVERIFY(ok);
        QVERIFY(tick >= previous);
        previous = tick;
    }
    QVERIFY(previous > 0);
}

void LoggingTest::unwritableFileIsSkipped()
{
    // A directory of that name cannot be opened as a file, not even by root.
    QCOMPARE(mkdir(mainLog, 0700), 0);
    MyDebug("main()", "lost", "\n");
    MyDebug(L"main()", L"lost", L"\n");
    QCOMPARE(rmdir(mainLog), 0);
}

void LoggingTest::onlyTheUserCanRead()
{
    const mode_t mask = umask(0);
    MyDebug("main()", "one", "\n");
    MyDebug_InsideThread("run()", "one", "\n");
    umask(mask);
    for (const char *path : {mainLog, threadLog}) {
        struct stat status {
        };
        QCOMPARE(stat(path, &status), 0);
        QCOMPARE(status.st_mode & 07777, mode_t(0600));
    }
    QCOMPARE(chmod(mainLog, 0644), 0); // as an older version left it
    MyDebug("main()", "two", "\n");
    struct stat status {
    };
    QCOMPARE(stat(mainLog, &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0600));
}

/// Anybody can lay a file or a link of that name into /tmp first.
void LoggingTest::foreignFilesAreLeftAlone()
{
    const char other[] = "/tmp/of-somebody-else";
    QFile file(QString::fromLatin1(other));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QCOMPARE(symlink(other, mainLog), 0);
    MyDebug("main()", "lost", "\n");
    QCOMPARE(unlink(mainLog), 0);
    QCOMPARE(link(other, mainLog), 0);
    MyDebug("main()", "lost", "\n");
    QCOMPARE(unlink(mainLog), 0);
    QCOMPARE(mkfifo(mainLog, 0600), 0); // nobody reads it: opening must not wait
    MyDebug("main()", "lost", "\n");
    QCOMPARE(unlink(mainLog), 0);
    if (geteuid() == 0 && chown(other, 65534, 65534) == 0) {
        QCOMPARE(rename(other, mainLog), 0);
        MyDebug("main()", "lost", "\n");
        QCOMPARE(content(mainLog), QByteArray());
    } else {
        QCOMPARE(content(other), QByteArray());
        QCOMPARE(unlink(other), 0);
    }
}

void LoggingTest::sizeIsBounded()
{
    const QString older = QString::fromLatin1(mainLog) + QStringLiteral(".1");
    QFile file(QString::fromLatin1(mainLog));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(8 * 1024 * 1024 - 1));
    file.close();
    MyDebug("main()", "the last", "\n");
    QVERIFY(!QFile::exists(older));
    MyDebug("main()", "the first", "\n");
    QCOMPARE(content(mainLog), QByteArray("[main()]:the first, \n"));
    QVERIFY(content(older.toLatin1().constData()).endsWith("[main()]:the last, \n"));
    QVERIFY(QFile::remove(older));
}

QTEST_GUILESS_MAIN(LoggingTest)

#include "tst_logging.moc"
