// Pictures of the ink, in every image type of the interface.
#pragma once

#include "sdk/SdkNumbers.h"
#include "virtualpad/Ink.h"
#include "virtualpad/Pen.h"

#include <QByteArray>
#include <QImage>
#include <QSize>

#include <optional>
#include <tuple>

namespace virtualpad {

constexpr int kScreenDpi = 96; ///< at this resolution a pad pixel is one pixel of the picture
constexpr int kMaxDpi = 2400;
constexpr qint64 kMaxPicturePixels = 32LL * 1024 * 1024;

/// Crops a picture to the ink with some room around it.
struct Clip {
    int marginX = 0; ///< pad pixels, left and right
    int marginY = 0; ///< pad pixels, above and below
};

inline bool operator==(const Clip &a, const Clip &b)
{
    return std::tie(a.marginX, a.marginY) == std::tie(b.marginX, b.marginY);
}

/// All that a picture shows.
struct Drawing {
    QSize padSize; ///< ink outside the pad is not seen
    Ink ink;
    Pen pen;
    std::optional<Clip> clip;    ///< for pictures that ask for it; none: the whole pad
    std::optional<QSize> canvas; ///< pixels; the pad fitted into another picture, for those that ask for it
};

inline bool operator==(const Drawing &a, const Drawing &b)
{
    return std::tie(a.padSize, a.ink, a.pen, a.clip, a.canvas) == std::tie(b.padSize, b.ink, b.pen, b.clip, b.canvas);
}

struct PictureOptions {
    int type = sdk::PngImage; ///< an ImageType; any other number makes no picture
    int dpi = kScreenDpi;     ///< 1 to kMaxDpi: the stored resolution and the size in pixels
    bool opaque = false;      ///< whether PngImage is on white
    bool clipped = false;     ///< to the ink, as the drawing's clip says
    bool onCanvas = false;    ///< fill the drawing's canvas, if there is one; TransparentPngImage always does
};

inline bool operator==(const PictureOptions &a, const PictureOptions &b)
{
    return std::tie(a.type, a.dpi, a.opaque, a.clipped, a.onCanvas)
           == std::tie(b.type, b.dpi, b.opaque, b.clipped, b.onCanvas);
}

/// Whether a picture of the type is transparent where there is no ink.
bool isTransparent(const PictureOptions &options);

/// The drawing as pixels, transparent or on white. Null when it would have more than kMaxPicturePixels.
QImage drawnImage(const Drawing &drawing, const PictureOptions &options);

/// The image in the file format of one of the pixel types; empty for any other type.
QByteArray encodedImage(const QImage &image, int type);

/// The drawing in the wanted type; empty when the type does not exist or the picture would be too large.
QByteArray encodedDrawing(const Drawing &drawing, const PictureOptions &options);

} // namespace virtualpad
