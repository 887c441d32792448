#include "virtualpad/PadHand.h"

#include "virtualpad/SharedPad.h"

using namespace sdk;

namespace virtualpad {

namespace {

/// What action(pad) returns, or false when the session is over.
template <typename Action>
bool duringSession(quint64 session, Action action)
{
    SharedPad &shared = SharedPad::instance();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    return shared.pad.session() == session && action(shared.pad);
}

} // namespace

bool PadHand::write(const QPoint &point, int pressure) const
{
    return duringSession(m_session, [&](Pad &pad) { return pad.write(point, pressure); });
}

void PadHand::liftPen() const
{
    duringSession(m_session, [](Pad &pad) {
        pad.liftPen();
        return true;
    });
}

void PadHand::pressKey(KeyEvent key) const
{
    duringSession(m_session, [key](Pad &pad) {
        pad.pressKey(key);
        return true;
    });
}

void PadHand::unplug() const
{
    duringSession(m_session, [](Pad &pad) {
        pad.unplug();
        return true;
    });
}

} // namespace virtualpad
