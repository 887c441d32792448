// The tray's settings and the desktop variants, as far as they need no tray.
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/WarningTrap.h"
#include "tray/DesktopVariant.h"
#include "tray/SysTrayMenuMgr.h"
#include "tray/TrayTexts.h"

#include <QAction>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMetaMethod>
#include <QTest>

namespace {

QString fileName()
{
    return QStringLiteral("MVSignPadSDK_WSSvr");
}

} // namespace

class TraySettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void signalAndSlots();
    void defaults();
    void loads_data();
    void loads();
    void autoLaunchFollowsTheEntryOnDisk_data();
    void autoLaunchFollowsTheEntryOnDisk();
    void absentKeysKeepWhatIsThere();
    void writesSixKeys();
    void writesWhatItLoaded();
    void otherKeysOfTheFileStay();
    void machinesFileFillsIn();
    void organizationHasNoSay();
    void lockLeftBehindIsNoObstacle();
    void unwritableFileIsNotReported();
    void variants_data();
    void variants();
    void texts_data();
    void texts();
    void slotsWithoutTrayDoNothing();
    void trayGoneAtTheLastMoment();
    void noTrayCloses();

private:
    void writeFile(const QString &name, const QByteArray &content) const;

    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
};

void TraySettingsTest::init()
{
    qputenv("XDG_CONFIG_DIRS",
            QFile::encodeName(m_home.path(QStringLiteral("etc:")) + m_home.path(QStringLiteral("etc-of-less-weight"))));
    m_home.removeConfig();
    QDir(m_home.path(QStringLiteral("etc"))).removeRecursively();
    QDir(m_home.path(QStringLiteral("etc-of-less-weight"))).removeRecursively();
    m_warnings.reset(new WarningTrap);
}

void TraySettingsTest::cleanup()
{
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

void TraySettingsTest::writeFile(const QString &name, const QByteArray &content) const
{
    QFile file(m_home.path(name));
    if (!QDir().mkpath(QFileInfo(file).path()) || !file.open(QIODevice::WriteOnly)
        || file.write(content) != content.size())
        qFatal("cannot write a file of the test");
}

void TraySettingsTest::signalAndSlots()
{
    const QMetaObject &meta = SysTrayMenuMgr::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures.append(QString::fromLatin1(meta.method(i).methodSignature()));
    QCOMPARE(signatures, (QStringList{QStringLiteral("closed()"), QStringLiteral("StartWebSocketService()"),
                                      QStringLiteral("StartWebSecureSocketService()"),
                                      QStringLiteral("AutoLaunchService()"), QStringLiteral("ExitWebSocketService()"),
                                      QStringLiteral("StartCreateSystemTrayIcon(bool)")}));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
    QCOMPARE(meta.method(meta.methodOffset() + 1).methodType(), QMetaMethod::Slot);
}

void TraySettingsTest::defaults()
{
    SysTrayMenuMgr manager(nullptr);
    manager.LoadDataFromINIFIle();
    QCOMPARE(manager.Settings().bAutoLaunch, false);
    QCOMPARE(manager.Settings().bStartWebService, false);
    QCOMPARE(manager.Settings().bStartWebServiceWithSSL, false);
    QCOMPARE(manager.Settings().nWebSocketPort, 8089);
    QCOMPARE(manager.Settings().nWebSocketSecurePort, 8090);
    QCOMPARE(manager.Settings().nUILangID, 2);
    QVERIFY(!QFile::exists(m_home.configFile(fileName())));
}

void TraySettingsTest::loads_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("startWithSsl");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("securePort");
    QTest::addColumn<int>("language");
    const auto row = [](const char *name, const char *lines, bool start, bool ssl, int port, int secure, int language) {
        QTest::newRow(name) << QByteArray("[Settings]\n") + lines << start << ssl << port << secure << language;
    };
    row("no keys", "", false, false, 8089, 8090, 2);
    row("all keys",
        "StartWebService=true\nStartWebServiceWithSSL=true\nWebSocketPort=1\nWebSocketSecurePort=2\nUILangID=3\n", true,
        true, 1, 2, 3);
    row("port only", "WebSocketPort=9000\n", false, false, 9000, 8090, 2);
    row("secure port only", "WebSocketSecurePort=9001\n", false, false, 8089, 9001, 2);
    row("start only", "StartWebService=true\n", true, false, 8089, 8090, 2);
    row("secure start only", "StartWebServiceWithSSL=true\n", false, true, 8089, 8090, 2);
    row("ports no numbers", "WebSocketPort=http\nWebSocketSecurePort=\nUILangID=zh\n", false, false, 0, 0, 0);
    row("no range check", "WebSocketPort=-1\nWebSocketSecurePort=70000\nUILangID=-7\n", false, false, -1, 70000, -7);
    row("hexadecimal", "WebSocketPort=0x10\n", false, false, 0, 8090, 2);
    row("flags as numbers", "StartWebService=1\nStartWebServiceWithSSL=0\n", true, false, 8089, 8090, 2);
    row("flags in capitals", "StartWebService=TRUE\nStartWebServiceWithSSL=False\n", true, false, 8089, 8090, 2);
    row("keys in another group", "\n[Other]\nWebSocketPort=1\n", false, false, 8089, 8090, 2);
    row("misspelt keys", "websocketport=1\nWebSocket_Port=2\nPort=3\n", false, false, 8089, 8090, 2);
}

