// The service that has the user asked about pages, with clients that come as pages do. The test answers in the place
// of the window.
#include "service/OriginAnswers.h"
#include "service/OriginDesk.h"
#include "service/PushCallbacks.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RawClient.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QNetworkRequest>
#include <QProcess>
#include <QTest>

#include <memory>
#include <vector>

namespace {

const auto page = QStringLiteral("https://page.example");
const auto other = QStringLiteral("https://other.example");

const char size0[] = R"({"API":"GetSize","Result":"0"})";
const char keyPush[] = R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"1"})";

const char accepted[] = "HTTP/1.1 101 Switching Protocols";
const char refused[] = "HTTP/1.1 403 Access Forbidden";

QByteArray header(const QByteArray &origin)
{
    return "Origin: " + origin + "\r\n";
}

} // namespace

class AskOriginTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void waitsForTheAnswer();
    void requestsBehindTheHandshakeWait();
    void turnedAway_data();
    void turnedAway();
    void turnedAwayWithManyRequests();
    void alwaysIsKept();
    void neverIsKeptAndEndsOthers();
    void oneQuestionForSeveralPages();
    void goingAwayWithdraws_data();
    void goingAwayWithdraws();
    void endOfTheServiceWithdraws();
    void blockedWhileItIsOpen();
    void blockedOrAllowedWhileItWaits_data();
    void blockedOrAllowedWhileItWaits();
    void fileThatIsNotUnderstoodChangesNothing();
    void silencedAlsoForTheNextService();
    void programsAreServedMeanwhile();
    void programsAreRefusedWhereAnOriginIsRequired();
    void nameThatLeadsToThisMachine();
    void onlyOriginsAreShown_data();
    void onlyOriginsAreShown();
    void thousandConnectionsOfOnePage();
    void thousandPages();
    void blockCountsWhereNothingIsConfigured();

private:
    bool start(std::optional<UnknownOrigins> unknown, bool isOriginRequired = false);
    /// Answers what is asked next.
    void answer(OriginAnswer answer) { Q_EMIT m_desk->answered(m_asked.constLast(), answer); }
    /// Waits for the question about the page, which waits already.
    bool isAsked(int times = 1)
    {
        return QTest::qWaitFor([&] { return m_asked.size() >= times; }, patienceMs) && m_asked.size() == times;
    }
    /// What has been done to the service is done, and what it told has been heard.
    bool settle()
    {
        SignClient client;
        return client.connectTo(m_service->port()) && client.command(QStringLiteral("GetSize")) == QLatin1String(size0);
    }
    QByteArray request() const
    {
        return clientFrame("ws://localhost:" + QByteArray::number(m_service->port()) + "/MVSignSDK/GetSize");
    }

    std::unique_ptr<WarningTrap> m_warnings;
    PrivateHome m_home;
    std::unique_ptr<OriginDesk> m_desk;
    std::unique_ptr<RunningService> m_service;
    QStringList m_asked;
    QStringList m_withdrawn;
    int m_allWithdrawn = 0;
};

void AskOriginTest::init()
{
    m_home.removeConfig();
    m_warnings = std::make_unique<WarningTrap>();
    m_desk = std::make_unique<OriginDesk>();
    m_asked.clear();
    m_withdrawn.clear();
    m_allWithdrawn = 0;
    connect(m_desk.get(), &OriginDesk::asked, this, [this](const QString &origin) { m_asked += origin; });
    connect(m_desk.get(), &OriginDesk::withdrawn, this, [this](const QString &origin) { m_withdrawn += origin; });
    connect(m_desk.get(), &OriginDesk::allWithdrawn, this, [this] { ++m_allWithdrawn; });
}

