#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

/// The running program, as the user's session bus knows it. Waits for the bus and the program, a few seconds at most.
class BusStatus
{
public:
    /// Connects, if there is a bus that answers.
    BusStatus();

    /// Whether there is a bus that answers.
    bool HasBus() const { return m_bus.isConnected(); }
    /// Whether a tray that speaks the StatusNotifier protocol is on the bus.
    bool HasStatusNotifierHost() const;

    /// The properties by their names, clients as a list of maps with Origin and Address. Empty when the program is not
    /// on the bus.
    QVariantMap Properties() const;

    /// Calls a method of the program's. The text says what went wrong; empty when nothing did.
    QString Call(const char *szMethod, const QVariantList &arguments) const;

private:
    QDBusConnection m_bus;
};
