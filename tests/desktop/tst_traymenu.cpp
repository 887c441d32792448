// The tray icon and its menu on a real XEmbed tray and on a real StatusNotifier host, in the three languages.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/StatusNotifierItem.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/LogFiles.h"

#include <QTest>

class TrayMenuTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void iconAndMenuShow_data();
    void iconAndMenuShow();
    void menuDrivesTheService_data();
    void menuDrivesTheService();
    void hostGetsTheTexts_data();
    void hostGetsTheTexts();
    void hostSeesTheSavedState_data();
    void hostSeesTheSavedState();

private:
    bool startTray(const QString &tray);
    bool startProgram(const QStringList &extraSettings);

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    quint16 m_port = 0;
};

void TrayMenuTest::init()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    m_port = freePort();
}

void TrayMenuTest::cleanup()
{
    m_program.reset();
    m_desktop.reset();
    removeLogs();
}

bool TrayMenuTest::startTray(const QString &tray)
{
    return tray == QLatin1String("xembed") ? m_desktop->startTrayer() : m_desktop->startStatusNotifierHost();
}

bool TrayMenuTest::startProgram(const QStringList &extraSettings)
{
    const QStringList port{QStringLiteral("WebSocketPort=%1").arg(m_port)};
    m_program.reset(new TrayProgram(*m_desktop));
    m_program->switchLogOn();
    return m_desktop->writeSettings(port + extraSettings) && m_program->start() && m_desktop->waitForIcon();
}

void TrayMenuTest::iconAndMenuShow_data()
{
    QTest::addColumn<QString>("tray");
    QTest::addColumn<int>("language");
    for (const QString &tray : {QStringLiteral("xembed"), QStringLiteral("statusnotifier")}) {
        for (const int language : {1, 2, 3}) {
            const QString row = QStringLiteral("%1-language-%2").arg(tray).arg(language);
            QTest::newRow(qPrintable(row)) << tray << language;
        }
    }
}

void TrayMenuTest::iconAndMenuShow()
{
    QFETCH(QString, tray);
    QFETCH(int, language);
    QVERIFY(startTray(tray));
    QVERIFY(m_desktop->iconArea().isEmpty());
    QVERIFY(startProgram({QStringLiteral("UILangID=%1").arg(language)}));

    const MenuPicture menu = m_desktop->openMenu();
    QVERIFY(m_desktop->keepScreenshot(QStringLiteral("menu-%1-%2.png").arg(tray).arg(language)));
    QCOMPARE(menu.entryRows.size(), 3);
    QCOMPARE(menu.separatorRows.size(), 2);
    QVERIFY(menu.entryRows.at(0) < menu.separatorRows.at(0) && menu.separatorRows.at(0) < menu.entryRows.at(1));
    QVERIFY(menu.entryRows.at(1) < menu.separatorRows.at(1) && menu.separatorRows.at(1) < menu.entryRows.at(2));
    QVERIFY(m_desktop->closeMenu(menu));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void TrayMenuTest::menuDrivesTheService_data()
{
    QTest::addColumn<QString>("tray");
    QTest::newRow("xembed") << QStringLiteral("xembed");
    QTest::newRow("statusnotifier") << QStringLiteral("statusnotifier");
}

void TrayMenuTest::menuDrivesTheService()
{
    QFETCH(QString, tray);
    QVERIFY(startTray(tray));
    QVERIFY(startProgram({}));
    QCOMPARE(TrayProgram::startsOfAService(), 0);

    QVERIFY(m_desktop->chooseMenuEntry(0));
    QVERIFY(TrayProgram::waitForListening(m_port));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("StartWebService=true")), patienceMs);

    QVERIFY(m_desktop->chooseMenuEntry(0));
    QVERIFY(TrayProgram::waitForSilence(m_port));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("StartWebService=false")), patienceMs);

    QVERIFY(m_desktop->chooseMenuEntry(1));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=true")), patienceMs);
    QVERIFY(m_desktop->chooseMenuEntry(1));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=false")), patienceMs);

    QVERIFY(m_desktop->chooseMenuEntry(0));
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QVERIFY(m_desktop->settingsLines().contains(QLatin1String("StartWebService=true")));
}

