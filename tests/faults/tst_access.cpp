// The settings with which an administrator narrows who reaches the service, on the real program.
#include "tests/faults/support/FaultyWorkplace.h"
#include "tests/unit/support/RawClient.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

const char accepted[] = "HTTP/1.1 101 Switching Protocols";
const char refused[] = "HTTP/1.1 403 Access Forbidden";

QByteArray handshakeFrom(quint16 port, const char *origin)
{
    RawClient client;
    if (!client.connectTo(port))
        return "no connection";
    return client.handshake(*origin ? QByteArray("Origin: ") + origin + "\r\n" : QByteArray());
}

bool isReachable(quint16 port, const char *address)
{
    return RawClient().connectTo(port, QHostAddress(QString::fromLatin1(address)));
}

} // namespace

class AccessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_place.reset(); }
    void everybodyIsServedByDefault();
    void addressIsBound_data();
    void addressIsBound();
    void originsAreCompared_data();
    void originsAreCompared();
    void wrongValueClosesTheDoor_data();
    void wrongValueClosesTheDoor();
    void addressOfAnotherMachineClosesTheDoor();
    void fileStaysAsItIs();
    void formerGroupClosesTheDoor();

private:
    QString accessFile() const
    {
        return QFileInfo(m_place->desktop().settingsFile()).path() + QStringLiteral("/MVSignPadSDK_Access.conf");
    }
    bool start(const QStringList &access)
    {
        if (!m_place->isUsable() || !m_place->writeServingSettings())
            return false;
        QFile file(accessFile());
        const bool isWritten =
            file.open(QIODevice::WriteOnly) && file.write(access.join(QLatin1Char('\n')).toUtf8()) >= 0;
        file.close();
        return isWritten && m_place->start() && m_place->desktop().waitForIcon();
    }

    std::unique_ptr<FaultyWorkplace> m_place;
};

void AccessTest::init()
{
    m_place = std::make_unique<FaultyWorkplace>();
}

void AccessTest::everybodyIsServedByDefault()
{
    QVERIFY(start({}));
    QVERIFY(TrayProgram::waitForListening(m_place->port()));
    for (const char *address : {"127.0.0.1", "127.0.0.2", "::1"})
        QVERIFY2(isReachable(m_place->port(), address), address);
    for (const char *origin : {"", "null", "https://anybody.example", "file://"})
        QCOMPARE(handshakeFrom(m_place->port(), origin), QByteArray(accepted));
    QVERIFY(m_place->exitsCleanly());
}

void AccessTest::addressIsBound_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QByteArrayList>("reachable");
    QTest::addColumn<QByteArrayList>("unreachable");
    QTest::newRow("IPv4") << QStringLiteral("127.0.0.1") << QByteArrayList{"127.0.0.1"}
                          << QByteArrayList{"127.0.0.2", "::1"};
    QTest::newRow("IPv6") << QStringLiteral("::1") << QByteArrayList{"::1"} << QByteArrayList{"127.0.0.1"};
    QTest::newRow("every IPv4") << QStringLiteral("0.0.0.0") << QByteArrayList{"127.0.0.1", "127.0.0.2"}
                                << QByteArrayList{"::1"};
}

void AccessTest::addressIsBound()
{
    QFETCH(QString, address);
    QFETCH(QByteArrayList, reachable);
    QFETCH(QByteArrayList, unreachable);
    QVERIFY(start({QStringLiteral("[Access]"), QStringLiteral("ListenAddress=") + address}));
    for (const QByteArray &where : reachable)
        QTRY_VERIFY2_WITH_TIMEOUT(isReachable(m_place->port(), where), where, patienceMs);
    for (const QByteArray &where : unreachable)
        QVERIFY2(!isReachable(m_place->port(), where), where);
    QVERIFY(m_place->exitsCleanly());
}

void AccessTest::originsAreCompared_data()
{
    QTest::addColumn<QStringList>("access");
    QTest::addColumn<QByteArrayList>("served");
    QTest::addColumn<QByteArrayList>("turnedAway");
    const QString list = QStringLiteral("AllowedOrigins=https://sign.example.org, http://intranet:8080");
    const QByteArrayList listed{"https://sign.example.org", "http://intranet:8080"};
    const QByteArrayList others{"https://sign.example.org:443",
                                "https://sign.example.org/",
                                "http://sign.example.org",
                                "https://sign.example.org.evil",
                                "https://SIGN.example.org",
                                "http://intranet",
                                "https://evil.sign.example.org",
                                "null",
                                "*"};
    QTest::newRow("list") << QStringList{list} << (listed + QByteArrayList{""}) << others;
    QTest::newRow("list and origin required")
        << QStringList{list, QStringLiteral("RequireOrigin=true")} << listed << (others + QByteArrayList{""});
    QTest::newRow("list and origin not required")
        << QStringList{list, QStringLiteral("RequireOrigin=false")} << (listed + QByteArrayList{""}) << others;
    QTest::newRow("origin required alone") << QStringList{QStringLiteral("RequireOrigin=true")}
                                           << QByteArrayList{"https://anybody.example", "null"} << QByteArrayList{""};
    QTest::newRow("empty list") << QStringList{QStringLiteral("AllowedOrigins=")} << QByteArrayList{""}
                                << QByteArrayList{"https://sign.example.org", "null"};
    QTest::newRow("list of none") << QStringList{QStringLiteral("AllowedOrigins=@Invalid()")} << QByteArrayList{""}
                                  << QByteArrayList{"https://sign.example.org", "null"};
    QTest::newRow("one, as pages without an address have it")
        << QStringList{QStringLiteral("AllowedOrigins=null")} << QByteArrayList{"", "null"}
        << QByteArrayList{"https://sign.example.org", "file://"};
}

