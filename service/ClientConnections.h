#pragma once

#include "service/ClientSocket.h"

#include <QByteArray>
#include <QHash>
#include <QObject>

class ClientAcceptor;
class HeapTrimmer;
class QWebSocket;
class QWebSocketServer;

/// Sends to the clients by the connections below their WebSockets. A text is encoded once and then written to each of
/// them as it stands; QWebSocket::sendTextMessage would encode and copy it anew for each client. What clients send,
/// pings, closing and all the rest stays with QWebSocket. Lives on the service thread.
class ClientConnections : public QObject
{
    Q_OBJECT

public:
    /// Accepts connections for the server, which listens already and is the parent too.
    explicit ClientConnections(QWebSocketServer *pServer, const ClientPatience &patience = {});

    /// To be called when the server hands the client out; false when its connection has ended already.
    bool Add(const QWebSocket *pClient);
    /// To be called when the client is gone.
    void Remove(const QWebSocket *pClient);

    /// Each sends a whole message in one frame; texts are in UTF-8. Does nothing when the client is not connected any
    /// more. A reply may let the client's further requests wait; a push cuts a client off for which too many wait.
    void SendReply(const QWebSocket *pClient, MessageKind kind, const QByteArray &message);
    void SendPush(const QWebSocket *pClient, const QByteArray &text);

    /// Lets the client's requests wait, unread, until they are released.
    void HoldRequests(const QWebSocket *pClient);
    void ReleaseRequests(const QWebSocket *pClient);
    /// Whether the client has ended the connection, or its side of it; to be asked while its requests are held.
    bool HasLeft(const QWebSocket *pClient) const;

private:
    ClientSocket *OpenConnection(const QWebSocket *pClient) const;

    ClientAcceptor *m_pAcceptor;                             // child of the server
    HeapTrimmer *m_pHeapTrimmer;                             // child
    QHash<const QWebSocket *, ClientSocket *> m_connections; // owned by the clients
};
