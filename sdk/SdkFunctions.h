// The C interface of the maker's library libmvsignpadsdk.so: the one exchange record and the one table of
// exported functions. The device layer resolves them, the virtual pad exports them.
#pragma once

#include <cstddef>
#include <cstdint>

/// One ink point, filled by GetInkPointData. Platform ABI, natural alignment.
struct _STRUCT_INK_POINT_DATA { // NOLINT(bugprone-reserved-identifier): the interface's own name
    std::int32_t nIndex;        ///< in: index of the wanted point, from 0
    std::int16_t x;             ///< out: pad coordinate
    std::int16_t y;             ///< out: pad coordinate
    std::int16_t pressure;      ///< out: pen pressure as the pad reports it
    std::uint8_t bStrokeEnd;    ///< out: non-zero on the last point of a stroke
};
static_assert(offsetof(_STRUCT_INK_POINT_DATA, x) == 4 && offsetof(_STRUCT_INK_POINT_DATA, y) == 6
                  && offsetof(_STRUCT_INK_POINT_DATA, pressure) == 8
                  && offsetof(_STRUCT_INK_POINT_DATA, bStrokeEnd) == 10 && sizeof(_STRUCT_INK_POINT_DATA) == 12,
              "the record's layout belongs to the maker's library");

/// The pad models with their device IDs, in the order of the columns below.
#define MV_SDK_MODELS(MODEL) MODEL(Alder, 2) MODEL(Birch, 5) MODEL(Cedar, 7) MODEL(Maple, 3) MODEL(Rowan, 4)

// clang-format off

