// What waits for a client, how long it waits, and what happens to the client's requests meanwhile. Server and clients
// live on the test's thread, so that each step is seen.
#include "service/ClientAcceptor.h"
#include "service/ClientConnections.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/RawClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QTest>
#include <QTimer>
#include <QWebSocket>
#include <QWebSocketServer>

#include <memory>

namespace {

constexpr int nMB = 1000000;

/// More than the system's buffers hold on both sides together.
constexpr int nMoreThanTheSystemHolds = 20 * nMB;

/// Answers a number with a text of so many times the request's letter: "3a" with "aaa".
class EchoingServer : public QObject
{
    Q_OBJECT

public:
    explicit EchoingServer(const ClientPatience &patience = {})
        : m_server(QStringLiteral("server"), QWebSocketServer::NonSecureMode)
    {
        m_listens = m_server.listen();
        m_connections = new ClientConnections(&m_server, patience);
        connect(&m_server, &QWebSocketServer::newConnection, this, &EchoingServer::addClient);
    }
    ~EchoingServer() override { qDeleteAll(m_clients); }

    bool listens() const { return m_listens; }
    quint16 port() const { return m_server.serverPort(); }
    const QList<QWebSocket *> &clients() const { return m_clients; }
    const QStringList &requests() const { return m_requests; }
    void push(const QByteArray &text)
    {
        const QList<QWebSocket *> clients = m_clients;
        for (const QWebSocket *client : clients)
            m_connections->SendPush(client, text);
    }

private:
    void addClient()
    {
        QWebSocket *const client = m_server.nextPendingConnection();
        if (!m_connections->Add(client))
            return;
        m_clients.append(client);
        connect(client, &QWebSocket::disconnected, this, [this, client] {
            m_clients.removeAll(client);
            m_connections->Remove(client);
            client->deleteLater();
        });
        connect(client, &QWebSocket::textMessageReceived, this, [this, client](const QString &request) {
            m_requests += request;
            const QByteArray reply(request.left(request.size() - 1).toInt(), request.at(request.size() - 1).toLatin1());
            m_connections->SendReply(client, MessageKind::Text, reply);
        });
    }

    QWebSocketServer m_server;
    ClientConnections *m_connections;
    bool m_listens = false;
    QList<QWebSocket *> m_clients;
    QStringList m_requests;
};

/// Shakes hands, and lets the server's side of it happen.
bool shakeHands(RawClient &client, const EchoingServer &server)
{
    const int before = server.clients().size();
    client.startHandshake();
    const auto isIn = [&] { return server.clients().size() > before && client.socket().bytesAvailable() > 0; };
    return QTest::qWaitFor(isIn, patienceMs) && client.socket().readAll().endsWith("\r\n\r\n");
}

bool open(RawClient &client, const EchoingServer &server)
{
    return client.connectTo(server.port()) && shakeHands(client, server);
}

/// What has come once so many bytes are there.
QByteArray taken(RawClient &client, int size)
{
    QByteArray bytes;
    bytes.reserve(size);
    const auto isComplete = [&] {
        bytes += client.socket().read(size - bytes.size());
        return bytes.size() == size;
    };
    return QTest::qWaitFor(isComplete, patienceMs) ? bytes : QByteArray();
}

bool isCutOff(RawClient &client)
{
    client.readAgain();
    return QTest::qWaitFor(
        [&] {
            client.socket().readAll();
            return client.socket().state() == QAbstractSocket::UnconnectedState;
        },
        patienceMs);
}

} // namespace

class ClientSocketTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void unfinishedHandshakeIsCutOff();
    void clientThatTakesNothingIsCutOff();
    void slowClientIsNotCutOff();
    void requestsWaitWhileAReplyWaits();
    void requestsWaitWhileAPushWaits();
    void othersHaveTheirTurn();
    void pushesOfAClientThatReadsAllArrive();
    void pushesOfAClientThatDoesNotReadEndIt();
    void longReplyIsNoPush();
    void restOfAFrameMayComeLater();
    void clientsWithTheSamePort_data();
    void clientsWithTheSamePort();

private:
    WarningTrap m_warnings;
};

void ClientSocketTest::init()
{
    m_warnings.taken();
}

void ClientSocketTest::cleanup()
{
    QCOMPARE(m_warnings.taken(), QStringList());
}

