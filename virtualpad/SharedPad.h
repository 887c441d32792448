// The pad as all threads see it.
#pragma once

#include "virtualpad/Pad.h"
#include "virtualpad/TextStore.h"

#include <mutex>

namespace virtualpad {

/// The picture made last, for clients that ask again and again while nothing changes.
struct LastPicture {
    Drawing drawing;
    PictureOptions options;
    QByteArray encoded;
};

/// The library's whole state. It outlives every unloading and is never destroyed: calls may still come while the
/// process ends.
struct SharedPad {
    std::mutex mutex; ///< guards all below; held for moments only, never while a picture is made
    Pad pad;
    TextStore texts;
    LastPicture lastPicture;

    static SharedPad &instance();
};

} // namespace virtualpad
