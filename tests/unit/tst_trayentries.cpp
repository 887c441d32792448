// The tray's icon, menu and entries and what they write to the log, on a tray of the test's own: what Qt's icon does
// with it is replaced here, and so is the name of the desktop.
#include "base/Logging.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"
#include "tray/SysTrayMenuMgr.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QMenu>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTest>

#include <atomic>

namespace {

struct Tray {
    std::atomic<int> nLooksUntilItIsThere{0};
    QMenu *menu = nullptr;
    QString toolTip;
    bool bHasIcon = false;
    bool bShown = false;
    QByteArray productType;
};

Tray tray;

const char manager[] = "SysTrayMenuMgr::SysTrayMenuMgr()";
const char start[] = "SysTrayMenuMgr::StartCreateSystemTrayIcon()";
const char create[] = "SysTrayMenuMgr::CreateSystemTray()";
const char load[] = "SysTrayMenuMgr::LoadDataFromINIFIle()";
const char write[] = "SysTrayMenuMgr::WriteDataToINIFIle()";
const char open[] = "SysTrayMenuMgr::OpenWebSocketService()";
const char service[] = "SysTrayMenuMgr::StartWebSocketService()";
const char secure[] = "SysTrayMenuMgr::StartWebSecureSocketService()";
const char launch[] = "SysTrayMenuMgr::AutoLaunchService()";
const char leave[] = "SysTrayMenuMgr::ExitWebSocketService()";
const char end[] = "SysTrayMenuMgr::~SysTrayMenuMgr()";

} // namespace

bool QSystemTrayIcon::isSystemTrayAvailable()
{
    return tray.nLooksUntilItIsThere-- <= 0;
}

void QSystemTrayIcon::setContextMenu(QMenu *menu)
{
    tray.menu = menu;
}

void QSystemTrayIcon::setToolTip(const QString &tip)
{
    tray.toolTip = tip;
}

void QSystemTrayIcon::setIcon(const QIcon &icon)
{
    tray.bHasIcon = !icon.availableSizes().isEmpty();
}

void QSystemTrayIcon::setVisible(bool visible)
{
    tray.bShown = visible;
}

QString QSysInfo::productType()
{
    return QString::fromLatin1(tray.productType);
}

class TrayEntriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void desktopIsKnownByItsProduct();
    void iconAndMenu_data();
    void iconAndMenu();
    void startsTheServiceThatRanLastTime();
    void showsTheSecureServiceOfLastTime();
    void startEntry();
    void secureEntry();
    void launchEntry();
    void launchEntryOfAnotherDesktop();
    void exitEntry();
    void trayGoneAtTheLastMoment();
    void trayThatNeverCame();
    void waitsForTheTray();

private:
    void writeSettings(const QByteArray &lines) const
    {
        m_home.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"),
                           "[Settings]\nWebSocketPort=" + QByteArray::number(m_nPort) + '\n' + lines);
    }
    /// The entry of this text; the secure one is in no menu.
    QAction &entry(const char *text) const;
    /// The main thread's lines since the last call.
    static QStringList newLines();
    static QStringList linesOf(const char *tag, std::initializer_list<const char *> messages);
    /// What is wrong with the main thread's lines since the last call, while a service writes its own.
    static QString flawOfNewLines(const QStringList &expected);

    PrivateHome m_home;
    quint16 m_nPort = 0;
    std::unique_ptr<WarningTrap> m_warnings;
    std::unique_ptr<SysTrayMenuMgr> m_manager;
};

void TrayEntriesTest::initTestCase()
{
    // No host of the desktop that the test may run on.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    QImage picture(16, 16, QImage::Format_ARGB32);
    picture.fill(Qt::black);
    QVERIFY(picture.save(QCoreApplication::applicationDirPath() + QStringLiteral("/mvsignpadsdk_wssvr.ico"), "PNG"));
}

void TrayEntriesTest::init()
{
    tray.nLooksUntilItIsThere = 0;
    tray.menu = nullptr;
    tray.toolTip.clear();
    tray.bHasIcon = tray.bShown = false;
    tray.productType = "debian";
    m_home.removeConfig();
    m_nPort = freePort();
    writeSettings("UILangID=3\n");
    QVERIFY(QDir::setCurrent(m_home.path()));
    m_warnings.reset(new WarningTrap);
    removeLogs();
    g_bEnableLog = true;
    m_manager.reset(new SysTrayMenuMgr);
}

