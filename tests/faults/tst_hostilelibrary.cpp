// A pad library that answers as no sound library does, under the real program.
#include "tests/faults/support/FaultyWorkplace.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/RawClient.h"

#include <QTest>

namespace {

/// What a library of a pad can be asked for, each with what has no library's answer in its reply.
const char *const everyCommand[] = {
    "Clear",
    "OpenLCD",
    "CloseLCD",
    "Decode?type=6&path=faults.dat&data=W10=",
    "DisplayDeviceInfoInLCD?show=1",
    "Encode?type=3",
    "GetAboutInfo",
    "GetDecodeFilePath",
    "GetDeviceConfirmOrCancelKeyStatus",
    "GetDeviceInfo?type=1",
    "GetDeviceInfo?type=2",
    "GetDeviceInfo?type=3",
    "GetDeviceInfo?type=4",
    "GetDeviceInfo?type=5",
    "GetDeviceInfo?type=6",
    "GetDeviceInfo?type=7",
    "GetFingerPrintImage?FPImageOnly=0",
    "GetInks",
    "GetPointer",
    "GetSize",
    "IsValid",
    "PadID",
    "PenID",
    "SaveDrawingImage?type=3&dpi=300&path=faults.png",
    "SetClip?width=5&height=5",
    "SetDisplayedFPImageAt?CanvasWidth=1&CanvasHeight=1&Left=1&Top=1&Width=1&Height=1",
    "SetPenColor?R=0&G=0&B=255",
    "SetPenStyle?Style=1",
    "SetPenWidth?Width=3",
    "VersionID",
    "WPSSignConfirmed?id=1",
    "WPSGetInks",
    "InitialWPSSignCanvas?width=480&height=320",
    "GetSVGImageBase64Data",
    "EnableRealtimeSigningNotification?type=2",
    "GetOpaqueInks",
    "UninitialDevice",
};

/// Two million points and texts of 100 MB take their time, more so in a sanitizer's build.
const int heavyAnswerMs = 120000;

QString initialise(int device)
{
    return QStringLiteral("InitialDevice?id=%1&width=480&height=320").arg(device);
}

} // namespace

class HostileLibraryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void everyCommandIsAnswered_data();
    void everyCommandIsAnswered();
    void answersArePassedOn_data();
    void answersArePassedOn();
    void twoMillionPointsTravel();
    void hugeTextsTravel();
    void blockedPadLetsTheOthersWait();
    void blockedPadLetsTheMenuWait();
    void libraryIsReplaced();

private:
    std::unique_ptr<FaultyWorkplace> m_place;
};

void HostileLibraryTest::init()
{
    m_place = std::make_unique<FaultyWorkplace>();
    QVERIFY(m_place->isUsable());
    QVERIFY(m_place->writeServingSettings());
    QVERIFY(m_place->answer(""));
    QVERIFY(m_place->startServing());
}

void HostileLibraryTest::cleanup()
{
    QVERIFY(m_place->exitsCleanly());
    m_place.reset();
}

void HostileLibraryTest::everyCommandIsAnswered_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("null") << QByteArray("text null\n");
    QTest::newRow("negative counts and codes") << QByteArray("number -2147483648\npoints -2147483648\n");
    QTest::newRow("largest codes") << QByteArray("number 2147483647\n");
    QTest::newRow("empty texts") << QByteArray("text repeat 0 65\npoints 3\n");
    QTest::newRow("not UTF-8") << QByteArray("text repeat 1000 255\nfill 192\npoints 100\n");
    QTest::newRow("halves of characters") << QByteArray("text repeat 1001 237\nfill 237\npoints 100\n");
    QTest::newRow("unterminated buffers") << QByteArray("fill 65\n");
    QTest::newRow("buffers of quotation marks") << QByteArray("fill 34\ntext repeat 100000 34\n");
}

void HostileLibraryTest::everyCommandIsAnswered()
{
    QFETCH(QByteArray, script);
    QVERIFY(m_place->answer(script));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    for (const int device : {2, 5, 7, 3, 4}) {
        QCOMPARE(client.command(initialise(device), heavyAnswerMs), replyText("InitialDevice", QStringLiteral("1")));
        for (const char *command : everyCommand) {
            const QString request = QString::fromLatin1(command);
            const QString reply = client.command(request, heavyAnswerMs);
            const QString api = QStringLiteral("{\"API\":\"%1\",").arg(request.section(QLatin1Char('?'), 0, 0));
            QVERIFY2(reply.startsWith(api) && reply.endsWith(QLatin1String("\"}")), command);
        }
    }
}