void AskOriginTest::cleanup()
{
    m_service.reset();
    m_desk.reset();
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

bool AskOriginTest::start(std::optional<UnknownOrigins> unknown, bool isOriginRequired)
{
    AccessPolicy policy;
    policy.unknownOrigins = unknown;
    policy.bRequireOrigin = isOriginRequired;
    policy.originAnswers = OriginAnswers::Read().value_or(OriginAnswers());
    m_service = std::make_unique<RunningService>(freePort(), policy, m_desk.get());
    return m_service->waitUntilListening();
}

void AskOriginTest::waitsForTheAnswer()
{
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_service->port()));
    QVERIFY(isAsked());
    QCOMPARE(m_asked, QStringList(page));
    client.sendCommand(QStringLiteral("GetSize"));
    SignClient program;
    QVERIFY(program.connectTo(m_service->port()));
    QCOMPARE(program.command(QStringLiteral("EnableRealtimeSigningNotification?type=1")),
             QStringLiteral(R"({"API":"EnableRealtimeSigningNotification","Result":"0"})"));
    program.forget();
    WebSocketServiceSignPadEventCallback(1);
    QVERIFY(program.waitForMessages(1));
    QCOMPARE(program.messages(), QStringList(QString::fromLatin1(keyPush)));
    QVERIFY(settle());
    QCOMPARE(client.messages(), QStringList());

    answer(OriginAnswer::AllowThisTime);
    QVERIFY(client.waitForMessages(1));
    WebSocketServiceSignPadEventCallback(1);
    QVERIFY(client.waitForMessages(2));
    QCOMPARE(client.messages(), QStringList({QString::fromLatin1(size0), QString::fromLatin1(keyPush)}));
    QVERIFY(m_withdrawn.isEmpty());
    QVERIFY(!QFile::exists(OriginAnswers::Path()));
}

void AskOriginTest::requestsBehindTheHandshakeWait()
{
    QVERIFY(start(UnknownOrigins::Ask));
    RawClient client;
    QVERIFY(client.connectTo(m_service->port()));
    client.send("GET / HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n"
                + header("null") + "\r\n" + request() + request().left(20));
    QVERIFY(isAsked());
    QVERIFY(client.receives(accepted));
    while (!client.receive(1).isEmpty() && client.socket().bytesAvailable() > 0) {
    }
    client.send(request().mid(20));
    QVERIFY(settle());
    answer(OriginAnswer::AllowThisTime);
    QVERIFY(client.receives(serverFrame(size0) + serverFrame(size0)));
}

void AskOriginTest::turnedAway_data()
{
    QTest::addColumn<OriginAnswer>("answer");
    QTest::newRow("not now") << OriginAnswer::NotNow;
    QTest::newRow("never") << OriginAnswer::Never;
}

void AskOriginTest::turnedAway()
{
    QFETCH(OriginAnswer, answer);
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_service->port()));
    QVERIFY(isAsked());
    this->answer(answer);
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(client.socket().closeCode(), QWebSocketProtocol::CloseCodePolicyViolated);
    QCOMPARE(client.messages(), QStringList());
}

void AskOriginTest::turnedAwayWithManyRequests()
{
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_service->port()));
    QVERIFY(isAsked());
    for (int i = 0; i < 1000; ++i)
        client.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(settle());
    answer(OriginAnswer::NotNow);
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(client.socket().closeCode(), QWebSocketProtocol::CloseCodePolicyViolated);
    QCOMPARE(client.messages(), QStringList());
}

void AskOriginTest::alwaysIsKept()
{
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_service->port()));
    QVERIFY(isAsked());
    answer(OriginAnswer::AllowAlways);
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    QCOMPARE(OriginAnswers::Read()->Allowed(), QStringList(page));

    QVERIFY(start(UnknownOrigins::Ask));
    SignClient next;
    QVERIFY(next.connectFrom(page, m_service->port()));
    QCOMPARE(next.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    QCOMPARE(m_asked.size(), 1);
}

