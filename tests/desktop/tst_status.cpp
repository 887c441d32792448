// The program's state on the session bus, as another program of the desktop sees it, and the log's switch there.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/SignClient.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTcpServer>
#include <QTest>

#include <csignal>

namespace {

const char name[] = "com.morvane.MVSignPad";
const char path[] = "/com/morvane/MVSignPad";

/// Keeps the changes that are announced.
class Listener : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void propertiesChanged(const QString &interface, const QVariantMap &changed, const QStringList &invalidated)
    {
        wrong = wrong || interface != QLatin1String(name) || !invalidated.isEmpty();
        for (auto property = changed.begin(); property != changed.end(); ++property)
            values.insert(property.key(), property.value());
        ++signals_;
    }

public:
    QVariantMap values;
    int signals_ = 0;
    bool wrong = false;
};

} // namespace

class StatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void listening();
    void clientsComeAndGo();
    void pad();
    void missingLibrary();
    void stoppedAndStartedByTheMenu();
    void portTaken();
    void closedBySettings_data();
    void closedBySettings();
    void changesAreAnnounced();
    void manyClientsAreAnnouncedTogether();
    void nothingCanBeSet();
    void introspection();
    void logSwitch();
    void logByTheEnvironment();
    void withoutABus_data();
    void withoutABus();
    void busThatHangs();
    void busThatEnds();

private:
    bool serve();
    QDBusMessage call(const char *interface, const char *method, const QVariantList &arguments = {}) const;
    QVariant property(const char *key) const;
    QList<QStringList> clients() const;

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    quint16 m_port = 0;
};

void StatusTest::init()
{
    removeLogs();
    m_port = freePort();
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
    m_program.reset(new TrayProgram(*m_desktop));
}

void StatusTest::cleanup()
{
    m_program.reset();
    m_desktop.reset();
    removeLogs();
}

bool StatusTest::serve()
{
    return m_desktop->writeSettings(
               {QStringLiteral("StartWebService=true"), QStringLiteral("WebSocketPort=%1").arg(m_port)})
           && m_program->start();
}

QDBusMessage StatusTest::call(const char *interface, const char *method, const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(QLatin1String(name), QLatin1String(path),
                                                          QLatin1String(interface), QLatin1String(method));
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return QDBusConnection(m_desktop->busAddress()).call(message);
}

QVariant StatusTest::property(const char *key) const
{
    const QDBusReply<QDBusVariant> reply =
        call("org.freedesktop.DBus.Properties", "Get", {QLatin1String(name), QLatin1String(key)});
    return reply.isValid() ? reply.value().variant() : QVariant();
}

QList<QStringList> StatusTest::clients() const
{
    QList<QStringList> found;
    const QDBusArgument argument = property("Clients").value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        QString origin;
        QString address;
        argument.beginStructure();
        argument >> origin >> address;
        argument.endStructure();
        found.append({origin, address});
    }
    argument.endArray();
    return found;
}

