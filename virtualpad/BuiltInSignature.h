// The signature that the virtual pad writes by itself.
#pragma once

#include "virtualpad/Ink.h"

#include <QSize>

namespace virtualpad {

constexpr int kPointsPerSecond = 200;

/// A handwritten name of 600 points (three seconds), as large as the pad allows and in its middle.
Ink builtInSignature(const QSize &padSize);

} // namespace virtualpad
