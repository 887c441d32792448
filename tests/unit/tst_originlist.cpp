// The window that lists what was answered about origins, with a real settings file.
#include "service/OriginAnswers.h"
#include "service/OriginDesk.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/WarningTrap.h"
#include "tray/OriginList.h"
#include "tray/TrayTexts.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSet>
#include <QSignalSpy>
#include <QTest>
#include <QTreeWidget>

namespace {

const char fileName[] = "MVSignPadSDK_Origins";

QPushButton *button(const QWidget &window, const char *text)
{
    const QList<QPushButton *> buttons = window.findChildren<QPushButton *>();
    for (QPushButton *candidate : buttons)
        if (candidate->text() == QString::fromUtf8(text))
            return candidate;
    return nullptr;
}

QStringList rows(const OriginList &window)
{
    QStringList texts;
    const QTreeWidget &list = *window.findChild<QTreeWidget *>();
    for (int i = 0; i < list.topLevelItemCount(); ++i)
        texts.append(list.topLevelItem(i)->text(0) + QStringLiteral(": ") + list.topLevelItem(i)->text(1));
    return texts;
}

void choose(const OriginList &window, int row)
{
    QTreeWidget &list = *window.findChild<QTreeWidget *>();
    list.setCurrentItem(list.topLevelItem(row));
}

/// What stands below the list.
QString note(const OriginList &window)
{
    return window.findChildren<QLabel *>().last()->text();
}

} // namespace

class OriginListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void showsWhatWasAnswered();
    void showsThatNothingWasAnswered();
    void blockAndAllow();
    void forget();
    void sharedOriginIsNotAllowed();
    void followsOtherAnswers();
    void followsOtherChanges();
    void fileThatIsNotUnderstood();
    void fileThatCannotBeWritten();
    void longOriginIsNotCut();
    void keyboardAlone();
    void languagesFit_data();
    void languagesFit();

private:
    bool open();

    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
    std::unique_ptr<OriginDesk> m_desk;
    std::unique_ptr<QSignalSpy> m_changes;
    std::unique_ptr<OriginList> m_window;
};

void OriginListTest::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
    QVERIFY(QDir().mkpath(QStringLiteral(MVSIGNPAD_TEST_OUTPUT)));
}

void OriginListTest::init()
{
    m_home.removeConfig();
    m_warnings.reset(new WarningTrap);
    m_desk.reset(new OriginDesk);
    m_changes.reset(new QSignalSpy(m_desk.get(), &OriginDesk::answersChanged));
}

void OriginListTest::cleanup()
{
    m_window.reset();
    m_changes.reset();
    m_desk.reset();
    QCOMPARE(m_warnings->taken(), QStringList());
}

bool OriginListTest::open()
{
    m_window.reset(new OriginList(*m_desk, TrayTextsOf(0).list));
    m_window->show();
    m_window->activateWindow();
    return QTest::qWaitForWindowActive(m_window.get(), patienceMs);
}

void OriginListTest::showsWhatWasAnswered()
{
    QVERIFY(OriginAnswers::Block(QStringLiteral("https://blocked.example")));
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://first.example:8443")));
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://second.example")));
    QVERIFY(OriginAnswers::Block(QStringLiteral("null")));
    QVERIFY(open());
    QCOMPARE(rows(*m_window), (QStringList{QStringLiteral("Always allowed: https://first.example:8443"),
                                           QStringLiteral("Always allowed: https://second.example"),
                                           QStringLiteral("Never allowed: https://blocked.example"),
                                           QStringLiteral("Never allowed: null")}));
    QCOMPARE(note(*m_window), QString());
}

void OriginListTest::showsThatNothingWasAnswered()
{
    QVERIFY(open());
    QCOMPARE(rows(*m_window), QStringList());
    QCOMPARE(note(*m_window), QStringLiteral("No web page has been allowed always or never."));
    for (const char *text : {"&Allow", "&Block", "&Delete"})
        QVERIFY(!button(*m_window, text)->isEnabled());
    QVERIFY(!QFile::exists(OriginAnswers::Path()));
}

