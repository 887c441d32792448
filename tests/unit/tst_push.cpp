// Messages that the device side pushes to every client, from whatever thread, while clients and the service come and
// go.
#include "service/ClientSocket.h"
#include "service/PushCallbacks.h"
#include "service/WebSocketService.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/Replies.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QRegularExpression>
#include <QTest>
#include <array>
#include <atomic>
#include <chrono>
#include <limits>
#include <thread>

namespace {

constexpr std::size_t threadCount = 4;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::milliseconds pause(30); // a service that is watched is the slower
#else
constexpr std::chrono::milliseconds pause(5); // a pad has 200 points a second to tell of
#endif
const char enabled[] =
    R"({"API":"EnableRealtimeSigningNotification","Result":"0"})"; // no pad: 0, and enabled all the same

void pushImage(QByteArray text)
{
    WebSocketServiceSignBase64DataCallback(text.data());
}

/// Four threads that call the callbacks as a busy device might, each with a count of its own: number n of thread t is
/// the key event t * 1000000 + n when n is even and the picture "t-n" when it is odd.
class Pushers
{
public:
    /// Each thread pushes that many messages, or goes on until finish().
    explicit Pushers(int most = std::numeric_limits<int>::max())
    {
        for (std::size_t t = 0; t < threadCount; ++t)
            m_threads.emplace_back([this, t, most] {
                while (m_pushed[t] < most && !m_finish)
                    push(t, m_pushed[t]++);
            });
    }
    ~Pushers() { finish(); }

    void finish()
    {
        m_finish = true;
        for (std::thread &thread : m_threads)
            thread.join();
        m_threads.clear();
    }
    int pushed(std::size_t thread) const { return m_pushed[thread]; }
    int pushedInAll() const { return m_pushed[0] + m_pushed[1] + m_pushed[2] + m_pushed[3]; }

private:
    static void push(std::size_t t, int n)
    {
        if (n % 2 == 0)
            WebSocketServiceSignPadEventCallback(static_cast<int>(t) * 1000000 + n);
        else
            pushImage(QByteArray::number(static_cast<int>(t)) + '-' + QByteArray::number(n));
        std::this_thread::sleep_for(pause);
    }

    std::atomic<bool> m_finish{false};
    std::array<std::atomic<int>, threadCount> m_pushed{};
    std::vector<std::thread> m_threads;
};

/// What a client got of the pushers' messages: per thread the first number and how many followed without a gap.
struct Received {
    int first[threadCount] = {0, 0, 0, 0};
    int count[threadCount] = {0, 0, 0, 0};
    QString flaw; ///< the first message that is none of theirs, is out of order or follows a lost one
};

/// Reads thread and number out of a message; false when it is none of the pushers'.
bool readMessage(const QString &message, std::size_t &thread, int &number)
{
    static const QRegularExpression keyOrPicture(QStringLiteral("Result\":\"([0-9]+)\"|([0-3])-([0-9]+)"));
    const QRegularExpressionMatch match = keyOrPicture.match(message);
    const int key = match.captured(1).toInt();
    const bool isKey = match.capturedLength(1) > 0;
    thread = static_cast<std::size_t>(isKey ? key / 1000000 : match.captured(2).toInt()) % threadCount;
    number = isKey ? key % 1000000 : match.captured(3).toInt();
    const QString image = QStringLiteral("%1-%2").arg(thread).arg(number);
    return message == (number % 2 == 0 ? keyMessage(key) : imageMessage(image, image.size()));
}

Received receivedBy(const SignClient &client)
{
    Received received;
    for (const QString &message : client.messages()) {
        std::size_t thread = 0;
        int number = 0;
        const bool isTheirs = readMessage(message, thread, number);
        if (received.count[thread] == 0)
            received.first[thread] = number; // the client came while they were pushing
        if (!isTheirs || number != received.first[thread] + received.count[thread]) {
            received.flaw = message;
            break;
        }
        ++received.count[thread];
    }
    return received;
}

} // namespace

class PushTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nothingBeforeItIsEnabled();
    void keyEvents_data();
    void keyEvents();
    void images_data();
    void images();
    void nullImageSendsNothing();
    void largeImage();
    void endlessImageCountsAsEmpty();
    void textIsCopied();
    void rejectedRequestEnablesToo();
    void pushesAndRepliesKeepTheirOrder();
    void clientsGetThemInTheirOrder();
    void laterClientsGetThemToo();
    void goneClientsDoNoHarm();
    void withoutClients();
    void stoppedServiceGetsNothing();
    void restartedServiceAsksAnew();
    void lastServiceThatEnabledGetsThem();
    void fourThreadsLoseNothing();
    void clientsComeAndGoMeanwhile();
    void serviceIsStoppedMeanwhile();

