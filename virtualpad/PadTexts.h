// What the pad's window says, in the user's language.
#pragma once

#include <QString>

namespace virtualpad {

enum class PadText {
    Title, ///< %1: the model's name
    SignHere,
    Confirm,
    Cancel,
    Ready,
    Confirmed,
    Cancelled,
    LcdOff,
    Product,
    Version,
    PadId,
    PenId,
    LcdSize,
    TextCount
};

/// In English, Simplified or Traditional Chinese, as the locale says.
QString padText(PadText text);

} // namespace virtualpad