void HostileLibraryTest::answersArePassedOn_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *script, const char *command, const QString &result) {
        QTest::addRow("%s to %s", script, command) << QByteArray(script) << QString::fromLatin1(command) << result;
    };
    for (const char *command : {"Encode?type=3", "GetInks", "GetOpaqueInks", "WPSGetInks", "GetSVGImageBase64Data"})
        row("text null", command, QString());
    row("text null\npoints 5", "GetPointer", QStringLiteral("[]"));
    row("points -5", "GetSize", QStringLiteral("-5"));
    row("points -5", "GetPointer", QStringLiteral("[]"));
    row("points -5", "Decode?type=6&path=x&data=y", QStringLiteral("[]"));
    row("text repeat 3 255", "Encode?type=3", QString(3, QChar(0xFFFD)));
    row("fill 65", "PadID", QString(32, QLatin1Char('A')));
    row("fill 65", "PenID", QString(32, QLatin1Char('A')));
    row("fill 65", "VersionID", QString(32, QLatin1Char('A')));
    row("fill 65", "GetAboutInfo", QString(256, QLatin1Char('A')));
    row("fill 65", "GetDeviceInfo?type=5", QString(256, QLatin1Char('A')));
    row("fill 255", "GetDeviceInfo?type=2", QStringLiteral("-1,-1"));
    for (const char *byte : {"0", "1", "2", "128", "255"}) {
        const QString flag = QString::number(static_cast<int>(*byte != '0'));
        for (const char *command :
             {"InitialWPSSignCanvas?width=1&height=1", "EnableRealtimeSigningNotification?type=2"})
            row(qPrintable(QStringLiteral("number ") + QLatin1String(byte)), command, flag);
        row(qPrintable(QStringLiteral("opened ") + QLatin1String(byte)), "InitialDevice?id=2&width=1&height=1", flag);
    }
    row("number -2147483648", "SaveDrawingImage?type=1&dpi=1&path=x", QStringLiteral("-2147483648"));
}

void HostileLibraryTest::answersArePassedOn()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, command);
    QFETCH(QString, result);
    QVERIFY(m_place->answer(script));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    client.command(initialise(2));
    QCOMPARE(client.command(command),
             replyText(command.section(QLatin1Char('?'), 0, 0).toLatin1().constData(), result));
}

void HostileLibraryTest::twoMillionPointsTravel()
{
    QVERIFY(m_place->answer("points 2000000\ntext repeat 1 55\n"));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    client.command(initialise(2));
    const QString reply = client.command(QStringLiteral("GetPointer"), heavyAnswerMs);
    QVERIFY(reply.startsWith(
        QLatin1String("{\"API\":\"GetPointer\",\"Result\":\"[{\\\"Time\\\":\\\"7\\\",\\\"bStrokeEnd\\\":\\\"0\\\","
                      "\\\"pressure\\\":\\\"0\\\",\\\"x\\\":\\\"0\\\",")));
    QVERIFY(reply.endsWith(QLatin1String("\\\"y\\\":\\\"0\\\"}]\"}")));
    QCOMPARE(reply.count(QLatin1Char('{')), 2000001);
    QVERIFY(m_place->serves());
}

void HostileLibraryTest::hugeTextsTravel()
{
    QVERIFY(m_place->answer("text repeat 100000000 65\n"));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    client.command(initialise(2));
    const std::optional<long> before = m_place->residentKiB();
    for (const char *command : {"Encode?type=3", "GetSVGImageBase64Data", "GetInks"}) {
        const QString reply = client.command(QString::fromLatin1(command), heavyAnswerMs);
        QVERIFY2(reply.count(QLatin1Char('A')) >= 100000000, command);
    }
    // A picture that has not changed is not sent again.
    QCOMPARE(client.command(QStringLiteral("GetOpaqueInks"), heavyAnswerMs), replyText("GetOpaqueInks", QString()));
    client.forget();
    client.command(QStringLiteral("UninitialDevice"));
    QTRY_VERIFY2_WITH_TIMEOUT(m_place->hasGrownByLessThan(100 * 1024, before),
                              "the memory of the texts is not given back", patienceMs);
}

void HostileLibraryTest::blockedPadLetsTheOthersWait()
{
    QVERIFY(m_place->answer("block Clear\n"));
    SignClient blocker;
    QVERIFY(blocker.connectTo(m_place->port()));
    blocker.command(initialise(2));
    QStringList order;
    SignClient clients[3];
    for (int i = 0; i < 3; ++i) {
        QVERIFY(clients[i].connectTo(m_place->port()));
        connect(&clients[i].socket(), &QWebSocket::textMessageReceived, this,
                [&order, i](const QString &reply) { order += QString::number(i) + reply.mid(7, 5); });
    }
    blocker.sendCommand(QStringLiteral("Clear"));
    QVERIFY(m_place->waitUntilBlocked(QStringLiteral("Clear")));
    for (SignClient &client : clients)
        client.sendCommand(QStringLiteral("PadID"));
    for (SignClient &client : clients)
        client.sendCommand(QStringLiteral("PenID"));
    RawClient late;
    QVERIFY(late.connectTo(m_place->port())); // to the system, which keeps it for the service
    late.startHandshake();
    // All that was sent lies unread before the program, and nothing in the program is about to read it.
    const auto isDecided = [&] { return m_place->unreadConnections() == 4 || !order.isEmpty(); };
    QVERIFY2(QTest::qWaitFor(isDecided, patienceMs), qPrintable(QString::number(m_place->unreadConnections())));
    QTRY_COMPARE_WITH_TIMEOUT(m_place->restlessThreads(), QStringList(), patienceMs);
    QCOMPARE(order, QStringList());
    QCOMPARE(m_place->unreadConnections(), 4);
    QCOMPARE(blocker.messages().size(), 1);
    QVERIFY(m_place->unblock(QStringLiteral("Clear")));
    QVERIFY(blocker.waitForMessages(2));
    QTRY_COMPARE_WITH_TIMEOUT(order.size(), 6, patienceMs);
    QVERIFY(late.receives("HTTP/1.1 101 Switching Protocols"));
    // One client after the other, and the requests of each in their order.
    for (const char *pair : {"0\"PadI 0\"PenI", "1\"PadI 1\"PenI", "2\"PadI 2\"PenI"}) {
        const QStringList both = QString::fromLatin1(pair).split(QLatin1Char(' '));
        QVERIFY(order.indexOf(both.at(0)) >= 0 && order.indexOf(both.at(0)) < order.indexOf(both.at(1)));
    }
}