void TraySettingsTest::loads()
{
    QFETCH(QByteArray, content);
    m_home.writeConfig(fileName(), content);
    SysTrayMenuMgr manager(nullptr);
    manager.LoadDataFromINIFIle();
    QTEST(manager.Settings().bStartWebService, "start");
    QTEST(manager.Settings().bStartWebServiceWithSSL, "startWithSsl");
    QTEST(manager.Settings().nWebSocketPort, "port");
    QTEST(manager.Settings().nWebSocketSecurePort, "securePort");
    QTEST(manager.Settings().nUILangID, "language");
    QCOMPARE(manager.Settings().bAutoLaunch, false);
}

void TraySettingsTest::autoLaunchFollowsTheEntryOnDisk_data()
{
    QTest::addColumn<int>("variant");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("entry"); // that lies in the autostart folder
    QTest::addColumn<bool>("autoLaunch");
    const QByteArray storedFalse("[Settings]\nAutoLaunch=false\n");
    const QByteArray storedTrue("[Settings]\nAutoLaunch=true\n");
    const QByteArray noKey("[Settings]\nUILangID=2\n");
    const QString kylin = QStringLiteral("mvsignpaddriver-kylin.desktop");
    QTest::newRow("kylin, false, entry there") << 2 << storedFalse << kylin << true;
    QTest::newRow("kylin, true, entry there") << 2 << storedTrue << kylin << true;
    QTest::newRow("kylin, true, no entry") << 2 << storedTrue << QString() << false;
    QTest::newRow("kylin, false, no entry") << 2 << storedFalse << QString() << false;
    QTest::newRow("kylin, no key, entry there") << 2 << noKey << kylin << false;
    QTest::newRow("kylin, no file, entry there") << 2 << QByteArray() << kylin << false;
    QTest::newRow("kylin, the entry of another desktop")
        << 2 << storedTrue << QStringLiteral("mvsignpaddriver-nfs.desktop") << false;
    QTest::newRow("uos") << 1 << storedFalse << QStringLiteral("com.morvane.mvsignpaddriver.desktop") << true;
    QTest::newRow("neokylin") << 3 << storedFalse << QStringLiteral("mvsignpaddriver-neokylin.desktop") << true;
    QTest::newRow("nfsdesktop") << 4 << storedFalse << QStringLiteral("mvsignpaddriver-nfs.desktop") << true;
    QTest::newRow("any other desktop") << 0 << storedTrue << QStringLiteral("com.morvane.mvsignpaddriver.desktop")
                                       << false;
}

