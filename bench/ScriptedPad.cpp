// The pad library of the measurements: hands out texts of a wanted size at no cost of its own. InitialDevice takes the
// size of the picture as its width and the number of points as its height.

#include "bench/Work.h"
#include "sdk/SdkFunctions.h"

#include <dlfcn.h>

#include <memory>

namespace {

std::unique_ptr<PictureText> picture;
int pointCount = 0;
char timeText[24];

/// Has the host, if it offers that, push to its clients as a pad's callback would: 0 a key event, 1 a picture.
void AskHostToPush(int kind)
{
    using PushFunction = void (*)(int);
    if (const auto push = reinterpret_cast<PushFunction>(dlsym(RTLD_DEFAULT, "BenchPush")))
        push(kind);
}

} // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

EXPORT bool MVAlder_InitialDevice(int, void *, int, int, int nWidth, int nHeight)
{
    picture = std::make_unique<PictureText>(nWidth);
    pointCount = nHeight;
    return true;
}

EXPORT int MVAlder_UnInitialDevice(int)
{
    return 0;
}

EXPORT int MVAlder_OpenLCD(int, int)
{
    AskHostToPush(1);
    return 0;
}

EXPORT void MVAlder_Clear(int)
{
    AskHostToPush(0);
}

EXPORT int MVAlder_SetPenColor(int, int, int, int)
{
    return 0;
}

EXPORT int MVAlder_SetSaveClipImageMargin(int, int, int, int)
{
    return 0;
}

EXPORT void MVAlder_SignPadEventCallback(int, void (*)(int)) {}

EXPORT bool MVAlder_SetRealTimeSignBase64DataCallback(int, int, void (*)(char *))
{
    return true;
}

EXPORT int MVAlder_GetTotalInkPointsNumber(int)
{
    return pointCount;
}

EXPORT int MVAlder_GetInkPointData(int, _STRUCT_INK_POINT_DATA *pPoint)
{
    const WorkPoint point = PointAt(pPoint->nIndex);
    pPoint->x = static_cast<std::int16_t>(point.x);
    pPoint->y = static_cast<std::int16_t>(point.y);
    pPoint->pressure = static_cast<std::int16_t>(point.pressure);
    pPoint->bStrokeEnd = static_cast<std::uint8_t>(point.strokeEnd);
    return 0;
}

EXPORT char *MVAlder_GetInkPointDataTimeInfo(int, int nIndex)
{
    std::snprintf(timeText, sizeof timeText, "%lld", static_cast<long long>(PointAt(nIndex).timeMs));
    return timeText;
}

EXPORT void MVAlder_FreeInkPointDataTimeInfo(int, char *) {}

EXPORT char *MVAlder_Base64Encode(int, int)
{
    return picture ? picture->Next() : nullptr;
}

EXPORT void MVAlder_Base64EncodeFree(int, char *) {}
