#include "virtualpad/PadSurface.h"

#include "virtualpad/InkShape.h"
#include "virtualpad/PadTexts.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTabletEvent>
#include <QTouchEvent>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace virtualpad {

namespace {

const QColor kPaper(0xf4, 0xf6, 0xf1);
const QColor kPaperShade(0xe6, 0xea, 0xe3);
const QColor kWritingLine(0xb3, 0xbd, 0xb6);
const QColor kHint(0x87, 0x93, 0x8b);
const QColor kGlass(0x17, 0x1a, 0x1d);
const QColor kGlassShine(0x23, 0x27, 0x2b);
const QColor kGlassText(0x62, 0x6b, 0x73);

constexpr qreal kForceAtTouch = 0.35;

QFont screenFont(int pixelSize)
{
    QFont font;
    font.setPixelSize(pixelSize);
    return font;
}

} // namespace

PadSurface::PadSurface(QWidget *pParent) : QWidget(pParent)
{
    setAttribute(Qt::WA_AcceptTouchEvents);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::CrossCursor);
}

void PadSurface::showPad(const PadView &view, qreal scale)
{
    if (view.session != m_view.session)
        m_penDown = false;
    m_view = view;
    m_hand = PadHand(view.session);
    m_scale = scale;
    setFixedSize((QSizeF(view.drawing.padSize) * scale).toSize().expandedTo(QSize(1, 1)));
    const Ink &ink = view.drawing.ink;
    m_isEmpty = ink.isEmpty();
    m_stroke.clear();
    if (m_penDown && !ink.isEmpty() && !ink.last().strokeEnd)
        m_stroke.append(ink.last()); // where the stroke goes on
    m_keptInk = QImage();
    keep(ink);
    update();
}

void PadSurface::keep(const Ink &ink)
{
    if (m_keptInk.isNull()) {
        m_keptInk = QImage(size() * devicePixelRatioF(), QImage::Format_ARGB32_Premultiplied);
        m_keptInk.setDevicePixelRatio(devicePixelRatioF());
        m_keptInk.fill(Qt::transparent);
    }
    QPainter painter(&m_keptInk);
    paintInk(&painter, ink, m_view.drawing.pen, {m_scale, QPointF()});
}

bool PadSurface::event(QEvent *pEvent)
{
    switch (pEvent->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        touchEvent(static_cast<QTouchEvent *>(pEvent));
        return true;
    default:
        return QWidget::event(pEvent);
    }
}

void PadSurface::mousePressEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() != Qt::LeftButton)
        return;
    m_motion.invalidate();
    m_penDown = true;
    penTo(pEvent->localPos(), forceOfMotion(pEvent->localPos()));
}

void PadSurface::mouseMoveEvent(QMouseEvent *pEvent)
{
    if (m_penDown)
        penTo(pEvent->localPos(), forceOfMotion(pEvent->localPos()));
}

void PadSurface::mouseReleaseEvent(QMouseEvent *pEvent)
{
    if (pEvent->button() == Qt::LeftButton)
        liftPen();
}

void PadSurface::tabletEvent(QTabletEvent *pEvent)
{
    pEvent->accept();
    if (pEvent->pointerType() == QTabletEvent::Eraser)
        return;
    if (pEvent->type() == QEvent::TabletPress && pEvent->button() == Qt::LeftButton)
        m_penDown = true;
    if (pEvent->type() == QEvent::TabletRelease && pEvent->button() == Qt::LeftButton)
        liftPen();
    else if (m_penDown)
        penTo(pEvent->posF(), pEvent->pressure());
}

void PadSurface::touchEvent(QTouchEvent *pEvent)
{
    pEvent->accept();
    const QList<QTouchEvent::TouchPoint> &fingers = pEvent->touchPoints();
    if (pEvent->type() == QEvent::TouchBegin && !fingers.isEmpty()) {
        m_motion.invalidate();
        m_penDown = true;
        m_finger = fingers.first().id();
    }
    // The first finger signs; any other rests.
    const auto finger = std::find_if(fingers.begin(), fingers.end(),
                                     [this](const QTouchEvent::TouchPoint &any) { return any.id() == m_finger; });
    if (pEvent->type() == QEvent::TouchEnd || pEvent->type() == QEvent::TouchCancel || finger == fingers.end()
        || finger->state() == Qt::TouchPointReleased)
        return liftPen();
    if (!m_penDown)
        return;
    const QTouchDevice *const pDevice = pEvent->device();
    const bool knowsForce = pDevice != nullptr && pDevice->capabilities().testFlag(QTouchDevice::Pressure);
    penTo(finger->pos(), knowsForce ? finger->pressure() : forceOfMotion(finger->pos()));
}

/// A mouse knows no force. A hand that moves slowly presses harder: that makes a living line of its motion.
qreal PadSurface::forceOfMotion(const QPointF &position)
{
    constexpr qreal kLightest = 0.25;
    constexpr qreal kFirmest = 0.95;
    constexpr qreal kForceLostBySpeed = 0.28; // per pad pixel and millisecond
    constexpr qreal kAgility = 0.2;
    if (!m_motion.isValid()) {
        m_force = kForceAtTouch;
    } else {
        const QPointF way = (position - m_motionFrom) / m_scale;
        const qreal speed = std::hypot(way.x(), way.y()) / std::max(qreal(m_motion.nsecsElapsed()) / 1e6, 1.0);
        const qreal wanted = qBound(kLightest, kFirmest - kForceLostBySpeed * speed, kFirmest);
        m_force += (wanted - m_force) * kAgility;
    }
    m_motion.start();
    m_motionFrom = position;
    return m_force;
}

