// What a client may send, over a real connection: which texts are taken for which command, and what comes back.
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/Replies.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QElapsedTimer>
#include <QTest>

namespace {

const QString invalid = QStringLiteral(R"({"API":"Invalid API request","Result":"-1"})");
// Without a pad and with these settings every command below has one fixed answer.
const char settings[] = "[Settings]\n"
                        "EnableDateTime_WPS=true\nEnableAutoFit_WPS=false\nPenWidth_WPS=11\nName_WPS=Writer\n"
                        "EnableDateTime_ET=false\nEnableAutoFit_ET=true\nPenWidth_ET=22\nName_ET=Sheet\n"
                        "EnableDateTime_WPP=true\nEnableAutoFit_WPP=true\nPenWidth_WPP=33\nName_WPP=Slides\n";
const QString writer = settingsReply("11", "0", "1", QStringLiteral("Writer"));
const QString sheet = settingsReply("22", "1", "0", QStringLiteral("Sheet"));
const QString slides = settingsReply("33", "1", "1", QStringLiteral("Slides"));
const QString clear = QStringLiteral(R"({"API":"Clear","Result":"0"})");
const QString isValid = QStringLiteral(R"({"API":"IsValid","Result":"0"})");

} // namespace

class RequestsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();
    void answers_data();
    void answers();
    void hugeMessages_data();
    void hugeMessages();
    void otherServiceOtherPort();

private:
    /// PORT in a row stands for the service's own port.
    QString spelled(QString text) const
    {
        return text.replace(QLatin1String("PORT"), QString::number(m_service->port()));
    }

    PrivateHome m_home;
    WarningTrap m_warnings;
    std::unique_ptr<RunningService> m_service;
    SignClient m_client;
};

void RequestsTest::initTestCase()
{
    m_home.writeConfig(QStringLiteral("MVeSign_WPS"), settings);
    m_service.reset(new RunningService);
    QVERIFY(m_service->waitUntilListening());
    QVERIFY(m_client.connectTo(m_service->port()));
}

void RequestsTest::cleanupTestCase()
{
    m_service.reset();
    QCOMPARE(m_warnings.taken(), QStringList());
}

void RequestsTest::cleanup()
{
    QCOMPARE(m_warnings.taken(), QStringList());
}

