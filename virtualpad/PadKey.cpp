#include "virtualpad/PadKey.h"

#include "virtualpad/QtCompat.h"

#include <QPainter>

namespace virtualpad {

namespace {

const QColor kKeyTop(0x4a, 0x50, 0x57);
const QColor kKeyText(0xec, 0xee, 0xf0);
constexpr qreal kSignSize = 13.0;

} // namespace

PadKey::PadKey(const QColor &color, const QVector<QLineF> &sign, QWidget *pParent)
    : QAbstractButton(pParent), m_color(color), m_sign(sign)
{
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::PointingHandCursor);
    QFont keyFont = font();
    keyFont.setPixelSize(15);
    setFont(keyFont);
}

QSize PadKey::sizeHint() const
{
    return QSize(132, 44);
}

void PadKey::paintEvent(QPaintEvent *)
{
    QColor top = isChecked() ? m_color : kKeyTop;
    if (isDown())
        top = shaded(top, 80);
    else if (underMouse())
        top = shaded(top, 112);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF body = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -2.5);
    constexpr qreal kCorner = 10.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 90));
    painter.drawRoundedRect(body.translated(0, 1.5), kCorner, kCorner);
    painter.setBrush(top);
    painter.setPen(hasFocus() ? QPen(shaded(m_color, 140), 1.5) : QPen(shaded(top, 118), 1.0));
    painter.drawRoundedRect(body, kCorner, kCorner);

    const int textWidth = painter.boundingRect(rect(), Qt::AlignCenter, text()).width();
    constexpr qreal kGap = 10.0;
    const qreal left = (width() - textWidth - kGap - kSignSize) / 2.0;
    painter.setPen(kKeyText);
    painter.drawText(QRectF(left + kSignSize + kGap, 0, textWidth + 1, height() - 1), Qt::AlignVCenter, text());
    painter.translate(left, (height() - 1 - kSignSize) / 2.0);
    painter.scale(kSignSize, kSignSize);
    painter.setPen(QPen(isChecked() ? kKeyText : shaded(m_color, 130), 2.4 / kSignSize, Qt::SolidLine, Qt::RoundCap));
    painter.drawLines(m_sign);
}

} // namespace virtualpad
