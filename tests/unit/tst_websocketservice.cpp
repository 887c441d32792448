// The server: who may connect, who gets which reply, and that it starts and stops cleanly whatever its clients do.
#include "service/ClientAcceptor.h"
#include "service/WebSocketService.h"
#include "service/WebSocketThread.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/Replies.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QElapsedTimer>
#include <QMetaMethod>
#include <QSocketNotifier>
#include <QTcpSocket>
#include <QTest>
#include <QWebSocketServer>

#include <netinet/in.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

const char invalid[] = R"({"API":"Invalid API request","Result":"-1"})";
const char size[] = R"({"API":"GetSize","Result":"0"})";

const char handshake[] = "GET / HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n";

/// Sends the opening handshake by hand.
bool isLetIn(QTcpSocket &socket)
{
    socket.write(handshake);
    return QTest::qWaitFor([&socket] { return socket.bytesAvailable() > 0; }, patienceMs)
           && socket.readAll().startsWith("HTTP/1.1 101 ");
}

} // namespace

class WebSocketServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void signalAndSlots();
    void threadDeclaresNothing();
    void serverName();
    void anyPathIsServed_data();
    void anyPathIsServed();
    void anyOriginIsServed_data();
    void anyOriginIsServed();
    void everyAddressIsServed_data();
    void everyAddressIsServed();
    void binaryIsEchoed_data();
    void binaryIsEchoed();
    void binaryGoesToTheSenderOnly();
    void repliesGoToTheSenderOnly();
    void burstIsAnsweredInOrder();
    void burstsOfManyClientsKeepTheirOrder();
    void pingIsAnswered();
    void abruptDisconnects();
    void rubbishInsteadOfAHandshake_data();
    void rubbishInsteadOfAHandshake();
    void rubbishAfterTheHandshake_data();
    void rubbishAfterTheHandshake();
    void replyToAClientThatIsGone();
    void manyConnectionsOneAfterTheOther();
    void letsInAgainWhenTheFirstFoundNoDescriptor();
    void clientThatIsGoneBeforeItsAnswerLeavesNothing();
    void portInUse();
    void portInUseStopsCleanly();
    void startsAgainOnTheSamePort();
    void stopWithClients();
    void stopRightAfterTheReply();
    void stopWithRequestsUnderway();
    void stopWithAHalfOpenConnection();
    void stopBeforeItListens();
    void deletedWithoutStart();
    void serviceClosesWithItsServer();

private:
    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
};

void WebSocketServiceTest::init()
{
    m_warnings.reset(new WarningTrap);
}

void WebSocketServiceTest::cleanup()
{
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

void WebSocketServiceTest::signalAndSlots()
{
    const QMetaObject &meta = WebSocketService::staticMetaObject;
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.methodType() != QMetaMethod::Method)
            signatures.append(QString::fromLatin1(method.methodSignature()));
    }
    QCOMPARE(signatures,
             (QStringList{QStringLiteral("closed()"), QStringLiteral("onNewConnection()"),
                          QStringLiteral("processTextMessage(QString)"),
                          QStringLiteral("processBinaryMessage(QByteArray)"), QStringLiteral("socketDisconnected()")}));
    QCOMPARE(meta.method(meta.methodOffset()).methodType(), QMetaMethod::Signal);
}

void WebSocketServiceTest::threadDeclaresNothing()
{
    const QMetaObject &meta = WebSocketThread::staticMetaObject;
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 0);
}

void WebSocketServiceTest::serverName()
{
    WebSocketService service(freePort());
    const QList<QWebSocketServer *> servers = service.findChildren<QWebSocketServer *>();
    QCOMPARE(servers.size(), 1);
    QCOMPARE(servers.constFirst()->serverName(), QStringLiteral("MVSignPadSDK - WebSocketServer"));
    QCOMPARE(servers.constFirst()->secureMode(), QWebSocketServer::NonSecureMode);
    QVERIFY(servers.constFirst()->isListening());
    QVERIFY(service.Manager());
}

void WebSocketServiceTest::anyPathIsServed_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("root") << QStringLiteral("/");
    QTest::newRow("own path") << QStringLiteral("/MVSignSDK/");
    QTest::newRow("a command") << QStringLiteral("/MVSignSDK/Clear?x=1");
    QTest::newRow("another path") << QStringLiteral("/some/where/else");
    QTest::newRow("dots") << QStringLiteral("/../../etc/passwd");
    QTest::newRow("long") << QLatin1Char('/') + QString(2000, QLatin1Char('p'));
    QTest::newRow("non-ASCII") << QStringLiteral("/签名");
}