void TrayEntriesTest::cleanup()
{
    m_manager.reset();
    delete tray.menu;
    g_bEnableLog = false;
    removeLogs();
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

QAction &TrayEntriesTest::entry(const char *text) const
{
    for (QAction *action : m_manager->findChildren<QAction *>()) {
        if (action->text() == QString::fromUtf8(text))
            return *action;
    }
    qFatal("There is no entry %s.", text);
}

QStringList TrayEntriesTest::newLines()
{
    const QStringList lines = maskedLines(mainLog());
    QFile::remove(mainLog());
    return lines;
}

QStringList TrayEntriesTest::linesOf(const char *tag, std::initializer_list<const char *> messages)
{
    QStringList lines;
    for (const char *message : messages)
        lines << logLine(tag, message);
    return lines;
}

QString TrayEntriesTest::flawOfNewLines(const QStringList &expected)
{
    return wrongLine(newLines(), expected, maskedLines(threadLog()));
}

void TrayEntriesTest::desktopIsKnownByItsProduct()
{
    m_manager.reset();
    newLines();
    tray.productType = "neokylin";
    m_manager.reset(new SysTrayMenuMgr);
    QCOMPARE(newLines(), linesOf(manager, {"Enter, OSProductType=neokylin", "m_nOSProductID=3", "Leave !"}));
}

void TrayEntriesTest::iconAndMenu_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("Traditional Chinese") << QByteArray("UILangID=1\n") << QStringLiteral("Morvane電子簽名板驅動程式")
                                         << QStringList{QStringLiteral("開啟服務程式"), QString(),
                                                        QStringLiteral("每次開機時自動啟動"), QString(),
                                                        QStringLiteral("離開服務程式")};
    QTest::newRow("Simplified Chinese, by default")
        << QByteArray() << QStringLiteral("Morvane电子签名板驱动程序")
        << QStringList{QStringLiteral("开启服务程序"), QString(), QStringLiteral("每次开机时自动启动"), QString(),
                       QStringLiteral("离开服务程序")};
    QTest::newRow("English") << QByteArray("UILangID=-1\n") << QStringLiteral("MVSignLocalServer")
                             << QStringList{QStringLiteral("Start Service"), QString(),
                                            QStringLiteral("Auto Launch at Startup"), QString(),
                                            QStringLiteral("Exit Service")};
}

void TrayEntriesTest::iconAndMenu()
{
    QFETCH(QByteArray, settings);
    QFETCH(QString, toolTip);
    QFETCH(QStringList, entries);
    writeSettings(settings);
    QCOMPARE(newLines(), linesOf(manager, {"Enter, OSProductType=debian", "m_nOSProductID=0", "Leave !"}));
    m_manager->StartCreateSystemTrayIcon(true);
    QCOMPARE(newLines(), linesOf(start, {"Enter, bSysTrayAvailable=1", "b4 call CreateSystemTray()..."})
                             + linesOf(create, {"Enter...", "System Tray Available..."})
                             + linesOf(load, {"Enter, OSKernelType=linux, OSProductType=debian", "Leave !"})
                             + linesOf(create, {"after call LoadDataFromINIFIle()...",
                                                "after call pSysTrayIcon->show()...", "Leave !"})
                             + linesOf(start, {"Leave !"}));
    QVERIFY(tray.bHasIcon); // which stands beside the program, like the library
    QVERIFY(tray.bShown);
    QCOMPARE(QDir::currentPath(), QCoreApplication::applicationDirPath());
    QCOMPARE(tray.toolTip, toolTip);
    QStringList texts;
    QList<bool> checkable;
    for (const QAction *action : tray.menu->actions()) {
        texts << (action->isSeparator() ? QString() : action->text());
        checkable << action->isCheckable();
        QVERIFY(!action->isChecked());
    }
    QCOMPARE(texts, entries);
    QCOMPARE(checkable, (QList<bool>{true, false, true, false, false}));
    QCOMPARE(m_manager->findChildren<QAction *>().size(), 4);
}

