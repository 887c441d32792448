// The pad as a window.
#pragma once

#include "virtualpad/PadHand.h"
#include "virtualpad/PadView.h"

#include <QWidget>

namespace virtualpad {

class PadKey;
class PadSurface;

/// A pad to sign on with pen, finger or mouse, and its two keys. Closing it unplugs the pad. GUI thread.
class PadWindow : public QWidget
{
    Q_OBJECT

public:
    PadWindow();

    /// Shows another state of the pad, or another pad.
    void showPad(const PadView &view);

Q_SIGNALS:
    void closed();

protected:
    void closeEvent(QCloseEvent *pEvent) override;
    void paintEvent(QPaintEvent *pEvent) override;

private:
    void press(sdk::KeyEvent key);
    void showKey(sdk::KeyEvent key);
    void arrange(const QSize &padSize);

    PadView m_view;
    PadSurface *m_pSurface;
    PadKey *m_pCancel;
    PadKey *m_pConfirm;
};

} // namespace virtualpad