void WebSocketServiceTest::anyPathIsServed()
{
    QFETCH(QString, path);
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(service.port(), path));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
}

void WebSocketServiceTest::anyOriginIsServed_data()
{
    QTest::addColumn<QString>("origin");
    QTest::newRow("a page") << QStringLiteral("https://bank.example");
    QTest::newRow("another page") << QStringLiteral("http://localhost:3000");
    QTest::newRow("a file") << QStringLiteral("null");
}

void WebSocketServiceTest::anyOriginIsServed()
{
    QFETCH(QString, origin);
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectFrom(origin, service.port()));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
}

void WebSocketServiceTest::everyAddressIsServed_data()
{
    QTest::addColumn<QString>("host");
    QTest::newRow("IPv4 loop-back") << QStringLiteral("127.0.0.1");
    // An address that only a server on all interfaces listens on.
    QTest::newRow("another IPv4 address") << QStringLiteral("127.9.8.7");
    QTest::newRow("name") << QStringLiteral("localhost");
    QTest::newRow("IPv6 loop-back") << QStringLiteral("[::1]");
}

void WebSocketServiceTest::everyAddressIsServed()
{
    QFETCH(QString, host);
    QTcpServer probe;
    if (host.contains(QLatin1Char(':')) && !probe.listen(QHostAddress(QHostAddress::LocalHostIPv6)))
        QSKIP("this machine has no IPv6");
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(service.port(), QStringLiteral("/"), host));
    // The request names localhost all the same, however the client got here.
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
}

void WebSocketServiceTest::binaryIsEchoed_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("abc") << QByteArray("abc");
    QTest::newRow("a request") << QByteArray("ws://localhost:8089/MVSignSDK/Clear");
    QTest::newRow("zero bytes") << QByteArray(5, '\0');
    QTest::newRow("no UTF-8") << QByteArray("\xff\xfe\x80\xc0", 4);
    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all.append(static_cast<char>(i));
    QTest::newRow("every byte") << all;
    QTest::newRow("five megabytes") << all.repeated(20000);
}

void WebSocketServiceTest::binaryIsEchoed()
{
    QFETCH(QByteArray, bytes);
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(service.port()));
    QCOMPARE(client.binaryRequest(bytes), bytes);
    QCOMPARE(client.messages(), QStringList());
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
}

void WebSocketServiceTest::binaryGoesToTheSenderOnly()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient sender;
    SignClient other;
    QVERIFY(sender.connectTo(service.port()) && other.connectTo(service.port()));
    QByteArray received;
    connect(&other.socket(), &QWebSocket::binaryMessageReceived, this,
            [&](const QByteArray &bytes) { received = bytes; });
    QCOMPARE(sender.binaryRequest("abc"), QByteArray("abc"));
    QCOMPARE(other.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(received, QByteArray());
}

void WebSocketServiceTest::repliesGoToTheSenderOnly()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient first;
    SignClient second;
    QVERIFY(first.connectTo(service.port()) && second.connectTo(service.port()));
    QCOMPARE(first.command(QStringLiteral("PadID")), QStringLiteral(R"({"API":"PadID","Result":""})"));
    QCOMPARE(second.command(QStringLiteral("PenID")), QStringLiteral(R"({"API":"PenID","Result":""})"));
    QCOMPARE(first.command(QStringLiteral("nonsense")), QString::fromLatin1(invalid));
    QCOMPARE(second.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(first.messages().size(), 2);
    QCOMPARE(second.messages().size(), 2);
}