void TrayEntriesTest::startsTheServiceThatRanLastTime()
{
    writeSettings("UILangID=3\nStartWebService=true\nStartWebServiceWithSSL=true\n");
    newLines();
    m_manager->CreateSystemTray();
    QVERIFY(entry("Start Service").isChecked());
    QVERIFY(!entry("Start Service (SSL)").isChecked());
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, false);
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(m_nPort), patienceMs);
    QCOMPARE(flawOfNewLines(
                 linesOf(create, {"Enter...", "System Tray Available..."})
                 + linesOf(load, {"Enter, OSKernelType=linux, OSProductType=debian", "Leave !"})
                 + linesOf(create, {"after call LoadDataFromINIFIle()..."})
                 + linesOf(open, {"Enter, bOpenService=1", "after call m_pWebSocketThread->start()...", "Leave !"})
                 + linesOf(create, {"after call pSysTrayIcon->show()...", "Leave !"})),
             QString());
    m_manager.reset();
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(flawOfNewLines(linesOf(end, {"Enter..."})
                            + linesOf(open, {"Enter, bOpenService=0", "b4 call m_pWebSocketThread->quit()...",
                                             "after call m_pWebSocketThread = nullptr...", "Leave !"})
                            + linesOf(end, {"Leave !"})),
             QString());
}

void TrayEntriesTest::showsTheSecureServiceOfLastTime()
{
    writeSettings("UILangID=3\nStartWebServiceWithSSL=true\n");
    m_manager->CreateSystemTray();
    QVERIFY(!entry("Start Service").isChecked());
    QVERIFY(entry("Start Service (SSL)").isCheckable());
    QVERIFY(entry("Start Service (SSL)").isChecked());
    QVERIFY(!SignClient().connectTo(m_nPort));
    newLines();
    m_manager.reset();
    QCOMPARE(newLines(), linesOf(end, {"Enter...", "Leave !"}));
}

void TrayEntriesTest::startEntry()
{
    m_manager->CreateSystemTray();
    entry("Start Service (SSL)").trigger();
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, true);
    newLines();
    entry("Start Service").trigger();
    QCOMPARE(m_manager->Settings().bStartWebService, true);
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, false);
    QVERIFY(!entry("Start Service (SSL)").isChecked());
    QVERIFY(m_home.configLines(QStringLiteral("MVSignPadSDK_WSSvr")).contains(QStringLiteral("StartWebService=true")));
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(m_nPort), patienceMs);
    QCOMPARE(flawOfNewLines(
                 linesOf(service, {"Enter..."})
                 + linesOf(open, {"Enter, bOpenService=1", "after call m_pWebSocketThread->start()...", "Leave !"})
                 + linesOf(write, {"Enter...", "Leave !"}) + linesOf(service, {"Leave !"})),
             QString());
    m_manager->OpenWebSocketService(true); // leaves it alone
    QCOMPARE(flawOfNewLines(linesOf(open, {"Enter, bOpenService=1", "Leave !"})), QString());

    entry("Start Service").trigger();
    QCOMPARE(flawOfNewLines(linesOf(service, {"Enter..."})
                            + linesOf(open, {"Enter, bOpenService=0", "b4 call m_pWebSocketThread->quit()...",
                                             "after call m_pWebSocketThread = nullptr...", "Leave !"})
                            + linesOf(write, {"Enter...", "Leave !"}) + linesOf(service, {"Leave !"})),
             QString());
    QVERIFY(client.waitForDisconnect());
    QVERIFY(m_home.configLines(QStringLiteral("MVSignPadSDK_WSSvr")).contains(QStringLiteral("StartWebService=false")));
}

void TrayEntriesTest::secureEntry()
{
    m_manager->CreateSystemTray();
    entry("Start Service").trigger();
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(m_nPort), patienceMs);
    newLines();
    entry("Start Service (SSL)").trigger();
    QCOMPARE(flawOfNewLines(linesOf(secure, {"Enter...", "Leave !"})), QString());
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, true);
    QCOMPARE(m_manager->Settings().bStartWebService, false);
    QVERIFY(!entry("Start Service").isChecked());
    QVERIFY(client.isConnected()); // to the service, which runs on
    QVERIFY(SignClient().connectTo(m_nPort));
    entry("Start Service (SSL)").trigger();
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, false);
    QCOMPARE(m_manager->Settings().bStartWebService, false);
}

