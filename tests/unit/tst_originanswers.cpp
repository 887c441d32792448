// The file in which the user's answers about origins are kept, and the desk that keeps them there.
#include "service/OriginAnswers.h"
#include "service/OriginDesk.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/WarningTrap.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>
#include <QThread>

#include <memory>

namespace {

QString fileName()
{
    return QStringLiteral("MVSignPadSDK_Origins");
}

QString site(int number)
{
    return QStringLiteral("https://site%1.example").arg(number);
}

const auto good = QStringLiteral("https://good.example");
const auto evil = QStringLiteral("https://evil.example");

} // namespace

class OriginAnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nothingIsMadeOfNothing();
    void answersAreKept();
    void lastAnswerCounts();
    void onlyTheUserCanRead();
    void othersAreRefused_data();
    void othersAreRefused();
    void sharedOriginsCanOnlyBeBlocked();
    void fileThatIsNotUnderstood_data();
    void fileThatIsNotUnderstood();
    void fileThatCannotBeWritten();
    void changesAtTheSameTimeAddUp();
    void deskKeepsWhatIsForGood();

private:
    QStringList allowed() const { return OriginAnswers::Read()->Allowed(); }
    QStringList blocked() const { return OriginAnswers::Read()->Blocked(); }

    PrivateHome m_home;
    WarningTrap m_warnings;
};

void OriginAnswersTest::init()
{
    m_home.removeConfig();
}

void OriginAnswersTest::cleanup()
{
    QCOMPARE(m_warnings.taken(), QStringList());
}

void OriginAnswersTest::nothingIsMadeOfNothing()
{
    QCOMPARE(OriginAnswers::Path(), m_home.configFile(fileName()));
    QVERIFY(OriginAnswers::Read());
    QCOMPARE(allowed(), QStringList());
    QCOMPARE(blocked(), QStringList());
    QVERIFY(OriginAnswers::Forget(good));
    QVERIFY(!QFileInfo::exists(OriginAnswers::Path()));
}

void OriginAnswersTest::answersAreKept()
{
    QVERIFY(OriginAnswers::Allow(good));
    QCOMPARE(m_home.configLines(fileName()),
             QStringList({QStringLiteral("Allowed=https://good.example"), QStringLiteral("[Origins]")}));
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://[::1]:8443")));
    QVERIFY(OriginAnswers::Block(evil));
    QCOMPARE(allowed(), QStringList({good, QStringLiteral("https://[::1]:8443")}));
    QCOMPARE(blocked(), QStringList(evil));
    QCOMPARE(QDir(QFileInfo(OriginAnswers::Path()).path()).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("MVSignPadSDK_Origins.conf")));
}

void OriginAnswersTest::lastAnswerCounts()
{
    QVERIFY(OriginAnswers::Allow(good));
    QVERIFY(OriginAnswers::Allow(good));
    QCOMPARE(allowed(), QStringList(good));
    QVERIFY(OriginAnswers::Block(good));
    QCOMPARE(allowed(), QStringList());
    QCOMPARE(blocked(), QStringList(good));
    QVERIFY(OriginAnswers::Forget(good));
    QCOMPARE(blocked(), QStringList());
    QVERIFY(OriginAnswers::Allow(good));
    QCOMPARE(allowed(), QStringList(good));
}

void OriginAnswersTest::onlyTheUserCanRead()
{
    QVERIFY(OriginAnswers::Allow(good));
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QCOMPARE(QFile::permissions(OriginAnswers::Path()) & others, QFile::Permissions());
    QVERIFY(OriginAnswers::Block(evil));
    QCOMPARE(QFile::permissions(OriginAnswers::Path()) & others, QFile::Permissions());
}

void OriginAnswersTest::othersAreRefused_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << QString();
    QTest::newRow("no origin") << QStringLiteral("good.example");
    QTest::newRow("a path") << QStringLiteral("https://good.example/");
    QTest::newRow("a second line") << QStringLiteral("https://good.example\nBlocked=");
    QTest::newRow("a list") << QStringLiteral("https://good.example, https://evil.example");
}