void RequestsTest::answers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reply");
    const auto row = [](const char *name, const QString &text, const QString &reply) {
        QTest::newRow(name) << text << reply;
    };
    const auto raw = [row](const char *name, const char *text, const QString &reply = invalid) {
        row(name, QString::fromUtf8(text), reply);
    };
    const auto call = [row](const char *name, const char *text, const QString &reply = invalid) {
        row(name, QStringLiteral("ws://localhost:PORT/MVSignSDK/") + QString::fromUtf8(text), reply);
    };

    // What stands before the name.
    raw("exact prefix", "ws://localhost:PORT/MVSignSDK/Clear", clear);
    raw("empty message", "");
    raw("single character", "w");
    raw("no URL at all", "Clear");
    raw("space first", " ws://localhost:PORT/MVSignSDK/Clear");
    raw("line feed first", "\nws://localhost:PORT/MVSignSDK/Clear");
    row("byte order mark first", QChar(0xfeff) + QStringLiteral("ws://localhost:PORT/MVSignSDK/Clear"), invalid);
    row("NUL first", QChar(0) + QStringLiteral("ws://localhost:PORT/MVSignSDK/Clear"), invalid);
    raw("secure scheme", "wss://localhost:PORT/MVSignSDK/Clear");
    raw("http scheme", "http://localhost:PORT/MVSignSDK/Clear");
    raw("capital scheme", "WS://localhost:PORT/MVSignSDK/Clear");
    raw("one slash missing", "ws:/localhost:PORT/MVSignSDK/Clear");
    raw("address instead of name", "ws://127.0.0.1:PORT/MVSignSDK/Clear");
    raw("IPv6 address", "ws://[::1]:PORT/MVSignSDK/Clear");
    raw("capital host", "ws://LOCALHOST:PORT/MVSignSDK/Clear");
    raw("full host name", "ws://localhost.localdomain:PORT/MVSignSDK/Clear");
    raw("user in the URL", "ws://me@localhost:PORT/MVSignSDK/Clear");
    raw("no port", "ws://localhost/MVSignSDK/Clear");
    raw("empty port", "ws://localhost:/MVSignSDK/Clear");
    raw("other port", "ws://localhost:1/MVSignSDK/Clear");
    raw("port with a digit more", "ws://localhost:PORT0/MVSignSDK/Clear");
    raw("port with a zero before it", "ws://localhost:0PORT/MVSignSDK/Clear");
    raw("lower-case path", "ws://localhost:PORT/mvsignsdk/Clear");
    raw("capital path", "ws://localhost:PORT/MVSIGNSDK/Clear");
    raw("no path", "ws://localhost:PORT/Clear");
    raw("path twice", "ws://localhost:PORT/MVSignSDK/MVSignSDK/Clear");
    raw("double slash before the name", "ws://localhost:PORT/MVSignSDK//Clear");
    raw("no slash behind the path", "ws://localhost:PORT/MVSignSDKClear");
    raw("prefix cut short", "ws://localhost:PORT/MVSignSDK");
    raw("prefix in the middle", "x ws://localhost:PORT/MVSignSDK/Clear");
    raw("prefix twice", "ws://localhost:PORT/MVSignSDK/ws://localhost:PORT/MVSignSDK/Clear");

    // The name.
    call("no name", "");
    call("query without a name", "?id=2");
    call("unknown name", "Reset");
    call("lower-case name", "clear");
    call("capital name", "CLEAR");
    call("name of the settings, lower case", "getWPSSettings?id=2");
    call("name cut short", "Clea");
    call("name without its last letter", "GetWPSSetting");
    call("space before the name", " Clear");
    call("percent-encoded name", "%43lear");
    call("accent in the name", "Cl\u00e9ar");
    call("full-width letter in the name", "\uff23lear");
    row("NUL in the name", QStringLiteral("ws://localhost:PORT/MVSignSDK/Cl") + QChar(0) + QStringLiteral("ear"),
        invalid);
    call("device spelling of UninitialDevice", "UnInitialDevice");
    call("device spelling of SaveDrawingImage", "SaveDrawImage?type=1&dpi=1&path=a");
    call("tail of letters", "ClearNow", clear);
    call("tail of another name", "ClearIsValid", clear);
    call("tail with a slash", "Clear/", clear);
    call("tail with a space", "Clear ", clear);
    call("tail with a line feed", "Clear\n", clear);
    call("tail with a combining accent", "Clear\u0301", clear);
    row("tail with NUL", QStringLiteral("ws://localhost:PORT/MVSignSDK/Clear") + QChar(0) + QStringLiteral("x"), clear);
    call("tail before the query", "GetWPSSettingsNow?id=2", sheet);
    call("IsValid", "IsValid", isValid);
    call("GetSizeNow", "GetSizeNow", QStringLiteral(R"({"API":"GetSize","Result":"0"})"));
    call("name that is the start of a longer text", "GetInksAndMore",
         QStringLiteral(R"({"API":"GetInks","Result":""})"));

    // A command without parameters does not look at the query.
    call("ignored query", "IsValid?foo=bar", isValid);
    call("ignored empty query", "IsValid?", isValid);
    call("ignored rubbish", "IsValid?&&&==??\xc2\x80", isValid);

    // The query.
    call("one pair", "GetWPSSettings?id=2", sheet);
    call("no query", "GetWPSSettings");
    call("pair without question mark", "GetWPSSettings&id=2");
    call("empty query, one empty key", "GetWPSSettings?", writer);
    call("two empty pieces are one key", "GetWPSSettings?&", writer);
    call("many empty pieces are one key", "GetWPSSettings?&&&&&&&&&&", writer);
    call("empty piece at the end", "GetWPSSettings?id=2&");
    call("empty piece at the start", "GetWPSSettings?&id=2");
    call("one key too many", "GetWPSSettings?id=2&x=1");
    call("seven keys", "GetWPSSettings?a=1&b=2&c=3&d=4&e=5&f=6&g=7");
    call("repeated key, the last counts", "GetWPSSettings?id=1&id=2", sheet);
    call("repeated key three times", "GetWPSSettings?id=1&id=2&id=3", slides);
    call("repeated key, the last is empty", "GetWPSSettings?id=2&id", writer);
    call("repeated key, the first is empty", "GetWPSSettings?id&id=2", sheet);
    call("misspelt key", "GetWPSSettings?ident=2", writer);
    call("key in capitals", "GetWPSSettings?ID=2", writer);
    call("key with space", "GetWPSSettings? id=2", writer);
    call("percent-encoded key", "GetWPSSettings?i%64=2", writer);
    call("key without equals sign", "GetWPSSettings?id", writer);
    call("key without value", "GetWPSSettings?id=", writer);
    call("value without key", "GetWPSSettings?=2", writer);
    call("second equals sign", "GetWPSSettings?id=2=3", sheet);
    call("two equals signs in a row", "GetWPSSettings?id==2", writer);
    call("second question mark in the value", "GetWPSSettings?id=2?x", writer);
    call("two question marks in a row", "GetWPSSettings??id=2", writer);
    call("question mark before the key's", "GetWPSSettings?x?id=2", writer);
    call("fragment", "GetWPSSettings?id=2#3", writer);
    call("semicolon", "GetWPSSettings?id=2;x=1", writer);

    // Numbers.
    call("third number", "GetWPSSettings?id=3", slides);
    call("first number", "GetWPSSettings?id=1", writer);
    call("unknown number", "GetWPSSettings?id=7", writer);
    call("no number", "GetWPSSettings?id=x", writer);
    call("negative number", "GetWPSSettings?id=-2", writer);
    call("number with plus sign", "GetWPSSettings?id=+2", sheet);
    call("two signs", "GetWPSSettings?id=++2", writer);
    call("leading zeros", "GetWPSSettings?id=0002", sheet);
    call("space around the number", "GetWPSSettings?id=  2 ", sheet);
    call("tab and line feed around the number", "GetWPSSettings?id=\t2\r\n", sheet);
    call("space in the number", "GetWPSSettings?id=2 2", writer);
    call("fraction", "GetWPSSettings?id=2.0", writer);
    call("exponent", "GetWPSSettings?id=2e0", writer);
    call("hexadecimal", "GetWPSSettings?id=0x2", writer);
    call("thousands separator", "GetWPSSettings?id=0,002", writer);
    call("letter behind", "GetWPSSettings?id=2a", writer);
    call("2^31 + 2", "GetWPSSettings?id=2147483650", writer);
    call("2^32 + 2", "GetWPSSettings?id=4294967298", writer);
    call("2^64 + 2", "GetWPSSettings?id=18446744073709551618", writer);
    call("a number of 40 digits", "GetWPSSettings?id=2222222222222222222222222222222222222222", writer);
    call("percent-encoded number", "GetWPSSettings?id=%32", writer);
    call("full-width digit", "GetWPSSettings?id=\uff12", writer);
    call("Arabic digit", "GetWPSSettings?id=\u0662", writer);
    row("NUL behind the number", QStringLiteral("ws://localhost:PORT/MVSignSDK/GetWPSSettings?id=2") + QChar(0),
        writer);
    row("NUL before the number",
        QStringLiteral("ws://localhost:PORT/MVSignSDK/GetWPSSettings?id=") + QChar(0) + QLatin1Char('2'), writer);
}