void TraySettingsTest::autoLaunchFollowsTheEntryOnDisk()
{
    QFETCH(int, variant);
    QFETCH(QByteArray, content);
    QFETCH(QString, entry);
    QFETCH(bool, autoLaunch);
    if (!content.isEmpty())
        m_home.writeConfig(fileName(), content);
    if (!entry.isEmpty()) {
        QVERIFY(QDir().mkpath(m_home.path(QStringLiteral(".config/autostart"))));
        QFile file(m_home.path(QStringLiteral(".config/autostart/")) + entry);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    TraySettings settings;
    settings.Load(variant);
    QCOMPARE(settings.bAutoLaunch, autoLaunch);
}

void TraySettingsTest::absentKeysKeepWhatIsThere()
{
    TraySettings settings;
    settings.bAutoLaunch = true;
    settings.bStartWebService = true;
    settings.nWebSocketPort = 1;
    settings.nUILangID = 5;
    m_home.writeConfig(fileName(), "[Settings]\nWebSocketSecurePort=7\n");
    settings.Load(2);
    QCOMPARE(settings.bAutoLaunch, true);
    QCOMPARE(settings.bStartWebService, true);
    QCOMPARE(settings.bStartWebServiceWithSSL, false);
    QCOMPARE(settings.nWebSocketPort, 1);
    QCOMPARE(settings.nWebSocketSecurePort, 7);
    QCOMPARE(settings.nUILangID, 5);
}

void TraySettingsTest::writesSixKeys()
{
    SysTrayMenuMgr manager(nullptr);
    manager.WriteDataToINIFIle();
    QStringList lines;
    for (const char *line : {"AutoLaunch=false", "StartWebService=false", "StartWebServiceWithSSL=false", "UILangID=2",
                             "WebSocketPort=8089", "WebSocketSecurePort=8090", "[Settings]"})
        lines.append(QLatin1String(line));
    QCOMPARE(m_home.configLines(fileName()), lines);
}

void TraySettingsTest::writesWhatItLoaded()
{
    m_home.writeConfig(fileName(), "[Settings]\nAutoLaunch=true\nStartWebService=1\nStartWebServiceWithSSL=true\n"
                                   "WebSocketPort=none\nWebSocketSecurePort=70000\nUILangID=-3\n");
    SysTrayMenuMgr manager(nullptr);
    manager.LoadDataFromINIFIle();
    manager.WriteDataToINIFIle();
    QStringList lines;
    for (const char *line : {"AutoLaunch=false", "StartWebService=true", "StartWebServiceWithSSL=true", "UILangID=-3",
                             "WebSocketPort=0", "WebSocketSecurePort=70000", "[Settings]"})
        lines.append(QLatin1String(line));
    QCOMPARE(m_home.configLines(fileName()), lines);
}

void TraySettingsTest::otherKeysOfTheFileStay()
{
    m_home.writeConfig(fileName(), "[Settings]\nColour=blue\n");
    SysTrayMenuMgr manager(nullptr);
    manager.LoadDataFromINIFIle();
    manager.WriteDataToINIFIle();
    QVERIFY(m_home.configLines(fileName()).contains(QLatin1String("Colour=blue")));
    QCOMPARE(m_home.configLines(fileName()).size(), 8);
}

void TraySettingsTest::machinesFileFillsIn()
{
    writeFile(QStringLiteral("etc/mvsignpadsdk/MVSignPadSDK_WSSvr.conf"),
              "[Settings]\nWebSocketPort=1\nWebSocketSecurePort=2\nUILangID=3\n");
    writeFile(QStringLiteral("etc-of-less-weight/mvsignpadsdk/MVSignPadSDK_WSSvr.conf"),
              "[Settings]\nUILangID=1\nStartWebServiceWithSSL=true\n");
    m_home.writeConfig(fileName(), "[Settings]\nWebSocketPort=7\n");
    TraySettings settings;
    settings.Load(0);
    QCOMPARE(settings.nWebSocketPort, 7);
    QCOMPARE(settings.nWebSocketSecurePort, 2);
    QCOMPARE(settings.nUILangID, 3);
    QCOMPARE(settings.bStartWebServiceWithSSL, true);
    QCOMPARE(settings.bStartWebService, false);
}

/// What stands there for all programs of the organization is neither taken nor does it make the own file count less.
void TraySettingsTest::organizationHasNoSay()
{
    const QByteArray foreign = "[Settings]\nUILangID=3\nWebSocketSecurePort=2\nWhen=@DateTime(\\0\\0\\0\\x10)\n";
    writeFile(QStringLiteral(".config/mvsignpadsdk.conf"), foreign);
    writeFile(QStringLiteral("etc/mvsignpadsdk.conf"), foreign);
    writeFile(QStringLiteral("etc/mvsignpadsdk/MVSignPadSDK_WSSvr.conf"), foreign);
    m_home.writeConfig(fileName(), "[Settings]\nWebSocketPort=7\n");
    TraySettings settings;
    settings.Load(0);
    settings.Save();
    QCOMPARE(settings.nWebSocketPort, 7);
    QCOMPARE(settings.nWebSocketSecurePort, 8090);
    QCOMPARE(settings.nUILangID, 2);
    QVERIFY(m_home.configLines(fileName()).contains(QLatin1String("WebSocketPort=7")));
}

/// By a program that was killed while it wrote.
void TraySettingsTest::lockLeftBehindIsNoObstacle()
{
    writeFile(QStringLiteral(".config/mvsignpadsdk/MVSignPadSDK_WSSvr.conf.lock"), QByteArray());
    QElapsedTimer timer;
    timer.start();
    TraySettings().Save();
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed()))); // Qt would wait for 30 seconds
    QCOMPARE(m_home.configLines(fileName()).size(), 7);
}

void TraySettingsTest::unwritableFileIsNotReported()
{
    QVERIFY(QDir().mkpath(m_home.path(QStringLiteral(".config"))));
    QFile obstacle(m_home.path(QStringLiteral(".config/mvsignpadsdk")));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    SysTrayMenuMgr manager(nullptr);
    manager.WriteDataToINIFIle();
    manager.LoadDataFromINIFIle();
    QCOMPARE(manager.Settings().nWebSocketPort, 8089);
}

