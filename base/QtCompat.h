// Calls that Qt renamed or added after 5.9, the oldest version that this program is built against.
#pragma once

#include <QFontMetrics>
#include <QString>

/// Advance width of a whole text in pixels.
inline int TextWidth(const QFontMetrics &metrics, const QString &text)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 11, 0)
    return metrics.horizontalAdvance(text);
#else
    return metrics.width(text);
#endif
}

/// Ends the connection of a QWebSocket whose peer announces more than so many bytes; an older Qt has no such limit.
template <class WebSocket>
void LimitIncomingMessages(WebSocket &socket, quint64 nBytes)
{
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
    socket.setMaxAllowedIncomingFrameSize(nBytes);
    socket.setMaxAllowedIncomingMessageSize(nBytes);
#else
    Q_UNUSED(socket)
    Q_UNUSED(nBytes)
#endif
}