// Every function of every family, in the order in which a model resolves them. An exported name is "MV", the model's
// name, "_" and the function's name (MVAlder_OpenLCD); x: the model's family has it, _: it has not. Some are resolved, and
// missed when they are missing, but never called, on purpose: SignPadEventCallback, AboutBox and the two for WPS texts.
//
// A flag comes back as a byte that may be neither 0 nor 1; other than 0 means true.
// Texts (char *) belong to the library and go back through the free function of the row below; they are
// NUL-terminated UTF-8. Paths are NUL-terminated arrays of 32-bit code points. All calls come from one thread.
//
//  Model  function                           result         parameters                                                                                  Alder Birch Cedar Maple Rowan
#define MV_SDK_FUNCTIONS(ROW, Model) \
    ROW(Model, InitialDevice,                     unsigned char, (int nID, void *pReserved, int nReserved1, int nReserved2, int nWidth, int nHeight),        x, x, x, x, x) \
    ROW(Model, UnInitialDevice,                   int,           (int nDeviceID),                                                                            x, x, x, x, x) \
    ROW(Model, OpenLCD,                           int,           (int nDeviceID, int bOpen),                                                                 x, x, x, _, _) \
    ROW(Model, Clear,                             void,          (int nDeviceID),                                                                            x, x, x, x, x) \
    ROW(Model, GetHWPenID,                        int,           (int nDeviceID, char *pBuf, int nBufSize),                                                  x, x, x, _, _) \
    ROW(Model, GetHWPadID,                        int,           (int nDeviceID, char *pBuf, int nBufSize),                                                  x, x, x, x, x) \
    ROW(Model, GetHWVersion,                      int,           (int nDeviceID, char *pBuf, int nBufSize),                                                  x, x, x, x, x) \
    ROW(Model, DisplayHWVersion,                  int,           (int nDeviceID, bool bShow),                                                                x, x, x, _, _) \
    ROW(Model, SetPenStyle,                       int,           (int nDeviceID, bool bPressureOn),                                                          x, x, x, x, x) \
    ROW(Model, SetPenWidth,                       int,           (int nDeviceID, int nWidth),                                                                x, x, x, x, x) \
    ROW(Model, SignPadEventCallback,              void,          (int nDeviceID, void (*pfnEvent)(int nEventID)),                                            x, x, x, x, x) \
    ROW(Model, GetTotalInkPointsNumber,           int,           (int nDeviceID),                                                                            x, x, x, x, x) \
    ROW(Model, GetInkPointData,                   int,           (int nDeviceID, _STRUCT_INK_POINT_DATA *pPoint),                                            x, x, x, x, x) \
    ROW(Model, GetInkPointDataTimeInfo,           char *,        (int nDeviceID, int nIndex),                                                                x, x, x, x, x) \
    ROW(Model, FreeInkPointDataTimeInfo,          void,          (int nDeviceID, char *pText),                                                               x, x, x, x, x) \
    ROW(Model, SaveDrawingImage,                  int,           (int nDeviceID, int nType, const wchar_t *pwszFilePath, int nDPI),                          x, x, x, x, x) \
    ROW(Model, SetSaveClipImageMargin,            int,           (int nDeviceID, int bEnable, int nWidth, int nHeight),                                      x, x, x, x, x) \
    ROW(Model, GetDeviceInfo,                     int,           (int nDeviceID, int nType, void *pOut),                                                     x, x, x, x, x) \
    ROW(Model, AboutBox,                          void,          (int nDeviceID),                                                                            x, x, x, x, x) \
    ROW(Model, GetAboutInfo,                      void,          (int nDeviceID, char *pBuf),                                                                x, x, x, x, x) \
    ROW(Model, Base64Encode,                      char *,        (int nDeviceID, int nType),                                                                 x, x, x, x, x) \
    ROW(Model, Base64EncodeFree,                  void,          (int nDeviceID, char *pText),                                                               x, x, x, x, x) \
    ROW(Model, Base64Decode,                      int,           (int nDeviceID, int nType, const char *pszBase64Data, const wchar_t *pwszFilePath),         x, x, x, x, x) \
    ROW(Model, GetTotalDecodeInkPointsNumber,     int,           (int nDeviceID),                                                                            x, x, x, x, x) \
    ROW(Model, GetDecodeInkPointData,             int,           (int nDeviceID, int nIndex, int nField),                                                    x, x, x, x, x) \
    ROW(Model, SetPenColor,                       int,           (int nDeviceID, int nR, int nG, int nB),                                                    x, x, x, x, x) \
    ROW(Model, GetDeviceConfirmOrCancelKeyStatus, int,           (int nDeviceID),                                                                            x, x, x, x, x) \
    ROW(Model, SetDisplayedFPImageAt,             int,           (int nDeviceID, void *pReserved, int nCanvasWidth, int nCanvasHeight, int nFPLeft, int nFPTop, int nFPWidth, int nFPHeight), _, _, x, _, _) \
    ROW(Model, GetFPImageBase64Data,              char *,        (int nDeviceID, int nType, int bFPImageOnly),                                               _, _, x, _, _) \
    ROW(Model, FreeFPImageBase64Data,             void,          (int nDeviceID, char *pText),                                                               _, _, x, _, _) \
    ROW(Model, GetSVGImageBase64Data,             char *,        (int nDeviceID),                                                                            x, x, x, x, x) \
    ROW(Model, FreeSVGImageBase64Data,            void,          (int nDeviceID, char *pText),                                                               x, x, x, x, x) \
    ROW(Model, SetRealTimeSignBase64DataCallback, unsigned char, (int nDeviceID, int nType, void (*pfnSignBase64Data)(char *pData)),                         x, _, _, _, _) \
    ROW(Model, InitialWPSSignCanvas,              unsigned char, (int nDeviceID, int nWidth, int nHeight),                                                   x, _, _, _, _) \
    ROW(Model, WPSBase64Encode,                   char *,        (int nDeviceID, int nType),                                                                 x, _, _, _, _) \
    ROW(Model, WPSBase64EncodeFree,               void,          (int nDeviceID, char *pText),                                                               x, _, _, _, _) \
    ROW(Model, Base64EncodeEx,                    char *,        (int nDeviceID, int nType, int nOption),                                                    x, x, x, x, x) \
    ROW(Model, Base64EncodeExFree,                void,          (int nDeviceID, char *pText),                                                               x, x, x, x, x)

// clang-format on

/// Inside a ROW macro: expands to the trailing arguments when the model's column holds a tick, else to nothing.
#define MV_SDK_IF_MODEL_HAS(Model, alder, birch, cedar, maple, rowan, ...)                                             \
    MV_SDK_IF_TICKED(MV_SDK_COLUMN_##Model(alder, birch, cedar, maple, rowan), __VA_ARGS__)

#define MV_SDK_COLUMN_Alder(alder, birch, cedar, maple, rowan) alder
#define MV_SDK_COLUMN_Birch(alder, birch, cedar, maple, rowan) birch
#define MV_SDK_COLUMN_Cedar(alder, birch, cedar, maple, rowan) cedar
#define MV_SDK_COLUMN_Maple(alder, birch, cedar, maple, rowan) maple
#define MV_SDK_COLUMN_Rowan(alder, birch, cedar, maple, rowan) rowan

#define MV_SDK_IF_TICKED(tick, ...) MV_SDK_WHEN(tick, __VA_ARGS__)
#define MV_SDK_WHEN(tick, ...) MV_SDK_TICK##tick(__VA_ARGS__)
#define MV_SDK_TICKx(...) __VA_ARGS__
#define MV_SDK_TICK_(...)