void OriginListTest::blockAndAllow()
{
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://a.example")));
    QVERIFY(open());
    QVERIFY(!button(*m_window, "&Allow")->isEnabled());
    QTest::mouseClick(button(*m_window, "&Block"), Qt::LeftButton);
    QCOMPARE(m_changes->size(), 1);
    QCOMPARE(rows(*m_window), QStringList{QStringLiteral("Never allowed: https://a.example")});
    QCOMPARE(OriginAnswers::Read()->Blocked(), QStringList{QStringLiteral("https://a.example")});

    QVERIFY(!button(*m_window, "&Block")->isEnabled());
    QTest::mouseClick(button(*m_window, "&Allow"), Qt::LeftButton);
    QCOMPARE(m_changes->size(), 2);
    QCOMPARE(rows(*m_window), QStringList{QStringLiteral("Always allowed: https://a.example")});
    QCOMPARE(OriginAnswers::Read()->Allowed(), QStringList{QStringLiteral("https://a.example")});
    QCOMPARE(OriginAnswers::Read()->Blocked(), QStringList());
}

void OriginListTest::forget()
{
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://a.example")));
    QVERIFY(OriginAnswers::Block(QStringLiteral("https://b.example")));
    QVERIFY(open());
    choose(*m_window, 1);
    QTest::mouseClick(button(*m_window, "&Delete"), Qt::LeftButton);
    QCOMPARE(m_changes->size(), 1);
    QCOMPARE(rows(*m_window), QStringList{QStringLiteral("Always allowed: https://a.example")});
    QCOMPARE(OriginAnswers::Read()->Blocked(), QStringList());
}

void OriginListTest::sharedOriginIsNotAllowed()
{
    QVERIFY(OriginAnswers::Block(QStringLiteral("null")));
    QVERIFY(open());
    QVERIFY(!button(*m_window, "&Allow")->isEnabled());
    QVERIFY(!button(*m_window, "&Block")->isEnabled());
    QVERIFY(button(*m_window, "&Delete")->isEnabled());
}

void OriginListTest::followsOtherAnswers()
{
    QVERIFY(open());
    Q_EMIT m_desk->answered(QStringLiteral("https://a.example"), OriginAnswer::AllowAlways);
    QCOMPARE(rows(*m_window), QStringList{QStringLiteral("Always allowed: https://a.example")});
    QCOMPARE(note(*m_window), QString());
}

void OriginListTest::followsOtherChanges()
{
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://a.example")));
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://b.example")));
    QVERIFY(open());
    choose(*m_window, 1);
    QVERIFY(OriginAnswers::Forget(QStringLiteral("https://a.example")));
    Q_EMIT m_desk->answersChanged();
    QCOMPARE(rows(*m_window), QStringList{QStringLiteral("Always allowed: https://b.example")});
    QCOMPARE(m_window->findChild<QTreeWidget *>()->currentItem()->text(1), QStringLiteral("https://b.example"));
}

void OriginListTest::fileThatIsNotUnderstood()
{
    m_home.writeConfig(QLatin1String(fileName), "[Origins]\nAllowed=no origin\n");
    QVERIFY(open());
    QCOMPARE(rows(*m_window), QStringList());
    QCOMPARE(note(*m_window),
             QStringLiteral("The file %1 cannot be read or changed.").arg(m_home.configFile(QLatin1String(fileName))));
}

void OriginListTest::fileThatCannotBeWritten()
{
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://a.example")));
    QVERIFY(open());
    m_home.writeConfig(QLatin1String(fileName), "[Origins]\nAllowed=no origin\n");
    QTest::mouseClick(button(*m_window, "&Block"), Qt::LeftButton);
    QCOMPARE(m_changes->size(), 0);
    QCOMPARE(note(*m_window),
             QStringLiteral("The file %1 cannot be read or changed.").arg(m_home.configFile(QLatin1String(fileName))));
}