void AccessTest::originsAreCompared()
{
    QFETCH(QStringList, access);
    QFETCH(QByteArrayList, served);
    QFETCH(QByteArrayList, turnedAway);
    QVERIFY(start(QStringList{QStringLiteral("[Access]")} + access));
    QVERIFY(TrayProgram::waitForListening(m_place->port()));
    for (const QByteArray &origin : served)
        QCOMPARE(handshakeFrom(m_place->port(), origin), QByteArray(accepted));
    for (const QByteArray &origin : turnedAway)
        QCOMPARE(handshakeFrom(m_place->port(), origin), QByteArray(refused));
    QVERIFY(m_place->exitsCleanly());
}

void AccessTest::wrongValueClosesTheDoor_data()
{
    QTest::addColumn<QStringList>("access");
    QTest::addColumn<QByteArray>("line");
    const QByteArray address = "ListenAddress is not one IP address in full";
    const QByteArray origins = "AllowedOrigins is not a list of origins such as https://sign.example.org";
    const QByteArray flag = "RequireOrigin is not true or false";
    QTest::newRow("address") << QStringList{QStringLiteral("ListenAddress=localhost")} << address;
    QTest::newRow("origins") << QStringList{QStringLiteral("AllowedOrigins=*")} << origins;
    QTest::newRow("flag") << QStringList{QStringLiteral("RequireOrigin=yes")} << flag;
    QTest::newRow("misspelt key") << QStringList{QStringLiteral("AllowedOrigin=https://sign.example.org")}
                                  << QByteArray("a key is not known, or not in the group Access");
    QTest::newRow("one right, one wrong")
        << QStringList{QStringLiteral("ListenAddress=127.0.0.1"), QStringLiteral("RequireOrigin=maybe")} << flag;
    QTest::newRow("no key at all") << QStringList{QStringLiteral("ListenAddress 127.0.0.1")}
                                   << QByteArray("a line is no setting");
}

void AccessTest::wrongValueClosesTheDoor()
{
    QFETCH(QStringList, access);
    QFETCH(QByteArray, line);
    QVERIFY(start(QStringList{QStringLiteral("[Access]")} + access));
    const QByteArray expected =
        "mvsignpadsdk_wssvr: the service stays closed: " + accessFile().toUtf8() + ": " + line + '\n';
    QTRY_COMPARE_WITH_TIMEOUT(m_place->program().output(), expected, patienceMs);
    for (const char *where : {"127.0.0.1", "::1"})
        QVERIFY(!isReachable(m_place->port(), where));
    QVERIFY(m_place->desktop().chooseMenuEntry(2));
    QVERIFY(m_place->program().waitForEnd());
    QCOMPARE(m_place->program().exitStatus(), 0);
    QCOMPARE(m_place->program().output(), expected);
}

void AccessTest::addressOfAnotherMachineClosesTheDoor()
{
    QVERIFY(start({QStringLiteral("[Access]"), QStringLiteral("ListenAddress=192.0.2.1")}));
    QTRY_COMPARE_WITH_TIMEOUT(
        m_place->program().output(),
        QByteArray("mvsignpadsdk_wssvr: the service stays closed: it cannot listen at the ListenAddress: "
                   "The address is not available\n"),
        patienceMs);
    QVERIFY(!isReachable(m_place->port(), "127.0.0.1"));
}

void AccessTest::fileStaysAsItIs()
{
    const QStringList lines{QStringLiteral("; the gatekeeper's"), QStringLiteral("[Access]"),
                            QStringLiteral("AllowedOrigins=https://sign.example.org,   https://b.example"),
                            QStringLiteral("ListenAddress=127.0.0.1")};
    QVERIFY(start(lines));
    QVERIFY(TrayProgram::waitForListening(m_place->port()));
    QVERIFY(m_place->toggleService());
    QTRY_VERIFY_WITH_TIMEOUT(m_place->desktop().settingsLines().contains(QLatin1String("StartWebService=false")),
                             patienceMs);
    QVERIFY(m_place->exitsCleanly());
    QFile file(accessFile());
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()), lines.join(QLatin1Char('\n')));
}

void AccessTest::formerGroupClosesTheDoor()
{
    QVERIFY(m_place->isUsable());
    QVERIFY(m_place->writeServingSettings({QStringLiteral("[Access]"), QStringLiteral("ListenAddress=127.0.0.1")}));
    const QByteArray expected =
        "mvsignpadsdk_wssvr: the service stays closed: " + m_place->desktop().settingsFile().toUtf8()
        + ": the group Access belongs into MVSignPadSDK_Access.conf\n";
    // Also not when the settings have been saved in between.
    for (int round = 0; round < 2; ++round) {
        QVERIFY(m_place->start() && m_place->desktop().waitForIcon());
        QTRY_COMPARE_WITH_TIMEOUT(m_place->program().output(), expected.repeated(round + 1), patienceMs);
        QVERIFY(!isReachable(m_place->port(), "127.0.0.1"));
        QVERIFY(m_place->desktop().chooseMenuEntry(2));
        QVERIFY(m_place->program().waitForEnd());
    }
}

QTEST_GUILESS_MAIN(AccessTest)

#include "tst_access.moc"
