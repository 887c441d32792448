// The program's state on a bus of the test's own, and what others may call there.
#include "base/Logging.h"
#include "service/ServiceStatusSource.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateBus.h"
#include "tray/StatusOnBus.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QSignalSpy>
#include <QTest>

#include <unistd.h>

namespace {

const QString name = QStringLiteral("com.morvane.MVSignPad");
const QString path = QStringLiteral("/com/morvane/MVSignPad");

ServiceStatus listening()
{
    ServiceStatus status;
    status.state = ServiceStatus::Listening;
    status.strAddress = QStringLiteral("*");
    status.nPort = 8089;
    status.clients = {{QStringLiteral("https://a.example"), QStringLiteral("127.0.0.1 50000")},
                      {QString(), QStringLiteral("::1 50001")}};
    status.pad.strModel = QStringLiteral("Alder");
    status.pad.strLibrary = QStringLiteral("/opt/lib.so");
    status.pad.strLibraryError = QStringLiteral("broken");
    status.pad.missingFunctions = QStringList{QStringLiteral("MVAlder_Clear"), QStringLiteral("MVAlder_OpenLCD")};
    return status;
}

QVector<ClientOnBus> clientsIn(const QVariant &value)
{
    QVector<ClientOnBus> clients;
    const auto argument = value.value<QDBusArgument>();
    argument.beginArray();
    while (!argument.atEnd()) {
        ClientOnBus client;
        argument.beginStructure();
        argument >> client.strOrigin >> client.strAddress;
        argument.endStructure();
        clients.append(client);
    }
    argument.endArray();
    return clients;
}

/// Keeps the changes that are announced.
class Listener : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void propertiesChanged(const QString &interface, const QVariantMap &changed, const QStringList &invalidated)
    {
        QCOMPARE(interface, name);
        QCOMPARE(invalidated, QStringList());
        changes.append(changed);
    }

public:
    QList<QVariantMap> changes;
};

} // namespace

class StatusOnBusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void beforeTheService();
    void everyProperty();
    void states_data();
    void states();
    void changesAloneAreAnnounced();
    void aSecondProgramDoesNotQueue();
    void logIsSwitched();
    void originsAreReloaded();
    void somebodyElseIsRefused_data();
    void somebodyElseIsRefused();

private:
    QDBusConnection other() const { return QDBusConnection(QStringLiteral("other")); }
    bool isPublished() const { return other().interface()->isServiceRegistered(name); }
    QDBusMessage reply(const QString &interface, const QString &method, const QVariantList &arguments) const;
    QVariantMap properties() const;

    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<ServiceStatusSource> m_source;
    std::unique_ptr<StatusOnBus> m_status;
    Listener m_listener;
};

void StatusOnBusTest::initTestCase()
{
    qRegisterMetaType<ServiceStatus>();
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(!m_bus->address().isEmpty());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus->address().toUtf8());
    QVERIFY(QDBusConnection::connectToBus(m_bus->address(), QStringLiteral("other")).isConnected());
    QVERIFY(other().connect(name, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                            QStringLiteral("PropertiesChanged"), &m_listener,
                            SLOT(propertiesChanged(QString, QVariantMap, QStringList))));
}

void StatusOnBusTest::init()
{
    m_source = std::make_unique<ServiceStatusSource>();
    m_status = std::make_unique<StatusOnBus>(*m_source);
    QTRY_VERIFY_WITH_TIMEOUT(isPublished(), patienceMs);
    m_listener.changes.clear();
}

void StatusOnBusTest::cleanup()
{
    g_bEnableLog = false;
    m_status.reset();
    m_source.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!isPublished(), patienceMs);
}

void StatusOnBusTest::cleanupTestCase()
{
    QDBusConnection::disconnectFromBus(QStringLiteral("other"));
    m_bus.reset();
}

/// Asks as another program, while the events of this one are handled.
QDBusMessage StatusOnBusTest::reply(const QString &interface, const QString &method,
                                    const QVariantList &arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(name, path, interface, method);
    call.setArguments(arguments);
    const QDBusPendingCall pending = other().asyncCall(call);
    return QTest::qWaitFor([&pending] { return pending.isFinished(); }, patienceMs) ? pending.reply() : QDBusMessage();
}

