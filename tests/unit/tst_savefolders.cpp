// Where a client may have files written when only some folders are open for that: the service with the virtual pad.

#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTest>

namespace {

QString Reply(const char *szApi, const QString &strResult)
{
    return QStringLiteral(R"({"API":"%1","Result":"%2"})").arg(QLatin1String(szApi), strResult);
}

} // namespace

class tst_SaveFolders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void savesBelowAFolder();
    void savesNowhereElse_data();
    void savesNowhereElse();
    void savesAnywhereWithoutAList();
    void decodesBelowAFolder();
    void decodesNowhereElse_data();
    void decodesNowhereElse();
    void picturesOfWpsStayWhereTheyAre();

private:
    /// A service with one pad, whose clients may write below the folder "open" of the home.
    void start(std::optional<QStringList> saveFolders);
    QString save(const QString &strPath)
    {
        return m_client->command(QStringLiteral("SaveDrawingImage?type=3&dpi=96&path=") + strPath);
    }
    QString decode(const QString &strPath)
    {
        return m_client->command(QStringLiteral("Decode?type=1&path=%1&data=QUJD").arg(strPath));
    }
    QStringList open() const { return {m_home->path(QStringLiteral("open"))}; }
    QString path(const char *szRelative) const { return m_home->path(QLatin1String(szRelative)); }

    std::unique_ptr<PrivateHome> m_home;
    std::unique_ptr<RunningService> m_service;
    std::unique_ptr<SignClient> m_client;
};

void tst_SaveFolders::initTestCase()
{
    qputenv("MVSIGNPAD_VIRTUAL_SPEED", "0");
}

void tst_SaveFolders::init()
{
    m_client.reset();
    m_service.reset();
    m_home.reset();
    m_home = std::make_unique<PrivateHome>();
    QVERIFY(QFile::link(QStringLiteral(VIRTUAL_PAD_LIBRARY), path("libmvsignpadsdk.so")));
    for (const char *szFolder : {"open", "outside"})
        QVERIFY(QDir(m_home->path()).mkpath(QLatin1String(szFolder)));
    QVERIFY(QFile::link(path("outside"), path("open/way-out")));
}

void tst_SaveFolders::start(std::optional<QStringList> saveFolders)
{
    AccessPolicy policy;
    policy.saveFolders = std::move(saveFolders);
    m_service = std::make_unique<RunningService>(freePort(), policy);
    m_client = std::make_unique<SignClient>();
    if (!m_service->waitUntilListening() || !m_client->connectTo(m_service->port())
        || m_client->command(QStringLiteral("InitialDevice?id=2&width=400&height=300"))
               != Reply("InitialDevice", QStringLiteral("1")))
        qFatal("no service with a pad");
}

void tst_SaveFolders::savesBelowAFolder()
{
    start(open());
    QCOMPARE(save(path("open/a.png")), Reply("SaveDrawingImage", path("open/a.png")));
    QCOMPARE(QImage(path("open/a.png")).size(), QSize(400, 300));
    QCOMPARE(save(path("outside/../open/b.png")), Reply("SaveDrawingImage", path("outside/../open/b.png")));
    QCOMPARE(QDir(path("open")).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({QStringLiteral("a.png"), QStringLiteral("b.png"), QStringLiteral("way-out")}));
}

void tst_SaveFolders::savesNowhereElse_data()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("outside") << "outside/";
    QTest::newRow("out by ..") << "open/../outside/";
    QTest::newRow("out by a link") << "open/way-out/";
    QTest::newRow("relative") << "../outside/";
    QTest::newRow("in /tmp") << "";
}

void tst_SaveFolders::savesNowhereElse()
{
    QFETCH(QString, place);
    start(open());
    const bool bRelative = place.isEmpty() || place.startsWith(QLatin1Char('.'));
    QVERIFY(QDir::setCurrent(path("open")));
    const QString strPath = (bRelative ? place : m_home->path(place)) + QStringLiteral("sf.png");
    QCOMPARE(save(strPath), Reply("SaveDrawingImage", QStringLiteral("-5")));
    QVERIFY(QDir(path("outside")).isEmpty());
    QVERIFY(!QFileInfo::exists(QStringLiteral("/tmp/sf.png")));
}

void tst_SaveFolders::savesAnywhereWithoutAList()
{
    start(std::nullopt);
    QCOMPARE(save(path("open/way-out/a.png")), Reply("SaveDrawingImage", path("open/way-out/a.png")));
    QVERIFY(QFileInfo::exists(path("outside/a.png")));
}

void tst_SaveFolders::decodesBelowAFolder()
{
    start(open());
    const QString strUp = QStringLiteral("..") + path("open/decoded");
    QCOMPARE(decode(strUp), Reply("Decode", QString()));
    QFile decoded(path("open/decoded"));
    QVERIFY(decoded.open(QIODevice::ReadOnly));
    QCOMPARE(decoded.readAll(), QByteArray("ABC"));
    QCOMPARE(m_client->command(QStringLiteral("GetDecodeFilePath")),
             Reply("GetDecodeFilePath", QStringLiteral("/tmp/") + strUp));
}

void tst_SaveFolders::decodesNowhereElse_data()
{
    savesNowhereElse_data();
}

void tst_SaveFolders::decodesNowhereElse()
{
    QFETCH(QString, place);
    start(open());
    const bool bRelative = place.isEmpty() || place.startsWith(QLatin1Char('.'));
    const QString strPath = (bRelative ? place : QStringLiteral("..") + m_home->path(place)) + QStringLiteral("sf");
    QCOMPARE(decode(strPath), Reply("Decode", QString()));
    QVERIFY(QDir(path("outside")).isEmpty());
    QVERIFY(!QFileInfo::exists(QStringLiteral("/tmp/sf")));
}

void tst_SaveFolders::picturesOfWpsStayWhereTheyAre()
{
    start(open());
    QCOMPARE(m_client->command(QStringLiteral("WPSSignConfirmed?id=1")),
             Reply("WPSSignConfirmed", QStringLiteral("/tmp/MVeSignWPS.png")));
    QVERIFY(!QImage(QStringLiteral("/tmp/MVeSignWPS.png")).isNull());
    QCOMPARE(m_client->command(QStringLiteral("UpdateWPSSettings?id=1&dt=0&af=0&pw=3&name=Signer")),
             Reply("UpdateWPSSettings", QStringLiteral("0")));
    QCOMPARE(m_client->command(QStringLiteral("WPSSignConfirmed?id=1")),
             Reply("WPSSignConfirmed", QStringLiteral("/tmp/MVeSignWPS_dt_name.png")));
    QVERIFY(!QImage(QStringLiteral("/tmp/MVeSignWPS_dt_name.png")).isNull());
}

QTEST_MAIN(tst_SaveFolders)
#include "tst_savefolders.moc"