void ClientSocketTest::unfinishedHandshakeIsCutOff()
{
    ClientPatience patience;
    patience.nHandshakeMs = 200;
    EchoingServer server(patience);
    QVERIFY(server.listens());
    RawClient finished;
    QVERIFY(open(finished, server));
    RawClient halfOpen;
    QVERIFY(halfOpen.connectTo(server.port()));
    halfOpen.send("GET / HTTP/1.1\r\nUpgr");
    QVERIFY(isCutOff(halfOpen));
    QCOMPARE(server.clients().size(), 1);
    finished.send(clientFrame("1a"));
    QCOMPARE(taken(finished, 3), serverFrame("a"));
}

void ClientSocketTest::clientThatTakesNothingIsCutOff()
{
    ClientPatience patience;
    patience.nTakingMs = 200;
    EchoingServer server(patience);
    RawClient client;
    QVERIFY(open(client, server));
    client.readNothing();
    client.send(clientFrame(QByteArray::number(nMoreThanTheSystemHolds) + 'a') + clientFrame("1b"));
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, patienceMs);
    QCOMPARE(server.clients().size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(server.clients().size(), 0, patienceMs);
    QVERIFY(isCutOff(client));
    QCOMPARE(server.requests().size(), 1);
}

void ClientSocketTest::slowClientIsNotCutOff()
{
    ClientPatience patience;
    patience.nTakingMs = 1000;
    EchoingServer server(patience);
    RawClient client;
    QVERIFY(open(client, server));
    client.socket().setReadBufferSize(nMB / 2);
    client.send(clientFrame(QByteArray::number(nMoreThanTheSystemHolds) + 'a'));
    QByteArray reply;
    QTimer slow;
    slow.setInterval(100); // 40 times: longer than a client may be idle
    connect(&slow, &QTimer::timeout, &client.socket(), [&] { reply += client.socket().readAll(); });
    slow.start();
    const QByteArray expected = serverFrame(QByteArray(nMoreThanTheSystemHolds, 'a'));
    QTRY_COMPARE_WITH_TIMEOUT(reply.size(), expected.size(), patienceMs);
    QVERIFY(reply == expected);
    QCOMPARE(server.clients().size(), 1);
}

void ClientSocketTest::requestsWaitWhileAReplyWaits()
{
    EchoingServer server;
    RawClient client;
    QVERIFY(open(client, server));
    client.readNothing();
    client.send(clientFrame(QByteArray::number(nMoreThanTheSystemHolds) + 'a') + clientFrame("2b") + clientFrame("3c"));
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, patienceMs);
    client.send(clientFrame("4d"));
    RawClient other;
    QVERIFY(open(other, server));
    other.send(clientFrame("5e"));
    QCOMPARE(taken(other, 7), serverFrame("eeeee"));
    QCOMPARE(server.requests().size(), 2);
    client.readAgain();
    const QByteArray expected = serverFrame(QByteArray(nMoreThanTheSystemHolds, 'a')) + serverFrame("bb")
                                + serverFrame("ccc") + serverFrame("dddd");
    QVERIFY(taken(client, expected.size()) == expected);
}

void ClientSocketTest::requestsWaitWhileAPushWaits()
{
    EchoingServer server;
    RawClient client;
    QVERIFY(open(client, server));
    client.readNothing();
    server.push(QByteArray(nMoreThanTheSystemHolds, 'p'));
    client.send(clientFrame("2b"));
    server.push("q");
    RawClient other;
    QVERIFY(open(other, server));
    other.send(clientFrame("5e"));
    QCOMPARE(taken(other, 7), serverFrame("eeeee"));
    QCOMPARE(server.requests(), QStringList{QStringLiteral("5e")});
    client.readAgain();
    const QByteArray expected =
        serverFrame(QByteArray(nMoreThanTheSystemHolds, 'p')) + serverFrame("q") + serverFrame("bb");
    QVERIFY(taken(client, expected.size()) == expected);
}

