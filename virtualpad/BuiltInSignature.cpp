#include "virtualpad/BuiltInSignature.h"

#include <QPolygonF>
#include <QRectF>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace virtualpad {

namespace {

constexpr int kPointCount = 600;

/// The marks that each stroke of the pen passes, y upwards from the writing line, the writing still upright.
QVector<QPolygonF> strokesOfTheName()
{
    const QVector<QPointF> lena = {
        {-16, 58}, {0, 50},   {22, 62},  {38, 88},  {40, 108}, {30, 116}, {20, 98},  {16, 56},  {10, 14},
        {-4, -3},  {-16, 2},  {-8, 13},  {12, 6},   {32, -2},  {48, 6},   {62, 25},  {70, 37},  {63, 45},
        {54, 33},  {53, 12},  {63, 0},   {75, 8},   {85, 27},  {91, 41},  {92, 22},  {91, 1},   {98, 24},
        {106, 41}, {112, 33}, {112, 12}, {118, 1},  {127, 9},  {139, 31}, {151, 37}, {140, 42}, {130, 27},
        {130, 6},  {140, 1},  {150, 20}, {155, 37}, {153, 13}, {159, 1},  {170, 6},  {184, 16}, {198, 20},
    };
    const QVector<QPointF> v = {
        {196, 82}, {206, 92}, {216, 102}, {225, 90},  {229, 44},  {233, -2},
        {244, 32}, {258, 82}, {274, 110}, {292, 116}, {304, 110},
    };
    const QVector<QPointF> ale = {
        {282, 36}, {271, 42}, {258, 27},  {259, 5},   {270, 1},  {280, 22}, {285, 39}, {283, 13}, {289, 1},  {299, 12},
        {312, 52}, {324, 94}, {323, 113}, {312, 100}, {308, 54}, {308, 14}, {317, 0},  {328, 9},  {339, 28}, {344, 41},
        {336, 45}, {329, 31}, {331, 9},   {344, -1},  {364, 6},  {392, 22}, {424, 32}, {446, 30},
    };
    const QVector<QPointF> flourish = {
        {408, -6}, {372, -12}, {300, -14}, {200, -20}, {110, -32}, {66, -44},
        {58, -37}, {84, -28},  {170, -29}, {280, -36}, {350, -42}, {392, -40},
    };
    return {lena, v, ale, flourish};
}

/// A place on the pen's way through a stroke.
struct Step {
    QPointF position; ///< y downwards, as on the pad
    qreal time;       ///< since the stroke began, in no particular unit
    qreal downward;   ///< 1: straight down, -1: straight up
};

using Way = QVector<Step>;

/// The hand leans its letters to the right and climbs a little.
QPointF written(const QPointF &mark)
{
    constexpr qreal kSlant = 0.32;
    constexpr qreal kClimb = 0.06;
    return QPointF(mark.x() + kSlant * mark.y(), -mark.y() - kClimb * mark.x());
}

/// A place on the smooth curve (Catmull-Rom) through the marks, behind mark i.
QPointF curvePoint(const QPolygonF &marks, int i, qreal t)
{
    const QPointF &p0 = marks[std::max(i - 1, 0)];
    const QPointF &p1 = marks[i];
    const QPointF &p2 = marks[i + 1];
    const QPointF &p3 = marks[std::min(i + 2, marks.size() - 1)];
    return (p1 * 2.0 + (p2 - p0) * t + (p0 * 2.0 - p1 * 5.0 + p2 * 4.0 - p3) * t * t
            + (p1 * 3.0 - p0 - p2 * 3.0 + p3) * t * t * t)
           / 2.0;
}

/// A hand slows down where the line bends: its speed falls with the cube root of the curvature.
Way wayThrough(const QPolygonF &marks)
{
    constexpr int kStepsPerMark = 40;
    constexpr qreal kCurvatureOfStraightLines = 0.004;
    Way way;
    Step last{written(marks.first()), 0.0, 0.0};
    qreal lastDirection = 0.0;
    for (int i = 0; i < (marks.size() - 1) * kStepsPerMark; ++i) {
        const qreal t = (i % kStepsPerMark + 1) / qreal(kStepsPerMark);
        const QPointF position = written(curvePoint(marks, i / kStepsPerMark, t));
        const QPointF step = position - last.position;
        const qreal length = std::hypot(step.x(), step.y());
        const qreal direction = std::atan2(step.y(), step.x());
        const qreal bend = way.isEmpty() ? 0.0 : std::abs(std::remainder(direction - lastDirection, 2 * M_PI));
        const qreal curvature = bend / std::max(length, 0.05) + kCurvatureOfStraightLines;
        last = {position, last.time + length * std::cbrt(curvature), std::sin(direction)};
        way.append(last);
        lastDirection = direction;
    }
    return way;
}

/// Steps of the way at equal spaces of time.
Way sampled(const Way &way, int count)
{
    Way steps;
    int next = 0;
    for (int i = 0; i < count; ++i) {
        const qreal time = way.last().time * i / (count - 1);
        while (next + 1 < way.size() && way[next].time < time)
            ++next;
        steps.append(way[next]);
    }
    return steps;
}

/// The pen presses harder on its way down, and comes down and goes up softly; from 0 to 1.
qreal pressureAt(const Way &steps, int i)
{
    constexpr int kSmoothing = 4;
    constexpr qreal kPointsToSwell = 14.0;
    constexpr qreal kPointsToFade = 18.0;
    const int first = std::max(i - kSmoothing, 0);
    const int end = std::min(i + kSmoothing + 1, steps.size());
    qreal downward = 0.0;
    for (int k = first; k < end; ++k)
        downward += steps[k].downward / (end - first);
    const qreal touch = std::min({1.0, (i + 1) / kPointsToSwell, (steps.size() - i) / kPointsToFade});
    return (0.50 + 0.38 * downward) * (0.12 + 0.88 * std::sin(touch * M_PI / 2));
}

/// The strokes as the pad records them: kPointCount steps, each stroke as many as its share of the time.
QVector<Way> recordedStrokes()
{
    QVector<Way> strokes;
    qreal duration = 0.0;
    const QVector<QPolygonF> name = strokesOfTheName();
    for (const QPolygonF &marks : name) {
        strokes.append(wayThrough(marks));
        duration += strokes.last().last().time;
    }
    int countBefore = 0;
    qreal timeBefore = 0.0;
    for (Way &stroke : strokes) {
        timeBefore += stroke.last().time;
        const int count = qRound(kPointCount * timeBefore / duration);
        stroke = sampled(stroke, count - countBefore);
        countBefore = count;
    }
    return strokes;
}

QRectF boundsOf(const QVector<Way> &strokes)
{
    QPolygonF positions;
    for (const Way &stroke : strokes) {
        for (const Step &step : stroke)
            positions.append(step.position);
    }
    return positions.boundingRect();
}

} // namespace

Ink builtInSignature(const QSize &padSize)
{
    constexpr qreal kShareOfPad = 0.84;
    const QVector<Way> strokes = recordedStrokes();
    const QRectF bounds = boundsOf(strokes);
    const qreal scale = kShareOfPad * std::min(padSize.width() / bounds.width(), padSize.height() / bounds.height());
    const QPointF middle(padSize.width() / 2.0, padSize.height() / 2.0);
    Ink ink;
    for (const Way &stroke : strokes) {
        for (int i = 0; i < stroke.size(); ++i) {
            const QPointF position = middle + (stroke[i].position - bounds.center()) * scale;
            ink.append({ink.size() * 1000 / kPointsPerSecond, qint16(qRound(position.x())),
                        qint16(qRound(position.y())), qint16(pressureAt(stroke, i) * kMaxPressure),
                        i + 1 == stroke.size()});
        }
    }
    return ink;
}

} // namespace virtualpad