void RequestsTest::answers()
{
    QFETCH(QString, text);
    QFETCH(QString, reply);
    QCOMPARE(m_client.request(spelled(text)), reply);
    // One message, one reply: the next to come belongs to the next request.
    QCOMPARE(m_client.command(QStringLiteral("IsValid")), isValid);
    QVERIFY(m_client.isConnected());
}

void RequestsTest::hugeMessages_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("reply");
    const QString url = QStringLiteral("ws://localhost:PORT/MVSignSDK/");
    const QString filler(10 * 1024 * 1024, QLatin1Char('x'));
    QTest::newRow("no prefix") << filler << invalid;
    QTest::newRow("tail") << url + QStringLiteral("Clear") + filler << clear;
    QTest::newRow("ignored query") << url + QStringLiteral("IsValid?") + filler << isValid;
    QTest::newRow("long key") << url + QStringLiteral("GetWPSSettings?") + filler << writer;
    QTest::newRow("long value") << url + QStringLiteral("GetWPSSettings?id=") + filler << writer;
    QTest::newRow("long second value") << url + QStringLiteral("GetWPSSettings?id=2=") + filler << sheet;
    QTest::newRow("two million pieces of one key")
        << url + QStringLiteral("GetWPSSettings?") + QStringLiteral("id=1&").repeated(2000000) + QStringLiteral("id=3")
        << slides;
    QTest::newRow("ten million empty pieces")
        << url + QStringLiteral("GetWPSSettings?") + QString(10000000, QLatin1Char('&')) << writer;
    QString keys = url + QStringLiteral("GetWPSSettings?id=2");
    for (int i = 0; i < 1000000; ++i)
        keys += QStringLiteral("&k%1=1").arg(i);
    QTest::newRow("a million keys") << keys << invalid;
}

void RequestsTest::hugeMessages()
{
    QFETCH(QString, text);
    QFETCH(QString, reply);
    QCOMPARE(m_client.request(spelled(text)), reply);
    QCOMPARE(m_client.command(QStringLiteral("IsValid")), isValid);
}

void RequestsTest::otherServiceOtherPort()
{
    RunningService other;
    QVERIFY(other.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(other.port()));
    const QString own = QStringLiteral("ws://localhost:%1/MVSignSDK/GetSize").arg(m_service->port());
    QCOMPARE(client.request(own), invalid);
    QCOMPARE(client.command(QStringLiteral("GetSize")), QStringLiteral(R"({"API":"GetSize","Result":"0"})"));
    QCOMPARE(m_client.request(own), QStringLiteral(R"({"API":"GetSize","Result":"0"})"));
}

QTEST_GUILESS_MAIN(RequestsTest)

#include "tst_requests.moc"
