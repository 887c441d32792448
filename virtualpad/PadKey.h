// A key below the pad's screen.
#pragma once

#include <QAbstractButton>

namespace virtualpad {

/// A round-edged key with a text and a sign before it. Checked: it is the key that was pressed last.
class PadKey : public QAbstractButton
{
    Q_OBJECT

public:
    /// The sign is drawn in a square with sides of 1.
    PadKey(const QColor &color, const QVector<QLineF> &sign, QWidget *pParent);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *pEvent) override;

private:
    QColor m_color;
    QVector<QLineF> m_sign;
};

} // namespace virtualpad
