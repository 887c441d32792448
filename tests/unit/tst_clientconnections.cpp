// The frames in which texts reach a client, byte for byte on the wire.
#include "service/PushCallbacks.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RawClient.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/WarningTrap.h"

#include <QTest>

#include <atomic>

#include <malloc.h>

namespace {

std::atomic<int> heapTrims{0};

} // namespace

/// In place of the C library's.
extern "C" int malloc_trim(std::size_t) noexcept
{
    ++heapTrims;
    return 1;
}

class ClientConnectionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void whatASentTextLeavesInTheHeapIsGivenBack();
    void frame_data();
    void frame();
    void binaryFrame_data();
    void binaryFrame();
    void repliesToRequestsInOnePiece();
    void nothingBehindTheClose();
    void fragmentsWithAPingAndAPushBetween();

private:
    bool open(RawClient &client) const;
    QByteArray request(const char *command) const
    {
        return "ws://localhost:" + QByteArray::number(m_service->port()) + "/MVSignSDK/" + command;
    }

    PrivateHome m_home;
    WarningTrap m_warnings;
    std::unique_ptr<RunningService> m_service{new RunningService};
};

void ClientConnectionsTest::initTestCase()
{
    QVERIFY(m_service->waitUntilListening());
}

void ClientConnectionsTest::cleanup()
{
    QCOMPARE(m_warnings.taken(), QStringList());
}

bool ClientConnectionsTest::open(RawClient &client) const
{
    return client.connectTo(m_service->port()) && client.handshake() == "HTTP/1.1 101 Switching Protocols";
}

/// The first test: the timer of nothing that came before runs.
void ClientConnectionsTest::whatASentTextLeavesInTheHeapIsGivenBack()
{
    RawClient client;
    QVERIFY(open(client));
    client.send(clientFrame(request("EnableRealtimeSigningNotification?type=1")));
    QVERIFY(client.receives(serverFrame(R"({"API":"EnableRealtimeSigningNotification","Result":"0"})")));
    QTRY_COMPARE_WITH_TIMEOUT(heapTrims.load(), 1, patienceMs);
    WebSocketServiceSignPadEventCallback(1);
    QVERIFY(client.receives(serverFrame(R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"1"})")));
    QTRY_COMPARE_WITH_TIMEOUT(heapTrims.load(), 2, patienceMs);
    client.abort();
    QTRY_COMPARE_WITH_TIMEOUT(heapTrims.load(), 3, patienceMs);
}

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
    RawClient client;
    QVERIFY(open(client));

    const QByteArray name(nameLength, 'n');
    client.send(clientFrame(request("UpdateWPSSettings?id=0&dt=0&af=0&pw=3&name=") + name));
    const QByteArray updated = R"({"API":"UpdateWPSSettings","Result":"0"})";
    QCOMPARE(client.receive(2 + updated.size()), "\x81\x28" + updated);

    client.send(clientFrame(request("GetWPSSettings?id=0")));
    const QByteArray settings =
        R"({"API":"GetWPSSettings","Result":"{\"CurrentPenWidth\":\"3\",\"EnableAutoFit\":\"0\",)"
        R"(\"EnableDateTime\":\"0\",\"Name\":\")"
        + name + R"(\"}"})";
    QCOMPARE(client.receive(header.size()), header);
    QVERIFY(client.receives(settings));
    client.send(clientFrame(request("GetSize"))); // nothing stands between
    QCOMPARE(client.receive(32), "\x81\x1e"
                                 R"({"API":"GetSize","Result":"0"})");
}

void ClientConnectionsTest::binaryFrame_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("header");
    QTest::newRow("none") << QByteArray() << QByteArray::fromHex("8200");
    QTest::newRow("longest with one byte") << QByteArray(125, '\xff') << QByteArray::fromHex("827d");
    QTest::newRow("a million") << QByteArray(1000000, '\0') << QByteArray::fromHex("827f00000000000f4240");
}

void ClientConnectionsTest::binaryFrame()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, header);
    RawClient client;
    QVERIFY(open(client));
    client.send(clientFrame(bytes, '\x82'));
    QCOMPARE(client.receive(header.size()), header);
    QVERIFY(client.receives(bytes));
}

void ClientConnectionsTest::repliesToRequestsInOnePiece()
{
    RawClient client;
    QVERIFY(open(client));
    QByteArray requests;
    QByteArray replies;
    for (int i = 0; i < 1000; ++i) {
        requests += clientFrame(request(i % 2 == 0 ? "GetSize" : "PenID"));
        replies += i % 2 == 0 ? "\x81\x1e"
                                R"({"API":"GetSize","Result":"0"})"
                              : "\x81\x1b"
                                R"({"API":"PenID","Result":""})";
    }
    client.send(requests);
    QCOMPARE(client.receive(replies.size()), replies);
}

void ClientConnectionsTest::nothingBehindTheClose()
{
    RawClient client;
    QVERIFY(open(client));
    const QByteArray close = QByteArray::fromHex("888200000000") + QByteArray::fromHex("03e8");
    client.send(clientFrame(request("GetSize")) + close + clientFrame(request("GetSize")));
    QCOMPARE(client.receive(32), "\x81\x1e"
                                 R"({"API":"GetSize","Result":"0"})");
    QCOMPARE(client.receive(4), QByteArray::fromHex("880203e8"));
    QVERIFY(client.waitForEnd(patienceMs));
    QCOMPARE(client.socket().bytesAvailable(), 0);
}

void ClientConnectionsTest::fragmentsWithAPingAndAPushBetween()
{
    RawClient client;
    QVERIFY(open(client));
    client.send(clientFrame(request("EnableRealtimeSigningNotification?type=1")));
    QVERIFY(client.receives(serverFrame(R"({"API":"EnableRealtimeSigningNotification","Result":"0"})")));
    const QByteArray text = request("GetSize");
    client.send(clientFrame(text.left(5), '\x01') + clientFrame("still there?", '\x89'));
    QVERIFY(client.receives(serverFrame("still there?", '\x8a')));
    WebSocketServiceSignPadEventCallback(1);
    QVERIFY(client.receives(serverFrame(R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"1"})")));
    client.send(clientFrame(text.mid(5, 20), '\0') + clientFrame("again", '\x89') + clientFrame(text.mid(25), '\x80'));
    QVERIFY(client.receives(serverFrame("again", '\x8a')));
    QVERIFY(client.receives(serverFrame(R"({"API":"GetSize","Result":"0"})")));
}

QTEST_GUILESS_MAIN(ClientConnectionsTest)

#include "tst_clientconnections.moc"
