#include "base/SessionBusProbe.h"

#include <QFile>
#include <QSocketNotifier>

#include <cstddef>
#include <cstring>
#include <optional>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

/// Where a program of this user looks for the bus; empty when it would have to be started.
QByteArray BusAddress()
{
    QByteArray address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty())
        return address;
    const QByteArray socket = qgetenv("XDG_RUNTIME_DIR") + "/bus";
    return QFile::exists(QFile::decodeName(socket)) ? "unix:path=" + socket : QByteArray();
}

struct SocketAddress {
    sockaddr_un data{};
    socklen_t nSize = 0;
};

/// A name of the file system, or with bAbstract one of the kernel's own, which begins with a zero byte.
std::optional<SocketAddress> SocketNamed(const QByteArray &name, bool bAbstract)
{
    SocketAddress address;
    address.data.sun_family = AF_UNIX;
    const std::size_t nBefore = bAbstract ? 1 : 0;
    const auto nLength = static_cast<std::size_t>(name.size());
    if (nLength == 0 || nBefore + nLength >= sizeof address.data.sun_path)
        return std::nullopt;
    std::memcpy(address.data.sun_path + nBefore, name.constData(), nLength);
    address.nSize = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + nLength + 1);
    return address;
}

/// The first socket of this machine in a bus address such as "unix:path=/run/user/1000/bus,guid=0;tcp:host=h".
std::optional<SocketAddress> LocalSocket(const QByteArray &busAddress)
{
    const QList<QByteArray> entries = busAddress.split(';');
    for (const QByteArray &entry : entries) {
        if (!entry.startsWith("unix:"))
            continue;
        const QList<QByteArray> fields = entry.mid(5).split(',');
        for (const QByteArray &field : fields) {
            if (field.startsWith("path="))
                return SocketNamed(QByteArray::fromPercentEncoding(field.mid(5)), false);
            if (field.startsWith("abstract="))
                return SocketNamed(QByteArray::fromPercentEncoding(field.mid(9)), true);
        }
    }
    return std::nullopt;
}

/// What a client of a bus says first: a zero byte, and who it is.
QByteArray Greeting()
{
    return QByteArray(1, '\0') + "AUTH EXTERNAL " + QByteArray::number(geteuid()).toHex() + "\r\n";
}

} // namespace

SessionBusProbe::~SessionBusProbe()
{
    Stop();
}

bool SessionBusProbe::Start()
{
    Stop();
    const QByteArray busAddress = BusAddress();
    const std::optional<SocketAddress> address = LocalSocket(busAddress);
    m_nSocket = address ? socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0) : -1;
    if (m_nSocket < 0)
        return false;
    const QByteArray greeting = Greeting();
    if (::connect(m_nSocket, reinterpret_cast<const sockaddr *>(&address->data), address->nSize) != 0
        || send(m_nSocket, greeting.constData(), static_cast<std::size_t>(greeting.size()), MSG_NOSIGNAL)
               != greeting.size()) {
        Stop();
        return false;
    }
    m_strAddress = QFile::decodeName(busAddress);
    m_pNotifier = new QSocketNotifier(m_nSocket, QSocketNotifier::Read, this);
    // By its name: what is behind the pointer to this signal is another function since Qt 5.15.
    connect(m_pNotifier, SIGNAL(activated(int)), this, SLOT(ReadAnswer()));
    return true;
}

void SessionBusProbe::ReadAnswer()
{
    char answer[256];
    const ssize_t nRead = recv(m_nSocket, answer, sizeof answer, 0);
    Stop();
    if (nRead >= 3 && std::memcmp(answer, "OK ", 3) == 0)
        Q_EMIT answered(m_strAddress);
}

void SessionBusProbe::Stop()
{
    if (m_pNotifier) {
        m_pNotifier->setEnabled(false);
        m_pNotifier->deleteLater(); // it may be what calls
        m_pNotifier = nullptr;
    }
    if (m_nSocket >= 0)
        close(m_nSocket);
    m_nSocket = -1;
}
