// Ink: what a pen leaves on the pad.
#pragma once

#include <QVector>

#include <tuple>

namespace virtualpad {

constexpr int kMaxPressure = 1023;   ///< the pad's strongest pressure; a stronger one draws no wider line
constexpr int kMaxInkPoints = 50000; ///< over four minutes of a pen at work; the pad takes no more

/// One point of the pen's way.
struct InkPoint {
    int timeMs = 0;         ///< milliseconds since the signature's first point, never less than the point's before it
    qint16 x = 0;           ///< pad pixels from the left edge
    qint16 y = 0;           ///< pad pixels from the upper edge
    qint16 pressure = 0;    ///< 0 to kMaxPressure; recorded ink may hold more
    bool strokeEnd = false; ///< the pen was lifted here
};

inline bool operator==(const InkPoint &a, const InkPoint &b)
{
    return std::tie(a.timeMs, a.x, a.y, a.pressure, a.strokeEnd)
           == std::tie(b.timeMs, b.x, b.y, b.pressure, b.strokeEnd);
}

/// The points of all strokes, in the order in which they were written.
using Ink = QVector<InkPoint>;

} // namespace virtualpad