void OriginAnswersTest::othersAreRefused()
{
    QFETCH(QString, text);
    QVERIFY(!OriginAnswers::Allow(text));
    QVERIFY(!OriginAnswers::Block(text));
    QVERIFY(!OriginAnswers::Forget(text));
    QVERIFY(!QFileInfo::exists(OriginAnswers::Path()));
}

void OriginAnswersTest::sharedOriginsCanOnlyBeBlocked()
{
    for (const QString &origin : {QStringLiteral("null"), QStringLiteral("file://")}) {
        QVERIFY(!OriginAnswers::Allow(origin));
        QVERIFY(OriginAnswers::Block(origin));
    }
    QCOMPARE(blocked(), QStringList({QStringLiteral("null"), QStringLiteral("file://")}));
}

void OriginAnswersTest::fileThatIsNotUnderstood_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("an unknown key") << QByteArray("[Origins]\nBlockd=https://evil.example\n");
    QTest::newRow("another group") << QByteArray("[Access]\nBlocked=https://evil.example\n");
    QTest::newRow("no group") << QByteArray("Blocked=https://evil.example\n");
    QTest::newRow("no setting") << QByteArray("[Origins]\nBlocked https://evil.example\n");
    QTest::newRow("no origin") << QByteArray("[Origins]\nBlocked=evil.example\n");
    QTest::newRow("shared and allowed") << QByteArray("[Origins]\nAllowed=null\n");
    QTest::newRow("a value to be built") << QByteArray("[Origins]\nBlocked=@Variant(\\0\\0\\0\\x7f)\n");
    QTest::newRow("a number of bytes") << QByteArray("[Origins]\nBlocked=@ByteArray(https://evil.example)\n");
}

void OriginAnswersTest::fileThatIsNotUnderstood()
{
    QFETCH(QByteArray, content);
    m_home.writeConfig(fileName(), content);
    QVERIFY(!OriginAnswers::Read());
    QVERIFY(!OriginAnswers::Block(evil));
    QVERIFY(!OriginAnswers::Forget(evil));
    QFile file(OriginAnswers::Path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void OriginAnswersTest::fileThatCannotBeWritten()
{
    QVERIFY(QDir().mkpath(m_home.path(QStringLiteral(".config"))));
    QFile inTheWay(m_home.path(QStringLiteral(".config/mvsignpadsdk")));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QVERIFY(OriginAnswers::Read());
    QVERIFY(!OriginAnswers::Block(evil));
}

void OriginAnswersTest::changesAtTheSameTimeAddUp()
{
    const int perThread = 10;
    std::vector<std::unique_ptr<QThread>> threads;
    std::vector<QStringList> kept(3);
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back(QThread::create([t, &kept] {
            for (int i = 0; i < perThread; ++i) {
                if (OriginAnswers::Block(site(t * perThread + i)))
                    kept[static_cast<size_t>(t)].append(site(t * perThread + i));
            }
        }));
        threads.back()->start();
    }
    QStringList expected;
    for (size_t t = 0; t < 3; ++t) {
        threads[t]->wait();
        QVERIFY(!kept[t].isEmpty());
        expected += kept[t];
    }
    QStringList found = blocked();
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
}

void OriginAnswersTest::deskKeepsWhatIsForGood()
{
    OriginDesk desk;
    Q_EMIT desk.answered(good, OriginAnswer::AllowThisTime);
    Q_EMIT desk.answered(good, OriginAnswer::NotNow);
    QVERIFY(!QFileInfo::exists(OriginAnswers::Path()));
    QStringList heard;
    connect(&desk, &OriginDesk::answered, this, [&] { heard = allowed(); });
    Q_EMIT desk.answered(good, OriginAnswer::AllowAlways);
    QCOMPARE(heard, QStringList(good)); // before the service hears of it
    Q_EMIT desk.answered(evil, OriginAnswer::Never);
    QCOMPARE(blocked(), QStringList(evil));
}

QTEST_GUILESS_MAIN(OriginAnswersTest)

#include "tst_originanswers.moc"
