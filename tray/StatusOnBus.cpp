#include "tray/StatusOnBus.h"

#include "base/Logging.h"
#include "base/SessionBusProbe.h"
#include "service/ServiceStatusSource.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <unistd.h>

namespace {

const char connectionName[] = "mvsignpad-status"; // private: what hangs here holds up no other use of the bus
const char serviceName[] = "com.morvane.MVSignPad";
const char objectPath[] = "/com/morvane/MVSignPad";

const uint nDoNotQueue = 4; // of the bus's RequestName

QDBusMessage CallOfTheBus(const char *szMethod)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), QString::fromLatin1(szMethod));
}

} // namespace

StatusOnBus::StatusOnBus(const ServiceStatusSource &source, QObject *parent)
    : QObject(parent), m_pAdaptor(new StatusAdaptor(this)), m_bus(QString())
{
    // Queued from this thread too: "stopped" is told on it while words of the service may still be on their way.
    connect(&source, &ServiceStatusSource::statusChanged, this, &StatusOnBus::SetServiceStatus, Qt::QueuedConnection);
    auto *const pProbe = new SessionBusProbe(this);
    connect(pProbe, &SessionBusProbe::answered, this, &StatusOnBus::Publish);
    pProbe->Start();
    m_service.strReason = QStringLiteral("waiting for the tray of the desktop");
}

StatusOnBus::~StatusOnBus()
{
    if (m_bus.isConnected())
        QDBusConnection::disconnectFromBus(QLatin1String(connectionName));
}

void StatusOnBus::Publish(const QString &busAddress)
{
    m_bus = QDBusConnection::connectToBus(busAddress, QLatin1String(connectionName));
    if (!m_bus.isConnected() || !m_bus.registerObject(QLatin1String(objectPath), this, QDBusConnection::ExportAdaptors))
        return;
    m_announced = m_pAdaptor->Properties();
    QDBusMessage request = CallOfTheBus("RequestName"); // by QDBusConnection's own function it would be waited for
    request.setArguments({QLatin1String(serviceName), nDoNotQueue});
    m_bus.asyncCall(request);
}

void StatusOnBus::SetServiceStatus(const ServiceStatus &status)
{
    m_service = status;
    AnnounceChanges();
}

void StatusOnBus::AnnounceChanges()
{
    if (!m_bus.isConnected())
        return;
    const QVariantMap properties = m_pAdaptor->Properties();
    QVariantMap changed;
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        if (m_announced.value(property.key()) != property.value())
            changed.insert(property.key(), property.value());
    }
    if (changed.isEmpty())
        return;
    m_announced = properties;
    QDBusMessage signal =
        QDBusMessage::createSignal(QLatin1String(objectPath), QStringLiteral("org.freedesktop.DBus.Properties"),
                                   QStringLiteral("PropertiesChanged"));
    signal.setArguments({QLatin1String(serviceName), changed, QStringList()});
    m_bus.send(signal);
}

void StatusOnBus::SetLog(bool bOn, const QDBusMessage &call)
{
    ForOwnProcesses(call, [this, bOn] {
        g_bEnableLog = bOn;
        AnnounceChanges();
    });
}

void StatusOnBus::ReloadOrigins(const QDBusMessage &call)
{
    ForOwnProcesses(call, [this] { Q_EMIT originAnswersChanged(); });
}

void StatusOnBus::ForOwnProcesses(const QDBusMessage &call, const std::function<void()> &action)
{
    call.setDelayedReply(true);
    QDBusMessage question = CallOfTheBus("GetConnectionUnixUser");
    question.setArguments({call.service()});
    auto *const pWatcher = new QDBusPendingCallWatcher(m_bus.asyncCall(question), this);
    connect(pWatcher, &QDBusPendingCallWatcher::finished, this, [this, pWatcher, call, action] {
        const QDBusPendingReply<uint> user = *pWatcher;
        pWatcher->deleteLater();
        if (user.isError() || user.value() != geteuid()) {
            m_bus.send(call.createErrorReply(QDBusError::AccessDenied,
                                             QStringLiteral("only for processes of the user who runs the program")));
            return;
        }
        action();
        m_bus.send(call.createReply());
    });
}