void HostileLibraryTest::blockedPadLetsTheMenuWait()
{
    QVERIFY(m_place->exitsCleanly());
    m_place->program().switchLogOn();
    QVERIFY(m_place->startServing());
    const QString asksForTheEnd =
        logLine("SysTrayMenuMgr::OpenWebSocketService()", "b4 call m_pWebSocketThread->quit()...");
    const QString hasSeenTheEnd =
        logLine("SysTrayMenuMgr::OpenWebSocketService()", "after call m_pWebSocketThread = nullptr...");
    QVERIFY(m_place->answer("block Clear\n"));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    client.command(initialise(2));
    client.sendCommand(QStringLiteral("Clear"));
    QVERIFY(m_place->waitUntilBlocked(QStringLiteral("Clear")));
    QVERIFY(m_place->desktop().waitForIcon());
    QVERIFY(m_place->toggleService());
    QTRY_VERIFY_WITH_TIMEOUT(maskedLines(mainLog()).contains(asksForTheEnd), patienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(m_place->restlessThreads(), QStringList(), patienceMs);
    QVERIFY(!maskedLines(mainLog()).contains(hasSeenTheEnd));
    QVERIFY(client.isConnected());
    QVERIFY(m_place->unblock(QStringLiteral("Clear")));
    QVERIFY(client.waitForDisconnect());
    QTRY_VERIFY_WITH_TIMEOUT(maskedLines(mainLog()).contains(hasSeenTheEnd), patienceMs);
    QVERIFY(TrayProgram::waitForSilence(m_place->port()));
    QTRY_VERIFY_WITH_TIMEOUT(m_place->desktop().settingsLines().contains(QLatin1String("StartWebService=false")),
                             patienceMs);
    QVERIFY(m_place->toggleService());
    QVERIFY(TrayProgram::waitForListening(m_place->port()));
    QVERIFY(m_place->serves());
}

void HostileLibraryTest::libraryIsReplaced()
{
    QVERIFY(m_place->answer("fill 65\n"));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(client.command(initialise(2)), replyText("InitialDevice", QStringLiteral("1")));
    QCOMPARE(client.command(QStringLiteral("PadID")), replyText("PadID", QString(32, QLatin1Char('A'))));

    // No library: what is in its place now is a text. The one in use serves until the next initialisation.
    QVERIFY(m_place->replaceLibrary(QStringLiteral("/etc/passwd")));
    QCOMPARE(client.command(QStringLiteral("PadID")), replyText("PadID", QString(32, QLatin1Char('A'))));
    QCOMPARE(client.command(initialise(2)), replyText("InitialDevice", QStringLiteral("0")));
    QCOMPARE(client.command(QStringLiteral("PadID")), replyText("PadID", QString()));

    QVERIFY(QFile::remove(m_place->file(QStringLiteral("libmvsignpadsdk.so"))));
    QCOMPARE(client.command(initialise(5)), replyText("InitialDevice", QStringLiteral("0")));
    QVERIFY(m_place->replaceLibrary(QStringLiteral(MVSIGNPAD_HOSTILE_SDK)));
    QCOMPARE(client.command(initialise(5)), replyText("InitialDevice", QStringLiteral("1")));
    QCOMPARE(client.command(QStringLiteral("PadID")), replyText("PadID", QString(32, QLatin1Char('A'))));

#ifdef MVSIGNPAD_VIRTUAL_SDK
    QVERIFY(m_place->replaceLibrary(QStringLiteral(MVSIGNPAD_VIRTUAL_SDK)));
    QCOMPARE(client.command(initialise(2)), replyText("InitialDevice", QStringLiteral("1")));
    QVERIFY(client.command(QStringLiteral("PadID")) != replyText("PadID", QString()));
    QVERIFY(client.command(QStringLiteral("PadID")) != replyText("PadID", QString(32, QLatin1Char('A'))));
#endif
}

QTEST_GUILESS_MAIN(HostileLibraryTest)

#include "tst_hostilelibrary.moc"
