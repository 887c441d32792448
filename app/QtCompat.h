// Calls that Qt renamed after 5.9, the oldest version that this program is built against.
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
