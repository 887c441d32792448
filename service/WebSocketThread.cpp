#include "service/WebSocketThread.h"

#include "base/Logging.h"
#include "service/WebSocketService.h"

#include <QAbstractEventDispatcher>

#include <utility>

namespace {

/// Stops every timer of an object and its children. A timer that runs while its object changes threads starts again
/// from the event loop of the new thread, and Qt leaks the note of it when the object is deleted before that.
void StopTimers(QObject *pObject)
{
    QAbstractEventDispatcher *const pDispatcher = QAbstractEventDispatcher::instance();
    pDispatcher->unregisterTimers(pObject);
    const QObjectList children = pObject->findChildren<QObject *>();
    for (QObject *pChild : children)
        pDispatcher->unregisterTimers(pChild);
}

} // namespace

WebSocketThread::WebSocketThread(QObject *parent, int nWebSocketPort, AccessPolicy accessPolicy,
                                 ServiceStatusSource *pStatusSource, OriginDesk *pOriginDesk)
    : QThread(parent), m_nWebSocketPort(nWebSocketPort), m_accessPolicy(std::move(accessPolicy)),
      m_pStatusSource(pStatusSource), m_pOriginDesk(pOriginDesk)
{
    static const char tag[] = "WebSocketThread::WebSocketThread()";
    MV_LOG_INSIDE_THREAD(tag, "Enter, nWebSocketPort=%d", nWebSocketPort);
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

WebSocketThread::~WebSocketThread()
{
    static const char tag[] = "WebSocketThread::~WebSocketThread()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    if (m_pWebSocketService) {
        m_pWebSocketService.reset();
        MV_LOG_INSIDE_THREAD(tag, "after call delete m_pWebSocketService...");
    }
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketThread::run()
{
    static const char tag[] = "WebSocketThread::run()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    m_pWebSocketService = std::make_unique<WebSocketService>(static_cast<quint16>(m_nWebSocketPort), nullptr,
                                                             m_accessPolicy, m_pStatusSource, m_pOriginDesk);
    m_pWebSocketService->TellStatus();
    MV_LOG_INSIDE_THREAD(tag, "b4 call exec()...");
    exec();
    // The thread that owns this object deletes the service: its sockets must not wait for this one's event loop.
    StopTimers(m_pWebSocketService.get());
    m_pWebSocketService->moveToThread(thread());
    MV_LOG_INSIDE_THREAD(tag, "after call exec() and Leave !");
}
