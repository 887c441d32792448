// Clients that break off, hang, come in crowds or send too much, against the real program.
#include "tests/faults/support/FaultyWorkplace.h"
#include "tests/unit/support/RawClient.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <sys/resource.h>
#include <vector>

namespace {

const char accepted[] = "HTTP/1.1 101 Switching Protocols";

/// A text frame's beginning: final, masked with zeroes, of so many bytes.
QByteArray frameHeader(quint32 size)
{
    QByteArray header("\x81\xFF\0\0\0\0", 6);
    for (int shift = 24; shift >= 0; shift -= 8)
        header += static_cast<char>(size >> shift & 0xFF);
    return header + QByteArray(4, '\0');
}

} // namespace

class ConnectionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void clientIsKilledInMidFrame();
    void fiveHundredAreServedAtOnce();
    void twoThousandComeAndGo();
    void halfOpenHandshakesDisturbNobody();
    void longHandshakeIsCutOff();
    void brokenFramesEndTheirConnectionOnly_data();
    void brokenFramesEndTheirConnectionOnly();
    void frameWithoutAMaskIsAnswered();
    void hugeRequestsAreAnswered_data();
    void hugeRequestsAreAnswered();
    void messageBeyondAnyTextEndsItsConnection();
    void descriptorsRunOut();

private:
    std::unique_ptr<FaultyWorkplace> m_place;
    long m_descriptors = 0;
};

void ConnectionsTest::init()
{
    m_place = std::make_unique<FaultyWorkplace>();
    QVERIFY(m_place->isUsable());
    QVERIFY(m_place->writeServingSettings());
    QVERIFY(m_place->startServing());
    QVERIFY(m_place->serves());
    QVERIFY(m_place->desktop().waitForIcon());
    QTRY_COMPARE_WITH_TIMEOUT(m_place->openConnections(), 0, patienceMs);
    m_descriptors = m_place->openDescriptors();
}

void ConnectionsTest::cleanup()
{
    QVERIFY(m_place->serves());
    QTRY_VERIFY2_WITH_TIMEOUT(m_place->openDescriptors() <= m_descriptors, "a connection is left over", patienceMs);
    QVERIFY(m_place->exitsCleanly());
    m_place.reset();
}

void ConnectionsTest::clientIsKilledInMidFrame()
{
    for (int i = 0; i < 50; ++i) {
        RawClient client;
        QVERIFY(client.connectTo(m_place->port()));
        QCOMPARE(client.handshake(), QByteArray(accepted));
        client.send(frameHeader(1000000) + QByteArray(500000, 'x'));
        QVERIFY(m_place->serves());
        client.abort();
    }
}

void ConnectionsTest::fiveHundredAreServedAtOnce()
{
    std::vector<std::unique_ptr<SignClient>> clients(500);
    for (auto &client : clients) {
        client = std::make_unique<SignClient>();
        QVERIFY(client->connectTo(m_place->port()));
    }
    for (auto &client : clients)
        client->sendCommand(QStringLiteral("GetSize"));
    for (auto &client : clients) {
        QVERIFY(client->waitForMessages(1));
        QCOMPARE(client->messages(), QStringList{replyText("GetSize", QStringLiteral("0"))});
    }
    QVERIFY(m_place->openDescriptors() >= m_descriptors + 500);
}

void ConnectionsTest::twoThousandComeAndGo()
{
    std::optional<long> before;
    for (int i = 0; i < 2000; ++i) {
        RawClient client;
        QVERIFY(client.connectTo(m_place->port()));
        if (i % 2 == 1)
            QCOMPARE(client.handshake(), QByteArray(accepted));
        if (i % 4 == 3)
            client.send(frameHeader(10) + "ws:");
        client.abort();
        if (i == 499)
            before = m_place->residentKiB(); // what is allocated once has been by now
    }
    QVERIFY(m_place->serves());
    QVERIFY2(m_place->hasGrownByLessThan(4 * 1024, before), "each connection leaves memory behind");
}

void ConnectionsTest::halfOpenHandshakesDisturbNobody()
{
    const QByteArray beginnings[] = {"", "G", "GET / HTTP/1.1\r\n", "GET / HTTP/1.1\r\nHost: localhost\r\nUpgr"};
    std::vector<std::unique_ptr<RawClient>> clients(100);
    std::size_t i = 0;
    for (auto &client : clients) {
        client = std::make_unique<RawClient>();
        QVERIFY(client->connectTo(m_place->port()));
        client->send(beginnings[i++ % 4]);
    }
    for (int request = 0; request < 20; ++request)
        QVERIFY(m_place->serves());
    for (auto &client : clients)
        QVERIFY(client->waitForEnd(patienceMs));
}

void ConnectionsTest::longHandshakeIsCutOff()
{
    const std::optional<long> before = m_place->residentKiB();
    RawClient client;
    QVERIFY(client.connectTo(m_place->port()));
    client.send("GET / HTTP/1.1\r\n");
    client.send(("X-Header: " + QByteArray(8000, 'x') + "\r\n").repeated(2000)); // 16 MB
    QTRY_COMPARE_WITH_TIMEOUT(client.socket().bytesToWrite(), qint64(0), patienceMs);
    QVERIFY(m_place->serves());
    QVERIFY2(m_place->hasGrownByLessThan(8 * 1024, before), "the service hoards an endless handshake");
    QVERIFY(client.waitForEnd(patienceMs));
}

