#include "service/PushCallbacks.h"

#include "base/JsonText.h"
#include "base/Logging.h"
#include "service/WebSocketService.h"

#include <QByteArray>
#include <QMetaObject>
#include <QMutex>
#include <QMutexLocker>

#include <cstring>

WebSocketService *g_pWebSocketService = nullptr;

namespace {

/// Guards g_pWebSocketService: a callback on another thread must not meet a service that is being destroyed.
QBasicMutex pushTargetMutex;

/// Empty when the text is too long to work with, null for null.
QByteArray CopyOf(const char *szText)
{
    return !szText || std::strlen(szText) <= nMostTextUnits ? QByteArray(szText) : QByteArray("");
}

} // namespace

void ReceivePushes(WebSocketService &service)
{
    QMutexLocker lock(&pushTargetMutex);
    g_pWebSocketService = &service;
}

void EndPushes(const WebSocketService &service)
{
    QMutexLocker lock(&pushTargetMutex);
    if (g_pWebSocketService == &service)
        g_pWebSocketService = nullptr;
}

void WebSocketServiceSignPadEventCallback(int nEventID)
{
    static const char tag[] = "WebSocketServiceSignPadEventCallback()";
    MV_LOG_INSIDE_THREAD(tag, "Enter, nEventID=%d", nEventID);
    {
        QMutexLocker lock(&pushTargetMutex);
        if (g_pWebSocketService)
            QMetaObject::invokeMethod(g_pWebSocketService, "ProcessSignPadEvent", Qt::QueuedConnection,
                                      Q_ARG(int, nEventID));
    }
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketServiceSignBase64DataCallback(char *pData)
{
    static const char tag[] = "WebSocketServiceSignBase64DataCallback()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    {
        QMutexLocker lock(&pushTargetMutex);
        if (g_pWebSocketService)
            QMetaObject::invokeMethod(g_pWebSocketService, "ProcessSignBase64Data", Qt::QueuedConnection,
                                      Q_ARG(QByteArray, CopyOf(pData)));
    }
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}