void WebSocketServiceTest::burstIsAnsweredInOrder()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(service.port()));
    const char *const names[] = {"PadID",   "PenID",      "VersionID",    "GetAboutInfo",
                                 "GetInks", "WPSGetInks", "GetOpaqueInks"};
    for (int i = 0; i < 50; ++i) {
        client.sendCommand(QStringLiteral("UpdateWPSSettings?id=1&dt=0&af=1&pw=%1&name=n%1").arg(i));
        client.sendCommand(QStringLiteral("GetWPSSettings?id=1"));
        for (int n = 0; n < 18; ++n)
            client.sendCommand(QLatin1String(names[(i + n) % 7]));
    }
    QVERIFY(client.waitForMessages(1000));
    QCOMPARE(client.messages().size(), 1000);
    QStringList messages = client.messages();
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(messages.takeFirst(), QStringLiteral(R"({"API":"UpdateWPSSettings","Result":"0"})"));
        QCOMPARE(messages.takeFirst(),
                 settingsReply(QByteArray::number(i).constData(), "1", "0", QStringLiteral("n%1").arg(i)));
        for (int n = 0; n < 18; ++n)
            QCOMPARE(messages.takeFirst(),
                     QStringLiteral("{\"API\":\"%1\",\"Result\":\"\"}").arg(QLatin1String(names[(i + n) % 7])));
    }
}

void WebSocketServiceTest::burstsOfManyClientsKeepTheirOrder()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    const char *const names[] = {"PadID", "PenID", "VersionID", "GetAboutInfo", "GetInks"};
    std::vector<std::unique_ptr<SignClient>> clients;
    for (int i = 0; i < 10; ++i) {
        clients.emplace_back(new SignClient);
        QVERIFY(clients.back()->connectTo(service.port()));
    }
    for (int i = 0; i < 200; ++i)
        for (std::size_t c = 0; c < clients.size(); ++c)
            clients[c]->sendCommand(QString::fromLatin1(names[(static_cast<std::size_t>(i) + c) % 5]));
    for (std::size_t c = 0; c < clients.size(); ++c) {
        QVERIFY(clients[c]->waitForMessages(200));
        QCOMPARE(clients[c]->messages().size(), 200);
        for (int i = 0; i < 200; ++i)
            QCOMPARE(clients[c]->messages().at(i),
                     QStringLiteral("{\"API\":\"%1\",\"Result\":\"\"}")
                         .arg(QLatin1String(names[(static_cast<std::size_t>(i) + c) % 5])));
    }
}

void WebSocketServiceTest::pingIsAnswered()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(service.port()));
    QByteArray payload;
    connect(&client.socket(), &QWebSocket::pong, this, [&](quint64, const QByteArray &bytes) { payload = bytes; });
    client.socket().ping("still there?");
    QTRY_COMPARE_WITH_TIMEOUT(payload, QByteArray("still there?"), patienceMs);
}

void WebSocketServiceTest::abruptDisconnects()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient stayer;
    QVERIFY(stayer.connectTo(service.port()));
    for (int round = 0; round < 5; ++round) {
        std::vector<std::unique_ptr<SignClient>> clients;
        for (int i = 0; i < 10; ++i) {
            clients.emplace_back(new SignClient);
            QVERIFY(clients.back()->connectTo(service.port()));
            clients.back()->sendCommand(QStringLiteral("GetSize"));
        }
        for (const auto &client : clients)
            client->abort();
        QCOMPARE(stayer.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    }
    QCOMPARE(stayer.messages().size(), 5);
}

void WebSocketServiceTest::rubbishInsteadOfAHandshake_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("a line feed") << QByteArray("\n");
    QTest::newRow("plain HTTP") << QByteArray("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QTest::newRow("upgrade to something else")
        << QByteArray("GET / HTTP/1.1\r\nHost: x\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n\r\n");
    QTest::newRow("old protocol version")
        << QByteArray("GET / HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 1\r\n\r\n");
    QTest::newRow("TLS") << QByteArray("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03\0\0\0", 14);
    QTest::newRow("zeros") << QByteArray(5000, '\0');
    QTest::newRow("no end of line") << QByteArray(100000, 'a');
}

void WebSocketServiceTest::rubbishInsteadOfAHandshake()
{
    QFETCH(QByteArray, bytes);
    RunningService service;
    QVERIFY(service.waitUntilListening());
    QTcpSocket rude;
    rude.connectToHost(QHostAddress(QHostAddress::LocalHost), service.port());
    QVERIFY(rude.waitForConnected());
    rude.write(bytes);
    rude.flush();
    SignClient client;
    QVERIFY(client.connectTo(service.port()));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    rude.abort();
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
}