void TrayMenuTest::hostGetsTheTexts_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QString>("startService");
    QTest::addColumn<QString>("autoLaunch");
    QTest::addColumn<QString>("exitService");
    const auto english = [](const char *row, const char *language) {
        QTest::newRow(row) << QString::fromLatin1(language) << QStringLiteral("MVSignLocalServer")
                           << QStringLiteral("Start Service") << QStringLiteral("Auto Launch at Startup")
                           << QStringLiteral("Exit Service");
    };
    const auto simplified = [](const char *row, const char *language) {
        QTest::newRow(row) << QString::fromLatin1(language) << QStringLiteral("Morvane电子签名板驱动程序")
                           << QStringLiteral("开启服务程序") << QStringLiteral("每次开机时自动启动")
                           << QStringLiteral("离开服务程序");
    };
    QTest::newRow("traditional Chinese") << QStringLiteral("1") << QStringLiteral("Morvane電子簽名板驅動程式")
                                         << QStringLiteral("開啟服務程式") << QStringLiteral("每次開機時自動啟動")
                                         << QStringLiteral("離開服務程式");
    simplified("simplified Chinese", "2");
    simplified("no language set", nullptr);
    english("English", "3");
    english("zero", "0");
    english("negative", "-1");
    english("no number", "zh");
}

void TrayMenuTest::hostGetsTheTexts()
{
    QFETCH(QString, language);
    QFETCH(QString, toolTip);
    QFETCH(QString, startService);
    QFETCH(QString, autoLaunch);
    QFETCH(QString, exitService);
    QVERIFY(m_desktop->startStatusNotifierHost());
    QVERIFY(startProgram(language.isEmpty() ? QStringList() : QStringList{QStringLiteral("UILangID=") + language}));

    const StatusNotifierItem item(m_desktop->busAddress());
    QTRY_COMPARE_WITH_TIMEOUT(item.registeredItems().size(), 1, patienceMs);
    QCOMPARE(item.toolTip(), toolTip);
    const QList<StatusNotifierItem::Entry> menu = item.menu();
    QCOMPARE(menu.size(), 5);
    QVERIFY(!menu.at(0).isSeparator && menu.at(1).isSeparator && !menu.at(2).isSeparator && menu.at(3).isSeparator
            && !menu.at(4).isSeparator);
    QCOMPARE(menu.at(0).label, startService);
    QCOMPARE(menu.at(2).label, autoLaunch);
    QCOMPARE(menu.at(4).label, exitService);
    QCOMPARE(menu.at(0).toggleState, 0);
    QCOMPARE(menu.at(2).toggleState, 0);
    QCOMPARE(menu.at(4).toggleState, -1);
}

void TrayMenuTest::hostSeesTheSavedState_data()
{
    QTest::addColumn<QStringList>("settings");
    QTest::addColumn<bool>("serviceRuns");
    QTest::addColumn<QStringList>("writtenAtExit");
    QTest::newRow("service on") << QStringList{QStringLiteral("StartWebService=true")} << true
                                << QStringList{QStringLiteral("StartWebService=true"),
                                               QStringLiteral("StartWebServiceWithSSL=false")};
    QTest::newRow("service and secure flag")
        << QStringList{QStringLiteral("StartWebService=true"), QStringLiteral("StartWebServiceWithSSL=true")} << true
        << QStringList{QStringLiteral("StartWebService=true"), QStringLiteral("StartWebServiceWithSSL=false")};
    QTest::newRow("secure flag alone") << QStringList{QStringLiteral("StartWebServiceWithSSL=true")} << false
                                       << QStringList{QStringLiteral("StartWebService=false"),
                                                      QStringLiteral("StartWebServiceWithSSL=true")};
    // No autostart entry lies in the home, so what the file claims does not count.
    QTest::newRow("launch claimed without an entry")
        << QStringList{QStringLiteral("AutoLaunch=true")} << false
        << QStringList{QStringLiteral("AutoLaunch=false"), QStringLiteral("StartWebService=false")};
}

void TrayMenuTest::hostSeesTheSavedState()
{
    QFETCH(QStringList, settings);
    QFETCH(bool, serviceRuns);
    QFETCH(QStringList, writtenAtExit);
    QVERIFY(m_desktop->startStatusNotifierHost());
    QVERIFY(startProgram(settings));

    const StatusNotifierItem item(m_desktop->busAddress());
    QTRY_COMPARE_WITH_TIMEOUT(item.menu().size(), 5, patienceMs);
    QCOMPARE(item.menu().at(0).toggleState, serviceRuns ? 1 : 0);
    QCOMPARE(item.menu().at(2).toggleState, 0);
    QVERIFY(!serviceRuns || TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QCOMPARE(TrayProgram::startsOfAService(), serviceRuns ? 1 : 0);
    for (const QString &line : writtenAtExit)
        QVERIFY2(m_desktop->settingsLines().contains(line), qPrintable(line));
}

QTEST_GUILESS_MAIN(TrayMenuTest)

#include "tst_traymenu.moc"
