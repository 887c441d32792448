// The LCD of the pad's window: one signs on it.
#pragma once

#include "virtualpad/PadHand.h"
#include "virtualpad/PadView.h"

#include <QElapsedTimer>
#include <QImage>
#include <QWidget>

class QTabletEvent;
class QTouchEvent;

namespace virtualpad {

/// Takes the strokes of pen tablet, finger and mouse and shows them at once. GUI thread.
class PadSurface : public QWidget
{
    Q_OBJECT

public:
    explicit PadSurface(QWidget *pParent);

    /// Shows another state of the pad, or another pad, `scale` window pixels to the pad pixel.
    void showPad(const PadView &view, qreal scale);

protected:
    bool event(QEvent *pEvent) override;
    void paintEvent(QPaintEvent *pEvent) override;
    void mousePressEvent(QMouseEvent *pEvent) override;
    void mouseMoveEvent(QMouseEvent *pEvent) override;
    void mouseReleaseEvent(QMouseEvent *pEvent) override;
    void tabletEvent(QTabletEvent *pEvent) override;

private:
    void touchEvent(QTouchEvent *pEvent);
    void penTo(const QPointF &position, qreal force);
    void liftPen();
    qreal forceOfMotion(const QPointF &position);
    void keep(const Ink &ink);
    QRect placeOfLastPoints() const;
    void paintLitScreen(QPainter *pPainter);
    void paintDarkScreen(QPainter *pPainter);
    void paintWritingLine(QPainter *pPainter);
    void paintInformation(QPainter *pPainter);

    PadView m_view;
    PadHand m_hand{0};
    qreal m_scale = 1.0;
    QImage m_keptInk; ///< all ink but m_stroke, drawn
    Ink m_stroke;     ///< the end of the stroke that is being written
    bool m_isEmpty = true;
    bool m_penDown = false;
    int m_finger = 0;       ///< that signs
    QElapsedTimer m_motion; ///< since the last event of a pointer that knows no force
    QPointF m_motionFrom;
    qreal m_force = 0.0;
};

} // namespace virtualpad
