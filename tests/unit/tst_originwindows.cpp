// When the user is shown what concerns origins: the entry of the list in the menu, the list, and the questions.
#include "service/AccessPolicy.h"
#include "service/OriginDesk.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/ShownWindows.h"
#include "tray/OriginList.h"
#include "tray/OriginQuestion.h"
#include "tray/OriginWindows.h"
#include "tray/TrayTexts.h"

#include <QApplication>
#include <QMenu>
#include <QTest>

namespace {

const int english = 0;

AccessPolicy asking()
{
    AccessPolicy policy;
    policy.unknownOrigins = UnknownOrigins::Ask;
    return policy;
}

} // namespace

class OriginWindowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void entryIsOfferedWhereTheUserIsAsked_data();
    void entryIsOfferedWhereTheUserIsAsked();
    void entryComesAndGoes();
    void entryOpensOneList();
    void questionsAreShownWhileTheServiceAsks();
    void questionsOfAServiceThatAsksNobody();
    void withoutAMenu();
    void menuThatIsGone();

private:
    QStringList entries() const;

    PrivateHome m_home;
    std::unique_ptr<OriginDesk> m_desk;
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<OriginWindows> m_windows;
};

void OriginWindowsTest::init()
{
    m_desk = std::make_unique<OriginDesk>();
    m_menu = std::make_unique<QMenu>();
    m_menu->addAction(QStringLiteral("start"));
    QAction &exit = *m_menu->addAction(QStringLiteral("exit"));
    m_windows = std::make_unique<OriginWindows>(*m_desk);
    m_windows->UseMenu(*m_menu, exit);
}

void OriginWindowsTest::cleanup()
{
    m_windows.reset();
    m_menu.reset();
    m_desk.reset();
    QCOMPARE(QApplication::topLevelWidgets(), QWidgetList());
}

/// The menu's texts; a separator's is empty.
QStringList OriginWindowsTest::entries() const
{
    QStringList texts;
    for (const QAction *action : m_menu->actions())
        texts.append(action->isSeparator() ? QString() : action->text());
    return texts;
}

void OriginWindowsTest::entryIsOfferedWhereTheUserIsAsked_data()
{
    QTest::addColumn<int>("unknown");
    QTest::addColumn<bool>("isOffered");
    QTest::newRow("asked") << int(UnknownOrigins::Ask) << true;
    QTest::newRow("allowed") << int(UnknownOrigins::Allow) << false;
    QTest::newRow("blocked") << int(UnknownOrigins::Block) << false;
}

void OriginWindowsTest::entryIsOfferedWhereTheUserIsAsked()
{
    QFETCH(int, unknown);
    QFETCH(bool, isOffered);
    AccessPolicy policy;
    policy.unknownOrigins = UnknownOrigins(unknown);
    m_windows->OfferList(policy, TrayTextsOf(english));
    const QStringList with{QStringLiteral("start"), QStringLiteral("Web Page Permissions"), QString(),
                           QStringLiteral("exit")};
    QCOMPARE(entries(), isOffered ? with : (QStringList{QStringLiteral("start"), QStringLiteral("exit")}));
}

void OriginWindowsTest::entryComesAndGoes()
{
    m_windows->OfferList(asking(), TrayTextsOf(english));
    m_windows->OfferList(asking(), TrayTextsOf(english));
    QCOMPARE(entries().size(), 4);
    m_windows->StartAsking(AccessPolicy(), TrayTextsOf(english));
    QCOMPARE(entries(), (QStringList{QStringLiteral("start"), QStringLiteral("exit")}));
    m_windows->StartAsking(asking(), TrayTextsOf(english));
    QCOMPARE(entries().size(), 4);
    m_windows->StopAsking();
    QCOMPARE(entries().size(), 4); // answers can be taken back while no service runs
}

void OriginWindowsTest::entryOpensOneList()
{
    m_windows->OfferList(asking(), TrayTextsOf(english));
    for (int i = 0; i < 2; ++i) {
        m_menu->actions().at(1)->trigger();
        QCOMPARE(shownWindows<OriginList>().size(), 1);
        QVERIFY(QTest::qWaitForWindowActive(shownWindows<OriginList>().first(), patienceMs));
    }
}

void OriginWindowsTest::questionsAreShownWhileTheServiceAsks()
{
    QVERIFY(!m_desk->CanAsk());
    m_windows->StartAsking(asking(), TrayTextsOf(english));
    QVERIFY(m_desk->CanAsk());
    Q_EMIT m_desk->asked(QStringLiteral("https://a.example"));
    QCOMPARE(shownWindows<OriginQuestion>().size(), 1);
    m_windows->StopAsking();
    QCOMPARE(shownWindows<OriginQuestion>().size(), 0);
    QVERIFY(!m_desk->CanAsk());
}

void OriginWindowsTest::questionsOfAServiceThatAsksNobody()
{
    m_windows->StartAsking(AccessPolicy(), TrayTextsOf(english));
    QVERIFY(!m_desk->CanAsk());
    Q_EMIT m_desk->asked(QStringLiteral("https://a.example"));
    QCOMPARE(shownWindows<OriginQuestion>().size(), 0);
}

void OriginWindowsTest::withoutAMenu()
{
    OriginWindows windows(*m_desk);
    windows.StartAsking(asking(), TrayTextsOf(english));
    Q_EMIT m_desk->asked(QStringLiteral("https://a.example"));
    QCOMPARE(shownWindows<OriginQuestion>().size(), 1);
}

void OriginWindowsTest::menuThatIsGone()
{
    m_windows->OfferList(asking(), TrayTextsOf(english));
    m_menu.reset();
    m_windows->OfferList(asking(), TrayTextsOf(english));
    m_windows->OfferList(AccessPolicy(), TrayTextsOf(english));
    m_menu = std::make_unique<QMenu>();
    QCOMPARE(entries(), QStringList());
}

QTEST_MAIN(OriginWindowsTest)

#include "tst_originwindows.moc"