void WebSocketServiceTest::rubbishAfterTheHandshake_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("unmasked text") << QByteArray("\x81\x01x", 3);
    QTest::newRow("reserved opcode") << QByteArray("\x83\x80\0\0\0\0", 6);
    QTest::newRow("reserved bits") << QByteArray("\xf1\x80\0\0\0\0", 6);
    QTest::newRow("no UTF-8 in a text") << QByteArray("\x81\x82\0\0\0\0\xff\xfe", 8);
    QTest::newRow("continuation of nothing") << QByteArray("\x80\x81\0\0\0\0x", 7);
    QTest::newRow("fragmented ping") << QByteArray("\x09\x80\0\0\0\0", 6);
    QTest::newRow("a text of 2^63 bytes") << QByteArray("\x81\xff\x80\0\0\0\0\0\0\0\0\0\0\0", 14);
    QTest::newRow("frame cut off") << QByteArray("\x81\xfe\x10", 3);
    QTest::newRow("close with a code that does not exist") << QByteArray("\x88\x82\0\0\0\0\x00\x01", 8);
}

void WebSocketServiceTest::rubbishAfterTheHandshake()
{
    QFETCH(QByteArray, frame);
    RunningService service;
    QVERIFY(service.waitUntilListening());
    QTcpSocket rude;
    rude.connectToHost(QHostAddress(QHostAddress::LocalHost), service.port());
    QVERIFY(rude.waitForConnected());
    QVERIFY(isLetIn(rude));
    rude.write(frame);
    rude.flush();
    SignClient client;
    QVERIFY(client.connectTo(service.port()));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    rude.abort();
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    m_warnings->taken(); // Qt may report the broken frame; the service must go on
}

void WebSocketServiceTest::replyToAClientThatIsGone()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient stayer;
    QVERIFY(stayer.connectTo(service.port()));
    for (int i = 0; i < 20; ++i) {
        SignClient client;
        QVERIFY(client.connectTo(service.port()));
        for (int n = 0; n < 50; ++n)
            client.sendCommand(QStringLiteral("GetSize"));
        client.socket().flush();
        client.abort();
    }
    QCOMPARE(stayer.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
}

void WebSocketServiceTest::manyConnectionsOneAfterTheOther()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    for (int i = 0; i < 100; ++i) {
        SignClient client;
        QVERIFY(client.connectTo(service.port()));
        QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
        QVERIFY(client.close());
    }
}

