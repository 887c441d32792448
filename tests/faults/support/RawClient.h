#pragma once

#include <QHostAddress>
#include <QTcpSocket>

/// A client that speaks to the service byte by byte, also what no sound client would say.
class RawClient
{
public:
    bool connectTo(quint16 port, const QHostAddress &address = QHostAddress(QHostAddress::LocalHost));
    /// Sends the opening handshake, with these further header lines, and returns the first line of the answer.
    QByteArray handshake(const QByteArray &headers = QByteArray());
    void send(const QByteArray &bytes);
    /// From now on leaves what comes where it is, but for a few bytes.
    void readNothing() { m_socket.setReadBufferSize(1); }
    /// Ends the connection at once, in the midst of whatever is under way.
    void abort() { m_socket.abort(); }
    /// Waits until the service has ended the connection.
    bool waitForEnd(int timeoutMs);

private:
    QTcpSocket m_socket;
};
