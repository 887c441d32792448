// The C interface: every function once, exported under the names of all families. The device ID alone chooses the
// pad, so MVAlder_Clear and MVBirch_Clear are one function.
#include "sdk/SdkFunctions.h"
#include "sdk/SdkNumbers.h"
#include "virtualpad/BuiltInSignature.h"
#include "virtualpad/Environment.h"
#include "virtualpad/Fingerprint.h"
#include "virtualpad/InkText.h"
#include "virtualpad/OutputFile.h"
#include "virtualpad/PadAccess.h"

#include <algorithm>

using namespace sdk;
using namespace virtualpad;

namespace {

/// Empty for a text with any character that is not of the alphabet.
QByteArray decodedBase64(const char *pszBase64Data)
{
    const QByteArray text(pszBase64Data);
    const bool isBase64 = std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/'
               || c == '=';
    });
    return isBase64 ? QByteArray::fromBase64(text) : QByteArray();
}

int decodedField(const InkPoint &point, int field)
{
    switch (field) {
    case DecodedX:
        return point.x;
    case DecodedY:
        return point.y;
    case DecodedStrokeEnd:
        return point.strokeEnd ? 1 : 0;
    default:
        return 0;
    }
}

} // namespace

// The functions themselves carry the table's prototypes.
#define DECLARE(Model, name, result, parameters, ...) extern "C" result virtualpad_##name parameters;
MV_SDK_FUNCTIONS(DECLARE, Any)

unsigned char virtualpad_InitialDevice(int nID, void *, int, int, int nWidth, int nHeight)
{
    const bool signedByHand = windowIsWanted();
    SharedPad &shared = SharedPad::instance();
    std::unique_lock<std::mutex> lock(shared.mutex);
    const bool isThere = shared.pad.plugIn(nID, QSize(nWidth, nHeight), signedByHand);
    lock.unlock();
    updateWindow();
    waitForAnswer(nID);
    return isThere ? 1 : 0;
}

int virtualpad_UnInitialDevice(int nDeviceID)
{
    return askSeenPad(nDeviceID, [](Pad &pad) {
        pad.unplug();
        return Success;
    });
}

int virtualpad_OpenLCD(int nDeviceID, int bOpen)
{
    return askSeenPad(nDeviceID, [=](Pad &pad) {
        pad.lcdOn = bOpen != 0;
        return Success;
    });
}

void virtualpad_Clear(int nDeviceID)
{
    askSeenPad(nDeviceID, [](Pad &pad) {
        pad.clear();
        return Success;
    });
}

int virtualpad_GetHWPenID(int nDeviceID, char *pBuf, int nBufSize)
{
    return copyPadText(nDeviceID, pBuf, nBufSize, [](Pad &) { return QByteArray(kPenId); });
}

int virtualpad_GetHWPadID(int nDeviceID, char *pBuf, int nBufSize)
{
    return copyPadText(nDeviceID, pBuf, nBufSize, [](Pad &pad) { return pad.model().padId(); });
}

int virtualpad_GetHWVersion(int nDeviceID, char *pBuf, int nBufSize)
{
    return copyPadText(nDeviceID, pBuf, nBufSize, [](Pad &) { return versionText(); });
}

int virtualpad_DisplayHWVersion(int nDeviceID, bool bShow)
{
    return askSeenPad(nDeviceID, [=](Pad &pad) {
        pad.showsInformation = bShow;
        return Success;
    });
}

int virtualpad_SetPenStyle(int nDeviceID, bool bPressureOn)
{
    return askSeenPad(nDeviceID, [=](Pad &pad) {
        pad.setPenPressure(bPressureOn);
        return Success;
    });
}

int virtualpad_SetPenWidth(int nDeviceID, int nWidth)
{
    return askSeenPad(nDeviceID, [=](Pad &pad) { return pad.setPenWidth(nWidth); });
}

int virtualpad_SetPenColor(int nDeviceID, int nR, int nG, int nB)
{
    return askSeenPad(nDeviceID, [=](Pad &pad) { return pad.setPenColor(nR, nG, nB); });
}

int virtualpad_SetSaveClipImageMargin(int nDeviceID, int bEnable, int nWidth, int nHeight)
{
    return askPad(nDeviceID, [=](Pad &pad) { return pad.setClip(bEnable != 0, nWidth, nHeight); });
}

void virtualpad_SignPadEventCallback(int nDeviceID, void (*pfnEvent)(int))
{
    withPad(nDeviceID, [=](Pad &pad) {
        pad.setKeyCallback(pfnEvent);
        return Success;
    });
}

