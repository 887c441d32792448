#pragma once

#include "device/PadStatus.h"

#include <QMetaType>
#include <QString>
#include <QVector>

/// A client as its connection shows it.
struct ClientStatus {
    QString strOrigin;  ///< as its handshake named it; empty when it named none
    QString strAddress; ///< its IP address, a blank and its port
};

/// The service at one moment, as a value that crosses threads.
struct ServiceStatus {
    enum State { Stopped, Listening, ClosedBySettings, PortTaken };

    State state = Stopped;
    QString strReason;  ///< why it does not listen, in one line of English; empty while it listens
    QString strAddress; ///< IP address that it listens at, or is to listen at; "*" is every interface
    int nPort = 0;
    QVector<ClientStatus> clients; ///< in the order of connection
    PadStatus pad;
};
Q_DECLARE_METATYPE(ServiceStatus)