QVariantMap StatusOnBusTest::properties() const
{
    const QDBusMessage all = reply(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"), {name});
    QVariantMap values = qdbus_cast<QVariantMap>(all.arguments().value(0));
    values[QStringLiteral("Clients")] = QVariant::fromValue(clientsIn(values.value(QStringLiteral("Clients"))));
    return values;
}

void StatusOnBusTest::beforeTheService()
{
    const QVariantMap expected = {
        {QStringLiteral("State"), QStringLiteral("stopped")},
        {QStringLiteral("Reason"), QStringLiteral("waiting for the tray of the desktop")},
        {QStringLiteral("Address"), QString()},
        {QStringLiteral("Port"), 0U},
        {QStringLiteral("ClientCount"), 0U},
        {QStringLiteral("Clients"), QVariant::fromValue(QVector<ClientOnBus>())},
        {QStringLiteral("Pad"), QString()},
        {QStringLiteral("Library"), QString()},
        {QStringLiteral("LibraryError"), QString()},
        {QStringLiteral("MissingFunctions"), QStringList()},
        {QStringLiteral("Log"), false},
        {QStringLiteral("Program"), QCoreApplication::applicationFilePath()},
        {QStringLiteral("ProcessId"), uint(getpid())},
        {QStringLiteral("Version"), QStringLiteral(MVSIGNPAD_VERSION)},
        {QStringLiteral("QtVersion"), QString::fromLatin1(qVersion())},
    };
    QCOMPARE(properties(), expected);
}

void StatusOnBusTest::everyProperty()
{
    Q_EMIT m_source->statusChanged(listening());
    QTRY_COMPARE_WITH_TIMEOUT(m_listener.changes.size(), 1, patienceMs);
    const QVariantMap values = properties();
    QCOMPARE(values.value(QStringLiteral("State")), QVariant(QStringLiteral("listening")));
    QCOMPARE(values.value(QStringLiteral("Reason")), QVariant(QString()));
    QCOMPARE(values.value(QStringLiteral("Address")), QVariant(QStringLiteral("*")));
    QCOMPARE(values.value(QStringLiteral("Port")), QVariant(8089U));
    QCOMPARE(values.value(QStringLiteral("ClientCount")), QVariant(2U));
    QCOMPARE(values.value(QStringLiteral("Clients")).value<QVector<ClientOnBus>>(),
             (QVector<ClientOnBus>{{QStringLiteral("https://a.example"), QStringLiteral("127.0.0.1 50000")},
                                   {QString(), QStringLiteral("::1 50001")}}));
    QCOMPARE(values.value(QStringLiteral("Pad")), QVariant(QStringLiteral("Alder")));
    QCOMPARE(values.value(QStringLiteral("Library")), QVariant(QStringLiteral("/opt/lib.so")));
    QCOMPARE(values.value(QStringLiteral("LibraryError")), QVariant(QStringLiteral("broken")));
    QCOMPARE(values.value(QStringLiteral("MissingFunctions")),
             QVariant(QStringList{QStringLiteral("MVAlder_Clear"), QStringLiteral("MVAlder_OpenLCD")}));
}

void StatusOnBusTest::states_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    QTest::newRow("listening") << int(ServiceStatus::Listening) << QStringLiteral("listening");
    QTest::newRow("closed") << int(ServiceStatus::ClosedBySettings) << QStringLiteral("closed");
    QTest::newRow("port taken") << int(ServiceStatus::PortTaken) << QStringLiteral("port-taken");
    QTest::newRow("stopped") << int(ServiceStatus::Stopped) << QStringLiteral("stopped");
}

void StatusOnBusTest::states()
{
    QFETCH(int, state);
    ServiceStatus status;
    status.state = ServiceStatus::State(state);
    status.strReason = QStringLiteral("why");
    Q_EMIT m_source->statusChanged(status);
    QTRY_COMPARE_WITH_TIMEOUT(m_listener.changes.size(), 1, patienceMs);
    QTEST(properties().value(QStringLiteral("State")).toString(), "text");
    QCOMPARE(properties().value(QStringLiteral("Reason")).toString(), QStringLiteral("why"));
}

