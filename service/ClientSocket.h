#pragma once

#include "service/MessageFrame.h"

#include <QTcpSocket>
#include <QTimer>

/// How long a client is waited for, in milliseconds.
struct ClientPatience {
    int nHandshakeMs = 10000; ///< until the opening handshake is answered
    int nTakingMs = 30000;    ///< without a byte taken by the client's machine while something waits for it
};

/// The TCP connection below a client's WebSocket. What is sent waits in it until the client takes it; the client's
/// further requests wait meanwhile: the WebSocket finds nothing to read, and the client itself is held up once the
/// system's buffers are full. A client that takes nothing for too long is cut off.
class ClientSocket : public QTcpSocket
{
    Q_OBJECT

public:
    /// Takes the descriptor of an accepted connection over.
    ClientSocket(qintptr nDescriptor, const ClientPatience &patience, QObject *parent);

    /// Sends a message that answers one of the client's.
    void SendReply(MessageKind kind, const QByteArray &message);
    /// Sends a text that the client has not asked for. A client for which too many wait already is cut off instead.
    void SendPush(const QByteArray &text);

    /// Lets the requests wait, whatever is sent, until they are released.
    void HoldUntilReleased();
    void Release();
    /// Whether the client will send nothing more, which is not noticed otherwise while the requests wait.
    bool HasPeerFinished() const;

    /// 0 while the requests wait.
    qint64 bytesAvailable() const override;

Q_SIGNALS:
    /// All that waited has been taken.
    void drained();

private:
    void Write(MessageKind kind, const QByteArray &message);
    void SendWaiting(bool bMuch);
    void AwaitTaking();
    void NoteWritten();
    void HoldRequests();
    Q_INVOKABLE void ReleaseRequests();
    Q_INVOKABLE void ReadOn();
    qint64 Taken() const;
    void CutOffUnlessTaken();

    QTimer m_deadline; // runs while the handshake is not answered, and while something waits
    int m_nTakingMs;
    qint64 m_nGiven = 0; // bytes of all messages
    qint64 m_nTaken = 0; // of these, by the client's machine when the deadline began
    qint64 m_nPushesWaiting = 0;
    bool m_bRequestsHeld = false;
    bool m_bHeldUntilReleased = false;
    bool m_bBufferFilled = false; // with a byte of our own
};
