// The command-line client against a running service.
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>
#include <QWebSocket>
#include <QWebSocketServer>

namespace {

struct Outcome {
    int status;
    QByteArray output;
    QByteArray errors;
};

Outcome run(const QStringList &arguments)
{
    QProcess client;
    client.start(QStringLiteral(MVSIGNCTL), arguments);
    const bool ended = QTest::qWaitFor([&] { return client.state() == QProcess::NotRunning; }, patienceMs);
    return {ended && client.exitStatus() == QProcess::NormalExit ? client.exitCode() : -1,
            client.readAllStandardOutput(), client.readAllStandardError()};
}

/// The 34 commands with their keys.
const char commandList[] = "Clear\nCloseLCD\nDecode type path data\nDisplayDeviceInfoInLCD show\nEncode type\n"
                           "GetAboutInfo\nGetDecodeFilePath\nGetDeviceConfirmOrCancelKeyStatus\nGetDeviceInfo type\n"
                           "GetFingerPrintImage FPImageOnly\nGetInks\nGetPointer\nGetSize\n"
                           "InitialDevice id width height\nIsValid\nOpenLCD\nPadID\nPenID\n"
                           "SaveDrawingImage type dpi path\nSetClip width height\n"
                           "SetDisplayedFPImageAt CanvasWidth CanvasHeight Left Top Width Height\nSetPenColor R G B\n"
                           "SetPenStyle Style\nSetPenWidth Width\nUninitialDevice\nVersionID\nGetWPSSettings id\n"
                           "UpdateWPSSettings id dt af pw name\nWPSSignConfirmed id\nWPSGetInks\n"
                           "InitialWPSSignCanvas width height\nGetSVGImageBase64Data\n"
                           "EnableRealtimeSigningNotification type\nGetOpaqueInks\n";

} // namespace

class MvsignctlTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void requests_data();
    void requests();
    void rawReply();
    void rawInvalidReply();
    void noConnection();
    void noAnswer();
    void noHandshake();
    void anotherServer_data();
    void anotherServer();
    void connectionLostBeforeTheReply();
    void list();
    void help_data();
    void help();
    void version();
    void wrongUsage_data();
    void wrongUsage();
    void requestOnTheWire();

private:
    QStringList onPort(const QStringList &arguments) const
    {
        return QStringList{QStringLiteral("--port"), QString::number(m_service->port())} + arguments;
    }

    PrivateHome m_home;
    std::unique_ptr<RunningService> m_service;
};

void MvsignctlTest::initTestCase()
{
    m_service.reset(new RunningService);
    QVERIFY(m_service->waitUntilListening());
}

void MvsignctlTest::requests_data()
{
    QTest::addColumn<QString>("arguments"); // separated by "|"
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("output");
    const auto row = [](const char *arguments, int status, const char *output) {
        QTest::newRow(arguments) << QString::fromUtf8(arguments) << status << QByteArray(output);
    };
    row("Clear", 0, "0\n");
    row("IsValid", 0, "0\n");
    row("GetPointer", 0, "[]\n");
    row("PadID", 0, "\n");
    row("SetPenColor|R=1|G=2|B=3", 0, "0\n");
    row("UpdateWPSSettings|id=2|dt=1|af=0|pw=7|name=王 小明", 0, "0\n");
    row("GetWPSSettings|id=2", 0,
        "{\"CurrentPenWidth\":\"7\",\"EnableAutoFit\":\"0\",\"EnableDateTime\":\"1\",\"Name\":\"王 小明\"}\n");
    row("--host|127.0.0.1|Clear", 0, "0\n");
    row("--host=localhost|Clear", 0, "0\n");
    row("Decode|type=1|path=a|data=QQ==", 0, "\n");
    row("SetPenColor|R=1|G=2", 1, "-1\n");
    row("NoSuchCommand", 1, "-1\n");
    row("clear", 1, "-1\n");
}

void MvsignctlTest::requests()
{
    QFETCH(QString, arguments);
    QFETCH(int, status);
    QFETCH(QByteArray, output);
    const Outcome outcome = run(onPort(arguments.split(QLatin1Char('|'))));
    QCOMPARE(outcome.output, output);
    QCOMPARE(outcome.errors.isEmpty(), status == 0);
    QCOMPARE(outcome.status, status);
}

