// The program asks its user about pages: the real windows, keys and clicks, and pages that wait for the answer.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/SignClient.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QWebSocketProtocol>

#include <memory>
#include <vector>

namespace {

const auto page = QStringLiteral("https://sign.example.org");
const auto questionTitle = QStringLiteral("Signature Pad");
const auto listTitle = QStringLiteral("Web Page Permissions");

const char size0[] = R"({"API":"GetSize","Result":"0"})";

/// What counts as no answer, and some time for the machine.
const int untilSeeingMs = 1000;

} // namespace

class AskUserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void clicksAnswer_data();
    void clicksAnswer();
    void keysAnswer_data();
    void keysAnswer();
    void thisTimeLastsForThisTime();
    void alwaysOutlivesTheProgram();
    void neverOutlivesTheProgram();
    void twiceNotNowIsEnough();
    void tenPagesOneAfterTheOther();
    void pageThatGoesClosesItsWindow();
    void stoppingTheServiceClosesTheWindow();
    void exitClosesTheWindow();
    void listIsInTheMenu();
    void listFollowsTheAnswers();
    void nothingWithoutTheSetting_data();
    void nothingWithoutTheSetting();
    void languages_data();
    void languages();

private:
    bool start(const QByteArray &access = "UnknownOrigins=ask\n", int language = 3);
    bool startAgain();
    bool waitForQuestion() const;
    bool waitForNoQuestion(int timeoutMs = patienceMs) const;
    bool answer(const QString &keys) const;
    bool isServed(SignClient &client) const;
    bool isTurnedAway(SignClient &client) const;
    QString answersFile() const { return settingsFile("Origins"); }
    QString settingsFile(const char *name) const;
    QStringList answers() const;

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    quint16 m_port = 0;
};

void AskUserTest::init()
{
    m_port = freePort();
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
}

void AskUserTest::cleanup()
{
    if (m_program)
        QCOMPARE(m_program->output(), QByteArray());
    m_program.reset();
    m_desktop.reset();
}

QString AskUserTest::settingsFile(const char *name) const
{
    return m_desktop->home() + QStringLiteral("/.config/mvsignpadsdk/MVSignPadSDK_%1.conf").arg(QLatin1String(name));
}

/// The lines of the file that keeps the answers; empty when there is none.
QStringList AskUserTest::answers() const
{
    QFile file(answersFile());
    QStringList lines;
    if (file.open(QIODevice::ReadOnly))
        lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeAll(QString());
    return lines;
}

bool AskUserTest::start(const QByteArray &access, int language)
{
    QDir().mkpath(QFileInfo(settingsFile("Access")).path());
    QFile file(settingsFile("Access"));
    return file.open(QIODevice::WriteOnly) && file.write("[Access]\n" + access) > 0 && file.flush()
           && m_desktop->writeSettings({QStringLiteral("StartWebService=true"),
                                        QStringLiteral("UILangID=%1").arg(language),
                                        QStringLiteral("WebSocketPort=%1").arg(m_port)})
           && startAgain();
}

bool AskUserTest::startAgain()
{
    m_program.reset(new TrayProgram(*m_desktop));
    return m_program->start() && m_desktop->waitForIcon() && TrayProgram::waitForListening(m_port);
}

bool AskUserTest::waitForQuestion() const
{
    return QTest::qWaitFor([this] { return m_desktop->visibleWindows(questionTitle).size() == 1; }, patienceMs);
}

bool AskUserTest::waitForNoQuestion(int timeoutMs) const
{
    return QTest::qWaitFor([this] { return m_desktop->visibleWindows(questionTitle).isEmpty(); }, timeoutMs);
}

/// Presses the keys once the question takes answers; true when its window has gone then.
bool AskUserTest::answer(const QString &keys) const
{
    if (!waitForQuestion())
        return false;
    const qint64 window = m_desktop->visibleWindows(questionTitle).first();
    const auto isGone = [&] { return !m_desktop->visibleWindows(questionTitle).contains(window); };
    for (int attempt = 0; attempt < patienceMs / untilSeeingMs; ++attempt) { // what came too early does not count
        QTest::qWait(untilSeeingMs);
        m_desktop->press(keys);
        if (QTest::qWaitFor(isGone, untilSeeingMs))
            return true;
    }
    return false;
}

