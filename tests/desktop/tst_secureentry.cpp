// The entry for the secure service, which the menu does not show: the tray is built inside the test, on a real XEmbed
// tray, and the entry is triggered as a menu would.
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"
#include "tray/SysTrayMenuMgr.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QThread>

namespace {

QString fileName()
{
    return QStringLiteral("MVSignPadSDK_WSSvr");
}

const char size[] = R"({"API":"GetSize","Result":"0"})";

} // namespace

class SecureEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void entriesAndMenu();
    void secureEntryIsAFlagOnly();
    void startEntryClearsTheFlag();
    void secureEntryLeavesARunningServiceAlone();
    void startEntryOverARunningService();
    void uncheckingTheSecureEntry();
    void savedFlagIsShown_data();
    void savedFlagIsShown();
    void exitOrder();

private:
    void build(const QStringList &settings);
    QAction *entry(const char *text) const;
    bool settingsHold(const char *line) const { return m_home.configLines(fileName()).contains(QLatin1String(line)); }

    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
    std::unique_ptr<SysTrayMenuMgr> m_manager;
    quint16 m_port = 0;
};

void SecureEntryTest::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
}

void SecureEntryTest::init()
{
    m_warnings.reset(new WarningTrap);
    m_port = freePort();
}

void SecureEntryTest::cleanup()
{
    m_manager->OpenWebSocketService(false);
    m_manager.reset();
    // Icon and menu belong to nobody and live until the process ends; a test must not meet the last one's.
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets)
        if (QMenu *menu = qobject_cast<QMenu *>(widget))
            delete menu;
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

void SecureEntryTest::build(const QStringList &settings)
{
    const QStringList lines = QStringList{QStringLiteral("[Settings]"), QStringLiteral("UILangID=3"),
                                          QStringLiteral("WebSocketPort=%1").arg(m_port)}
                              + settings;
    m_home.writeConfig(fileName(), lines.join(QLatin1Char('\n')).toUtf8());
    m_manager.reset(new SysTrayMenuMgr(nullptr));
    m_manager->CreateSystemTray();
}

QAction *SecureEntryTest::entry(const char *text) const
{
    for (QAction *action : m_manager->findChildren<QAction *>())
        if (action->text() == QLatin1String(text))
            return action;
    return nullptr;
}

void SecureEntryTest::entriesAndMenu()
{
    build({});
    QCOMPARE(m_manager->findChildren<QAction *>().size(), 4);
    for (const char *text : {"Start Service", "Start Service (SSL)", "Auto Launch at Startup"}) {
        QVERIFY2(entry(text), text);
        QVERIFY(entry(text)->isCheckable());
        QVERIFY(!entry(text)->isChecked());
    }
    QVERIFY(entry("Exit Service"));
    QVERIFY(!entry("Exit Service")->isCheckable());

    QStringList shown;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets)
        if (QMenu *menu = qobject_cast<QMenu *>(widget))
            for (QAction *action : menu->actions())
                shown.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    QCOMPARE(shown, (QStringList{QStringLiteral("Start Service"), QStringLiteral("-"),
                                 QStringLiteral("Auto Launch at Startup"), QStringLiteral("-"),
                                 QStringLiteral("Exit Service")}));
}

void SecureEntryTest::secureEntryIsAFlagOnly()
{
    build({});
    entry("Start Service (SSL)")->trigger();
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, true);
    QCOMPARE(m_manager->Settings().bStartWebService, false);
    QVERIFY(!settingsHold("StartWebServiceWithSSL=true"));
    QCOMPARE(m_manager->findChildren<QThread *>().size(), 0);

    // The next write carries it.
    entry("Auto Launch at Startup")->trigger();
    QVERIFY(settingsHold("StartWebServiceWithSSL=true"));
    QVERIFY(settingsHold("StartWebService=false"));
    QCOMPARE(m_manager->findChildren<QThread *>().size(), 0);
}

