// What the pad's window shows.
#pragma once

#include "virtualpad/Pad.h"

namespace virtualpad {

/// The pad as it was at one moment.
struct PadView {
    quint64 session = 0;
    PadModel model{};
    Drawing drawing;
    sdk::KeyEvent key = sdk::SIGNPAD_NO_BUTTON;
    bool lcdOn = true;
    bool showsInformation = false;
};

/// Of the shared pad as it is now; nothing when there is none that is signed by hand.
std::optional<PadView> currentPadView();

} // namespace virtualpad