void MvsignctlTest::rawReply()
{
    const Outcome outcome = run(onPort({QStringLiteral("--raw"), QStringLiteral("GetSize")}));
    QCOMPARE(outcome.output, QByteArray("{\"API\":\"GetSize\",\"Result\":\"0\"}\n"));
    QCOMPARE(outcome.status, 0);
}

void MvsignctlTest::rawInvalidReply()
{
    const Outcome outcome = run(onPort({QStringLiteral("--raw"), QStringLiteral("GetSizes?")})); // a tail is no fault
    QCOMPARE(outcome.status, 0);
    const Outcome invalid = run(onPort({QStringLiteral("--raw"), QStringLiteral("Nothing")}));
    QCOMPARE(invalid.output, QByteArray("{\"API\":\"Invalid API request\",\"Result\":\"-1\"}\n"));
    QCOMPARE(invalid.status, 1);
}

void MvsignctlTest::noConnection()
{
    const QString port = QString::number(freePort());
    const Outcome outcome = run({QStringLiteral("--port"), port, QStringLiteral("Clear")});
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QByteArray());
    QVERIFY2(outcome.errors.startsWith("mvsignctl: ") && outcome.errors.contains(port.toLatin1()),
             outcome.errors.constData());
    QCOMPARE(outcome.errors.count('\n'), 1);
}

void MvsignctlTest::noAnswer()
{
    QWebSocketServer silent(QStringLiteral("silent"), QWebSocketServer::NonSecureMode);
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    QElapsedTimer timer;
    timer.start();
    const Outcome outcome = run({QStringLiteral("--host"), QStringLiteral("127.0.0.1"), QStringLiteral("--port"),
                                 QString::number(silent.serverPort()), QStringLiteral("--timeout"),
                                 QStringLiteral("0.5"), QStringLiteral("Clear")});
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QByteArray());
    QVERIFY(outcome.errors.startsWith("mvsignctl: "));
    QVERIFY2(timer.elapsed() >= 500 && timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
}

void MvsignctlTest::noHandshake()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    const Outcome outcome = run({QStringLiteral("--host"), QStringLiteral("127.0.0.1"), QStringLiteral("--port"),
                                 QString::number(silent.serverPort()), QStringLiteral("--timeout"), QStringLiteral("1"),
                                 QStringLiteral("Clear")});
    QCOMPARE(outcome.status, 2);
    QVERIFY(outcome.errors.startsWith("mvsignctl: "));
}

void MvsignctlTest::connectionLostBeforeTheReply()
{
    QWebSocketServer rude(QStringLiteral("rude"), QWebSocketServer::NonSecureMode);
    QVERIFY(rude.listen(QHostAddress::LocalHost));
    connect(&rude, &QWebSocketServer::newConnection, this, [&] {
        QWebSocket *socket = rude.nextPendingConnection();
        socket->setParent(&rude);
        connect(socket, &QWebSocket::textMessageReceived, socket, [socket] { socket->abort(); });
    });
    const Outcome outcome = run({QStringLiteral("--host"), QStringLiteral("127.0.0.1"), QStringLiteral("--port"),
                                 QString::number(rude.serverPort()), QStringLiteral("Clear")});
    QCOMPARE(outcome.status, 2);
    QVERIFY(outcome.errors.startsWith("mvsignctl: "));
}

void MvsignctlTest::anotherServer_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text :
         {"hello", "", "[]", "{\"API\":\"Clear\"}", "{\"API\":\"Clear\",\"Result\":0}", "{\"Result\":\"0\"}"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void MvsignctlTest::anotherServer()
{
    QFETCH(QString, text);
    QWebSocketServer other(QStringLiteral("other"), QWebSocketServer::NonSecureMode);
    QVERIFY(other.listen(QHostAddress::LocalHost));
    connect(&other, &QWebSocketServer::newConnection, this, [&] {
        QWebSocket *socket = other.nextPendingConnection();
        socket->setParent(&other);
        connect(socket, &QWebSocket::textMessageReceived, socket, [=] { socket->sendTextMessage(text); });
    });
    const Outcome outcome = run({QStringLiteral("--host"), QStringLiteral("127.0.0.1"), QStringLiteral("--port"),
                                 QString::number(other.serverPort()), QStringLiteral("Clear")});
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QByteArray());
    QVERIFY2(outcome.errors.contains("is not the signature pad service"), outcome.errors.constData());
}

