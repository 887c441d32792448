#include "tray/StatusAdaptor.h"

#include "base/Logging.h"
#include "tray/StatusOnBus.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QMetaProperty>

namespace {

const char *NameOf(ServiceStatus::State state)
{
    switch (state) {
    case ServiceStatus::Listening:
        return "listening";
    case ServiceStatus::ClosedBySettings:
        return "closed";
    case ServiceStatus::PortTaken:
        return "port-taken";
    case ServiceStatus::Stopped:
        break;
    }
    return "stopped";
}

} // namespace

bool operator==(const ClientOnBus &left, const ClientOnBus &right)
{
    return left.strOrigin == right.strOrigin && left.strAddress == right.strAddress;
}

static QDBusArgument &operator<<(QDBusArgument &argument, const ClientOnBus &client)
{
    argument.beginStructure();
    argument << client.strOrigin << client.strAddress;
    argument.endStructure();
    return argument;
}

static const QDBusArgument &operator>>(const QDBusArgument &argument, ClientOnBus &client)
{
    argument.beginStructure();
    argument >> client.strOrigin >> client.strAddress;
    argument.endStructure();
    return argument;
}

StatusAdaptor::StatusAdaptor(StatusOnBus *pStatus) : QDBusAbstractAdaptor(pStatus), m_pStatus(pStatus)
{
    qDBusRegisterMetaType<ClientOnBus>();
    qDBusRegisterMetaType<QVector<ClientOnBus>>();
    QMetaType::registerEqualsComparator<QVector<ClientOnBus>>();
}

const ServiceStatus &StatusAdaptor::Service() const
{
    return m_pStatus->Service();
}

QString StatusAdaptor::State() const
{
    return QString::fromLatin1(NameOf(Service().state));
}

QString StatusAdaptor::Reason() const
{
    return Service().strReason;
}

QString StatusAdaptor::Address() const
{
    return Service().strAddress;
}

uint StatusAdaptor::Port() const
{
    return static_cast<uint>(Service().nPort);
}

uint StatusAdaptor::ClientCount() const
{
    return static_cast<uint>(Service().clients.size());
}

QVector<ClientOnBus> StatusAdaptor::Clients() const
{
    QVector<ClientOnBus> clients;
    clients.reserve(Service().clients.size());
    for (const ClientStatus &client : Service().clients)
        clients.append({client.strOrigin, client.strAddress});
    return clients;
}

QString StatusAdaptor::Pad() const
{
    return Service().pad.strModel;
}

QString StatusAdaptor::Library() const
{
    return Service().pad.strLibrary;
}

QString StatusAdaptor::LibraryError() const
{
    return Service().pad.strLibraryError;
}

QStringList StatusAdaptor::MissingFunctions() const
{
    return Service().pad.missingFunctions;
}

bool StatusAdaptor::Log() const
{
    return g_bEnableLog;
}

QString StatusAdaptor::Program() const
{
    return QCoreApplication::applicationFilePath();
}

uint StatusAdaptor::ProcessId() const
{
    return static_cast<uint>(QCoreApplication::applicationPid());
}

QString StatusAdaptor::Version() const
{
    return QStringLiteral(MVSIGNPAD_VERSION);
}

QString StatusAdaptor::QtVersion() const
{
    return QString::fromLatin1(qVersion());
}

QVariantMap StatusAdaptor::Properties() const
{
    QVariantMap properties;
    for (int i = staticMetaObject.propertyOffset(); i < staticMetaObject.propertyCount(); ++i) {
        const QMetaProperty property = staticMetaObject.property(i);
        properties.insert(QString::fromLatin1(property.name()), property.read(this));
    }
    return properties;
}

void StatusAdaptor::SetLog(bool On, const QDBusMessage &message)
{
    m_pStatus->SetLog(On, message);
}

void StatusAdaptor::ReloadOrigins(const QDBusMessage &message)
{
    m_pStatus->ReloadOrigins(message);
}
