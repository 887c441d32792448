#pragma once

#include <QHostAddress>
#include <QTcpSocket>

/// A final frame of a client, masked with zeroes; the kind is its first byte.
QByteArray clientFrame(const QByteArray &message, char kind = '\x81');
/// A final frame of the service.
QByteArray serverFrame(const QByteArray &message, char kind = '\x81');

/// A client that speaks to the service byte by byte, also what no sound client would say.
class RawClient
{
public:
    bool connectTo(quint16 port, const QHostAddress &address = QHostAddress(QHostAddress::LocalHost));
    /// Sends the opening handshake, with these further header lines, and returns the first line of the answer.
    QByteArray handshake(const QByteArray &headers = QByteArray());
    void startHandshake(const QByteArray &headers = QByteArray());
    /// Sends the bytes; what the system does not take at once is left for later.
    void send(const QByteArray &bytes);
    /// So many bytes of what comes, or fewer when none come for a while.
    QByteArray receive(int size);
    /// Whether these bytes, and none else before them, come; each piece of them within patienceMs.
    bool receives(const QByteArray &bytes);
    /// From now on leaves what comes where it is, but for a few bytes.
    void readNothing() { m_socket.setReadBufferSize(1); }
    /// From now on takes what comes again.
    void readAgain() { m_socket.setReadBufferSize(0); }
    /// Says that nothing more will be sent; what comes is still read.
    void finishSending();
    /// Ends the connection at once, in the midst of whatever is under way.
    void abort() { m_socket.abort(); }
    /// Waits until the service has ended the connection.
    bool waitForEnd(int timeoutMs);

    QTcpSocket &socket() { return m_socket; }

private:
    QTcpSocket m_socket;
};
