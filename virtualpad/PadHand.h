// The hand at the window's pad.
#pragma once

#include "virtualpad/Pad.h"

#include <QPoint>

namespace virtualpad {

/// Writes and presses keys on the shared pad of one session; once that pad is unplugged or replaced, nothing that the
/// hand does has any effect. Never waits for more than a moment.
class PadHand
{
public:
    explicit PadHand(quint64 session) : m_session(session) {}

    /// Pad pixels and 0 to kMaxPressure. False: the pad takes no ink now.
    bool write(const QPoint &point, int pressure) const;
    void liftPen() const;
    void pressKey(sdk::KeyEvent key) const;
    /// Pulls the plug: the pad is gone until it is initialised again.
    void unplug() const;

private:
    quint64 m_session;
};

} // namespace virtualpad
