#include "device/WpsPicture.h"

#include "base/QtCompat.h"

#include <QPainter>

namespace {

const int nDotsPerMetre = 11811; // 300 dpi

/// The painter's coordinates end here; it also bounds what a signer's name can cost.
const int nLongestSide = 32767;

} // namespace

WpsPicture::WpsPicture(const QString &strName, const QString &strDateTime, const QImage &drawing)
    : m_strName(strName), m_strDateTime(strDateTime), m_drawing(drawing), m_font(QStringLiteral("times"), 24)
{
    const QFontMetrics metrics(m_font);
    m_nLineHeight = metrics.height();
    for (const QString &strText : {m_strName, m_strDateTime}) {
        if (strText.isEmpty())
            continue;
        const int nWidth = strText.size() > nLongestSide ? strText.size() : TextWidth(metrics, strText);
        m_textSize = QSize(qMax(m_textSize.width(), nWidth), m_textSize.height() + m_nLineHeight);
    }
}

QSize WpsPicture::CanvasSize() const
{
    return QSize(qMax(m_textSize.width(), m_drawing.width()), m_textSize.height() + m_drawing.height());
}

bool WpsPicture::Save(const QString &strPath) const
{
    return IsPaintable() && Paint().save(strPath);
}

bool WpsPicture::IsPaintable() const
{
    const QSize canvas = CanvasSize();
    return canvas.width() <= nLongestSide && canvas.height() <= nLongestSide;
}

QImage WpsPicture::Paint() const
{
    const QSize size = CanvasSize();
    QImage canvas(size, QImage::Format_ARGB32);
    if (canvas.isNull())
        return canvas;
    canvas.fill(Qt::transparent);

    QPainter painter(&canvas);
    painter.setFont(m_font);
    const QSize band(size.width(), m_nLineHeight);
    int nTop = 0;
    if (!m_strName.isEmpty()) {
        painter.drawText(QRect(QPoint(0, nTop), band), Qt::AlignRight, m_strName);
        nTop += m_nLineHeight;
    }
    painter.drawImage(QRect(QPoint(size.width() - m_drawing.width(), nTop), m_drawing.size()), m_drawing,
                      m_drawing.rect());
    if (!m_strDateTime.isEmpty())
        painter.drawText(QRect(QPoint(0, nTop + m_drawing.height()), band), Qt::AlignRight, m_strDateTime);
    painter.end();

    canvas.setDotsPerMeterX(nDotsPerMetre);
    canvas.setDotsPerMeterY(nDotsPerMetre);
    return canvas;
}
