// The pen that the ink is drawn with.
#pragma once

#include <QColor>

#include <tuple>

namespace virtualpad {

constexpr int kMaxPenWidth = 100; ///< pad pixels

struct Pen {
    QColor color = Qt::black;
    int width = 3; ///< pad pixels: the line's width, with pressure the width at about four fifths of the strongest
    bool pressure = true; ///< the line swells with the pressure
};

inline bool operator==(const Pen &a, const Pen &b)
{
    return std::tie(a.color, a.width, a.pressure) == std::tie(b.color, b.width, b.pressure);
}

} // namespace virtualpad