void WebSocketServiceTest::letsInAgainWhenTheFirstFoundNoDescriptor()
{
    const quint16 port = freePort();
    const WebSocketService service(port);
    const int client = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    QCOMPARE(::connect(client, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);

    const int lowestFree = ::dup(client);
    ::close(lowestFree);
    rlimit usual;
    ::getrlimit(RLIMIT_NOFILE, &usual);
    const rlimit none{static_cast<rlim_t>(lowestFree), usual.rlim_max};
    ::setrlimit(RLIMIT_NOFILE, &none);
    const auto *const notifier = service.findChild<ClientAcceptor *>()->findChild<QSocketNotifier *>();
    const bool paused = QTest::qWaitFor([notifier] { return !notifier->isEnabled(); }, patienceMs);
    ::setrlimit(RLIMIT_NOFILE, &usual);

    QVERIFY(paused); // it has tried, and found none
    QTcpSocket socket;
    QVERIFY(socket.setSocketDescriptor(client));
    QVERIFY(isLetIn(socket));
}

void WebSocketServiceTest::clientThatIsGoneBeforeItsAnswerLeavesNothing()
{
    const quint16 port = freePort();
    const WebSocketService service(port);
    for (int i = 0; i < 20; ++i) {
        QTcpSocket client;
        client.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
        QVERIFY(client.waitForConnected(patienceMs));
        client.write(handshake);
        client.flush();
        client.abort(); // before the service, on this thread, has seen it
    }
    QTcpSocket later;
    later.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    QVERIFY(isLetIn(later));
    QTRY_COMPARE_WITH_TIMEOUT(service.findChildren<QWebSocket *>().size(), 1, patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(service.findChildren<ClientSocket *>().size(), 1, patienceMs);
}

void WebSocketServiceTest::portInUse()
{
    QTcpServer holder;
    QVERIFY(holder.listen(QHostAddress::Any, 0));
    WebSocketService service(holder.serverPort());
    QVERIFY(!service.Manager());
    const QList<QWebSocketServer *> servers = service.findChildren<QWebSocketServer *>();
    QCOMPARE(servers.size(), 1);
    QVERIFY(!servers.constFirst()->isListening());
}

void WebSocketServiceTest::portInUseStopsCleanly()
{
    QTcpServer holder;
    QVERIFY(holder.listen(QHostAddress::Any, 0));
    {
        RunningService service(holder.serverPort());
        QVERIFY(service.waitUntilItsEventsAreHandled());
        service.stop();
    }
    // The port is still the holder's, and its own connections work.
    QTcpSocket client;
    client.connectToHost(QHostAddress(QHostAddress::LocalHost), holder.serverPort());
    QVERIFY(holder.waitForNewConnection(patienceMs));
}

void WebSocketServiceTest::startsAgainOnTheSamePort()
{
    RunningService service;
    for (int i = 0; i < 5; ++i) {
        QVERIFY(service.waitUntilListening());
        SignClient client;
        QVERIFY(client.connectTo(service.port()));
        QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
        service.stop();
        QVERIFY(client.waitForDisconnect());
        service.start();
    }
}

void WebSocketServiceTest::stopWithClients()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    std::vector<std::unique_ptr<SignClient>> clients;
    for (int i = 0; i < 20; ++i) {
        clients.emplace_back(new SignClient);
        QVERIFY(clients.back()->connectTo(service.port()));
    }
    QElapsedTimer timer;
    timer.start();
    service.stop();
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    for (const auto &client : clients)
        QVERIFY(client->waitForDisconnect());
}

void WebSocketServiceTest::stopRightAfterTheReply()
{
    for (int i = 0; i < 20; ++i) {
        RunningService service;
        QVERIFY(service.waitUntilListening());
        SignClient client;
        QVERIFY(client.connectTo(service.port()));
        QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
        service.stop();
        QVERIFY(client.waitForDisconnect());
    }
}

void WebSocketServiceTest::stopWithRequestsUnderway()
{
    for (int i = 0; i < 20; ++i) {
        RunningService service;
        QVERIFY(service.waitUntilListening());
        SignClient first;
        SignClient second;
        QVERIFY(first.connectTo(service.port()) && second.connectTo(service.port()));
        for (int n = 0; n < 200; ++n) {
            first.sendCommand(QStringLiteral("GetSize"));
            second.socket().sendBinaryMessage("abc");
        }
        first.socket().flush();
        second.socket().flush();
        if (i % 2)
            first.abort();
        service.stop();
        QVERIFY(first.waitForDisconnect() && second.waitForDisconnect());
        for (const QString &reply : first.messages())
            QCOMPARE(reply, QString::fromLatin1(size));
    }
}

void WebSocketServiceTest::stopWithAHalfOpenConnection()
{
    RunningService service;
    QVERIFY(service.waitUntilListening());
    QTcpSocket halfOpen;
    halfOpen.connectToHost(QHostAddress(QHostAddress::LocalHost), service.port());
    QVERIFY(halfOpen.waitForConnected());
    halfOpen.write("GET / HTTP/1.1\r\nUpgr");
    halfOpen.flush();
    SignClient later; // whom the service lets in behind the other
    QVERIFY(later.connectTo(service.port()));
    service.stop();
    QTRY_COMPARE_WITH_TIMEOUT(halfOpen.state(), QAbstractSocket::UnconnectedState, patienceMs);
}

void WebSocketServiceTest::stopBeforeItListens()
{
    for (int i = 0; i < 20; ++i) {
        RunningService service;
        service.stop();
    }
}

void WebSocketServiceTest::deletedWithoutStart()
{
    QObject parent;
    auto *thread = new WebSocketThread(&parent, freePort());
    QCOMPARE(thread->parent(), &parent);
    QVERIFY(!thread->isRunning());
    delete thread;
}

void WebSocketServiceTest::serviceClosesWithItsServer()
{
    WebSocketService service(freePort());
    int closed = 0;
    connect(&service, &WebSocketService::closed, this, [&] { ++closed; });
    service.findChildren<QWebSocketServer *>().constFirst()->close();
    QTRY_COMPARE_WITH_TIMEOUT(closed, 1, patienceMs);
}

QTEST_GUILESS_MAIN(WebSocketServiceTest)

#include "tst_websocketservice.moc"