bool AskUserTest::isServed(SignClient &client) const
{
    return client.waitForMessages(1) && client.messages() == QStringList(QLatin1String(size0));
}

bool AskUserTest::isTurnedAway(SignClient &client) const
{
    return client.waitForDisconnect() && client.messages().isEmpty()
           && client.socket().closeCode() == QWebSocketProtocol::CloseCodePolicyViolated;
}

void AskUserTest::clicksAnswer_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("served");
    QTest::newRow("this time") << 0 << true;
    QTest::newRow("always") << 1 << true;
    QTest::newRow("never") << 2 << false;
    QTest::newRow("not now") << 3 << false;
}

void AskUserTest::clicksAnswer()
{
    QFETCH(int, button);
    QFETCH(bool, served);
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    client.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(waitForQuestion());
    QTest::qWait(untilSeeingMs);
    QCOMPARE(client.messages(), QStringList());

    SignClient program; // others are served meanwhile
    QVERIFY(program.connectTo(m_port));
    QCOMPARE(program.command(QStringLiteral("GetSize")), QLatin1String(size0));

    const QRect window = m_desktop->windowArea(m_desktop->visibleWindows(questionTitle).first());
    m_desktop->click(QPoint(window.left() + window.width() * (2 * button + 1) / 8, window.bottom() - 22));
    QVERIFY(waitForNoQuestion());
    QVERIFY(served ? isServed(client) : isTurnedAway(client));
}

void AskUserTest::keysAnswer_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<bool>("served");
    QTest::addColumn<QStringList>("kept");
    QTest::newRow("Alt+A") << QStringLiteral("alt+a") << true << QStringList();
    QTest::newRow("Alt+L") << QStringLiteral("alt+l") << true
                           << QStringList{QStringLiteral("[Origins]"), QStringLiteral("Allowed=%1").arg(page)};
    QTest::newRow("Alt+V") << QStringLiteral("alt+v") << false
                           << QStringList{QStringLiteral("[Origins]"), QStringLiteral("Blocked=%1").arg(page)};
    QTest::newRow("Alt+N") << QStringLiteral("alt+n") << false << QStringList();
    QTest::newRow("Enter") << QStringLiteral("Return") << false << QStringList();
    QTest::newRow("Space") << QStringLiteral("space") << false << QStringList();
    QTest::newRow("Escape") << QStringLiteral("Escape") << false << QStringList();
}

void AskUserTest::keysAnswer()
{
    QFETCH(QString, keys);
    QFETCH(bool, served);
    QFETCH(QStringList, kept);
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    client.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(answer(keys));
    QVERIFY(served ? isServed(client) : isTurnedAway(client));
    QCOMPARE(answers(), kept);
}

void AskUserTest::thisTimeLastsForThisTime()
{
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    client.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(answer(QStringLiteral("alt+a")));
    QVERIFY(isServed(client));
    SignClient second;
    QVERIFY(second.connectFrom(page, m_port));
    QCOMPARE(second.command(QStringLiteral("GetSize")), QLatin1String(size0));
    QCOMPARE(m_desktop->visibleWindows(questionTitle).size(), 0);

    QVERIFY(startAgain());
    SignClient next;
    QVERIFY(next.connectFrom(page, m_port));
    QVERIFY(waitForQuestion());
}

void AskUserTest::alwaysOutlivesTheProgram()
{
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    QVERIFY(answer(QStringLiteral("alt+l")));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QLatin1String(size0));

    QVERIFY(startAgain());
    SignClient next;
    QVERIFY(next.connectFrom(page, m_port));
    QCOMPARE(next.command(QStringLiteral("GetSize")), QLatin1String(size0));
    QCOMPARE(m_desktop->visibleWindows(questionTitle).size(), 0);
}

