#pragma once

#include "service/ServiceStatus.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <QVector>

class StatusOnBus;

/// A client on the bus: origin and address, a structure of two texts.
struct ClientOnBus {
    QString strOrigin;
    QString strAddress;
};
bool operator==(const ClientOnBus &left, const ClientOnBus &right);
Q_DECLARE_METATYPE(ClientOnBus)
Q_DECLARE_METATYPE(QVector<ClientOnBus>)

// The bus is told of changes by PropertiesChanged, not by signals of these properties.
// clazy:excludeall=qproperty-without-notify

/// The interface com.morvane.MVSignPad: what others on the bus may see and call.
class StatusAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.morvane.MVSignPad")
    Q_PROPERTY(QString State READ State)
    Q_PROPERTY(QString Reason READ Reason)
    Q_PROPERTY(QString Address READ Address)
    Q_PROPERTY(uint Port READ Port)
    Q_PROPERTY(uint ClientCount READ ClientCount)
    Q_PROPERTY(QVector<ClientOnBus> Clients READ Clients)
    Q_PROPERTY(QString Pad READ Pad)
    Q_PROPERTY(QString Library READ Library)
    Q_PROPERTY(QString LibraryError READ LibraryError)
    Q_PROPERTY(QStringList MissingFunctions READ MissingFunctions)
    Q_PROPERTY(bool Log READ Log)
    Q_PROPERTY(QString Program READ Program)
    Q_PROPERTY(uint ProcessId READ ProcessId)
    Q_PROPERTY(QString Version READ Version)
    Q_PROPERTY(QString QtVersion READ QtVersion)

public:
    explicit StatusAdaptor(StatusOnBus *pStatus);

    QString State() const;
    QString Reason() const;
    QString Address() const;
    uint Port() const;
    uint ClientCount() const;
    QVector<ClientOnBus> Clients() const;
    QString Pad() const;
    QString Library() const;
    QString LibraryError() const;
    QStringList MissingFunctions() const;
    bool Log() const;
    QString Program() const;
    uint ProcessId() const;
    QString Version() const;
    QString QtVersion() const;

    /// All properties by their names.
    QVariantMap Properties() const;

public Q_SLOTS:
    void SetLog(bool On, const QDBusMessage &message);
    void ReloadOrigins(const QDBusMessage &message);

private:
    const ServiceStatus &Service() const;

    StatusOnBus *m_pStatus; // parent
};
