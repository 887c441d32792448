#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class QSocketNotifier;

/// Finds out whether the user's session bus is there and answers, without ever blocking: connecting to a bus that hangs
/// would, for half a minute. Starts no bus.
class SessionBusProbe : public QObject
{
    Q_OBJECT

public:
    explicit SessionBusProbe(QObject *parent = nullptr) : QObject(parent) {}
    ~SessionBusProbe() override;

    /// Asks the bus. False when there is none, or none that can be reached: nothing is emitted then.
    bool Start();

Q_SIGNALS:
    /// The bus is there, at this address. At most once for each start, and not at all while it hangs.
    void answered(const QString &address);

private Q_SLOTS:
    void ReadAnswer();

private:
    void Stop();

    QString m_strAddress;
    int m_nSocket = -1;
    QSocketNotifier *m_pNotifier = nullptr; // child; null while not asking
};