void AskUserTest::neverOutlivesTheProgram()
{
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    QVERIFY(answer(QStringLiteral("alt+v")));
    QVERIFY(isTurnedAway(client));
    QVERIFY(!SignClient().connectFrom(page, m_port));

    QVERIFY(startAgain());
    QVERIFY(!SignClient().connectFrom(page, m_port));
    QCOMPARE(m_desktop->visibleWindows(questionTitle).size(), 0);
}

void AskUserTest::twiceNotNowIsEnough()
{
    QVERIFY(start());
    for (int time = 0; time < 2; ++time) {
        SignClient client;
        QVERIFY(client.connectFrom(page, m_port));
        QVERIFY(answer(QStringLiteral("Escape")));
        QVERIFY(isTurnedAway(client));
    }
    QVERIFY(!SignClient().connectFrom(page, m_port));
    QCOMPARE(m_desktop->visibleWindows(questionTitle).size(), 0);

    QVERIFY(startAgain());
    SignClient next;
    QVERIFY(next.connectFrom(page, m_port));
    QVERIFY(waitForQuestion());
}

void AskUserTest::tenPagesOneAfterTheOther()
{
    QVERIFY(start());
    std::vector<std::unique_ptr<SignClient>> pages;
    for (int i = 0; i < 10; ++i) {
        pages.push_back(std::make_unique<SignClient>());
        QVERIFY(pages.back()->connectFrom(QStringLiteral("https://page%1.example.org").arg(i), m_port));
        pages.back()->sendCommand(QStringLiteral("GetSize"));
    }
    for (std::size_t i = 0; i < pages.size(); ++i) {
        QVERIFY(waitForQuestion());
        const bool allowed = i % 2 == 0;
        QVERIFY(answer(allowed ? QStringLiteral("alt+a") : QStringLiteral("alt+n")));
        QVERIFY(allowed ? isServed(*pages[i]) : isTurnedAway(*pages[i]));
        for (std::size_t later = i + 1; later < pages.size(); ++later)
            QVERIFY(pages[later]->isConnected() && pages[later]->messages().isEmpty());
    }
    QVERIFY(waitForNoQuestion());
}

void AskUserTest::pageThatGoesClosesItsWindow()
{
    QVERIFY(start());
    SignClient first;
    SignClient second;
    QVERIFY(first.connectFrom(page, m_port));
    QVERIFY(waitForQuestion());
    QVERIFY(second.connectFrom(page, m_port));
    QVERIFY(first.close());
    QVERIFY(answer(QStringLiteral("alt+a"))); // for the other tab of the page, which waits still
    second.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(isServed(second));

    SignClient last;
    QVERIFY(last.connectFrom(QStringLiteral("https://other.example.org"), m_port));
    QVERIFY(waitForQuestion());
    last.abort();
    QVERIFY(waitForNoQuestion());
}

void AskUserTest::stoppingTheServiceClosesTheWindow()
{
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    QVERIFY(waitForQuestion());
    QVERIFY(m_desktop->chooseMenuEntry(0));
    QVERIFY(waitForNoQuestion());
    QVERIFY(client.waitForDisconnect());
    QVERIFY(TrayProgram::waitForSilence(m_port));
    QVERIFY(m_program->isRunning());

    QVERIFY(m_desktop->chooseMenuEntry(0));
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient next;
    QVERIFY(next.connectFrom(page, m_port));
    next.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(answer(QStringLiteral("alt+a")));
    QVERIFY(isServed(next));
}

void AskUserTest::exitClosesTheWindow()
{
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    QVERIFY(waitForQuestion());
    QVERIFY(m_desktop->chooseMenuEntry(3));
    QVERIFY(m_program->waitForEnd());
    QCOMPARE(m_program->exitStatus(), 0);
    QVERIFY(client.waitForDisconnect());
}

