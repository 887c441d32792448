#include "virtualpad/QtCompat.h"

#include <QLinearGradient>

#include <algorithm>

#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
// Left to the compiler before, so that an older library has no such functions.
QGradient::~QGradient() = default;
QLinearGradient::~QLinearGradient() = default;
#endif

namespace virtualpad {

QColor shaded(const QColor &color, int percent)
{
    const qreal brightness = std::min(color.valueF() * percent / 100, 1.0);
    return QColor::fromHsvF(color.hsvHueF(), color.hsvSaturationF(), brightness, color.alphaF());
}

} // namespace virtualpad
