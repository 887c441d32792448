#include "service/ClientConnections.h"

#include <QTcpSocket>
#include <QWebSocket>
#include <QWebSocketServer>
#include <QtEndian>

#include <malloc.h>

namespace {

/// How soon the memory that texts have gone through goes back to the system.
constexpr int nTrimDelayMs = 1000;

/// The header of a whole text message in one frame of a server, which does not mask.
QByteArray FrameHeader(int nPayload)
{
    QByteArray header(1, '\x81'); // final, text
    if (nPayload < 126) {
        header += static_cast<char>(nPayload);
    } else if (nPayload <= 0xffff) {
        header += '\x7e';
        header.resize(4);
        qToBigEndian(static_cast<quint16>(nPayload), header.data() + 2);
    } else {
        header += '\x7f';
        header.resize(10);
        qToBigEndian(static_cast<quint64>(nPayload), header.data() + 2);
    }
    return header;
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

void ClientConnections::SendText(QWebSocket *pClient, const QByteArray &text)
{
    if (pClient->state() != QAbstractSocket::ConnectedState)
        return;
    if (QTcpSocket *const pConnection = m_connections.value(pClient)) {
        pConnection->write(FrameHeader(text.size()));
        pConnection->write(text);
        // With more requests at hand, their replies go out together.
        if (pConnection->bytesAvailable() == 0)
            pConnection->flush();
    } else {
        pClient->sendTextMessage(QString::fromUtf8(text)); // a Qt that keeps its sockets elsewhere
    }
    TrimSoon();
}