void PadSurface::penTo(const QPointF &position, qreal force)
{
    // Beyond the edge the pen has left the pad; when it comes back it begins a stroke.
    if (!QRectF(rect()).contains(position)) {
        const bool stillDown = m_penDown;
        liftPen();
        m_penDown = stillDown;
        return;
    }
    const QSize &padSize = m_view.drawing.padSize;
    const QPoint point(qBound(0, qRound(position.x() / m_scale), padSize.width() - 1),
                       qBound(0, qRound(position.y() / m_scale), padSize.height() - 1));
    const int pressure = qRound(qBound(0.0, force, 1.0) * kMaxPressure);
    if (!m_hand.write(point, pressure))
        return;
    if (m_isEmpty) {
        m_isEmpty = false;
        update();
    }
    // A long stroke is kept piece by piece, so that showing the next point never takes longer.
    constexpr int kLongStroke = 200;
    constexpr int kOverlap = 6;
    if (m_stroke.size() >= kLongStroke) {
        keep(m_stroke);
        m_stroke = m_stroke.mid(m_stroke.size() - kOverlap);
    }
    m_stroke.append({0, qint16(point.x()), qint16(point.y()), qint16(pressure), false});
    update(placeOfLastPoints());
}

void PadSurface::liftPen()
{
    m_penDown = false;
    if (m_stroke.isEmpty())
        return;
    m_hand.liftPen();
    keep(m_stroke);
    m_stroke.clear();
}

/// The part of the screen that changes with a new point: the smooth line still moves a few points before it.
QRect PadSurface::placeOfLastPoints() const
{
    constexpr int kMovingPoints = 6;
    QPolygonF places;
    const Ink movingPoints = m_stroke.mid(std::max(0, m_stroke.size() - kMovingPoints));
    for (const InkPoint &point : movingPoints)
        places.append(QPointF(point.x, point.y) * m_scale);
    const int reach = qCeil(m_view.drawing.pen.width * m_scale) + 2;
    return places.boundingRect().toAlignedRect().adjusted(-reach, -reach, reach, reach);
}

void PadSurface::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (m_view.lcdOn)
        paintLitScreen(&painter);
    else
        paintDarkScreen(&painter);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QColor(0, 0, 0, 70));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

void PadSurface::paintLitScreen(QPainter *pPainter)
{
    QLinearGradient light(0, 0, 0, height());
    light.setColorAt(0, kPaperShade);
    light.setColorAt(0.06, kPaper);
    pPainter->fillRect(rect(), light);
    paintWritingLine(pPainter);
    if (m_view.showsInformation)
        paintInformation(pPainter);
    if (m_keptInk.devicePixelRatio() != devicePixelRatioF()) {
        // The window has moved to a screen of another density.
        m_keptInk = QImage();
        const std::optional<PadView> view = currentPadView();
        keep(view && view->session == m_view.session ? view->drawing.ink : Ink());
    }
    pPainter->drawImage(0, 0, m_keptInk);
    paintInk(pPainter, m_stroke, m_view.drawing.pen, {m_scale, QPointF()});
}

void PadSurface::paintDarkScreen(QPainter *pPainter)
{
    QLinearGradient shine(0, 0, width() * 0.6, height());
    shine.setColorAt(0, kGlassShine);
    shine.setColorAt(0.5, kGlass);
    pPainter->fillRect(rect(), shine);
    pPainter->setFont(screenFont(13));
    pPainter->setPen(kGlassText);
    pPainter->drawText(rect(), Qt::AlignCenter, padText(PadText::LcdOff));
}

void PadSurface::paintWritingLine(QPainter *pPainter)
{
    const qreal y = std::floor(height() * 0.74) + 0.5;
    const qreal margin = width() * 0.08;
    QPen line(kWritingLine, 1.0);
    line.setDashPattern({4.0, 4.0});
    pPainter->setPen(line);
    pPainter->drawLine(QPointF(margin, y), QPointF(width() - margin, y));
    constexpr int kHintHeight = 28;
    if (!m_isEmpty || height() - y < kHintHeight)
        return;
    pPainter->setFont(screenFont(14));
    pPainter->setPen(kHint);
    pPainter->drawText(QRectF(0, y + 4, width(), kHintHeight), Qt::AlignCenter, padText(PadText::SignHere));
}

void PadSurface::paintInformation(QPainter *pPainter)
{
    const PadModel &model = m_view.model;
    const QSize &size = m_view.drawing.padSize;
    const struct {
        PadText label;
        QString value;
    } rows[] = {
        {PadText::Product, QString::fromLatin1(model.productName())},
        {PadText::Version, QString::fromLatin1(versionText())},
        {PadText::PadId, QString::fromLatin1(model.padId())},
        {PadText::PenId, QString::fromLatin1(kPenId)},
        {PadText::LcdSize, QStringLiteral("%1 \u00d7 %2").arg(size.width()).arg(size.height())},
    };
    constexpr int kLineHeight = 20;
    constexpr int kLabelWidth = 92;
    pPainter->setFont(screenFont(12));
    QRect line(16, 12, std::max(width() - 32, 0), kLineHeight);
    for (const auto &row : rows) {
        pPainter->setPen(kHint);
        pPainter->drawText(line, Qt::AlignVCenter, padText(row.label));
        pPainter->setPen(kGlass);
        pPainter->drawText(line.adjusted(kLabelWidth, 0, 0, 0), Qt::AlignVCenter, row.value);
        line.translate(0, kLineHeight);
    }
}

} // namespace virtualpad
