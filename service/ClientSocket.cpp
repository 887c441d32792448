#include "service/ClientSocket.h"

#include <algorithm>

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>

namespace {

/// Bytes of replies after which the client's further requests wait, and the other clients have their turn.
constexpr qint64 nMostAtOnce = 1048576;

/// Bytes of pushes that may wait when another one comes.
constexpr qint64 nMostPushesWaiting = 67108864;

} // namespace

ClientSocket::ClientSocket(qintptr nDescriptor, const ClientPatience &patience, QObject *parent)
    : QTcpSocket(parent), m_deadline(this), m_nTakingMs(patience.nTakingMs)
{
    setSocketDescriptor(nDescriptor);
    // Otherwise the end of a long text, or a push behind a reply, waits for the client's delayed acknowledgement.
    setSocketOption(LowDelayOption, 1);
    connect(this, &QIODevice::bytesWritten, this, &ClientSocket::NoteWritten);
    m_deadline.setSingleShot(true);
    connect(&m_deadline, &QTimer::timeout, this, &ClientSocket::CutOffUnlessTaken);
    m_deadline.start(patience.nHandshakeMs); // until the first bytes are written, which answer it
}

qint64 ClientSocket::bytesAvailable() const
{
    return m_bRequestsHeld ? 0 : QTcpSocket::bytesAvailable();
}

void ClientSocket::SendReply(MessageKind kind, const QByteArray &message)
{
    Write(kind, message);
    const bool bMuch = bytesToWrite() > nMostAtOnce;
    if (!bMuch && bytesAvailable() > 0)
        AwaitTaking(); // with more requests at hand, their replies go out together
    else
        SendWaiting(bMuch);
}

void ClientSocket::SendPush(const QByteArray &text)
{
    m_nPushesWaiting = std::min(m_nPushesWaiting, bytesToWrite());
    if (m_nPushesWaiting > nMostPushesWaiting) {
        abort();
        return;
    }
    Write(MessageKind::Text, text);
    m_nPushesWaiting += text.size();
    SendWaiting(false);
}

void ClientSocket::Write(MessageKind kind, const QByteArray &message)
{
    const MessageFrameHeader header(kind, message.size());
    write(header.bytes, header.nSize);
    write(message);
    m_nGiven += header.nSize + message.size();
}

void ClientSocket::SendWaiting(bool bMuch)
{
    flush();
    const bool bLeft = bytesToWrite() > 0; // the system takes no more
    if (bLeft)
        AwaitTaking();
    if (bLeft || bMuch)
        HoldRequests();
}

void ClientSocket::AwaitTaking()
{
    if (m_deadline.isActive())
        return;
    m_nTaken = Taken();
    m_deadline.start(m_nTakingMs);
}

void ClientSocket::NoteWritten()
{
    if (bytesToWrite() > 0)
        return;
    m_deadline.stop();
    m_nPushesWaiting = 0;
    if (m_bRequestsHeld)
        QMetaObject::invokeMethod(this, "ReleaseRequests", Qt::QueuedConnection); // the others' turn comes first
}

void ClientSocket::HoldUntilReleased()
{
    m_bHeldUntilReleased = true;
    HoldRequests();
}

void ClientSocket::Release()
{
    m_bHeldUntilReleased = false;
    ReleaseRequests();
}

bool ClientSocket::HasPeerFinished() const
{
    pollfd connection{static_cast<int>(socketDescriptor()), POLLRDHUP, 0};
    return ::poll(&connection, 1, 0) != 0;
}

void ClientSocket::HoldRequests()
{
    if (m_bRequestsHeld || state() != ConnectedState)
        return;
    // With a byte in a buffer for one, Qt reads nothing more: neither further requests nor the end of the client's
    // sending, at which it would drop what is still to be sent.
    m_bBufferFilled = bytesAvailable() == 0;
    if (m_bBufferFilled)
        ungetChar('\0');
    setReadBufferSize(1);
    m_bRequestsHeld = true;
    Q_EMIT readyRead(); // or the WebSocket gives up waiting for the rest of a frame of which it has seen a part
    if (bytesToWrite() == 0)
        NoteWritten();
}

void ClientSocket::ReleaseRequests()
{
    if (!m_bRequestsHeld || m_bHeldUntilReleased || bytesToWrite() > 0 || state() != ConnectedState)
        return;
    m_bRequestsHeld = false;
    if (m_bBufferFilled)
        getChar(nullptr);
    Q_EMIT drained();
    Q_EMIT readyRead();
    // Later: the WebSocket may look at what is there in the next turn of the event loop only, and Qt must not meet the
    // end of the client's sending before.
    QMetaObject::invokeMethod(this, "ReadOn", Qt::QueuedConnection);
}

void ClientSocket::ReadOn()
{
    if (!m_bRequestsHeld)
        setReadBufferSize(0);
}

/// Bytes of messages that the client's machine has acknowledged, but for a constant.
qint64 ClientSocket::Taken() const
{
    int nUnacknowledged = 0;
    ::ioctl(static_cast<int>(socketDescriptor()), SIOCOUTQ, &nUnacknowledged);
    return m_nGiven - bytesToWrite() - nUnacknowledged;
}

void ClientSocket::CutOffUnlessTaken()
{
    const qint64 nTaken = Taken();
    if (nTaken == m_nTaken) {
        abort();
        return;
    }
    m_nTaken = nTaken;
    m_deadline.start(m_nTakingMs);
}
