#include "service/ClientAcceptor.h"

#include "base/QtCompat.h"

#include <QChildEvent>
#include <QSocketNotifier>
#include <QTimer>
#include <QWebSocket>
#include <QWebSocketServer>

#include <cerrno>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

/// Descriptors that are left for settings, pictures and the pad.
constexpr int nDescriptorsLeft = 64;

/// How soon it is tried again when there is no client whose leaving could be waited for.
constexpr int nRetryMs = 1000;

bool IsOutOfResources(int nError)
{
    return nError == EMFILE || nError == ENFILE || nError == ENOBUFS || nError == ENOMEM;
}

} // namespace

ClientAcceptor::ClientAcceptor(QWebSocketServer *pServer, const ClientPatience &patience)
    : QObject(pServer), m_pServer(pServer), m_patience(patience),
      m_nListening(::fcntl(ListeningDescriptor(*pServer), F_DUPFD_CLOEXEC, 0)), // Qt watches one once
      m_pNotifier(new QSocketNotifier(m_nListening, QSocketNotifier::Read, this)), m_pRetryTimer(new QTimer(this))
{
    pServer->pauseAccepting();
    connect(m_pNotifier, SIGNAL(activated(int)), this, SLOT(Accept())); // its C++ type differs between Qt versions
    connect(pServer, &QWebSocketServer::closed, this, &ClientAcceptor::Close);
    m_pRetryTimer->setSingleShot(true);
    m_pRetryTimer->setInterval(nRetryMs);
    connect(m_pRetryTimer, &QTimer::timeout, this, &ClientAcceptor::Resume);
}

ClientAcceptor::~ClientAcceptor()
{
    Close();
}

void ClientAcceptor::Close()
{
    m_pNotifier->setEnabled(false);
    if (m_nListening >= 0)
        ::close(m_nListening);
    m_nListening = -1;
}

void ClientAcceptor::Accept()
{
    const int nDescriptor = ::accept4(m_nListening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (nDescriptor < 0) {
        if (IsOutOfResources(errno))
            Pause();
        return;
    }
    m_pServer->handleConnection(new ClientSocket(nDescriptor, m_patience, this));
    if (nDescriptor + nDescriptorsLeft >= ::sysconf(_SC_OPEN_MAX))
        Pause();
}

void ClientAcceptor::Pause()
{
    m_pNotifier->setEnabled(false);
    if (findChild<ClientSocket *>() == nullptr)
        m_pRetryTimer->start();
}

void ClientAcceptor::Resume()
{
    m_pNotifier->setEnabled(m_nListening >= 0);
}

void ClientAcceptor::childEvent(QChildEvent *pEvent)
{
    if (pEvent->removed())
        Resume();
}

ClientSocket *ClientAcceptor::ConnectionBelow(const QWebSocket *pClient) const
{
    const QList<ClientSocket *> sockets = findChildren<ClientSocket *>();
    for (ClientSocket *pSocket : sockets) {
        if (pSocket->peerPort() == pClient->peerPort() && pSocket->peerAddress() == pClient->peerAddress()
            && pSocket->localAddress() == pClient->localAddress())
            return pSocket;
    }
    return nullptr;
}
