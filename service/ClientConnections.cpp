#include "service/ClientConnections.h"

#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>
#include <QtEndian>

#include <malloc.h>

namespace {

/// How soon the memory that texts have gone through goes back to the system.
constexpr int nTrimDelayMs = 1000;

/// Bytes that may wait for a client to read them: more than any picture, less than hurts the machine.
constexpr qint64 nMostUnread = 268435456;

/// Writes the header of a whole text message in one frame of a server, which does not mask.
void WriteFrameHeader(QTcpSocket *pConnection, int nPayload)
{
    char header[10] = {'\x81'}; // final, text
    int nSize = 2;
    if (nPayload < 126) {
        header[1] = static_cast<char>(nPayload);
    } else if (nPayload <= 0xffff) {
        header[1] = '\x7e';
        qToBigEndian(static_cast<quint16>(nPayload), header + 2);
        nSize = 4;
    } else {
        header[1] = '\x7f';
        qToBigEndian(static_cast<quint64>(nPayload), header + 2);
        nSize = 10;
    }
    pConnection->write(header, nSize);
}

} // namespace

ClientConnections::ClientConnections(QWebSocketServer *pServer)
    : QObject(pServer), m_pServer(pServer), m_pTrimTimer(new QTimer(this))
{
    m_pTrimTimer->setSingleShot(true);
    m_pTrimTimer->setInterval(nTrimDelayMs);
    connect(m_pTrimTimer, &QTimer::timeout, this, [] { malloc_trim(0); });
}

void ClientConnections::Add(const QWebSocket *pClient)
{
    QTcpSocket *const pConnection = ConnectionBelow(pClient);
    if (!pConnection)
        return;
    // Otherwise the end of a long text, or a push behind a reply, waits for the client's delayed acknowledgement.
    pConnection->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_connections.insert(pClient, pConnection);
}

void ClientConnections::Remove(const QWebSocket *pClient)
{
    m_connections.remove(pClient);
    TrimSoon(); // of what it had sent of a message without an end
}

void ClientConnections::TrimSoon()
{
    if (!m_pTrimTimer->isActive())
        m_pTrimTimer->start();
}

/// The server keeps the sockets that it accepts among its children, also when a WebSocket has taken them over.
QTcpSocket *ClientConnections::ConnectionBelow(const QWebSocket *pClient) const
{
    const QList<QTcpSocket *> sockets = m_pServer->findChildren<QTcpSocket *>();
    for (QTcpSocket *pSocket : sockets) {
        if (pSocket->peerPort() == pClient->peerPort() && pSocket->peerAddress() == pClient->peerAddress()
            && pSocket->localAddress() == pClient->localAddress())
            return pSocket;
    }
    return nullptr;
}

bool ClientConnections::KeepsUp(const QWebSocket *pClient)
{
    const QTcpSocket *const pConnection = m_connections.value(pClient);
    if (!pConnection || pConnection->bytesToWrite() <= nMostUnread)
        return true;
    // Not while the WebSocket hands on what it has read.
    QMetaObject::invokeMethod(this, "CutOffWhoDoesNotRead", Qt::QueuedConnection);
    return false;
}

void ClientConnections::CutOffWhoDoesNotRead()
{
    const QList<QTcpSocket *> connections = m_connections.values(); // a connection that ends is taken off
    for (QTcpSocket *pConnection : connections) {
        if (pConnection->bytesToWrite() > nMostUnread)
            pConnection->abort();
    }
}

void ClientConnections::SendText(QWebSocket *pClient, const QByteArray &text)
{
    if (pClient->state() != QAbstractSocket::ConnectedState || !KeepsUp(pClient))
        return;
    if (QTcpSocket *const pConnection = m_connections.value(pClient)) {
        WriteFrameHeader(pConnection, text.size());
        pConnection->write(text);
        // With more requests at hand, their replies go out together.
        if (pConnection->bytesAvailable() == 0)
            pConnection->flush();
    } else {
        pClient->sendTextMessage(QString::fromUtf8(text)); // a Qt that keeps its sockets elsewhere
    }
    TrimSoon();
}
