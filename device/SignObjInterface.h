#pragma once

#include "device/PadStatus.h"

#include <QString>
#include <QStringList>

#include <optional>

/// One signature pad. The values returned here are those of a pad that lacks the operation; a model overrides what
/// its pad can do. All operations run on the service thread and block as long as the pad does; none throws.
/// Sizes and positions are in the pad's own pixels.
class SignObjInterface
{
public:
    virtual ~SignObjInterface() = default;

    /// The maker's text about the library; empty on failure.
    virtual QString GetAboutInfo() { return {}; }
    /// Opens the pad with a signing area of nWidth x nHeight; false when there is none.
    virtual bool InitialDevice(int /*nID*/, int /*nWidth*/, int /*nHeight*/) { return false; }
    /// Closes the pad; false when the pad reports an error.
    virtual bool UnInitialDevice() { return false; }
    /// True while the pad is connected.
    virtual bool IsValid() { return false; }
    /// Forgets the drawing.
    virtual void Clear() {}
    /// Number of ink points; 0 on failure.
    virtual int GetSize() { return 0; }
    /// The ink points as a compact JSON array; "[]" when there are none.
    virtual QString GetPointer() { return {}; }
    virtual void SetPenWidth(int /*nWidth*/) {}
    virtual void SetPenStyle(bool /*bPressureOn*/) {}
    /// Components from 0 to 255.
    virtual void SetPenColor(int /*nR*/, int /*nG*/, int /*nB*/) {}
    /// The drawing in an image type of the pad, as base64; empty on failure.
    virtual QString Encode(int /*nType*/) { return {}; }
    /// Writes base64 signature data to a file below /tmp; for type 6 returns its points as JSON, else an empty text.
    virtual QString Decode(int /*nType*/, QString /*strPath*/, QString /*strData*/) { return {}; }
    /// The path of the last Decode; empty before the first.
    virtual QString GetDecodeFilePath() { return {}; }
    /// Types 1 to 7, each with its own format; empty for any other.
    virtual QString GetDeviceInfo(int /*nType*/) { return {}; }
    /// Margin around the ink of saved pictures; 0, 0 switches the clipping off, negative values are ignored.
    virtual void SetClip(int /*nWidth*/, int /*nHeight*/) {}
    /// Saves the drawing; returns the file's path, the pad's error code as decimal text, or an empty text.
    virtual QString SaveDrawImage(int /*nType*/, int /*nDPI*/, QString /*strPath*/) { return {}; }
    /// The drawing as an image reply; empty when there is none or it has not changed since it was last handed out.
    virtual QString GetInks() { return {}; }
    /// Like GetInks, on an opaque background.
    virtual QString GetOpaqueInks() { return {}; }
    /// Identifiers of the pad's firmware, pen and pad; empty on failure.
    virtual QString VersionID() { return {}; }
    virtual QString PenID() { return {}; }
    virtual QString PadID() { return {}; }
    virtual void DisplayDeviceInfoInLCD(bool /*bShow*/) {}
    virtual void CloseLCD() {}
    virtual void OpenLCD() {}
    /// 1: confirm key, 0: cancel key, other values as the pad reports them; -1 on failure of a model that has keys.
    virtual int GetDeviceConfirmOrCancelKeyStatus() { return 0; }
    /// The fingerprint as an image reply; empty when there is none or it has not changed.
    virtual QString GetFingerPrintImage(bool /*bFPImageOnly*/) { return {}; }
    virtual void SetDisplayedFPImageAt(int /*nCanvasWidth*/, int /*nCanvasHeight*/, int /*nFPLeft*/, int /*nFPTop*/,
                                       int /*nFPWidth*/, int /*nFPHeight*/)
    {
    }
    /// Composes drawing, name and date into one picture; returns its path, the bare drawing's path, or a negative
    /// number as text.
    virtual QString WPSSignConfirmed(bool /*bEnableDateTime*/, QString /*strName*/) { return {}; }
    /// Like GetInks, always on a transparent background.
    virtual QString WPSGetInks() { return {}; }
    /// The drawing as base64 SVG data; empty on failure.
    virtual QString GetSVGImageBase64Data() { return {}; }
    /// Registers for pushed key events and pictures; the functions may be called until UnInitialDevice.
    virtual bool SetRealTimeSignBase64DataCallback(int /*nType*/, void (* /*pfnSignPadEventCallback*/)(int),
                                                   void (* /*pfnSignBase64DataCallback*/)(char *))
    {
        return false;
    }
    virtual bool InitialWPSSignCanvas(int /*nWidth*/, int /*nHeight*/) { return false; }

    /// The model, open or not, and the library as this object found it; asks neither library nor pad.
    virtual PadStatus Status() { return {}; }
    /// The folders, absolute, below which Decode and SaveDrawImage may write; absent: anywhere.
    virtual void RestrictSaving(std::optional<QStringList> /*saveFolders*/) {}
};
