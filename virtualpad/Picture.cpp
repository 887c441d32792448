#include "virtualpad/Picture.h"

#include "virtualpad/InkShape.h"
#include "virtualpad/InkText.h"

#include <QBuffer>
#include <QImageWriter>
#include <QPainter>

#include <algorithm>

using namespace sdk;

namespace virtualpad {

namespace {

struct PixelFormat {
    const char *writer;
    int type;
    bool keepsTransparency;
};

const PixelFormat kPixelFormats[] = {
    {"bmp", BmpImage, false},
    {"png", TransparentPngImage, true},
    {"png", PngImage, true},
    {"jpg", JpegImage, false},
};

const PixelFormat *pixelFormat(int type)
{
    const auto *const found = std::find_if(std::begin(kPixelFormats), std::end(kPixelFormats),
                                           [type](const PixelFormat &format) { return format.type == type; });
    return found == std::end(kPixelFormats) ? nullptr : found;
}

/// Where on the pad the picture looks, and how large it makes that. Sizes are the picture's.
struct View {
    Placement placement;
    qint64 width;
    qint64 height;

    QSize size() const { return QSize(int(width), int(height)); }
};

QRectF inkBounds(const Drawing &drawing)
{
    QRectF bounds;
    const QVector<QPolygonF> outlines = inkOutlines(drawing.ink, drawing.pen, Placement());
    for (const QPolygonF &outline : outlines)
        bounds |= outline.boundingRect();
    return bounds & QRectF(QPointF(), drawing.padSize);
}

/// The part of the pad that the picture shows, in pad pixels.
QRect shownPart(const Drawing &drawing, bool clipped)
{
    const QRectF bounds = clipped && drawing.clip ? inkBounds(drawing) : QRectF();
    if (bounds.isEmpty())
        return QRect(QPoint(), drawing.padSize);
    const Clip &clip = *drawing.clip;
    return bounds.toAlignedRect().adjusted(-clip.marginX, -clip.marginY, clip.marginX, clip.marginY);
}

/// The whole pad fitted into the middle of the canvas.
View canvasView(const QSize &padSize, const QSize &canvas)
{
    const qreal scale = std::min(qreal(canvas.width()) / padSize.width(), qreal(canvas.height()) / padSize.height());
    const QPointF rest(canvas.width() - padSize.width() * scale, canvas.height() - padSize.height() * scale);
    return {{scale, rest / 2.0}, canvas.width(), canvas.height()};
}

View viewOf(const Drawing &drawing, const PictureOptions &options)
{
    if (drawing.canvas && (options.onCanvas || options.type == TransparentPngImage))
        return canvasView(drawing.padSize, *drawing.canvas);
    const QRect part = shownPart(drawing, options.clipped);
    const qreal scale = qreal(options.dpi) / kScreenDpi;
    return {{scale, -QPointF(part.topLeft()) * scale},
            std::max(qRound64(part.width() * scale), qint64(1)),
            std::max(qRound64(part.height() * scale), qint64(1))};
}

QByteArray svgPath(const QPolygonF &outline)
{
    QByteArray path;
    char command = 'M';
    for (const QPointF &corner : outline) {
        path += command + QByteArray::number(corner.x(), 'f', 2) + ' ' + QByteArray::number(corner.y(), 'f', 2);
        command = 'L';
    }
    return path + 'Z';
}

QByteArray svgOf(const Drawing &drawing, const PictureOptions &options)
{
    // A vector picture has no resolution: its size in pad pixels is its size on paper at 96 dpi.
    PictureOptions atScreenDpi = options;
    atScreenDpi.dpi = kScreenDpi;
    const View view = viewOf(drawing, atScreenDpi);
    const QByteArray width = QByteArray::number(view.width);
    const QByteArray height = QByteArray::number(view.height);
    QByteArray svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height
                     + "\" viewBox=\"0 0 " + width + ' ' + height + "\">\n<g fill=\""
                     + drawing.pen.color.name().toLatin1() + "\" fill-rule=\"nonzero\">\n";
    const QVector<QPolygonF> outlines = inkOutlines(drawing.ink, drawing.pen, view.placement);
    for (const QPolygonF &outline : outlines)
        svg += "<path d=\"" + svgPath(outline) + "\"/>\n";
    return svg + "</g>\n</svg>\n";
}

} // namespace

bool isTransparent(const PictureOptions &options)
{
    const PixelFormat *const format = pixelFormat(options.type);
    return format != nullptr && format->keepsTransparency && !(options.type == PngImage && options.opaque);
}

QImage drawnImage(const Drawing &drawing, const PictureOptions &options)
{
    const bool transparent = isTransparent(options);
    const View view = viewOf(drawing, options);
    if (view.width * view.height > kMaxPicturePixels)
        return QImage();
    QImage image(view.size(), transparent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.fill(transparent ? Qt::transparent : Qt::white);
    const int dotsPerMeter = qRound(options.dpi / 0.0254);
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    QPainter painter(&image);
    paintInk(&painter, drawing.ink, drawing.pen, view.placement);
    return image;
}

QByteArray encodedImage(const QImage &image, int type)
{
    const PixelFormat *format = pixelFormat(type);
    if (image.isNull() || !format)
        return QByteArray();
    QBuffer buffer;
    QImageWriter writer(&buffer, format->writer);
    if (type == JpegImage)
        writer.setQuality(92);
    return writer.write(image) ? buffer.data() : QByteArray();
}

QByteArray encodedDrawing(const Drawing &drawing, const PictureOptions &options)
{
    if (options.type == SvgImage)
        return svgOf(drawing, options);
    if (options.type == InkData)
        return inkToText(drawing.ink);
    return encodedImage(drawnImage(drawing, options), options.type);
}

} // namespace virtualpad
