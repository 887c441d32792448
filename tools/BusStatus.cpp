#include "tools/BusStatus.h"

#include "base/SessionBusProbe.h"
#include "tools/Text.h"

#include <QDBusArgument>
#include <QDBusReply>
#include <QDBusVariant>
#include <QEventLoop>
#include <QTimer>

namespace {

const char programName[] = "com.morvane.MVSignPad";
const char propertiesInterface[] = "org.freedesktop.DBus.Properties";
const int nPatienceMs = 3000;

/// The address of the bus; empty when there is none, or one that hangs.
QString AnsweringBus()
{
    SessionBusProbe probe;
    QEventLoop loop;
    QString found;
    QObject::connect(&probe, &SessionBusProbe::answered, &loop, [&](const QString &address) {
        found = address;
        loop.quit();
    });
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, &loop, &QEventLoop::quit);
    patience.start(nPatienceMs);
    if (probe.Start())
        loop.exec();
    return found;
}

QDBusConnection ConnectedBus()
{
    const QString address = AnsweringBus();
    return address.isEmpty() ? QDBusConnection(QString())
                             : QDBusConnection::connectToBus(address, QStringLiteral("mvsignctl"));
}

QDBusMessage CallTo(const char *szService, const char *szPath, const char *szInterface, const char *szMethod,
                    const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QLatin1String(szService), QLatin1String(szPath),
                                                       QLatin1String(szInterface), QLatin1String(szMethod));
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

QDBusMessage CallToProgram(const char *szInterface, const char *szMethod, const QVariantList &arguments)
{
    return CallTo(programName, "/com/morvane/MVSignPad", szInterface, szMethod, arguments);
}

QVariantList ClientsOf(const QDBusArgument &argument)
{
    QVariantList clients;
    if (argument.currentSignature() != QLatin1String("a(ss)"))
        return clients;
    argument.beginArray();
    while (!argument.atEnd()) {
        QString origin;
        QString address;
        argument.beginStructure();
        argument >> origin >> address;
        argument.endStructure();
        clients.append(QVariantMap{{QStringLiteral("Origin"), origin}, {QStringLiteral("Address"), address}});
    }
    argument.endArray();
    return clients;
}

} // namespace

BusStatus::BusStatus() : m_bus(ConnectedBus()) {}

bool BusStatus::HasStatusNotifierHost() const
{
    const QDBusReply<QDBusVariant> answer = m_bus.call(
        CallTo("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", propertiesInterface, "Get",
               {QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("IsStatusNotifierHostRegistered")}),
        QDBus::Block, nPatienceMs);
    return answer.isValid() && answer.value().variant().toBool();
}

QVariantMap BusStatus::Properties() const
{
    const QDBusReply<QVariantMap> reply = m_bus.call(
        CallToProgram(propertiesInterface, "GetAll", {QLatin1String(programName)}), QDBus::Block, nPatienceMs);
    if (!reply.isValid())
        return {};
    QVariantMap properties = reply.value();
    QVariant &clients = properties[QStringLiteral("Clients")];
    clients = ClientsOf(clients.value<QDBusArgument>());
    return properties;
}

QString BusStatus::Call(const char *szMethod, const QVariantList &arguments) const
{
    if (!HasBus())
        return Text::tr("there is no session bus that answers");
    const QDBusMessage reply = m_bus.call(CallToProgram(programName, szMethod, arguments), QDBus::Block, nPatienceMs);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return {};
    return reply.errorName() == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown")
               ? Text::tr("the program does not run in this session")
               : reply.errorMessage();
}