void StatusOnBusTest::changesAloneAreAnnounced()
{
    ServiceStatus status = listening();
    Q_EMIT m_source->statusChanged(status);
    QTRY_COMPARE_WITH_TIMEOUT(m_listener.changes.size(), 1, patienceMs);
    Q_EMIT m_source->statusChanged(status); // nothing new
    status.clients.removeFirst();
    status.pad.strModel = QStringLiteral("Cedar");
    Q_EMIT m_source->statusChanged(status);
    QTRY_COMPARE_WITH_TIMEOUT(m_listener.changes.size(), 2, patienceMs);
    QCOMPARE(m_listener.changes[1].keys(),
             (QStringList{QStringLiteral("ClientCount"), QStringLiteral("Clients"), QStringLiteral("Pad")}));
    QCOMPARE(m_listener.changes[1].value(QStringLiteral("ClientCount")), QVariant(1U));
    QCOMPARE(m_listener.changes[1].value(QStringLiteral("Pad")), QVariant(QStringLiteral("Cedar")));
}

void StatusOnBusTest::aSecondProgramDoesNotQueue()
{
    QDBusPendingReply<QStringList> queue = other().interface()->asyncCall(QStringLiteral("ListQueuedOwners"), name);
    queue.waitForFinished();
    QCOMPARE(queue.value().size(), 1);
    QVERIFY(QDBusConnection::connectToBus(m_bus->address(), QStringLiteral("holder")).isConnected());
    m_status.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!isPublished(), patienceMs);
    QVERIFY(QDBusConnection(QStringLiteral("holder")).registerService(name));
    m_status = std::make_unique<StatusOnBus>(*m_source);
    // Its connection is one more; once it has asked for the name, the bus has answered the requests before.
    QTRY_VERIFY_WITH_TIMEOUT(QDBusConnection(QStringLiteral("mvsignpad-status")).isConnected(), patienceMs);
    QDBusConnection(QStringLiteral("mvsignpad-status")).interface()->isServiceRegistered(name);
    queue = other().interface()->asyncCall(QStringLiteral("ListQueuedOwners"), name);
    queue.waitForFinished();
    QCOMPARE(queue.value(), QStringList{QDBusConnection(QStringLiteral("holder")).baseService()});
    QDBusConnection::disconnectFromBus(QStringLiteral("holder"));
}

void StatusOnBusTest::logIsSwitched()
{
    for (const bool on : {true, false}) {
        m_listener.changes.clear();
        QCOMPARE(reply(name, QStringLiteral("SetLog"), {on}).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(g_bEnableLog, on);
        QTRY_COMPARE_WITH_TIMEOUT(m_listener.changes.size(), 1, patienceMs);
        QCOMPARE(m_listener.changes.first(), (QVariantMap{{QStringLiteral("Log"), on}}));
    }
}

void StatusOnBusTest::originsAreReloaded()
{
    QSignalSpy spy(m_status.get(), &StatusOnBus::originAnswersChanged);
    QCOMPARE(reply(name, QStringLiteral("ReloadOrigins"), {}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(spy.size(), 1);
}

void StatusOnBusTest::somebodyElseIsRefused_data()
{
    QTest::addColumn<QStringList>("call");
    QTest::newRow("log") << QStringList{QStringLiteral("com.morvane.MVSignPad.SetLog"), QStringLiteral("boolean:true")};
    QTest::newRow("origins") << QStringList{QStringLiteral("com.morvane.MVSignPad.ReloadOrigins")};
}

void StatusOnBusTest::somebodyElseIsRefused()
{
    // Root alone can become somebody else, and not where a user namespace knows nobody but root.
    const QStringList becomeNobody{QStringLiteral("--reuid=65534"), QStringLiteral("--clear-groups")};
    if (QProcess::execute(QStringLiteral("setpriv"), becomeNobody + QStringList{QStringLiteral("true")}) != 0)
        QSKIP("this process cannot become somebody else");
    QFETCH(QStringList, call);
    QSignalSpy spy(m_status.get(), &StatusOnBus::originAnswersChanged);
    QProcess somebodyElse;
    somebodyElse.start(QStringLiteral("setpriv"),
                       becomeNobody
                           + QStringList{QStringLiteral("dbus-send"), QStringLiteral("--bus=") + m_bus->address(),
                                         QStringLiteral("--print-reply"), QStringLiteral("--dest=") + name, path}
                           + call);
    QVERIFY(QTest::qWaitFor([&somebodyElse] { return somebodyElse.state() == QProcess::NotRunning; }, patienceMs));
    QCOMPARE(somebodyElse.readAllStandardError(), QByteArray("Error org.freedesktop.DBus.Error.AccessDenied: "
                                                             "only for processes of the user who runs the program\n"));
    QVERIFY(!g_bEnableLog);
    QCOMPARE(spy.size(), 0);
}

QTEST_GUILESS_MAIN(StatusOnBusTest)

#include "tst_statusonbus.moc"
