#pragma once

#include "tray/StatusAdaptor.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <functional>

class ServiceStatusSource;

/// The program's state as an object of the session bus, see docs/status.md; nothing where there is no bus. Never waits
/// for the bus. Main thread only.
class StatusOnBus : public QObject
{
    Q_OBJECT

public:
    /// Keeps to what the source tells. Looks for the bus; the object is there a moment after the event loop has begun.
    explicit StatusOnBus(const ServiceStatusSource &source, QObject *parent = nullptr);
    ~StatusOnBus() override;

    const ServiceStatus &Service() const { return m_service; }

    /// Switches the diagnostic log, when the call comes from a process of the user's.
    void SetLog(bool bOn, const QDBusMessage &call);
    /// Likewise has what was answered about origins read anew.
    void ReloadOrigins(const QDBusMessage &call);

Q_SIGNALS:
    /// What was answered about origins is to be read anew.
    void originAnswersChanged();

private:
    void SetServiceStatus(const ServiceStatus &status);
    void Publish(const QString &busAddress);
    void AnnounceChanges();
    /// Finds out who calls; then does what is asked and replies, or refuses.
    void ForOwnProcesses(const QDBusMessage &call, const std::function<void()> &action);

    ServiceStatus m_service;
    StatusAdaptor *m_pAdaptor; // child
    QDBusConnection m_bus;
    QVariantMap m_announced; // the properties as listeners know them
};