void MvsignctlTest::list()
{
    const Outcome outcome = run({QStringLiteral("--list")});
    QCOMPARE(outcome.output, QByteArray(commandList));
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.status, 0);
}

void MvsignctlTest::help_data()
{
    QTest::addColumn<QString>("option");
    QTest::newRow("long") << QStringLiteral("--help");
    QTest::newRow("short") << QStringLiteral("-h");
}

void MvsignctlTest::help()
{
    QFETCH(QString, option);
    const Outcome outcome = run({option});
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.errors, QByteArray());
    for (const char *word : {"--host", "--port", "--timeout", "--raw", "--list", "--help", "--version", "key=value"})
        QVERIFY2(outcome.output.contains(word), word);
    QVERIFY(!outcome.output.contains("--help-all"));
}

void MvsignctlTest::version()
{
    const Outcome outcome = run({QStringLiteral("--version")});
    QCOMPARE(outcome.output, QByteArray("mvsignctl " MVSIGNPAD_VERSION "\n"));
    QCOMPARE(outcome.errors, QByteArray());
    QCOMPARE(outcome.status, 0);
}

void MvsignctlTest::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("nothing") << QStringList();
    QTest::newRow("unknown option") << QStringList{QStringLiteral("--colour"), QStringLiteral("Clear")};
    QTest::newRow("port without value") << QStringList{QStringLiteral("Clear"), QStringLiteral("--port")};
    for (const char *port : {"0", "65536", "-1", "http", ""})
        QTest::addRow("port %s", port) << QStringList{QStringLiteral("--port=") + QLatin1String(port),
                                                      QStringLiteral("Clear")};
    for (const char *seconds : {"0", "-1", "soon", "", "nan", "inf", "1e99"})
        QTest::addRow("timeout %s", seconds)
            << QStringList{QStringLiteral("--timeout=") + QLatin1String(seconds), QStringLiteral("Clear")};
}

void MvsignctlTest::wrongUsage()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QByteArray());
    QVERIFY2(outcome.errors.startsWith("mvsignctl: "), outcome.errors.constData());
}

void MvsignctlTest::requestOnTheWire()
{
    QWebSocketServer server(QStringLiteral("server"), QWebSocketServer::NonSecureMode);
    QVERIFY(server.listen(QHostAddress::LocalHost));
    QStringList received;
    connect(&server, &QWebSocketServer::newConnection, this, [&] {
        QWebSocket *socket = server.nextPendingConnection();
        socket->setParent(&server);
        connect(socket, &QWebSocket::textMessageReceived, socket, [&received, socket](const QString &text) {
            received.append(text);
            // A message to all clients comes before the reply.
            socket->sendTextMessage(QStringLiteral(R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"1"})"));
            socket->sendTextMessage(QStringLiteral(R"({"API":"SaveDrawingImage","Result":"签 \n\"quoted\""})"));
        });
    });
    const QString port = QString::number(server.serverPort());
    const Outcome outcome = run({QStringLiteral("--host"), QStringLiteral("127.0.0.1"), QStringLiteral("--port"), port,
                                 QStringLiteral("SaveDrawingImage"), QStringLiteral("type=2"),
                                 QStringLiteral("dpi=300"), QStringLiteral("path=a b&c%20签.png")});
    // The address in the request is the service's own name for itself, and nothing is encoded.
    QCOMPARE(received, QStringList{QStringLiteral("ws://localhost:") + port
                                   + QStringLiteral("/MVSignSDK/SaveDrawingImage?type=2&dpi=300&path=a b&c%20签.png")});
    QCOMPARE(outcome.output, QByteArray("签 \n\"quoted\"\n"));
    QCOMPARE(outcome.status, 0);
}

QTEST_GUILESS_MAIN(MvsignctlTest)

#include "tst_mvsignctl.moc"
