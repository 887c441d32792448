#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QTimer>

class QTcpSocket;
class QWebSocket;
class QWebSocketServer;

/// The TCP connections below the clients' WebSockets. A text is encoded once and then written to each of them as it
/// stands; QWebSocket::sendTextMessage would encode and copy it anew for each client. What clients send, pings, closing
/// and all the rest stays with QWebSocket. Lives on the service thread.
class ClientConnections : public QObject
{
    Q_OBJECT

public:
    /// The server is the parent too.
    explicit ClientConnections(QWebSocketServer *pServer);

    /// To be called when the server hands the client out, and when the client is gone.
    void Add(const QWebSocket *pClient);
    void Remove(const QWebSocket *pClient);

    /// False when the client has left so much unread that nothing more is to be sent to it: its connection ends then.
    bool KeepsUp(const QWebSocket *pClient);
    /// Sends a text in UTF-8 as one message. Does nothing when the client is not connected any more or does not keep
    /// up.
    void SendText(QWebSocket *pClient, const QByteArray &text);

private:
    Q_INVOKABLE void CutOffWhoDoesNotRead();
    QTcpSocket *ConnectionBelow(const QWebSocket *pClient) const;
    void TrimSoon();

    QWebSocketServer *m_pServer;
    QHash<const QWebSocket *, QTcpSocket *> m_connections; // owned by the clients
    QTimer *m_pTrimTimer;                                  // child
};
