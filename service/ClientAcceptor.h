#pragma once

#include "service/ClientSocket.h"

#include <QObject>

class QSocketNotifier;
class QTimer;
class QWebSocket;
class QWebSocketServer;

/// Accepts connections in the place of a listening QWebSocketServer, which would make sockets of Qt's own kind, and
/// hands them to it. Leaves the process some descriptors: while no more are to be had, further clients wait until one
/// leaves.
class ClientAcceptor : public QObject
{
    Q_OBJECT

public:
    /// The server is the parent too.
    ClientAcceptor(QWebSocketServer *pServer, const ClientPatience &patience);
    ~ClientAcceptor() override;

    /// The connection below a client of the server; null when it has ended. Owned by the client.
    ClientSocket *ConnectionBelow(const QWebSocket *pClient) const;

protected:
    void childEvent(QChildEvent *pEvent) override;

private:
    Q_SLOT void Accept();
    void Pause();
    void Resume();
    void Close();

    QWebSocketServer *m_pServer;
    ClientPatience m_patience;
    int m_nListening;             // a descriptor of its own for what the server listens on; -1 when closed
    QSocketNotifier *m_pNotifier; // child
    QTimer *m_pRetryTimer;        // child
};