void AskUserTest::listIsInTheMenu()
{
    QVERIFY(start());
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    QVERIFY(answer(QStringLiteral("alt+l")));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QLatin1String(size0));

    const MenuPicture menu = m_desktop->openMenu();
    QVERIFY(m_desktop->keepScreenshot(QStringLiteral("menu-origins.png")));
    QCOMPARE(menu.entryRows.size(), 4);
    QCOMPARE(menu.separatorRows.size(), 3);
    QVERIFY(m_desktop->closeMenu(menu));
    QVERIFY(m_desktop->chooseMenuEntry(2));
    QTRY_COMPARE_WITH_TIMEOUT(m_desktop->visibleWindows(listTitle).size(), 1, patienceMs);
    m_desktop->press(QStringLiteral("alt+b"));
    QVERIFY(client.waitForDisconnect()); // what is blocked ends at once
    QCOMPARE(answers(), (QStringList{QStringLiteral("[Origins]"), QStringLiteral("Blocked=%1").arg(page)}));
    m_desktop->press(QStringLiteral("alt+d"));
    QTRY_COMPARE_WITH_TIMEOUT(answers(), QStringList(), patienceMs);
    m_desktop->press(QStringLiteral("Escape"));
    QTRY_COMPARE_WITH_TIMEOUT(m_desktop->visibleWindows(listTitle).size(), 0, patienceMs);
    QVERIFY(m_program->isRunning());
    SignClient next; // forgotten: asked about again
    QVERIFY(next.connectFrom(page, m_port));
    QVERIFY(waitForQuestion());
}

void AskUserTest::listFollowsTheAnswers()
{
    QVERIFY(start());
    QVERIFY(m_desktop->chooseMenuEntry(2));
    QTRY_COMPARE_WITH_TIMEOUT(m_desktop->visibleWindows(listTitle).size(), 1, patienceMs);
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    QVERIFY(answer(QStringLiteral("alt+l")));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QLatin1String(size0));
    const qint64 list = m_desktop->visibleWindows(listTitle).first();
    m_desktop->click(m_desktop->windowArea(list).center());
    m_desktop->press(QStringLiteral("alt+b"));
    QVERIFY(client.waitForDisconnect());
}

void AskUserTest::nothingWithoutTheSetting_data()
{
    QTest::addColumn<QByteArray>("access");
    QTest::addColumn<bool>("served");
    QTest::newRow("none") << QByteArray("\n") << true;
    QTest::newRow("allow") << QByteArray("UnknownOrigins=allow\n") << true;
    QTest::newRow("block") << QByteArray("UnknownOrigins=block\n") << false;
}

void AskUserTest::nothingWithoutTheSetting()
{
    QFETCH(QByteArray, access);
    QFETCH(bool, served);
    QVERIFY(start(access));
    SignClient client;
    QCOMPARE(client.connectFrom(page, m_port), served);
    if (served)
        QCOMPARE(client.command(QStringLiteral("GetSize")), QLatin1String(size0));
    const MenuPicture menu = m_desktop->openMenu();
    QCOMPARE(menu.entryRows.size(), 3);
    QCOMPARE(menu.separatorRows.size(), 2);
    QVERIFY(m_desktop->closeMenu(menu));
    QCOMPARE(m_desktop->visibleWindows(questionTitle).size(), 0);
    QVERIFY(!QFile::exists(answersFile()));
}

void AskUserTest::languages_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("title");
    QTest::newRow("traditional Chinese") << 1 << QStringLiteral("簽名板");
    QTest::newRow("simplified Chinese") << 2 << QStringLiteral("签名板");
    QTest::newRow("English") << 3 << questionTitle;
}

void AskUserTest::languages()
{
    QFETCH(int, language);
    QFETCH(QString, title);
    QVERIFY(start("UnknownOrigins=ask\nSaveFolders=/tmp\n", language));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    QTRY_COMPARE_WITH_TIMEOUT(m_desktop->visibleWindows(title).size(), 1, patienceMs);
    QTest::qWait(untilSeeingMs);
    QVERIFY(m_desktop->keepScreenshot(QStringLiteral("question-on-desktop-%1.png").arg(language)));
    QVERIFY(QRect(0, 0, 800, 600).contains(m_desktop->windowArea(m_desktop->visibleWindows(title).first())));
}

QTEST_GUILESS_MAIN(AskUserTest)

#include "tst_askuser.moc"