private:
    bool enable(SignClient &client);
    std::vector<std::unique_ptr<SignClient>> connectedClients(int count);
    void compareComplete(const SignClient &client, const Pushers &pushers);
    void compareGapless(const SignClient &client, bool fromTheStart);

    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
    std::unique_ptr<RunningService> m_service;
};

void PushTest::init()
{
    m_warnings.reset(new WarningTrap);
    m_service.reset(new RunningService);
    QVERIFY(m_service->waitUntilListening());
}

void PushTest::cleanup()
{
    m_service.reset();
    QCOMPARE(g_pWebSocketService, nullptr);
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

bool PushTest::enable(SignClient &client)
{
    const bool done =
        client.command(QStringLiteral("EnableRealtimeSigningNotification?type=1")) == QLatin1String(enabled);
    client.forget();
    return done;
}

std::vector<std::unique_ptr<SignClient>> PushTest::connectedClients(int count)
{
    std::vector<std::unique_ptr<SignClient>> clients;
    for (int i = 0; i < count; ++i) {
        clients.emplace_back(new SignClient);
        if (!clients.back()->connectTo(m_service->port()))
            return {};
        // The reply proves that the service has the client on its list.
        if (clients.back()->command(QStringLiteral("IsValid")) != QLatin1String(R"({"API":"IsValid","Result":"0"})"))
            return {};
        clients.back()->forget();
    }
    return clients;
}

void PushTest::nothingBeforeItIsEnabled()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    WebSocketServiceSignPadEventCallback(1);
    pushImage("QUJD");
    WebSocketServiceSignBase64DataCallback(nullptr);
    QCOMPARE(clients[0]->command(QStringLiteral("GetSize")), QStringLiteral(R"({"API":"GetSize","Result":"0"})"));
    QCOMPARE(clients[0]->messages().size(), 1);
}

void PushTest::keyEvents_data()
{
    QTest::addColumn<int>("event");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, int event, const char *message) {
        QTest::newRow(name) << event << QString::fromLatin1(message);
    };
    row("confirm", 1, R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"1"})");
    row("cancel", 0, R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"0"})");
    row("any other", 5, R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"5"})");
    row("negative", -1, R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"-1"})");
    row("smallest", std::numeric_limits<int>::min(),
        R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"-2147483648"})");
}

void PushTest::keyEvents()
{
    QFETCH(int, event);
    QFETCH(QString, message);
    auto clients = connectedClients(2);
    QCOMPARE(clients.size(), std::size_t(2));
    QVERIFY(enable(*clients[0]));
    WebSocketServiceSignPadEventCallback(event);
    for (const auto &client : clients) {
        QVERIFY(client->waitForMessages(1));
        QCOMPARE(client->messages(), QStringList{message});
    }
}

void PushTest::images_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *name, const QByteArray &text, const char *message) {
        QTest::newRow(name) << text << QString::fromUtf8(message);
    };
    row("base64", "QUJD",
        R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"QUJD\",\"ImageLength\":\"4\"}]"})");
    row("padding",
        "QQ==", R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"QQ==\",\"ImageLength\":\"4\"}]"})");
    row("empty", "", R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"\",\"ImageLength\":\"0\"}]"})");
    row("up to its zero byte", QByteArray("AB\0CD", 5),
        R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"AB\",\"ImageLength\":\"2\"}]"})");
    row("characters, not bytes", "\xe7\xad\xbe",
        R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"签\",\"ImageLength\":\"1\"}]"})");
    row("to be escaped twice", "a\"b\\c",
        R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"a\\\"b\\\\c\",\"ImageLength\":\"5\"}]"})");
}

void PushTest::images()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, message);
    auto clients = connectedClients(2);
    QCOMPARE(clients.size(), std::size_t(2));
    QVERIFY(enable(*clients[1]));
    pushImage(text);
    for (const auto &client : clients) {
        QVERIFY(client->waitForMessages(1));
        QCOMPARE(client->messages(), QStringList{message});
    }
}

void PushTest::nullImageSendsNothing()
{
    auto clients = connectedClients(2);
    QCOMPARE(clients.size(), std::size_t(2));
    QVERIFY(enable(*clients[0]));
    WebSocketServiceSignBase64DataCallback(nullptr);
    WebSocketServiceSignPadEventCallback(1);
    for (const auto &client : clients) {
        QVERIFY(client->waitForMessages(1));
        QCOMPARE(client->messages(), QStringList{keyMessage(1)});
    }
}

void PushTest::largeImage()
{
    auto clients = connectedClients(3);
    QCOMPARE(clients.size(), std::size_t(3));
    QVERIFY(enable(*clients[0]));
    pushImage(QByteArray(5000000, 'A'));
    for (const auto &client : clients) {
        QVERIFY(client->waitForMessages(1));
        QVERIFY(client->messages().constFirst() == imageMessage(QString(5000000, QLatin1Char('A')), 5000000));
    }
}

