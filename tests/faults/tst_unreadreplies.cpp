// Clients that send ahead of the replies, or leave them unread, against the real program.
#include "tests/faults/support/FaultyWorkplace.h"
#include "tests/unit/support/RawClient.h"

#include <QTest>

namespace {

const char accepted[] = "HTTP/1.1 101 Switching Protocols";

} // namespace

class UnreadRepliesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void everyReplyArrives_data();
    void everyReplyArrives();
    void everyEchoArrives();
    void halfClosedClientGetsEveryReply();
    void othersAreServedMeanwhile();
    void clientThatTakesNothingIsCutOff_data();
    void clientThatTakesNothingIsCutOff();

private:
    bool open(RawClient &client);
    QByteArray request(const char *command) const;
    bool initialise();

    std::unique_ptr<FaultyWorkplace> m_place;
};

void UnreadRepliesTest::init()
{
    m_place = std::make_unique<FaultyWorkplace>();
    QVERIFY(m_place->isUsable());
    QVERIFY(m_place->writeServingSettings());
    QVERIFY(m_place->startServing());
}

void UnreadRepliesTest::cleanup()
{
    QVERIFY(m_place->serves());
    QVERIFY2(m_place->exitsCleanly(), m_place->program().output().constData());
    m_place.reset();
}

bool UnreadRepliesTest::open(RawClient &client)
{
    return client.connectTo(m_place->port()) && client.handshake() == accepted;
}

QByteArray UnreadRepliesTest::request(const char *command) const
{
    return clientFrame("ws://localhost:" + QByteArray::number(m_place->port()) + "/MVSignSDK/" + command);
}

bool UnreadRepliesTest::initialise()
{
    SignClient opener;
    return opener.connectTo(m_place->port())
           && opener.command(QStringLiteral("InitialDevice?id=2&width=800&height=480"))
                  == replyText("InitialDevice", QStringLiteral("1"));
}

void UnreadRepliesTest::everyReplyArrives_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("size");
    QTest::newRow("1500 of 200 kB") << 1500 << 200000;
    QTest::newRow("30000 of 10 kB") << 30000 << 10000;
    QTest::newRow("300 of 1 MB") << 300 << 1000000;
    QTest::newRow("one of 300 MB") << 1 << 300000000;
}

void UnreadRepliesTest::everyReplyArrives()
{
    QFETCH(int, count);
    QFETCH(int, size);
    QVERIFY(m_place->answer("text repeat " + QByteArray::number(size) + " 65\n"));
    QVERIFY(initialise());
    RawClient client;
    QVERIFY(open(client));
    client.send(request("Encode?type=1").repeated(count) + request("GetSize"));
    const QByteArray reply = serverFrame(R"({"API":"Encode","Result":")" + QByteArray(size, 'A') + R"("})");
    for (int i = 0; i < count; ++i)
        QVERIFY2(client.receives(reply), qPrintable(QStringLiteral("reply %1 is missing").arg(i)));
    QVERIFY(client.receives(serverFrame(R"({"API":"GetSize","Result":"0"})")));
}

void UnreadRepliesTest::everyEchoArrives()
{
    RawClient client;
    QVERIFY(open(client));
    QByteArray sent;
    for (int i = 0; i < 300; ++i)
        sent += clientFrame(QByteArray(1000000, char(i)), '\x82');
    client.send(sent + request("GetSize"));
    for (int i = 0; i < 300; ++i)
        QVERIFY2(client.receives(serverFrame(QByteArray(1000000, char(i)), '\x82')),
                 qPrintable(QStringLiteral("echo %1 is missing").arg(i)));
    QVERIFY(client.receives(serverFrame(R"({"API":"GetSize","Result":"0"})")));
}

void UnreadRepliesTest::halfClosedClientGetsEveryReply()
{
    QVERIFY(m_place->answer("text repeat 1000000 65\n"));
    QVERIFY(initialise());
    RawClient client;
    QVERIFY(open(client));
    client.readNothing();
    client.send(request("Encode?type=1").repeated(30));
    client.finishSending();
    QVERIFY(m_place->serves()); // those who are served meanwhile see the end of its sending in time, too
    client.readAgain();
    const QByteArray reply = serverFrame(R"({"API":"Encode","Result":")" + QByteArray(1000000, 'A') + R"("})");
    for (int i = 0; i < 30; ++i)
        QVERIFY2(client.receives(reply), qPrintable(QStringLiteral("reply %1 is missing").arg(i)));
    QVERIFY(client.waitForEnd(patienceMs));
}

void UnreadRepliesTest::othersAreServedMeanwhile()
{
    QVERIFY(m_place->answer("text repeat 1000000 65\n"));
    QVERIFY(initialise());
    const std::optional<long> before = m_place->residentKiB();
    RawClient client;
    QVERIFY(open(client));
    client.readNothing();
    client.send(request("Encode?type=1").repeated(300));
    for (int i = 0; i < 100; ++i)
        QVERIFY(m_place->serves());
    QVERIFY2(m_place->hasGrownByLessThan(40 * 1024, before), "replies are made that nobody reads");
    client.readAgain();
    const QByteArray reply = serverFrame(R"({"API":"Encode","Result":")" + QByteArray(1000000, 'A') + R"("})");
    for (int i = 0; i < 300; ++i)
        QVERIFY2(client.receives(reply), qPrintable(QStringLiteral("reply %1 is missing").arg(i)));
}

void UnreadRepliesTest::clientThatTakesNothingIsCutOff_data()
{
    QTest::addColumn<bool>("binary");
    QTest::newRow("requests with a long reply") << false;
    QTest::newRow("binary messages, echoed") << true;
}

void UnreadRepliesTest::clientThatTakesNothingIsCutOff()
{
    QFETCH(bool, binary);
    QVERIFY(m_place->answer("text repeat 1000000 65\n"));
    QVERIFY(initialise());
    QTRY_COMPARE_WITH_TIMEOUT(m_place->openConnections(), 0, patienceMs);
    const std::optional<long> before = m_place->residentKiB();
    RawClient client;
    QVERIFY(open(client));
    client.readNothing();
    client.send(binary ? clientFrame(QByteArray(1000000, 'x'), '\x82').repeated(300)
                       : request("Encode?type=1").repeated(2000));
    QCOMPARE(m_place->openConnections(), 1);
    // A client that does not read may not see the end.
    QTRY_COMPARE_WITH_TIMEOUT(m_place->openConnections(), 0, patienceMs);
    QVERIFY2(m_place->hasGrownByLessThan(40 * 1024, before), "what nobody reads is hoarded");
}

QTEST_GUILESS_MAIN(UnreadRepliesTest)

#include "tst_unreadreplies.moc"