void TraySettingsTest::variants_data()
{
    QTest::addColumn<QString>("productType");
    QTest::addColumn<int>("variant");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("target"); // below the home directory
    const auto row = [](const char *productType, int variant, const char *entry) {
        const QString name = QString::fromLatin1(entry);
        QTest::newRow(productType) << QString::fromLatin1(productType) << variant
                                   << (entry ? QStringLiteral("/usr/share/applications/") + name : QString())
                                   << (entry ? QStringLiteral("/.config/autostart/") + name : QString());
    };
    row("uos", 1, "com.morvane.mvsignpaddriver.desktop");
    row("kylin", 2, "mvsignpaddriver-kylin.desktop");
    row("neokylin", 3, "mvsignpaddriver-neokylin.desktop");
    row("nfsdesktop", 4, "mvsignpaddriver-nfs.desktop");
    for (const char *other : {"", "debian", "UOS", "Kylin", "kylin ", "kylins", "neo", "nfs", "ubuntukylin", "uos20"})
        row(other, 0, nullptr);
}

void TraySettingsTest::variants()
{
    QFETCH(QString, productType);
    QFETCH(int, variant);
    QFETCH(QString, source);
    QFETCH(QString, target);
    QCOMPARE(DesktopVariantOf(productType), variant);
    QCOMPARE(AutostartSource(variant), source);
    QCOMPARE(AutostartTarget(variant), target.isEmpty() ? QString() : m_home.path() + target);
    QCOMPARE(AutostartFolder(), m_home.path() + QStringLiteral("/.config/autostart"));
}

void TraySettingsTest::texts_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QStringList>("texts");
    const QStringList english{QStringLiteral("MVSignLocalServer"), QStringLiteral("Start Service"),
                              QStringLiteral("Start Service (SSL)"), QStringLiteral("Auto Launch at Startup"),
                              QStringLiteral("Exit Service")};
    QTest::newRow("traditional Chinese") << 1
                                         << QStringList{QStringLiteral("Morvane電子簽名板驅動程式"),
                                                        QStringLiteral("開啟服務程式"),
                                                        QStringLiteral("開啟服務程式(使用SSL認證)"),
                                                        QStringLiteral("每次開機時自動啟動"),
                                                        QStringLiteral("離開服務程式")};
    QTest::newRow("simplified Chinese") << 2
                                        << QStringList{QStringLiteral("Morvane电子签名板驱动程序"),
                                                       QStringLiteral("开启服务程序"),
                                                       QStringLiteral("开启服务程序(使用SSL认证)"),
                                                       QStringLiteral("每次开机时自动启动"),
                                                       QStringLiteral("离开服务程序")};
    for (const int language : {3, 0, -1, 4, 1000000})
        QTest::addRow("%d", language) << language << english;
}

void TraySettingsTest::texts()
{
    QFETCH(int, language);
    const TrayTexts &texts = TrayTextsOf(language);
    QTEST((QStringList{QString::fromUtf8(texts.szToolTip), QString::fromUtf8(texts.szStartService),
                       QString::fromUtf8(texts.szStartSecureService), QString::fromUtf8(texts.szAutoLaunch),
                       QString::fromUtf8(texts.szExit)}),
          "texts");
}

void TraySettingsTest::slotsWithoutTrayDoNothing()
{
    SysTrayMenuMgr manager(nullptr);
    manager.StartWebSocketService();
    manager.StartWebSecureSocketService();
    manager.AutoLaunchService();
    manager.OpenWebSocketService(false);
    QVERIFY(!QFile::exists(m_home.path(QStringLiteral(".config"))));
    QCOMPARE(manager.Settings().bStartWebService, false);
}

void TraySettingsTest::trayGoneAtTheLastMoment()
{
    // This platform has no tray: the program goes on without icon, menu and settings, and is not closed.
    SysTrayMenuMgr manager(nullptr);
    int closed = 0;
    connect(&manager, &SysTrayMenuMgr::closed, this, [&] { ++closed; });
    m_home.writeConfig(fileName(), "[Settings]\nWebSocketPort=1\n");
    const QString directory = QDir::currentPath();
    manager.StartCreateSystemTrayIcon(true);
    QCOMPARE(closed, 0);
    QCOMPARE(manager.findChildren<QAction *>().size(), 0);
    QCOMPARE(manager.Settings().nWebSocketPort, 8089);
    QCOMPARE(QDir::currentPath(), directory);
}

void TraySettingsTest::noTrayCloses()
{
    SysTrayMenuMgr manager(nullptr);
    int closed = 0;
    connect(&manager, &SysTrayMenuMgr::closed, this, [&] { ++closed; });
    manager.StartCreateSystemTrayIcon(false);
    QCOMPARE(closed, 1);
    QVERIFY(!QFile::exists(m_home.configFile(fileName())));
}

QTEST_MAIN(TraySettingsTest)

#include "tst_traysettings.moc"