void StatusTest::listening()
{
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    QCOMPARE(property("Reason").toString(), QString());
    QCOMPARE(property("Address").toString(), QStringLiteral("*"));
    QCOMPARE(property("Port").toUInt(), uint(m_port));
    QCOMPARE(property("ClientCount").toUInt(), 0U);
    QCOMPARE(property("Pad").toString(), QString());
    QCOMPARE(property("Log").toBool(), false);
    QCOMPARE(property("Program").toString(), QStringLiteral(MVSIGNPAD_PROGRAM));
    QCOMPARE(property("ProcessId").toLongLong(), m_program->process().processId());
    QCOMPARE(property("Version").toString(), QStringLiteral(MVSIGNPAD_VERSION));
    QCOMPARE(property("QtVersion").toString(), QString::fromLatin1(qVersion()));
    QVERIFY(m_desktop->waitForIcon());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void StatusTest::clientsComeAndGo()
{
    QVERIFY(serve());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient page;
    QVERIFY(page.connectFrom(QStringLiteral("https://sign.example.org"), m_port));
    QTRY_COMPARE_WITH_TIMEOUT(property("ClientCount").toUInt(), 1U, patienceMs);
    SignClient local;
    QVERIFY(local.connectTo(m_port));
    QTRY_COMPARE_WITH_TIMEOUT(property("ClientCount").toUInt(), 2U, patienceMs);
    const QList<QStringList> both = clients();
    QCOMPARE(both.at(0).at(0), QStringLiteral("https://sign.example.org"));
    QVERIFY2(both.at(0).at(1).endsWith(QStringLiteral("127.0.0.1 %1").arg(page.socket().localPort())),
             qPrintable(both.at(0).at(1)));
    QCOMPARE(both.at(1).at(0), QString());
    QVERIFY(page.close());
    QTRY_COMPARE_WITH_TIMEOUT(clients().size(), 1, patienceMs);
    QCOMPARE(clients().at(0).at(0), QString());
}

void StatusTest::pad()
{
#ifdef MVSIGNPAD_HAS_VIRTUAL_PAD
    QVERIFY(serve());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QCOMPARE(client.command(QStringLiteral("InitialDevice?id=7&width=800&height=480")),
             QStringLiteral(R"({"API":"InitialDevice","Result":"1"})"));
    QTRY_COMPARE_WITH_TIMEOUT(property("Pad").toString(), QStringLiteral("Cedar"), patienceMs);
    const QFileInfo program(QStringLiteral(MVSIGNPAD_PROGRAM));
    QCOMPARE(property("Library").toString(), program.path() + QStringLiteral("/libmvsignpadsdk.so"));
    QCOMPARE(property("LibraryError").toString(), QString());
    QCOMPARE(property("MissingFunctions").toStringList(), QStringList());
    QCOMPARE(client.command(QStringLiteral("UninitialDevice")),
             QStringLiteral(R"({"API":"UninitialDevice","Result":"1"})"));
    QTRY_COMPARE_WITH_TIMEOUT(property("Pad").toString(), QString(), patienceMs);
    QCOMPARE(property("Library").toString(), QString());
#else
    QSKIP("built without the virtual pad");
#endif
}

void StatusTest::missingLibrary()
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("mvsignpadsdk_wssvr"));
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_PROGRAM), copy));
    m_program.reset(new TrayProgram(*m_desktop, copy));
    QVERIFY(serve());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QCOMPARE(client.command(QStringLiteral("InitialDevice?id=2&width=800&height=480")),
             QStringLiteral(R"({"API":"InitialDevice","Result":"0"})"));
    QTRY_VERIFY_WITH_TIMEOUT(property("LibraryError").toString().contains(QStringLiteral("libmvsignpadsdk.so")),
                             patienceMs);
    QCOMPARE(property("Pad").toString(), QString());
    QCOMPARE(property("Library").toString(), QString());
}

void StatusTest::stoppedAndStartedByTheMenu()
{
    QVERIFY(m_desktop->writeSettings({QStringLiteral("WebSocketPort=%1").arg(m_port)}));
    QVERIFY(m_program->start());
    QTRY_COMPARE_WITH_TIMEOUT(property("Reason").toString(), QStringLiteral("switched off in the menu"), patienceMs);
    QCOMPARE(property("State").toString(), QStringLiteral("stopped"));
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY(m_desktop->chooseMenuEntry(0));
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QTRY_COMPARE_WITH_TIMEOUT(property("ClientCount").toUInt(), 1U, patienceMs);
    QVERIFY(m_desktop->chooseMenuEntry(0));
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("stopped"), patienceMs);
    QCOMPARE(property("ClientCount").toUInt(), 0U);
}

void StatusTest::portTaken()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, m_port));
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("port-taken"), patienceMs);
    QVERIFY(!property("Reason").toString().isEmpty());
    QCOMPARE(property("Port").toUInt(), uint(m_port));
}

