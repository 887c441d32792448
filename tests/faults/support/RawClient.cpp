#include "tests/faults/support/RawClient.h"

bool RawClient::connectTo(quint16 port, const QHostAddress &address)
{
    m_socket.connectToHost(address, port);
    return m_socket.waitForConnected(5000);
}

QByteArray RawClient::handshake(const QByteArray &headers)
{
    send("GET / HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n"
         + headers + "\r\n");
    while (!m_socket.canReadLine() && m_socket.waitForReadyRead(5000)) {
    }
    return m_socket.readLine().trimmed();
}

void RawClient::send(const QByteArray &bytes)
{
    m_socket.write(bytes);
    m_socket.flush();
}

bool RawClient::waitForEnd(int timeoutMs)
{
    return m_socket.state() == QAbstractSocket::UnconnectedState || m_socket.waitForDisconnected(timeoutMs);
}
