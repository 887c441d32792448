#include "virtualpad/Fingerprint.h"

#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace virtualpad {

namespace {

constexpr QSize kImageSize(300, 400);
constexpr qreal kRidgeSpacing = 10.5;

/// A place where a ridge begins or forks: around it the ridges' phase turns once, to one side or the other.
struct Minutia {
    qreal x;
    qreal y;
    int turn;
};

const Minutia kMinutiae[] = {
    {92, 96, 1},   {204, 84, -1}, {60, 190, 1},  {236, 168, -1}, {118, 236, -1}, {190, 262, 1},
    {82, 300, -1}, {226, 312, 1}, {150, 62, 1},  {146, 318, -1}, {180, 132, 1},  {112, 150, -1},
    {150, 186, 1}, {252, 240, 1}, {48, 252, -1}, {160, 356, 1},  {206, 204, -1},
};

/// Repeatable noise at a lattice point, from 0 to 1.
qreal latticeNoise(int x, int y)
{
    quint32 hash = quint32(x) * 374761393U + quint32(y) * 668265263U;
    hash = (hash ^ (hash >> 13)) * 1274126177U;
    return ((hash ^ (hash >> 16)) & 0xffffU) / 65535.0;
}

/// Smooth noise from 0 to 1, whose spots are one unit wide.
qreal smoothNoise(qreal x, qreal y)
{
    const int left = qFloor(x);
    const int top = qFloor(y);
    const auto eased = [](qreal t) { return t * t * (3.0 - 2.0 * t); };
    const auto mixed = [](qreal a, qreal b, qreal share) { return a + (b - a) * share; };
    const qreal u = eased(x - left);
    return mixed(mixed(latticeNoise(left, top), latticeNoise(left + 1, top), u),
                 mixed(latticeNoise(left, top + 1), latticeNoise(left + 1, top + 1), u), eased(y - top));
}

/// The number of the ridge at a place; whole numbers lie on the ridges' crests. The ridges bow over a core in the
/// middle of the finger and flow out below it.
qreal ridgeNumber(qreal x, qreal y)
{
    const qreal dx = (x - 150.0) / 0.92 + 16.0 * (smoothNoise(x / 70.0, y / 70.0) - 0.5);
    const qreal dy = y - 190.0 + 16.0 * (smoothNoise(x / 70.0 + 40.0, y / 70.0) - 0.5);
    const qreal below = std::max(dy, 0.0);
    qreal number = std::hypot(dx - 0.15 * below, dy > 0.0 ? below * 0.72 : dy) / kRidgeSpacing;
    for (const Minutia &minutia : kMinutiae)
        number += minutia.turn * std::atan2(y - minutia.y, x - minutia.x) / (2 * M_PI);
    return number;
}

/// How firmly the finger lies on the sensor: 1 in the middle, 0 beyond the fingertip's rim.
qreal contact(qreal x, qreal y)
{
    const qreal dx = (x - 150.0) / 138.0;
    const qreal dy = (y - 200.0) / 188.0;
    const qreal rim = dx * dx * std::sqrt(std::abs(dx)) + dy * dy * std::sqrt(std::abs(dy))
                      + 0.22 * (smoothNoise(x / 22.0, y / 22.0) - 0.5);
    return qBound(0.0, (1.0 - rim) / 0.22, 1.0);
}

int darkness(qreal x, qreal y)
{
    const qreal pressed = contact(x, y);
    if (pressed <= 0.0)
        return 0;
    const qreal wave = std::cos(2 * M_PI * ridgeNumber(x, y));
    const qreal unevenness = 0.9 * (smoothNoise(x / 26.0 + 9.0, y / 26.0) - 0.5);
    const qreal grain = 0.7 * (smoothNoise(x / 1.7, y / 1.7) - 0.5);
    const qreal ridge = qBound(0.0, (wave + unevenness + grain + 0.15) * 1.7 * pressed, 1.0);
    return qRound(235.0 * ridge * (0.55 + 0.45 * pressed));
}

QImage drawnFingerprint()
{
    QImage image(kImageSize, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        QRgb *const pLine = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            pLine[x] = qRgba(28, 30, 38, darkness(x, y));
    }
    return image;
}

/// The ridges, dark on transparent; drawn once.
const QImage &fingerprintImage()
{
    static const QImage image = drawnFingerprint();
    return image;
}

/// The largest rectangle of the fingerprint's shape in the middle of another.
QRectF fitted(const QRectF &frame)
{
    const QSizeF size = QSizeF(kImageSize).scaled(frame.size(), Qt::KeepAspectRatio);
    return QRectF(frame.center() - QPointF(size.width(), size.height()) / 2.0, size);
}

} // namespace

QImage fingerprintPicture(const Drawing &drawing, const FingerprintPlace &place, bool fingerprintOnly, int type)
{
    Drawing onCanvas = drawing;
    onCanvas.canvas = fingerprintOnly ? place.size : place.canvas;
    if (fingerprintOnly)
        onCanvas.ink.clear();
    PictureOptions options;
    options.type = type;
    options.onCanvas = true;
    QImage image = drawnImage(onCanvas, options);
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(fitted(fingerprintOnly ? QRectF(image.rect()) : QRectF(place.position, place.size)),
                      fingerprintImage());
    return image;
}

} // namespace virtualpad
