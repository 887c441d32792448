// The shape of ink: smooth outlines that a picture fills.
#pragma once

#include "virtualpad/Ink.h"
#include "virtualpad/Pen.h"

#include <QPolygonF>

class QPainter;

namespace virtualpad {

/// From pad pixels to the pixels of a picture: enlarged first, then moved.
struct Placement {
    qreal scale = 1.0;
    QPointF offset;
};

/// One closed outline per stroke, in the picture's pixels, to be filled by the winding rule.
QVector<QPolygonF> inkOutlines(const Ink &ink, const Pen &pen, const Placement &placement);

/// Fills the outlines in the pen's colour, with smooth edges.
void paintInk(QPainter *pPainter, const Ink &ink, const Pen &pen, const Placement &placement);

} // namespace virtualpad