void AskOriginTest::neverIsKeptAndEndsOthers()
{
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient open;
    QVERIFY(open.connectFrom(page, m_service->port()));
    QVERIFY(isAsked());
    answer(OriginAnswer::AllowAlways);
    QCOMPARE(open.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    QVERIFY(OriginAnswers::Forget(page));
    Q_EMIT m_desk->answersChanged();
    QVERIFY(settle());
    SignClient waiting;
    QVERIFY(waiting.connectFrom(page, m_service->port()));
    QVERIFY(isAsked(2));
    answer(OriginAnswer::Never);
    for (SignClient *client : {&open, &waiting}) {
        QVERIFY(client->waitForDisconnect());
        QCOMPARE(client->socket().closeCode(), QWebSocketProtocol::CloseCodePolicyViolated);
    }
    QCOMPARE(OriginAnswers::Read()->Blocked(), QStringList(page));
    QVERIFY(!SignClient().connectFrom(page, m_service->port()));
    QCOMPARE(m_asked.size(), 2);
}

void AskOriginTest::oneQuestionForSeveralPages()
{
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient first;
    SignClient second;
    SignClient stranger;
    QVERIFY(first.connectFrom(page, m_service->port()));
    QVERIFY(isAsked());
    QVERIFY(second.connectFrom(page, m_service->port()));
    QVERIFY(stranger.connectFrom(other, m_service->port()));
    QVERIFY(isAsked(2));
    QCOMPARE(m_asked, QStringList({page, other}));
    Q_EMIT m_desk->answered(page, OriginAnswer::AllowThisTime);
    QCOMPARE(second.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    QCOMPARE(first.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    stranger.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(settle());
    QCOMPARE(stranger.messages(), QStringList());
    SignClient third; // the time lasts
    QVERIFY(third.connectFrom(page, m_service->port()));
    QCOMPARE(third.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    QCOMPARE(m_asked.size(), 2);
}

void AskOriginTest::goingAwayWithdraws_data()
{
    QTest::addColumn<bool>("hasSent");
    QTest::addColumn<bool>("isAborted");
    QTest::newRow("at once") << false << true;
    QTest::newRow("at once, with requests") << true << true;
    QTest::newRow("end of sending") << false << false;
    QTest::newRow("end of sending, with requests") << true << false;
}

void AskOriginTest::goingAwayWithdraws()
{
    QFETCH(bool, hasSent);
    QFETCH(bool, isAborted);
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient stays;
    QVERIFY(stays.connectFrom(other, m_service->port()));
    RawClient client;
    QVERIFY(client.connectTo(m_service->port()));
    QCOMPARE(client.handshake(header(page.toLatin1())), QByteArray(accepted));
    QVERIFY(isAsked(2));
    if (hasSent)
        client.send(request().repeated(100));
    if (isAborted)
        client.abort();
    else
        client.finishSending();
    QTRY_COMPARE_WITH_TIMEOUT(m_withdrawn, QStringList(page), patienceMs);
    Q_EMIT m_desk->answered(other, OriginAnswer::AllowThisTime);
    QCOMPARE(stays.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
}

void AskOriginTest::endOfTheServiceWithdraws()
{
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_service->port()));
    client.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(isAsked());
    m_service->stop();
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(m_allWithdrawn, 1);
    answer(OriginAnswer::AllowThisTime); // too late, and harmless
    QCOMPARE(client.messages(), QStringList());
}

void AskOriginTest::blockedWhileItIsOpen()
{
    QVERIFY(start(UnknownOrigins::Allow));
    SignClient client;
    SignClient stays;
    QVERIFY(client.connectFrom(page, m_service->port()));
    QVERIFY(stays.connectFrom(other, m_service->port()));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    QVERIFY(OriginAnswers::Block(page));
    Q_EMIT m_desk->answersChanged();
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(client.socket().closeCode(), QWebSocketProtocol::CloseCodePolicyViolated);
    QCOMPARE(stays.command(QStringLiteral("GetSize")), QString::fromLatin1(size0));
    QVERIFY(!SignClient().connectFrom(page, m_service->port()));
}

void AskOriginTest::blockedOrAllowedWhileItWaits_data()
{
    QTest::addColumn<bool>("isAllowed");
    QTest::newRow("blocked") << false;
    QTest::newRow("allowed") << true;
}

void AskOriginTest::blockedOrAllowedWhileItWaits()
{
    QFETCH(bool, isAllowed);
    QVERIFY(start(UnknownOrigins::Ask));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_service->port()));
    client.sendCommand(QStringLiteral("GetSize"));
    QVERIFY(isAsked());
    QVERIFY(isAllowed ? OriginAnswers::Allow(page) : OriginAnswers::Block(page));
    Q_EMIT m_desk->answersChanged();
    if (isAllowed)
        QVERIFY(client.waitForMessages(1));
    else
        QVERIFY(client.waitForDisconnect());
    QTRY_COMPARE_WITH_TIMEOUT(m_withdrawn, QStringList(page), patienceMs);
}

void AskOriginTest::fileThatIsNotUnderstoodChangesNothing()
{
    QVERIFY(OriginAnswers::Block(page));
    QVERIFY(start(UnknownOrigins::Allow));
    m_home.writeConfig(QStringLiteral("MVSignPadSDK_Origins"), "[Origins]\nBlocked=*\n");
    Q_EMIT m_desk->answersChanged();
    QVERIFY(settle());
    QVERIFY(!SignClient().connectFrom(page, m_service->port()));
    QVERIFY(SignClient().connectFrom(other, m_service->port()));
}

void AskOriginTest::silencedAlsoForTheNextService()
{
    for (int i = 1; i <= 2; ++i) {
        QVERIFY(start(UnknownOrigins::Ask));
        SignClient client;
        QVERIFY(client.connectFrom(page, m_service->port()));
        QVERIFY(isAsked(i));
        answer(OriginAnswer::NotNow);
        QVERIFY(client.waitForDisconnect());
    }
    QVERIFY(start(UnknownOrigins::Ask));
    QVERIFY(!SignClient().connectFrom(page, m_service->port()));
    QCOMPARE(m_asked.size(), 2);
}

void AskOriginTest::programsAreServedMeanwhile()
{
    QVERIFY(start(UnknownOrigins::Ask));
    QVERIFY(settle());
    QCOMPARE(m_asked, QStringList());
}

void AskOriginTest::programsAreRefusedWhereAnOriginIsRequired()
{
    QVERIFY(start(UnknownOrigins::Ask, true));
    RawClient program;
    QVERIFY(program.connectTo(m_service->port()));
    QCOMPARE(program.handshake(), QByteArray(refused));
    RawClient nameless;
    QVERIFY(nameless.connectTo(m_service->port()));
    QCOMPARE(nameless.handshake(header("")), QByteArray(refused));
    SignClient client;
    QVERIFY(client.connectFrom(QStringLiteral("null"), m_service->port()));
    QVERIFY(isAsked());
    QCOMPARE(m_asked, QStringList(QStringLiteral("null")));
}

/// A page whose own name is made to lead here, so that browsers take the service for the page's own server.
void AskOriginTest::nameThatLeadsToThisMachine()
{
    QFile hosts(m_home.path(QStringLiteral("hosts")));
    QVERIFY(hosts.open(QIODevice::WriteOnly));
    hosts.write("127.0.0.1 rebound.example\n");
    hosts.close();
    QCOMPARE(QProcess::execute(QStringLiteral("mount"),
                               {QStringLiteral("--bind"), hosts.fileName(), QStringLiteral("/etc/hosts")}),
             0);
    QVERIFY(start(UnknownOrigins::Ask));
    const QString site = QStringLiteral("rebound.example:%1").arg(m_service->port());
    QNetworkRequest request(QUrl(QStringLiteral("ws://") + site));
    request.setRawHeader("Origin", "http://" + site.toLatin1());
    SignClient client;
    client.socket().open(request);
    QTRY_VERIFY_WITH_TIMEOUT(client.isConnected(), patienceMs);
    client.send(QStringLiteral("ws://localhost:%1/MVSignSDK/GetSize").arg(m_service->port()));
    QVERIFY(isAsked());
    QCOMPARE(m_asked, QStringList(QStringLiteral("http://") + site));
    answer(OriginAnswer::NotNow);
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(client.messages(), QStringList());
    QCOMPARE(QProcess::execute(QStringLiteral("umount"), {QStringLiteral("/etc/hosts")}), 0);
}

void AskOriginTest::onlyOriginsAreShown_data()
{
    QTest::addColumn<QByteArray>("origin");
    QTest::newRow("a path") << QByteArray("https://page.example/");
    QTest::newRow("user information") << QByteArray("https://bank.example@evil.example");
    QTest::newRow("a blank") << QByteArray("https://bank.example evil.example");
    QTest::newRow("a folded line") << QByteArray("https://bank.example\r\n evil.example");
    QTest::newRow("capitals") << QByteArray("https://BANK.example");
    QTest::newRow("UTF-8") << QByteArray("https://b\303\244nk.example");
    QTest::newRow("Latin-1") << QByteArray("https://b\344nk.example");
    QTest::newRow("text from right to left") << QByteArray("https://bank.example\342\200\256evil");
    QTest::newRow("a zero") << QByteArray("https://bank.example\0evil", 24);
    QTest::newRow("too long") << "https://" + QByteArray(293, 'a');
    QTest::newRow("no scheme") << QByteArray("bank.example");
}

void AskOriginTest::onlyOriginsAreShown()
{
    QFETCH(QByteArray, origin);
    QVERIFY(start(UnknownOrigins::Ask));
    RawClient client;
    QVERIFY(client.connectTo(m_service->port()));
    QCOMPARE(client.handshake(header(origin)), QByteArray(refused));
    QVERIFY(settle());
    QCOMPARE(m_asked, QStringList());
}

void AskOriginTest::thousandConnectionsOfOnePage()
{
    QVERIFY(start(UnknownOrigins::Ask));
    std::vector<std::unique_ptr<RawClient>> waiting;
    for (int i = 0; i < 1000; ++i) {
        auto client = std::make_unique<RawClient>();
        QVERIFY(client->connectTo(m_service->port()));
        if (client->handshake(header(page.toLatin1())) == accepted)
            waiting.push_back(std::move(client));
    }
    QCOMPARE(waiting.size(), size_t(8));
    QVERIFY(isAsked());
    answer(OriginAnswer::NotNow);
    for (const auto &client : waiting)
        QVERIFY(client->waitForEnd(patienceMs));
}

void AskOriginTest::thousandPages()
{
    QVERIFY(start(UnknownOrigins::Ask));
    std::vector<std::unique_ptr<RawClient>> waiting;
    for (int i = 0; i < 1000; ++i) {
        auto client = std::make_unique<RawClient>();
        QVERIFY(client->connectTo(m_service->port()));
        if (client->handshake(header("https://site" + QByteArray::number(i) + ".example")) == accepted)
            waiting.push_back(std::move(client));
    }
    QCOMPARE(waiting.size(), size_t(16));
    QVERIFY(settle());
    QTRY_COMPARE_WITH_TIMEOUT(m_asked.size(), 16, patienceMs);
}

void AskOriginTest::blockCountsWhereNothingIsConfigured()
{
    QVERIFY(start({}));
    SignClient client;
    QVERIFY(client.connectFrom(page, m_service->port()));
    QVERIFY(OriginAnswers::Block(page));
    Q_EMIT m_desk->answersChanged();
    QVERIFY(client.waitForDisconnect());
    QVERIFY(!SignClient().connectFrom(page, m_service->port()));
    QVERIFY(SignClient().connectFrom(other, m_service->port()));
    QCOMPARE(m_asked, QStringList());
}

QTEST_GUILESS_MAIN(AskOriginTest)

#include "tst_askorigin.moc"
