// The frames in which texts reach a client, byte for byte on the wire.
#include "service/ClientConnections.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/WarningTrap.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>
#include <QWebSocket>
#include <QWebSocketServer>

namespace {

/// A WebSocket client by hand.
class WireClient
{
public:
    explicit WireClient(quint16 port)
    {
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
        m_socket.waitForConnected(5000);
        m_socket.write("GET / HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                       "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
        QByteArray reply;
        while (!reply.endsWith("\r\n\r\n") && (m_socket.bytesAvailable() > 0 || m_socket.waitForReadyRead(5000)))
            reply += m_socket.read(1);
    }

    /// A text frame of a client; its mask of zeros leaves the text as it is.
    static QByteArray frame(const QByteArray &text)
    {
        QByteArray bytes = "\x81";
        const int lengthBytes = text.size() < 126 ? 0 : text.size() < 65536 ? 2 : 8;
        bytes += static_cast<char>(0x80 + (lengthBytes == 0 ? text.size() : lengthBytes == 2 ? 126 : 127));
        for (int i = lengthBytes - 1; i >= 0; --i)
            bytes += static_cast<char>(static_cast<quint64>(text.size()) >> 8 * i & 0xff);
        return bytes + QByteArray(4, '\0') + text;
    }

    void send(const QByteArray &bytes) { m_socket.write(bytes); }

    QByteArray read(int size)
    {
        QByteArray bytes;
        while (bytes.size() < size && (m_socket.bytesAvailable() > 0 || m_socket.waitForReadyRead(5000)))
            bytes += m_socket.read(size - bytes.size());
        return bytes;
    }
    bool hasMore() { return m_socket.bytesAvailable() > 0 || m_socket.waitForReadyRead(50); }

private:
    QTcpSocket m_socket;
};

} // namespace

class ClientConnectionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void frame_data();
    void frame();
    void repliesToRequestsInOnePiece();
    void nothingBehindTheClose();
    void withoutTheConnectionBelow();

private:
    QByteArray request(const char *command) const
    {
        return "ws://localhost:" + QByteArray::number(m_service->port()) + "/MVSignSDK/" + command;
    }

    PrivateHome m_home;
    WarningTrap m_warnings;
    std::unique_ptr<RunningService> m_service{new RunningService};
};

void ClientConnectionsTest::frame_data()
{
    QTest::addColumn<int>("nameLength");
    QTest::addColumn<QByteArray>("header");
    const auto row = [](const char *name, int nameLength, const char *header) {
        QTest::newRow(name) << nameLength << QByteArray::fromHex(header);
    };
    row("shortest with two bytes", 0, "817e007e");
    row("longest with two bytes", 65409, "817effff");
    row("shortest with eight bytes", 65410, "817f0000000000010000");
    row("over a million", 1000000, "817f00000000000f42be");
}

void ClientConnectionsTest::frame()
{
    QFETCH(int, nameLength);
    QFETCH(QByteArray, header);
    QVERIFY(m_service->waitUntilListening());
    WireClient client(m_service->port());

    const QByteArray name(nameLength, 'n');
    client.send(WireClient::frame(request("UpdateWPSSettings?id=0&dt=0&af=0&pw=3&name=") + name));
    const QByteArray updated = R"({"API":"UpdateWPSSettings","Result":"0"})";
    QCOMPARE(client.read(2 + updated.size()), "\x81\x28" + updated);

    client.send(WireClient::frame(request("GetWPSSettings?id=0")));
    const QByteArray settings =
        R"({"API":"GetWPSSettings","Result":"{\"CurrentPenWidth\":\"3\",\"EnableAutoFit\":\"0\",)"
        R"(\"EnableDateTime\":\"0\",\"Name\":\")"
        + name + R"(\"}"})";
    QCOMPARE(client.read(header.size()), header);
    QVERIFY(client.read(settings.size()) == settings);
    QVERIFY(!client.hasMore());
}

void ClientConnectionsTest::repliesToRequestsInOnePiece()
{
    QVERIFY(m_service->waitUntilListening());
    WireClient client(m_service->port());
    QByteArray requests;
    QByteArray replies;
    for (int i = 0; i < 1000; ++i) {
        requests += WireClient::frame(request(i % 2 == 0 ? "GetSize" : "PenID"));
        replies += i % 2 == 0 ? "\x81\x1e"
                                R"({"API":"GetSize","Result":"0"})"
                              : "\x81\x1b"
                                R"({"API":"PenID","Result":""})";
    }
    client.send(requests);
    QCOMPARE(client.read(replies.size()), replies);
    QVERIFY(!client.hasMore());
}

void ClientConnectionsTest::nothingBehindTheClose()
{
    QVERIFY(m_service->waitUntilListening());
    WireClient client(m_service->port());
    const QByteArray close = QByteArray::fromHex("888200000000") + QByteArray::fromHex("03e8");
    client.send(WireClient::frame(request("GetSize")) + close + WireClient::frame(request("GetSize")));
    QCOMPARE(client.read(32), "\x81\x1e"
                              R"({"API":"GetSize","Result":"0"})");
    QCOMPARE(client.read(4), QByteArray::fromHex("880203e8"));
    QVERIFY(!client.hasMore());
}

/// A text arrives, too, when the server has no such connection among its children.
void ClientConnectionsTest::withoutTheConnectionBelow()
{
    QWebSocketServer server(QStringLiteral("server"), QWebSocketServer::NonSecureMode);
    QWebSocketServer serverOfNobody(QStringLiteral("server of nobody"), QWebSocketServer::NonSecureMode);
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QWebSocket client;
    const QSignalSpy received(&client, &QWebSocket::textMessageReceived);
    client.open(server.serverUrl());
    QTRY_VERIFY(server.hasPendingConnections());
    const std::unique_ptr<QWebSocket> accepted(server.nextPendingConnection());

    ClientConnections connections(&serverOfNobody);
    connections.Add(accepted.get());
    connections.SendText(accepted.get(), "\xe7\xad\xbe \"quoted\"");
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(received.constFirst().constFirst().toString(), QStringLiteral("签 \"quoted\""));
}

QTEST_GUILESS_MAIN(ClientConnectionsTest)

#include "tst_clientconnections.moc"