void SecureEntryTest::startEntryClearsTheFlag()
{
    build({QStringLiteral("StartWebServiceWithSSL=true")});
    QVERIFY(entry("Start Service (SSL)")->isChecked());
    entry("Start Service")->trigger();
    QVERIFY(!entry("Start Service (SSL)")->isChecked());
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, false);
    QCOMPARE(m_manager->Settings().bStartWebService, true);
    QVERIFY(settingsHold("StartWebServiceWithSSL=false"));
    QVERIFY(settingsHold("StartWebService=true"));

    entry("Start Service")->trigger();
    QCOMPARE(m_manager->Settings().bStartWebService, false);
    QVERIFY(settingsHold("StartWebService=false"));
}

void SecureEntryTest::secureEntryLeavesARunningServiceAlone()
{
    build({QStringLiteral("StartWebService=true")});
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(m_port), patienceMs);
    entry("Start Service (SSL)")->trigger();
    QVERIFY(!entry("Start Service")->isChecked());
    QVERIFY(entry("Start Service (SSL)")->isChecked());
    QCOMPARE(m_manager->Settings().bStartWebService, false);
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, true);
    QVERIFY(client.isConnected());
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QVERIFY(settingsHold("StartWebService=true")); // as it was

    entry("Exit Service")->trigger();
    QVERIFY(client.waitForDisconnect());
    QVERIFY(settingsHold("StartWebService=false"));
    QVERIFY(settingsHold("StartWebServiceWithSSL=true"));
}

void SecureEntryTest::startEntryOverARunningService()
{
    build({QStringLiteral("StartWebService=true")});
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(m_port), patienceMs);
    entry("Start Service (SSL)")->trigger();
    entry("Start Service")->trigger();
    QVERIFY(entry("Start Service")->isChecked());
    QVERIFY(!entry("Start Service (SSL)")->isChecked());
    QCOMPARE(m_manager->Settings().bStartWebService, true);
    QVERIFY(settingsHold("StartWebService=true"));
    QVERIFY(settingsHold("StartWebServiceWithSSL=false"));
    QCOMPARE(m_manager->findChildren<QThread *>().size(), 1);
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));

    // The service that runs is the one that the entry stops.
    entry("Start Service")->trigger();
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(m_manager->findChildren<QThread *>().size(), 0);
}

void SecureEntryTest::uncheckingTheSecureEntry()
{
    build({QStringLiteral("StartWebServiceWithSSL=true")});
    entry("Start Service (SSL)")->trigger();
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, false);
    QCOMPARE(m_manager->Settings().bStartWebService, false);
    QVERIFY(!entry("Start Service")->isChecked());
    QVERIFY(settingsHold("StartWebServiceWithSSL=true"));
    entry("Exit Service")->trigger();
    QVERIFY(settingsHold("StartWebServiceWithSSL=false"));
}

void SecureEntryTest::savedFlagIsShown_data()
{
    QTest::addColumn<QStringList>("settings");
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("secure");
    const QString start = QStringLiteral("StartWebService=true");
    const QString secure = QStringLiteral("StartWebServiceWithSSL=true");
    QTest::newRow("none") << QStringList() << false << false;
    QTest::newRow("start") << QStringList{start} << true << false;
    QTest::newRow("secure") << QStringList{secure} << false << true;
    QTest::newRow("both: the plain service wins") << QStringList{start, secure} << true << false;
}

void SecureEntryTest::savedFlagIsShown()
{
    QFETCH(QStringList, settings);
    QFETCH(bool, start);
    QFETCH(bool, secure);
    build(settings);
    QCOMPARE(entry("Start Service")->isChecked(), start);
    QCOMPARE(entry("Start Service (SSL)")->isChecked(), secure);
    QCOMPARE(m_manager->Settings().bStartWebService, start);
    QCOMPARE(m_manager->Settings().bStartWebServiceWithSSL, secure);
}

void SecureEntryTest::exitOrder()
{
    build({QStringLiteral("StartWebService=true"), QStringLiteral("StartWebServiceWithSSL=true")});
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(m_port), patienceMs);
    bool writtenBefore = false;
    bool stoppedBefore = false;
    connect(m_manager.get(), &SysTrayMenuMgr::closed, this, [&] {
        writtenBefore = settingsHold("StartWebServiceWithSSL=false");
        stoppedBefore = client.waitForDisconnect();
    });
    entry("Exit Service")->trigger();
    QVERIFY(writtenBefore);
    QVERIFY(stoppedBefore);
}

QTEST_MAIN(SecureEntryTest)

#include "tst_secureentry.moc"