/// Also when the system takes the replies as fast as they are made.
void ClientSocketTest::othersHaveTheirTurn()
{
    EchoingServer server;
    RawClient greedy;
    RawClient other;
    QVERIFY(open(greedy, server) && open(other, server));
    greedy.send(clientFrame("1100000g").repeated(10));
    other.send(clientFrame("1o"));
    const QByteArray expected = serverFrame(QByteArray(1100000, 'g')).repeated(10);
    QVERIFY(taken(greedy, expected.size()) == expected);
    QCOMPARE(taken(other, 3), serverFrame("o"));
    QVERIFY(server.requests().indexOf(QStringLiteral("1o")) <= 1);
}

void ClientSocketTest::pushesOfAClientThatReadsAllArrive()
{
    EchoingServer server;
    RawClient client;
    QVERIFY(open(client, server));
    const QByteArray picture(100 * nMB, 'p');
    server.push(picture); // larger than what may wait
    QVERIFY(taken(client, picture.size() + 10) == serverFrame(picture));
    for (int i = 0; i < 200; ++i) {
        server.push(picture.left(nMB));
        QVERIFY(taken(client, nMB + 10) == serverFrame(picture.left(nMB)));
    }
}

void ClientSocketTest::pushesOfAClientThatDoesNotReadEndIt()
{
    EchoingServer server;
    RawClient client;
    QVERIFY(open(client, server));
    client.readNothing();
    int pushed = 0;
    for (; pushed < 200 && !server.clients().isEmpty(); ++pushed)
        server.push(QByteArray(nMB, 'p'));
    QVERIFY2(pushed > 64 && pushed < 110, qPrintable(QString::number(pushed)));
    QVERIFY(isCutOff(client));
}

void ClientSocketTest::longReplyIsNoPush()
{
    EchoingServer server;
    RawClient client;
    QVERIFY(open(client, server));
    client.readNothing();
    client.send(clientFrame(QByteArray::number(100 * nMB) + 'a'));
    QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, patienceMs);
    server.push("p");
    server.push("q");
    client.readAgain();
    const QByteArray expected = serverFrame(QByteArray(100 * nMB, 'a')) + serverFrame("p") + serverFrame("q");
    QVERIFY(taken(client, expected.size()) == expected);
}

/// Qt gives the rest of a frame five seconds; they must not run while it is not looked for.
void ClientSocketTest::restOfAFrameMayComeLater()
{
    EchoingServer server;
    RawClient client;
    QVERIFY(open(client, server));
    const QByteArray request = clientFrame("2b");
    client.send(clientFrame("1a") + request.left(3));
    QCOMPARE(taken(client, 3), serverFrame("a"));
    client.readNothing();
    server.push(QByteArray(nMoreThanTheSystemHolds, 'p'));
    client.send(request.mid(3));
    QTest::qWait(6000);
    client.readAgain();
    const QByteArray expected = serverFrame(QByteArray(nMoreThanTheSystemHolds, 'p')) + serverFrame("bb");
    QVERIFY(taken(client, expected.size()) == expected);
}

void ClientSocketTest::clientsWithTheSamePort_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::newRow("another address of the client") << QStringLiteral("127.0.0.2") << QStringLiteral("127.0.0.1");
    QTest::newRow("another address of the server") << QStringLiteral("127.0.0.1") << QStringLiteral("127.0.0.2");
}

void ClientSocketTest::clientsWithTheSamePort()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    EchoingServer server;
    RawClient first;
    RawClient second;
    QVERIFY(first.socket().bind(QHostAddress(QHostAddress::LocalHost), 0, QAbstractSocket::ReuseAddressHint));
    const quint16 port = first.socket().localPort();
    QVERIFY(second.socket().bind(QHostAddress(from), port, QAbstractSocket::ReuseAddressHint));
    QVERIFY(open(first, server));
    second.socket().connectToHost(QHostAddress(to), server.port());
    QVERIFY(second.socket().waitForConnected(patienceMs));
    QVERIFY(shakeHands(second, server));
    QCOMPARE(server.clients().at(0)->peerPort(), server.clients().at(1)->peerPort());
    second.send(clientFrame("2b"));
    QCOMPARE(taken(second, 4), serverFrame("bb"));
    first.send(clientFrame("1a"));
    QCOMPARE(taken(first, 3), serverFrame("a"));
    QCOMPARE(first.socket().bytesAvailable() + second.socket().bytesAvailable(), 0);
}

QTEST_GUILESS_MAIN(ClientSocketTest)

#include "tst_clientsocket.moc"
