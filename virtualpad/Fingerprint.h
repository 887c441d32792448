// The fingerprint that Cedar's sensor shows.
#pragma once

#include "virtualpad/Picture.h"

#include <QPoint>

namespace virtualpad {

/// Where the fingerprint stands in the picture that shows the pad's ink, too; in that picture's pixels.
struct FingerprintPlace {
    QSize canvas;
    QPoint position; ///< of the fingerprint's upper left corner on the canvas
    QSize size;      ///< of the fingerprint
};

/// The fingerprint alone, of its own size; or the whole canvas with the pad's ink fitted into it and the
/// fingerprint in its place. One of the pixel types; null for any other.
QImage fingerprintPicture(const Drawing &drawing, const FingerprintPlace &place, bool fingerprintOnly, int type);

} // namespace virtualpad