void PushTest::endlessImageCountsAsEmpty()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    QVERIFY(enable(*clients[0]));
    pushImage(QByteArray(500000001, 'A'));
    QVERIFY(clients[0]->waitForMessages(1));
    QCOMPARE(clients[0]->messages(), QStringList{imageMessage(QString(), 0)});
}

void PushTest::textIsCopied()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    QVERIFY(enable(*clients[0]));
    char text[] = "before";
    WebSocketServiceSignBase64DataCallback(text);
    qstrcpy(text, "after!");
    QVERIFY(clients[0]->waitForMessages(1));
    QCOMPARE(clients[0]->messages(), QStringList{imageMessage(QStringLiteral("before"), 6)});
}

void PushTest::rejectedRequestEnablesToo()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    QCOMPARE(clients[0]->command(QStringLiteral("EnableRealtimeSigningNotification")),
             QStringLiteral(R"({"API":"Invalid API request","Result":"-1"})"));
    WebSocketServiceSignPadEventCallback(0);
    QVERIFY(clients[0]->waitForMessages(2));
    QCOMPARE(clients[0]->messages().at(1), keyMessage(0));
}

void PushTest::pushesAndRepliesKeepTheirOrder()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    QVERIFY(enable(*clients[0]));
    for (int i = 0; i < 100; ++i) {
        WebSocketServiceSignPadEventCallback(i);
        QVERIFY(clients[0]->waitForMessages(2 * i + 1));
        QCOMPARE(clients[0]->command(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), keyMessage(-1));
    }
    for (int i = 0; i < 100; ++i) {
        QCOMPARE(clients[0]->messages().at(2 * i), keyMessage(i));
        QCOMPARE(clients[0]->messages().at(2 * i + 1), keyMessage(-1));
    }
}

/// The service lives on the test's thread here, where each of its writes is seen.
void PushTest::clientsGetThemInTheirOrder()
{
    const quint16 port = freePort();
    WebSocketService service(port);
    std::array<SignClient, 5> clients;
    QVector<quint16> connected;
    for (SignClient &client : clients) {
        QVERIFY(client.connectTo(port));
        connected.append(client.socket().localPort());
    }
    QVector<quint16> served;
    const QList<ClientSocket *> sockets = service.findChildren<ClientSocket *>();
    for (const ClientSocket *socket : sockets)
        connect(socket, &ClientSocket::bytesWritten, this, [&served, of = socket->peerPort()] { served.append(of); });
    service.ProcessSignPadEvent(1);
    QCOMPARE(served, connected);
    served.clear();
    service.ProcessSignBase64Data("QUJD");
    QCOMPARE(served, connected);
}

void PushTest::laterClientsGetThemToo()
{
    auto first = connectedClients(1);
    QCOMPARE(first.size(), std::size_t(1));
    QVERIFY(enable(*first[0]));
    QVERIFY(first[0]->close());
    auto later = connectedClients(2);
    QCOMPARE(later.size(), std::size_t(2));
    WebSocketServiceSignPadEventCallback(1);
    for (const auto &client : later) {
        QVERIFY(client->waitForMessages(1));
        QCOMPARE(client->messages(), QStringList{keyMessage(1)});
    }
    QCOMPARE(first[0]->messages(), QStringList());
}

void PushTest::goneClientsDoNoHarm()
{
    auto clients = connectedClients(10);
    QCOMPARE(clients.size(), std::size_t(10));
    QVERIFY(enable(*clients[9]));
    for (std::size_t i = 0; i < 9; ++i)
        clients[i]->abort();
    WebSocketServiceSignPadEventCallback(1);
    pushImage("QUJD");
    QVERIFY(clients[9]->waitForMessages(2));
    QCOMPARE(clients[9]->messages(), (QStringList{keyMessage(1), imageMessage(QStringLiteral("QUJD"), 4)}));
}

void PushTest::withoutClients()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    QVERIFY(enable(*clients[0]));
    QVERIFY(clients[0]->close());
    WebSocketServiceSignPadEventCallback(1);
    pushImage("QUJD");
    auto later = connectedClients(1);
    QCOMPARE(later.size(), std::size_t(1));
    QCOMPARE(later[0]->messages(), QStringList());
}

void PushTest::stoppedServiceGetsNothing()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    QVERIFY(enable(*clients[0]));
    QVERIFY(g_pWebSocketService);
    m_service->stop();
    QCOMPARE(g_pWebSocketService, nullptr);
    WebSocketServiceSignPadEventCallback(1);
    pushImage("QUJD");
    QVERIFY(clients[0]->waitForDisconnect());
    QCOMPARE(clients[0]->messages(), QStringList());
}