void ConnectionsTest::brokenFramesEndTheirConnectionOnly_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<QByteArray>("code");
    const QByteArray protocolError("\x03\xEA", 2); // 1002
    const QByteArray notUtf8("\x03\xEF", 2);       // 1007
    const QByteArray tooLarge("\x03\xF1", 2);      // 1009
    QTest::newRow("reserved bits") << QByteArray("\xF1\x80\0\0\0\0", 6) << protocolError;
    QTest::newRow("unknown kind") << QByteArray("\x83\x80\0\0\0\0", 6) << protocolError;
    QTest::newRow("continues nothing") << QByteArray("\x80\x80\0\0\0\0", 6) << protocolError;
    QTest::newRow("largest size") << QByteArray("\x81\xFF\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0\0\0\0", 14) << tooLarge;
    QTest::newRow("negative size") << QByteArray("\x81\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0\0\0\0", 14)
                                   << protocolError;
    QTest::newRow("control frame of 126 bytes")
        << QByteArray("\x89\xFE\0\x7E\0\0\0\0", 8) + QByteArray(126, 'x') << protocolError;
    QTest::newRow("not UTF-8") << QByteArray("\x81\x82\0\0\0\0\xC0\x80", 8) << notUtf8;
}

void ConnectionsTest::brokenFramesEndTheirConnectionOnly()
{
    QFETCH(QByteArray, frame);
    QFETCH(QByteArray, code);
    RawClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(client.handshake(), QByteArray(accepted));
    client.send(frame);
    QVERIFY(m_place->serves());
    const QByteArray close = client.receive(4);
    QCOMPARE(close.left(1) + close.mid(2), "\x88" + code);
    QVERIFY(client.waitForEnd(patienceMs));
}

/// A client must mask its frames; Qt does not insist on it.
void ConnectionsTest::frameWithoutAMaskIsAnswered()
{
    RawClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(client.handshake(), QByteArray(accepted));
    client.send(QByteArray("\x81\x01x", 3));
    QVERIFY(client.receives(serverFrame(R"({"API":"Invalid API request","Result":"-1"})")));
}

void ConnectionsTest::hugeRequestsAreAnswered_data()
{
    QTest::addColumn<QString>("request");
    QTest::newRow("10 MB of parameters") << QStringLiteral("SetPenWidth?") + QStringLiteral("a=1&").repeated(2500000);
    QString many = QStringLiteral("UpdateWPSSettings?");
    for (int i = 0; i < 1000000; ++i)
        many += QStringLiteral("k%1=&").arg(i);
    QTest::newRow("a million keys") << many;
    QTest::newRow("10 MB of equal signs") << QStringLiteral("SetPenColor?") + QString(10000000, QLatin1Char('='));
    QTest::newRow("10 MB that is no address") << QString(10000000, QLatin1Char('w'));
}

void ConnectionsTest::hugeRequestsAreAnswered()
{
    QFETCH(QString, request);
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(client.command(request), replyText("Invalid API request", QStringLiteral("-1")));
}

void ConnectionsTest::messageBeyondAnyTextEndsItsConnection()
{
#if QT_VERSION < QT_VERSION_CHECK(5, 15, 0)
    QSKIP("Qt limits the size of messages from 5.15 on");
#endif
    RawClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(client.handshake(), QByteArray(accepted));
    client.send(frameHeader(1000000001));
    // Not because the rest of the frame is missing, for which Qt waits.
    const QByteArray close = client.receive(4);
    QCOMPARE(close.left(1) + close.mid(2), QByteArray("\x88\x03\xf1", 3)); // 1009: too large
    QVERIFY(client.waitForEnd(patienceMs));
}

/// The program may have as many descriptors as the system lets it; when these are used up, clients wait.
void ConnectionsTest::descriptorsRunOut()
{
    QVERIFY(m_place->exitsCleanly());
    QVERIFY(m_place->startServing({QStringLiteral("prlimit"), QStringLiteral("--nofile=120:200")}));
    const auto pid = static_cast<pid_t>(m_place->program().process().processId());
    rlimit limit;
    QCOMPARE(prlimit(pid, RLIMIT_NOFILE, nullptr, &limit), 0);
    QCOMPARE(limit.rlim_cur, rlim_t(200));
    QVERIFY(m_place->desktop().waitForIcon());

    SignClient served;
    QVERIFY(served.connectTo(m_place->port()));
    std::vector<RawClient> crowd(150); // the system lets some fifty more wait
    for (RawClient &client : crowd) {
        QVERIFY(client.connectTo(m_place->port()));
        client.startHandshake();
    }
    QCOMPARE(crowd[0].receive(12), QByteArray("HTTP/1.1 101"));
    QTRY_VERIFY_WITH_TIMEOUT(m_place->openDescriptors() > 125, patienceMs);
    // Who is connected notices nothing: there are descriptors for files.
    QCOMPARE(served.command(QStringLiteral("UpdateWPSSettings?id=1&dt=0&af=0&pw=7&name=n")),
             replyText("UpdateWPSSettings", QStringLiteral("0")));
    const QDir settings = QFileInfo(m_place->desktop().settingsFile()).dir();
    QVERIFY(settings.exists(QStringLiteral("MVeSign_WPS.conf")));
    QVERIFY(m_place->openDescriptors() < 190);
    const std::optional<long> before = m_place->processorTicks();
    for (int i = 0; i < 20; ++i) {
        QVERIFY(served.command(QStringLiteral("GetSize")) == replyText("GetSize", QStringLiteral("0")));
        QTest::qWait(50);
    }
    const std::optional<long> after = m_place->processorTicks();
    QVERIFY(before && after);
    QVERIFY2(*after < *before + 30, "who waits keeps the service busy");

    for (std::size_t i = 0; i < 100; ++i) // each that leaves lets one in
        crowd[i].abort();
    QCOMPARE(crowd[149].receive(12), QByteArray("HTTP/1.1 101"));
}

QTEST_GUILESS_MAIN(ConnectionsTest)

#include "tst_connections.moc"
