// What Qt has had under other names since 5.9, the oldest version that the virtual pad runs with.
#pragma once

#include <QColor>

namespace virtualpad {

/// The colour with so many per cent of its brightness, at most the full one.
QColor shaded(const QColor &color, int percent);

} // namespace virtualpad