void PushTest::restartedServiceAsksAnew()
{
    auto before = connectedClients(1);
    QCOMPARE(before.size(), std::size_t(1));
    QVERIFY(enable(*before[0]));
    m_service->stop();
    m_service->start();
    QVERIFY(m_service->waitUntilListening());
    auto after = connectedClients(1);
    QCOMPARE(after.size(), std::size_t(1));
    WebSocketServiceSignPadEventCallback(1);
    QVERIFY(enable(*after[0]));
    WebSocketServiceSignPadEventCallback(2);
    QVERIFY(after[0]->waitForMessages(1));
    QCOMPARE(after[0]->messages(), QStringList{keyMessage(2)});
}

void PushTest::lastServiceThatEnabledGetsThem()
{
    auto clients = connectedClients(1);
    QCOMPARE(clients.size(), std::size_t(1));
    QVERIFY(enable(*clients[0]));
    {
        RunningService other;
        QVERIFY(other.waitUntilListening());
        SignClient second;
        QVERIFY(second.connectTo(other.port()) && enable(second));
        WebSocketServiceSignPadEventCallback(1);
        QVERIFY(second.waitForMessages(1));
        QCOMPARE(second.messages(), QStringList{keyMessage(1)});
        QVERIFY(enable(*clients[0]));
    }
    // The other one's end takes nothing from the service that enabled last.
    WebSocketServiceSignPadEventCallback(2);
    QVERIFY(clients[0]->waitForMessages(1));
    QCOMPARE(clients[0]->messages(), QStringList{keyMessage(2)});
}

void PushTest::compareComplete(const SignClient &client, const Pushers &pushers)
{
    const Received received = receivedBy(client);
    QCOMPARE(received.flaw, QString());
    for (std::size_t t = 0; t < threadCount; ++t) {
        QCOMPARE(received.first[t], 0);
        QCOMPARE(received.count[t], pushers.pushed(t));
    }
}

void PushTest::compareGapless(const SignClient &client, bool fromTheStart)
{
    const Received received = receivedBy(client);
    QCOMPARE(received.flaw, QString());
    for (std::size_t t = 0; t < threadCount; ++t)
        QVERIFY(!fromTheStart || received.first[t] == 0);
}

void PushTest::fourThreadsLoseNothing()
{
    auto clients = connectedClients(20);
    QCOMPARE(clients.size(), std::size_t(20));
    QVERIFY(enable(*clients[0]));
    Pushers pushers(250);
    for (const auto &client : clients)
        QVERIFY(client->waitForMessages(1000));
    pushers.finish();
    QCOMPARE(pushers.pushedInAll(), 1000);
    for (const auto &client : clients) {
        compareComplete(*client, pushers);
        if (QTest::currentTestFailed())
            return;
    }
}

void PushTest::clientsComeAndGoMeanwhile()
{
    auto stayers = connectedClients(4);
    QCOMPARE(stayers.size(), std::size_t(4));
    QVERIFY(enable(*stayers[0]));
    Pushers pushers;
    for (int round = 0; round < 5; ++round) {
        std::vector<std::unique_ptr<SignClient>> visitors;
        for (int i = 0; i < 20; ++i) {
            visitors.emplace_back(new SignClient);
            QVERIFY(visitors.back()->connectTo(m_service->port()));
            QVERIFY(visitors.back()->waitForMessages(1));
        }
        for (std::size_t i = 0; i < visitors.size(); ++i) {
            compareGapless(*visitors[i], false);
            if (QTest::currentTestFailed())
                return;
            if (i % 2)
                visitors[i]->abort();
            else
                visitors[i]->socket().close();
        }
    }
    pushers.finish();
    for (const auto &client : stayers) {
        QVERIFY(client->waitForMessages(pushers.pushedInAll()));
        compareComplete(*client, pushers);
        if (QTest::currentTestFailed())
            return;
    }
}

void PushTest::serviceIsStoppedMeanwhile()
{
    for (int round = 0; round < 5; ++round) {
        auto clients = connectedClients(20);
        QCOMPARE(clients.size(), std::size_t(20));
        QVERIFY(enable(*clients[0]));
        Pushers pushers;
        QVERIFY(clients[0]->waitForMessages(50 + 20 * round));
        m_service->stop();
        for (const auto &client : clients)
            QVERIFY(client->waitForDisconnect());
        const int pushedBefore = pushers.pushedInAll();
        QTRY_VERIFY_WITH_TIMEOUT(pushers.pushedInAll() > pushedBefore + 20,
                                 patienceMs); // they go on calling although nobody is there
        pushers.finish();
        for (const auto &client : clients) {
            compareGapless(*client, true);
            if (QTest::currentTestFailed())
                return;
        }
        m_service->start();
        QVERIFY(m_service->waitUntilListening());
    }
}

QTEST_GUILESS_MAIN(PushTest)

#include "tst_push.moc"
