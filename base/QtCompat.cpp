#include "base/QtCompat.h"

#include <dlfcn.h>

void LimitIncomingMessages(QWebSocket &socket, quint64 nBytes)
{
    // QWebSocket::setMaxAllowedIncomingFrameSize(quint64) and QWebSocket::setMaxAllowedIncomingMessageSize(quint64)
    static const char *const setters[] = {"_ZN10QWebSocket30setMaxAllowedIncomingFrameSizeEy",
                                          "_ZN10QWebSocket32setMaxAllowedIncomingMessageSizeEy"};
    using Setter = void (*)(QWebSocket *, quint64);
    for (const char *szSetter : setters) {
        if (const auto setLimit = reinterpret_cast<Setter>(dlsym(RTLD_DEFAULT, szSetter)))
            setLimit(&socket, nBytes);
    }
}
