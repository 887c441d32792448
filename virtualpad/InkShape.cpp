#include "virtualpad/InkShape.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <algorithm>

namespace virtualpad {

namespace {

/// A place on a stroke's middle line, and half the line's width there.
struct Sample {
    QPointF position;
    qreal radius;
};

using Samples = QVector<Sample>;

qreal distance(const QPointF &a, const QPointF &b)
{
    return std::hypot(b.x() - a.x(), b.y() - a.y());
}

Sample between(const Sample &a, const Sample &b, qreal share)
{
    return {a.position + (b.position - a.position) * share, a.radius + (b.radius - a.radius) * share};
}

Sample middle(const Sample &a, const Sample &b)
{
    return between(a, b, 0.5);
}

Sample placed(const InkPoint &point, const Pen &pen, const Placement &placement)
{
    // A light touch still leaves a hairline of three tenths of the width.
    const qreal swelling = pen.pressure ? 0.3 + 0.9 * std::min(point.pressure / qreal(kMaxPressure), 1.0) : 1.0;
    return {QPointF(point.x, point.y) * placement.scale + placement.offset,
            std::max(pen.width * swelling * placement.scale / 2.0, 0.3)};
}

/// The stroke without the little stairs of whole-pixel coordinates: every point but the first and the last moves
/// towards the course of its neighbours, by less than a pad pixel.
Samples smoothed(const Samples &points, qreal padPixel)
{
    constexpr int kReach = 2;
    constexpr qreal kWeights[kReach + 1] = {6.0 / 16.0, 4.0 / 16.0, 1.0 / 16.0};
    constexpr qreal kFarthest = 0.75;
    Samples result = points;
    for (int i = 1; i + 1 < points.size(); ++i) {
        const int reach = std::min({kReach, i, points.size() - 1 - i});
        QPointF course;
        qreal weight = 0.0;
        for (int k = -reach; k <= reach; ++k) {
            course += points[i + k].position * kWeights[std::abs(k)];
            weight += kWeights[std::abs(k)];
        }
        const QPointF shift = course / weight - points[i].position;
        const qreal tooFar = std::hypot(shift.x(), shift.y()) / (kFarthest * padPixel);
        result[i].position += shift / std::max(tooFar, 1.0);
    }
    return result;
}

/// Adds the curve that leaves `from` towards `bend` and arrives at `to` coming from it, without `from` itself.
void appendCurve(Samples *pLine, const Sample &from, const Sample &bend, const Sample &to)
{
    constexpr qreal kStepPixels = 1.5;
    constexpr int kMaxSteps = 12;
    const qreal length = distance(from.position, bend.position) + distance(bend.position, to.position);
    const int steps = qBound(1, int(std::min(length / kStepPixels, qreal(kMaxSteps))), kMaxSteps);
    for (int i = 1; i <= steps; ++i) {
        const qreal share = qreal(i) / steps;
        const Sample sample = between(between(from, bend, share), between(bend, to, share), share);
        if (distance(sample.position, pLine->last().position) > 1e-3)
            pLine->append(sample);
    }
}

/// The stroke's middle line. It runs through the middles between neighbouring points and bends at the points:
/// whole-pixel coordinates make no corners that way. Where the pen stood still it is a single dot.
Samples middleLine(const Samples &points)
{
    Samples line{points.first()};
    for (int i = 0; i + 1 < points.size(); ++i) {
        const Sample from = line.last();
        appendCurve(&line, from, points[i], middle(points[i], points[i + 1]));
    }
    const Sample from = line.last();
    appendCurve(&line, from, points.last(), points.last());
    if (line.size() == 1) {
        for (const Sample &point : points)
            line.first().radius = std::max(line.first().radius, point.radius);
    }
    return line;
}

/// Adds the arc around a sample from one direction to another; directions are angles in radians.
void appendArc(QPolygonF *pOutline, const Sample &center, qreal fromAngle, qreal turn)
{
    // Wide lines need finer arcs to look round: the corners keep within a tenth of a pixel.
    const qreal step = std::min(M_PI / 9, std::sqrt(0.8 / center.radius));
    const int corners = 1 + qFloor(std::abs(turn) / step);
    for (int i = 0; i < corners; ++i) {
        const qreal angle = fromAngle + turn * (i + 0.5) / corners;
        pOutline->append(center.position + QPointF(std::cos(angle), std::sin(angle)) * center.radius);
    }
}

/// The outline of a pen that walks along the line: once around, out on one side and back on the other. At every
/// sample the edge turns with the walk, so that corners and both ends come out round.
QPolygonF outlineOf(const Samples &line)
{
    QPolygonF outline;
    if (line.size() == 1) {
        appendArc(&outline, line.first(), 0.0, 2 * M_PI);
        return outline;
    }
    const int last = line.size() - 1;
    const auto walked = [&](int step) { return line[step <= last ? step : 2 * last - step]; };
    const auto direction = [&](int step) {
        const QPointF way = walked(step + 1).position - walked(step).position;
        return std::atan2(way.y(), way.x());
    };
    qreal incoming = direction(2 * last - 1);
    for (int step = 0; step < 2 * last; ++step) {
        const qreal outgoing = direction(step);
        const bool isEnd = step == 0 || step == last;
        const qreal turn = isEnd ? M_PI : std::remainder(outgoing - incoming, 2 * M_PI);
        appendArc(&outline, walked(step), incoming - M_PI / 2, turn);
        incoming = outgoing;
    }
    return outline;
}

} // namespace

QVector<QPolygonF> inkOutlines(const Ink &ink, const Pen &pen, const Placement &placement)
{
    QVector<QPolygonF> outlines;
    Samples stroke;
    for (int i = 0; i < ink.size(); ++i) {
        stroke.append(placed(ink[i], pen, placement));
        if (ink[i].strokeEnd || i + 1 == ink.size()) {
            outlines.append(outlineOf(middleLine(smoothed(stroke, placement.scale))));
            stroke.clear();
        }
    }
    return outlines;
}

void paintInk(QPainter *pPainter, const Ink &ink, const Pen &pen, const Placement &placement)
{
    pPainter->setRenderHint(QPainter::Antialiasing);
    const QVector<QPolygonF> outlines = inkOutlines(ink, pen, placement);
    for (const QPolygonF &outline : outlines) {
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        path.addPolygon(outline);
        pPainter->fillPath(path, pen.color);
    }
}

} // namespace virtualpad
