#include "service/ClientConnections.h"

#include "base/HeapTrimmer.h"
#include "service/ClientAcceptor.h"

#include <QWebSocket>
#include <QWebSocketServer>

ClientConnections::ClientConnections(QWebSocketServer *pServer, const ClientPatience &patience)
    : QObject(pServer), m_pAcceptor(new ClientAcceptor(pServer, patience)), m_pHeapTrimmer(new HeapTrimmer(this))
{
}

bool ClientConnections::Add(const QWebSocket *pClient)
{
    ClientSocket *const pConnection = m_pAcceptor->ConnectionBelow(pClient);
    if (!pConnection)
        return false;
    connect(pConnection, &ClientSocket::drained, m_pHeapTrimmer, &HeapTrimmer::TrimSoon);
    m_connections.insert(pClient, pConnection);
    return true;
}

void ClientConnections::Remove(const QWebSocket *pClient)
{
    m_connections.remove(pClient);
    m_pHeapTrimmer->TrimSoon(); // of what it had sent of a message without an end
}

ClientSocket *ClientConnections::OpenConnection(const QWebSocket *pClient) const
{
    return pClient->state() == QAbstractSocket::ConnectedState ? m_connections.value(pClient) : nullptr;
}

void ClientConnections::SendReply(const QWebSocket *pClient, MessageKind kind, const QByteArray &message)
{
    if (ClientSocket *const pConnection = OpenConnection(pClient))
        pConnection->SendReply(kind, message);
    m_pHeapTrimmer->TrimSoon();
}

void ClientConnections::SendPush(const QWebSocket *pClient, const QByteArray &text)
{
    if (ClientSocket *const pConnection = OpenConnection(pClient))
        pConnection->SendPush(text);
    m_pHeapTrimmer->TrimSoon();
}

void ClientConnections::HoldRequests(const QWebSocket *pClient)
{
    if (ClientSocket *const pConnection = OpenConnection(pClient))
        pConnection->HoldUntilReleased();
}

void ClientConnections::ReleaseRequests(const QWebSocket *pClient)
{
    if (ClientSocket *const pConnection = OpenConnection(pClient))
        pConnection->Release();
}

bool ClientConnections::HasLeft(const QWebSocket *pClient) const
{
    const ClientSocket *const pConnection = OpenConnection(pClient);
    return pConnection == nullptr || pConnection->HasPeerFinished();
}
