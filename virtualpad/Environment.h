// What the environment variables say; each is described in docs/virtual-pad.md.
#pragma once

#include "virtualpad/Ink.h"

#include <QString>

namespace virtualpad {

/// One line on stderr, for the person who runs the program.
void complain(const QString &message);

/// MVSIGNPAD_VIRTUAL_SPEED: the factor to real time; 0: everything at once. A broken value counts as 1.
double environmentSpeed();

enum class WindowSetting { Off, On, Automatic };

/// MVSIGNPAD_VIRTUAL_WINDOW: 0, 1, or not set. A broken value counts as not set.
WindowSetting environmentWindow();

/// MVSIGNPAD_VIRTUAL_INK is set.
bool environmentNamesInk();

/// The ink of the file that MVSIGNPAD_VIRTUAL_INK names; none when the file is broken.
Ink environmentInk();

} // namespace virtualpad
