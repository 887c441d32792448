// What the environment variables say; each is described in docs/virtual-pad.md.
#pragma once

#include "sdk/SdkNumbers.h"
#include "virtualpad/Ink.h"

#include <QString>

#include <optional>

namespace virtualpad {

/// One line on stderr, for the person who runs the program.
void complain(const QString &message);

/// What the pad does by itself, and when; times are in seconds.
struct Behaviour {
    double speed = 1.0;                   ///< MVSIGNPAD_VIRTUAL_SPEED: the factor to real time; 0: everything at once
    double fingerAfter = 0.0;             ///< MVSIGNPAD_VIRTUAL_FINGER: since InitialDevice
    double answersAfter = 0.0;            ///< MVSIGNPAD_VIRTUAL_DELAY: since it was asked
    std::optional<double> unpluggedAfter; ///< MVSIGNPAD_VIRTUAL_UNPLUG: since InitialDevice; none: it stays
    sdk::KeyEvent key = sdk::SIGNPAD_ENTER_BUTTON; ///< MVSIGNPAD_VIRTUAL_KEY: pressed at the end of the signature
};

/// A broken value counts as not set.
Behaviour environmentBehaviour();

enum class WindowSetting { Off, On, Automatic };

/// MVSIGNPAD_VIRTUAL_WINDOW: 0, 1, or not set. A broken value counts as not set.
WindowSetting environmentWindow();

/// MVSIGNPAD_VIRTUAL_INK is set.
bool environmentNamesInk();

/// The ink of the file that MVSIGNPAD_VIRTUAL_INK names; none when the file is broken.
Ink environmentInk();

} // namespace virtualpad
