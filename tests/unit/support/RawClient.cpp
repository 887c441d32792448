#include "tests/unit/support/RawClient.h"

#include "tests/unit/support/Patience.h"

#include <cstring>
#include <sys/socket.h>

namespace {

/// The mask bit stands beside the length.
QByteArray frameHeader(char kind, char maskBit, int size)
{
    const int lengthBytes = size < 126 ? 0 : size < 65536 ? 2 : 8;
    const int shortLength = lengthBytes == 0 ? size : lengthBytes == 2 ? 126 : 127;
    QByteArray header(1, kind);
    header += static_cast<char>(maskBit | shortLength);
    for (int i = lengthBytes - 1; i >= 0; --i)
        header += static_cast<char>(static_cast<quint64>(size) >> 8 * i & 0xff);
    return header;
}

} // namespace

QByteArray clientFrame(const QByteArray &message, char kind)
{
    return frameHeader(kind, '\x80', message.size()) + QByteArray(4, '\0') + message;
}

QByteArray serverFrame(const QByteArray &message, char kind)
{
    return frameHeader(kind, '\0', message.size()) + message;
}

bool RawClient::connectTo(quint16 port, const QHostAddress &address)
{
    m_socket.connectToHost(address, port);
    return m_socket.waitForConnected(patienceMs);
}

void RawClient::startHandshake(const QByteArray &headers)
{
    send("GET / HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n"
         + headers + "\r\n");
}

QByteArray RawClient::handshake(const QByteArray &headers)
{
    startHandshake(headers);
    QByteArray answer;
    while (!answer.endsWith("\r\n\r\n") && (m_socket.bytesAvailable() > 0 || m_socket.waitForReadyRead(patienceMs)))
        answer += m_socket.read(1);
    return answer.left(answer.indexOf('\r'));
}

void RawClient::send(const QByteArray &bytes)
{
    m_socket.write(bytes);
    m_socket.flush();
}

QByteArray RawClient::receive(int size)
{
    QByteArray bytes;
    while (bytes.size() < size && (m_socket.bytesAvailable() > 0 || m_socket.waitForReadyRead(patienceMs)))
        bytes += m_socket.read(size - bytes.size());
    return bytes;
}

bool RawClient::receives(const QByteArray &bytes)
{
    int compared = 0;
    while (compared < bytes.size()) {
        if (m_socket.bytesAvailable() == 0 && !m_socket.waitForReadyRead(patienceMs))
            return false;
        const QByteArray piece = m_socket.read(bytes.size() - compared);
        if (std::memcmp(piece.constData(), bytes.constData() + compared, static_cast<std::size_t>(piece.size())) != 0)
            return false;
        compared += piece.size();
    }
    return true;
}

void RawClient::finishSending()
{
    while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(patienceMs)) {
    }
    ::shutdown(static_cast<int>(m_socket.socketDescriptor()), SHUT_WR);
}

bool RawClient::waitForEnd(int timeoutMs)
{
    return m_socket.state() == QAbstractSocket::UnconnectedState || m_socket.waitForDisconnected(timeoutMs);
}
