// The pad as all threads see it.
#pragma once

#include "virtualpad/Pad.h"
#include "virtualpad/TextStore.h"

#include <mutex>

namespace virtualpad {

/// The library's whole state. It outlives every unloading and is never destroyed: calls may still come while the
/// process ends.
struct SharedPad {
    std::mutex mutex; ///< guards all below; held for moments only, never while a picture is made
    Pad pad;
    TextStore texts;

    static SharedPad &instance();
};

} // namespace virtualpad
