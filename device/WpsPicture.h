#pragma once

#include <QFont>
#include <QImage>
#include <QSize>
#include <QString>

/// The picture that the WPS office suite puts into a document: the drawing, the signer's name above it and the date
/// below it, all flush right on a transparent canvas. Needs a QGuiApplication; any thread. Sizes are in pixels.
class WpsPicture
{
public:
    /// An empty name or date leaves its band out; a null drawing counts as 0 x 0.
    WpsPicture(const QString &strName, const QString &strDateTime, const QImage &drawing);

    QSize TextSize() const { return m_textSize; }
    QSize CanvasSize() const;

    /// Writes the picture in the format of the path's suffix; false when it cannot be painted or written.
    bool Save(const QString &strPath) const;

private:
    bool IsPaintable() const;
    QImage Paint() const;

    QString m_strName;
    QString m_strDateTime;
    QImage m_drawing;
    QFont m_font;
    int m_nLineHeight = 0;
    QSize m_textSize{0, 0};
};
