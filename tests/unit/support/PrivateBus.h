#pragma once

#include <QProcess>
#include <QTemporaryDir>

/// A bus of the test's own, as a session has one, but open to every user. It ends with the object.
class PrivateBus
{
public:
    /// Listens there, in the bus's own terms; at a socket in a folder of its own when nothing is named.
    explicit PrivateBus(const QString &listen = {});
    ~PrivateBus();

    /// With the bus's identifier behind it; empty when it has not started.
    QString address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    QProcess m_daemon;
    QString m_address;
};