void StatusTest::closedBySettings_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("reason");
    QTest::newRow("wrong value") << QStringLiteral("RequireOrigin=perhaps") << QStringLiteral("RequireOrigin");
    QTest::newRow("not this machine's") << QStringLiteral("ListenAddress=192.0.2.1") << QString();
}

void StatusTest::closedBySettings()
{
    QFETCH(QString, line);
    QFETCH(QString, reason);
    QFile access(QFileInfo(m_desktop->settingsFile()).path() + QStringLiteral("/MVSignPadSDK_Access.conf"));
    QVERIFY(QDir().mkpath(QFileInfo(access).path()));
    QVERIFY(access.open(QIODevice::WriteOnly) && access.write("[Access]\n" + line.toUtf8() + '\n') > 0);
    access.close();
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("closed"), patienceMs);
    QVERIFY(!property("Reason").toString().isEmpty());
    QVERIFY2(property("Reason").toString().contains(reason), qPrintable(property("Reason").toString()));
}

void StatusTest::changesAreAnnounced()
{
    Listener listener;
    QVERIFY(QDBusConnection(m_desktop->busAddress())
                .connect(QLatin1String(name), QLatin1String(path), QStringLiteral("org.freedesktop.DBus.Properties"),
                         QStringLiteral("PropertiesChanged"), &listener,
                         SLOT(propertiesChanged(QString, QVariantMap, QStringList))));
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QTRY_COMPARE_WITH_TIMEOUT(listener.values.value(QStringLiteral("ClientCount")).toUInt(), 1U, patienceMs);
    QVERIFY(listener.values.contains(QStringLiteral("Clients")));
    QVERIFY(!listener.values.contains(QStringLiteral("Version"))); // what has not changed is not sent
    QVERIFY(!listener.wrong);
}

void StatusTest::manyClientsAreAnnouncedTogether()
{
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    Listener listener;
    QVERIFY(QDBusConnection(m_desktop->busAddress())
                .connect(QLatin1String(name), QLatin1String(path), QStringLiteral("org.freedesktop.DBus.Properties"),
                         QStringLiteral("PropertiesChanged"), &listener,
                         SLOT(propertiesChanged(QString, QVariantMap, QStringList))));
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 100; ++i) {
        SignClient client;
        QVERIFY(client.connectTo(m_port));
    }
    QTRY_COMPARE_WITH_TIMEOUT(property("ClientCount").toUInt(), 0U, patienceMs);
    QVERIFY2(listener.signals_ <= timer.elapsed() / 100 + 2, qPrintable(QString::number(listener.signals_)));
}

void StatusTest::nothingCanBeSet()
{
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    for (const char *key : {"State", "Log", "Nothing"}) {
        const QDBusMessage reply =
            call("org.freedesktop.DBus.Properties", "Set",
                 {QLatin1String(name), QLatin1String(key), QVariant::fromValue(QDBusVariant(QStringLiteral("x")))});
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
    }
    QCOMPARE(property("State").toString(), QStringLiteral("listening"));
}

void StatusTest::introspection()
{
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    const QString xml = call("org.freedesktop.DBus.Introspectable", "Introspect").arguments().value(0).toString();
    const QString own = xml.mid(xml.indexOf(QLatin1String("<interface name=\"com.morvane.MVSignPad\">")));
    const QString interface = own.left(own.indexOf(QLatin1String("</interface>")));
    QCOMPARE(interface.count(QLatin1String("<property ")), 15);
    QCOMPARE(interface.count(QLatin1String("access=\"read\"")), 15);
    QVERIFY(interface.contains(QLatin1String("name=\"Clients\" type=\"a(ss)\"")));
    QCOMPARE(interface.count(QLatin1String("<method ")), 2);
    QVERIFY(interface.contains(QLatin1String("<method name=\"SetLog\">")));
    QVERIFY(interface.contains(QLatin1String("<method name=\"ReloadOrigins\">")));
    QCOMPARE(interface.count(QLatin1String("<signal ")), 0);
}

