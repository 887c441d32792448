// What Qt has had under other names or not at all since 5.9, the oldest version that this program runs with. It is
// built with a newer one and must not need what only that has: not even under a name that is old in the source.
#pragma once

#include <QFontMetrics>
#include <QString>
#include <QThread>

#include <climits>

class QWebSocket;

/// Advance width of a whole text in pixels.
inline int TextWidth(const QFontMetrics &metrics, const QString &text)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return metrics.width(text);
    QT_WARNING_POP
}

/// The descriptor that a listening QWebSocketServer accepts from.
template <class WebSocketServer>
int ListeningDescriptor(const WebSocketServer &server)
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    return server.socketDescriptor();
    QT_WARNING_POP
}

/// Waits without a limit until a thread has ended.
inline void WaitForEnd(QThread &thread)
{
    thread.wait(ULONG_MAX); // without an argument it is a newer function
}

/// Ends the connection of a socket whose peer announces more than so many bytes; an older Qt has no such limit.
void LimitIncomingMessages(QWebSocket &socket, quint64 nBytes);