unsigned char virtualpad_SetRealTimeSignBase64DataCallback(int nDeviceID, int nType, void (*pfnSignBase64Data)(char *))
{
    const int nResult = askPad(nDeviceID, [=](Pad &pad) { return pad.setPictureCallback(nType, pfnSignBase64Data); });
    return nResult == Success ? 1 : 0;
}

int virtualpad_GetTotalInkPointsNumber(int nDeviceID)
{
    deliverNews(nDeviceID);
    return std::max(0, askPad(nDeviceID, [](Pad &pad) { return pad.inkCount(); }));
}

int virtualpad_GetInkPointData(int nDeviceID, _STRUCT_INK_POINT_DATA *pPoint)
{
    if (!pPoint)
        return BadArgument;
    return withPad(nDeviceID, [=](Pad &pad) -> int {
        const InkPoint *const pInk = pad.inkPoint(pPoint->nIndex);
        if (!pInk)
            return BadArgument;
        pPoint->x = pInk->x;
        pPoint->y = pInk->y;
        pPoint->pressure = pInk->pressure;
        pPoint->bStrokeEnd = pInk->strokeEnd ? 1 : 0;
        return Success;
    });
}

char *virtualpad_GetInkPointDataTimeInfo(int nDeviceID, int nIndex)
{
    QByteArray time;
    withPad(nDeviceID, [&](Pad &pad) {
        if (const InkPoint *const pInk = pad.inkPoint(nIndex))
            time = QByteArray::number(pInk->timeMs);
        return Success;
    });
    return time.isEmpty() ? nullptr : handOut(TextSource::PointTime, time);
}

void virtualpad_FreeInkPointDataTimeInfo(int, char *pText)
{
    takeBack(TextSource::PointTime, pText);
}

int virtualpad_GetDeviceConfirmOrCancelKeyStatus(int nDeviceID)
{
    deliverNews(nDeviceID);
    // No pad and no key are the same -1.
    return askPad(nDeviceID, [](Pad &pad) { return pad.keyStatus(); });
}

int virtualpad_GetDeviceInfo(int nDeviceID, int nType, void *pOut)
{
    if (!pOut)
        return BadArgument;
    char *const pText = static_cast<char *>(pOut);
    switch (nType) {
    case ConnectedInfo:
        *static_cast<bool *>(pOut) = askPad(nDeviceID, [](Pad &) { return Success; }) == Success;
        return Success;
    case LcdSizeInfo:
        return copyNumbers<2>(nDeviceID, pOut, [](Pad &pad) {
            return Numbers{pad.size().width(), pad.size().height()};
        });
    case SamplingInfo:
        return copyNumbers<2>(nDeviceID, pOut, [](Pad &) { return Numbers{kPointsPerSecond, kScreenDpi}; });
    case PressureInfo:
        return copyNumbers<1>(nDeviceID, pOut, [](Pad &) { return Numbers{kMaxPressure}; });
    case ProductInfo:
        return copyPadText(nDeviceID, pText, InfoBufferBytes, [](Pad &pad) { return pad.model().productName(); });
    case SerialNumberInfo:
        return copyPadText(nDeviceID, pText, InfoBufferBytes, [](Pad &pad) { return pad.model().padId(); });
    case VersionInfo:
        return copyNumbers<2>(nDeviceID, pOut, [](Pad &) { return Numbers{kVersionMajor, kVersionMinor}; });
    default:
        return BadArgument;
    }
}

void virtualpad_AboutBox(int)
{
    complain(QString::fromLatin1(aboutText()));
}

void virtualpad_GetAboutInfo(int, char *pBuf)
{
    copyText(aboutText(), pBuf, AboutBufferBytes);
}

char *virtualpad_Base64Encode(int nDeviceID, int nType)
{
    PictureOptions options;
    options.type = nType;
    return handOutPicture(TextSource::Base64Encode, nDeviceID, options);
}

void virtualpad_Base64EncodeFree(int, char *pText)
{
    takeBack(TextSource::Base64Encode, pText);
}

char *virtualpad_Base64EncodeEx(int nDeviceID, int nType, int)
{
    PictureOptions options;
    options.type = nType;
    options.opaque = true;
    return handOutPicture(TextSource::Base64EncodeEx, nDeviceID, options);
}

void virtualpad_Base64EncodeExFree(int, char *pText)
{
    takeBack(TextSource::Base64EncodeEx, pText);
}

char *virtualpad_GetSVGImageBase64Data(int nDeviceID)
{
    PictureOptions options;
    options.type = SvgImage;
    return handOutPicture(TextSource::Svg, nDeviceID, options);
}

void virtualpad_FreeSVGImageBase64Data(int, char *pText)
{
    takeBack(TextSource::Svg, pText);
}

