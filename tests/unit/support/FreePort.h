#pragma once

#include <QTcpServer>

/// A port that nobody listens on, on any address, at the moment of the call.
inline quint16 freePort()
{
    QTcpServer server;
    return server.listen(QHostAddress::Any, 0) ? server.serverPort() : quint16(0);
}