void StatusTest::logSwitch()
{
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QVERIFY(!client.command(QStringLiteral("Clear")).isEmpty());
    QVERIFY(!QFile::exists(mainLog()) && !QFile::exists(threadLog()));

    QCOMPARE(call(name, "SetLog", {true}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(property("Log").toBool(), true);
    QVERIFY(!client.command(QStringLiteral("Clear")).isEmpty());
    QVERIFY(maskedLines(threadLog())
                .contains(logLine("WebSocketService::ProcessMVSignSDKWebSocketAPICommand()", "Rx Cmd: CLEAR")));
    QCOMPARE(QFile::permissions(threadLog())
                 & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
             QFile::Permissions());

    QCOMPARE(call(name, "SetLog", {false}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(property("Log").toBool(), false);
    const int lines = loggedLines(threadLog()).size();
    QVERIFY(!client.command(QStringLiteral("Clear")).isEmpty());
    QCOMPARE(loggedLines(threadLog()).size(), lines);
    QCOMPARE(call(name, "SetLog", {QStringLiteral("yes")}).type(), QDBusMessage::ErrorMessage);
}

void StatusTest::logByTheEnvironment()
{
    QProcessEnvironment environment = m_desktop->environment();
    environment.insert(QStringLiteral("MVSIGNPAD_LOG"), QStringLiteral("1"));
    m_program->process().setProcessEnvironment(environment);
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    QCOMPARE(property("Log").toBool(), true);
    QCOMPARE(maskedLines(mainLog()).value(0), logLine("main()", "Enter, argc=1"));
    QVERIFY(!maskedLines(threadLog()).isEmpty());
}

void StatusTest::withoutABus_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("none") << QString();
    QTest::newRow("no such socket") << QStringLiteral("unix:path=/nonexistent/bus");
    QTest::newRow("of another machine") << QStringLiteral("tcp:host=192.0.2.1,port=1");
    QTest::newRow("not an address") << QStringLiteral("nonsense;;unix:,path");
}

void StatusTest::withoutABus()
{
    QFETCH(QString, address);
    QProcessEnvironment environment = m_desktop->environment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    m_program->process().setProcessEnvironment(environment);
    QVERIFY(serve());
    QVERIFY(TrayProgram::waitForListening(m_port));
    QVERIFY(m_desktop->waitForIcon());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

/// The socket takes connections, and nobody ever answers: the program serves and ends all the same.
void StatusTest::busThatHangs()
{
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    const auto bus = static_cast<pid_t>(QDBusConnection(m_desktop->busAddress())
                                            .interface()
                                            ->servicePid(QStringLiteral("org.freedesktop.DBus"))
                                            .value());
    QVERIFY(bus > 0);
    QCOMPARE(kill(bus, SIGSTOP), 0);
    SignClient client;
    const bool served = client.connectTo(m_port) && !client.command(QStringLiteral("Clear")).isEmpty();
    const bool ended = m_desktop->chooseMenuEntry(2) && m_program->waitForEnd();
    QCOMPARE(kill(bus, SIGCONT), 0);
    QVERIFY(served);
    QVERIFY(ended);
    QCOMPARE(m_program->exitStatus(), 0);
}

void StatusTest::busThatEnds()
{
    QVERIFY(serve());
    QTRY_COMPARE_WITH_TIMEOUT(property("State").toString(), QStringLiteral("listening"), patienceMs);
    const auto bus = static_cast<pid_t>(QDBusConnection(m_desktop->busAddress())
                                            .interface()
                                            ->servicePid(QStringLiteral("org.freedesktop.DBus"))
                                            .value());
    QCOMPARE(kill(bus, SIGKILL), 0);
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QVERIFY(!client.command(QStringLiteral("Clear")).isEmpty());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

QTEST_GUILESS_MAIN(StatusTest)

#include "tst_status.moc"