unsigned char virtualpad_InitialWPSSignCanvas(int nDeviceID, int nWidth, int nHeight)
{
    const int nResult = askPad(nDeviceID, [=](Pad &pad) { return pad.setWpsCanvas(QSize(nWidth, nHeight)); });
    return nResult == Success ? 1 : 0;
}

char *virtualpad_WPSBase64Encode(int nDeviceID, int nType)
{
    PictureOptions options;
    options.type = nType;
    options.onCanvas = true;
    return handOutPicture(TextSource::WpsBase64Encode, nDeviceID, options);
}

void virtualpad_WPSBase64EncodeFree(int, char *pText)
{
    takeBack(TextSource::WpsBase64Encode, pText);
}

int virtualpad_SetDisplayedFPImageAt(int nDeviceID, void *, int nCanvasWidth, int nCanvasHeight, int nFPLeft,
                                     int nFPTop, int nFPWidth, int nFPHeight)
{
    const FingerprintPlace place{QSize(nCanvasWidth, nCanvasHeight), QPoint(nFPLeft, nFPTop),
                                 QSize(nFPWidth, nFPHeight)};
    return askPad(nDeviceID, [&](Pad &pad) { return pad.setFingerprintPlace(place); });
}

char *virtualpad_GetFPImageBase64Data(int nDeviceID, int nType, int bFPImageOnly)
{
    Drawing drawing;
    FingerprintPlace place;
    const int result = askPad(nDeviceID, [&](Pad &pad) {
        drawing = pad.drawing();
        place = pad.fingerprintPlace();
        return pad.hasFingerOnSensor() ? Success : BadArgument;
    });
    if (result != Success)
        return nullptr;
    const QImage image = fingerprintPicture(drawing, place, bFPImageOnly != 0, nType);
    return handOutBase64(TextSource::Fingerprint, encodedImage(image, nType));
}

void virtualpad_FreeFPImageBase64Data(int, char *pText)
{
    takeBack(TextSource::Fingerprint, pText);
}

int virtualpad_SaveDrawingImage(int nDeviceID, int nType, const wchar_t *pwszFilePath, int nDPI)
{
    if (!pwszFilePath || nType < BmpImage || nType > InkData || nDPI < 1 || nDPI > kMaxDpi)
        return BadArgument;
    const std::optional<Drawing> drawing = drawingOf(nDeviceID);
    if (!drawing)
        return NoSuchPad;
    PictureOptions options;
    options.type = nType;
    options.dpi = nDPI;
    options.clipped = true;
    const QByteArray picture = pictureOf(*drawing, options);
    if (picture.isEmpty())
        return PictureTooLarge;
    return writeOutputFile(pwszFilePath, picture) ? Success : CannotWrite;
}

int virtualpad_Base64Decode(int nDeviceID, int nType, const char *pszBase64Data, const wchar_t *pwszFilePath)
{
    if (!pszBase64Data || !pwszFilePath || nType < BmpImage || nType > InkData)
        return BadArgument;
    const QByteArray data = decodedBase64(pszBase64Data);
    QString error;
    const std::optional<Ink> ink = nType == InkData ? inkFromText(data, &error) : Ink();
    const int result = askPad(nDeviceID, [&](Pad &pad) {
        pad.decodedInk = ink.value_or(Ink());
        return data.isEmpty() || !ink ? BadData : Success;
    });
    if (result != Success)
        return result;
    return writeOutputFile(pwszFilePath, data) ? Success : CannotWrite;
}

int virtualpad_GetTotalDecodeInkPointsNumber(int nDeviceID)
{
    return std::max(0, withPad(nDeviceID, [](Pad &pad) { return pad.decodedInk.size(); }));
}

int virtualpad_GetDecodeInkPointData(int nDeviceID, int nIndex, int nField)
{
    int value = 0;
    withPad(nDeviceID, [&](Pad &pad) {
        if (nIndex < 0 || nIndex >= pad.decodedInk.size())
            return BadArgument;
        value = decodedField(pad.decodedInk[nIndex], nField);
        return Success;
    });
    return value;
}

#define EXPORT(Model, name, result, parameters, ...)                                                                   \
    MV_SDK_IF_MODEL_HAS(Model, __VA_ARGS__,                                                                            \
                        extern "C" __attribute__((visibility("default"), alias("virtualpad_" #name)))                  \
                        result MV##Model##_##name parameters;)
#define EXPORT_FAMILY(Model, nDeviceID) MV_SDK_FUNCTIONS(EXPORT, Model)
MV_SDK_MODELS(EXPORT_FAMILY)
