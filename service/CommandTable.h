// The commands as their clients know them. Needs nothing of the server, so that a client can have it too.
#pragma once

#include <QString>
#include <QStringList>

/// No command takes more parameters than this.
const int nMostParameters = 6;

/// One row per API name; the row's position is the command number. A request is recognised by the first name that it
/// begins with, so no name may begin with one that stands above it.
struct Command {
    const char *szName;
    const char *szLogName;
    /// Keys of the parameters in the order in which they are passed on; a request must carry exactly as many.
    const char *keys[nMostParameters];

    QStringList Keys() const
    {
        QStringList names;
        for (const char *key : keys) {
            if (key)
                names += QString::fromLatin1(key);
        }
        return names;
    }
};

const int nCommandCount = 34;

// Some names are not those of the operations or of the log, on purpose: SaveDrawingImage, UninitialDevice,
// INITWPSSIGNCANVAS.
// clang-format off
constexpr Command commandTable[nCommandCount] = {
    {"Clear", "CLEAR", {}},
    {"CloseLCD", "CLOSELCD", {}},
    {"Decode", "DECODE", {"type", "path", "data"}},
    {"DisplayDeviceInfoInLCD", "DISPLAYDEVICEINFOINLCD", {"show"}},
    {"Encode", "ENCODE", {"type"}},
    {"GetAboutInfo", "GETABOUTINFO", {}},
    {"GetDecodeFilePath", "GETDECODEFILEPATH", {}},
    {"GetDeviceConfirmOrCancelKeyStatus", "GETDEVICECONFIRMORCANCELKEYSTATUS", {}},
    {"GetDeviceInfo", "GETDEVICEINFO", {"type"}},
    {"GetFingerPrintImage", "GETFINGERPRINTIMAGE", {"FPImageOnly"}},
    {"GetInks", "GETINKS", {}},
    {"GetPointer", "GETPOINTER", {}},
    {"GetSize", "GETSIZE", {}},
    {"InitialDevice", "INITIALDEVICE", {"id", "width", "height"}},
    {"IsValid", "ISVALID", {}},
    {"OpenLCD", "OPENLCD", {}},
    {"PadID", "PADID", {}},
    {"PenID", "PENID", {}},
    {"SaveDrawingImage", "SAVEDRAWINGIMAGE", {"type", "dpi", "path"}},
    {"SetClip", "SETCLIP", {"width", "height"}},
    {"SetDisplayedFPImageAt", "SETDISPLAYEDFPIMAGEAT", {"CanvasWidth", "CanvasHeight", "Left", "Top", "Width", "Height"}},
    {"SetPenColor", "SETPENCOLOR", {"R", "G", "B"}},
    {"SetPenStyle", "SETPENSTYLE", {"Style"}},
    {"SetPenWidth", "SETPENWIDTH", {"Width"}},
    {"UninitialDevice", "UNINITIALDEVICE", {}},
    {"VersionID", "VERSIONID", {}},
    {"GetWPSSettings", "GETWPSSETTINGS", {"id"}},
    {"UpdateWPSSettings", "UPDATEWPSSETTINGS", {"id", "dt", "af", "pw", "name"}},
    {"WPSSignConfirmed", "WPSSIGNCONFIRMED", {"id"}},
    {"WPSGetInks", "WPSGETINKS", {}},
    {"InitialWPSSignCanvas", "INITWPSSIGNCANVAS", {"width", "height"}},
    {"GetSVGImageBase64Data", "GETSVGIMAGEBASE64DATA", {}},
    {"EnableRealtimeSigningNotification", "ENABLEREALTIMESIGNINGNOTIFICATION", {"type"}},
    {"GetOpaqueInks", "GETOPAQUEINKS", {}},
};
// clang-format on