void OriginListTest::longOriginIsNotCut()
{
    const QString origin = QStringLiteral("https://") + QString(240, QLatin1Char('w')) + QStringLiteral(".example.net");
    QVERIFY(OriginAnswers::Allow(origin));
    QVERIFY(open());
    QTreeWidget &list = *m_window->findChild<QTreeWidget *>();
    const int charsOfTheHost = 252;
    QVERIFY(list.columnWidth(1) > charsOfTheHost * list.fontMetrics().averageCharWidth());
    QVERIFY(list.horizontalScrollBar()->maximum() > 0);
    QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(m_window->frameGeometry()));
}

void OriginListTest::keyboardAlone()
{
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://a.example")));
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://b.example")));
    QVERIFY(open());
    QTest::keyClick(m_window->windowHandle(), Qt::Key_Down);
    QTest::keyClick(m_window->windowHandle(), Qt::Key_D, Qt::AltModifier);
    QTRY_COMPARE_WITH_TIMEOUT(rows(*m_window), QStringList{QStringLiteral("Always allowed: https://a.example")},
                              patienceMs);
    QTest::keyClick(m_window->windowHandle(), Qt::Key_Escape);
    QVERIFY(!m_window->isVisible());
}

void OriginListTest::languagesFit_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("explanation");
    QTest::addColumn<QStringList>("buttons");
    QTest::newRow("traditional Chinese") << 1 << QStringLiteral("網頁存取權限")
                                         << QStringLiteral("這些網頁使用簽名板時不再詢問：")
                                         << QStringList{QStringLiteral("允許(&A)"), QStringLiteral("禁止(&B)"),
                                                        QStringLiteral("刪除(&D)"), QStringLiteral("關閉(&C)")};
    QTest::newRow("simplified Chinese") << 2 << QStringLiteral("网页访问权限")
                                        << QStringLiteral("这些网页使用签名板时不再询问：")
                                        << QStringList{QStringLiteral("允许(&A)"), QStringLiteral("禁止(&B)"),
                                                       QStringLiteral("删除(&D)"), QStringLiteral("关闭(&C)")};
    QTest::newRow("English") << 3 << QStringLiteral("Web Page Permissions")
                             << QStringLiteral("You are not asked any more when these web pages use the signature pad:")
                             << QStringList{QStringLiteral("&Allow"), QStringLiteral("&Block"),
                                            QStringLiteral("&Delete"), QStringLiteral("&Close")};
}

void OriginListTest::languagesFit()
{
    QFETCH(int, language);
    QVERIFY(OriginAnswers::Allow(QStringLiteral("https://sign.example.org")));
    QVERIFY(OriginAnswers::Block(QStringLiteral("https://evil.example.net:8443")));
    OriginList window(*m_desk, TrayTextsOf(language).list);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window, patienceMs));
    QVERIFY(window.grab().save(QStringLiteral(MVSIGNPAD_TEST_OUTPUT "/origins-%1.png").arg(language)));
    QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(window.frameGeometry()));
    const QTreeWidget &list = *window.findChild<QTreeWidget *>();
    QCOMPARE(list.horizontalScrollBar()->maximum(), 0);
    QTEST(window.windowTitle(), "title");
    QTEST(window.findChild<QLabel *>()->text(), "explanation");
    QStringList buttons;
    for (const QPushButton *each : window.findChildren<QPushButton *>())
        buttons.append(each->text());
    QTEST(buttons, "buttons");
    QSet<QChar> mnemonics;
    for (const QPushButton *each : window.findChildren<QPushButton *>()) {
        QVERIFY2(each->minimumSizeHint().width() <= each->width(), qPrintable(each->text()));
        mnemonics.insert(each->text().at(each->text().indexOf(QLatin1Char('&')) + 1));
    }
    QCOMPARE(mnemonics.size(), 4);
}

QTEST_MAIN(OriginListTest)

#include "tst_originlist.moc"