void TrayEntriesTest::launchEntry()
{
    tray.productType = "kylin";
    m_manager.reset(new SysTrayMenuMgr);
    const QString folder = m_home.path(QStringLiteral(".config/autostart"));
    QVERIFY(QDir().mkpath(folder));
    QFile entryOnDisk(folder + QStringLiteral("/mvsignpaddriver-kylin.desktop"));
    QVERIFY(entryOnDisk.open(QIODevice::WriteOnly));
    entryOnDisk.close();
    writeSettings("UILangID=3\nAutoLaunch=false\n");
    m_manager->CreateSystemTray();
    QVERIFY(entry("Auto Launch at Startup").isChecked());
    newLines();
    entry("Auto Launch at Startup").trigger();
    QCOMPARE(newLines(), linesOf(launch, {"Enter...", "INIDATA.bAutoLaunch = false !"})
                             + linesOf(write, {"Enter...", "Leave !"}) + linesOf(launch, {"Leave !"}));
    QVERIFY(!entryOnDisk.exists());
    QVERIFY(m_home.configLines(QStringLiteral("MVSignPadSDK_WSSvr")).contains(QStringLiteral("AutoLaunch=false")));
}

void TrayEntriesTest::launchEntryOfAnotherDesktop()
{
    m_manager->CreateSystemTray();
    newLines();
    entry("Auto Launch at Startup").trigger();
    QCOMPARE(newLines(), linesOf(launch, {"Enter...", "INIDATA.bAutoLaunch = TRUE..."})
                             + linesOf(write, {"Enter...", "Leave !"}) + linesOf(launch, {"Leave !"}));
    QVERIFY(QDir(m_home.path(QStringLiteral(".config/autostart"))).exists());
    QCOMPARE(m_manager->Settings().bAutoLaunch, true);
    QVERIFY(m_home.configLines(QStringLiteral("MVSignPadSDK_WSSvr")).contains(QStringLiteral("AutoLaunch=true")));
}

void TrayEntriesTest::exitEntry()
{
    m_manager->CreateSystemTray();
    entry("Start Service").trigger();
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(m_nPort), patienceMs);
    m_home.removeConfig();
    newLines();
    const QSignalSpy closed(m_manager.get(), &SysTrayMenuMgr::closed);
    entry("Exit Service").trigger();
    QCOMPARE(flawOfNewLines(linesOf(leave, {"Enter..."}) + linesOf(write, {"Enter...", "Leave !"})
                            + linesOf(open, {"Enter, bOpenService=0", "b4 call m_pWebSocketThread->quit()...",
                                             "after call m_pWebSocketThread = nullptr...", "Leave !"})
                            + linesOf(leave, {"Leave !"})),
             QString());
    QCOMPARE(closed.size(), 1);
    QVERIFY(client.waitForDisconnect());
    QVERIFY(m_home.configLines(QStringLiteral("MVSignPadSDK_WSSvr")).contains(QStringLiteral("StartWebService=true")));
}

void TrayEntriesTest::trayGoneAtTheLastMoment()
{
    tray.nLooksUntilItIsThere = 1;
    newLines();
    const QSignalSpy closed(m_manager.get(), &SysTrayMenuMgr::closed);
    m_manager->StartCreateSystemTrayIcon(true);
    QCOMPARE(newLines(), linesOf(start, {"Enter, bSysTrayAvailable=1", "b4 call CreateSystemTray()..."})
                             + linesOf(create, {"Enter...", "System Tray Is NOT Available !!!", "Leave !"})
                             + linesOf(start, {"Leave !"}));
    QVERIFY(!tray.bShown);
    QCOMPARE(closed.size(), 0);
}

void TrayEntriesTest::trayThatNeverCame()
{
    newLines();
    const QSignalSpy closed(m_manager.get(), &SysTrayMenuMgr::closed);
    m_manager->StartCreateSystemTrayIcon(false);
    QCOMPARE(newLines(), linesOf(start, {"Enter, bSysTrayAvailable=0", "b4 call closed()...", "Leave !"}));
    QCOMPARE(closed.size(), 1);
}

void TrayEntriesTest::waitsForTheTray()
{
    newLines();
    tray.nLooksUntilItIsThere = 3; // the first look is that of the main thread
    m_manager->Initialize();
    QTRY_VERIFY_WITH_TIMEOUT(tray.bShown, patienceMs);
    const char poll[] = "CheckSysTrayThread::run()";
    QCOMPARE(maskedLines(threadLog()), linesOf("CheckSysTrayThread::CheckSysTrayThread()", {"Enter...", "Leave !"})
                                           + linesOf(poll, {"Enter...", "i=2, bSysTrayAvailable=1", "Leave !"}));
    QCOMPARE(newLines().mid(0, 3), linesOf("SysTrayMenuMgr::Initialize()", {"Enter...", "Leave !"})
                                       + linesOf(start, {"Enter, bSysTrayAvailable=1"}));
}

QTEST_MAIN(TrayEntriesTest)

#include "tst_trayentries.moc"
