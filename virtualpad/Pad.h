// The one pad of the process: what is plugged in, what is written on it, and how it is drawn.
#pragma once

#include "virtualpad/Fingerprint.h"
#include "virtualpad/PadModel.h"
#include "virtualpad/Picture.h"

#include <QElapsedTimer>

namespace virtualpad {

/// Results of the interface's functions that return a code.
enum ResultCode {
    Success = 0,
    NoSuchPad = -1,       ///< this device ID is not initialised, or the pad was unplugged
    BadArgument = -2,     ///< a value out of range, a null pointer, an unknown type
    PictureTooLarge = -3, ///< more than kMaxPicturePixels
    BadData = -4,         ///< the text to decode is no base64, or no ink data
    CannotWrite = -5,     ///< the file cannot be written
};

/// The confirm and cancel keys.
enum KeyStatus { CancelKey = 0, ConfirmKey = 1, NoKey = -1 };

constexpr int kMaxPadSide = 4096;    ///< pad pixels
constexpr int kMaxClipMargin = 4096; ///< pad pixels

using KeyCallback = void (*)(int nEventID);
using PictureCallback = void (*)(char *pData);

/// What the registered callbacks have yet to hear; a null function has nothing to hear.
struct News {
    KeyCallback pfnKey = nullptr;
    KeyStatus key = NoKey;
    PictureCallback pfnPicture = nullptr;
    int pictureType = 0;
};

/// The picture made last, for clients that ask again and again while nothing changes.
struct LastPicture {
    Drawing drawing;
    PictureOptions options;
    QByteArray encoded;
};

/// Everything starts afresh with every plugIn: ink, pen, clip, canvas, keys. Not thread-safe; see SharedPad.
class Pad
{
public:
    /// False, with no pad left plugged in, for an unknown device ID and for sides beyond 1 to kMaxPadSide. A pad that
    /// is signed by hand is empty at first; any other writes by itself.
    bool plugIn(int deviceId, const QSize &size, bool signedByHand);
    void unplug();
    /// A number that every plugIn and unplug makes a new one.
    quint64 session() const { return m_session; }
    bool isPluggedIn(int deviceId) const { return m_pModel != nullptr && m_pModel->deviceId == deviceId; }
    bool isSignedByHand() const { return m_signedByHand; }
    const PadModel &model() const { return *m_pModel; } ///< of the pad that is plugged in
    const QSize &size() const { return m_size; }

    /// Empties the pad and waits for the next key; a pad that writes by itself begins again.
    void clear();

    /// The hand at a pad that is signed by hand. A switched-off LCD takes no ink, nor does a pad whose key was
    /// pressed, until it is cleared. False: not taken.
    bool write(const QPoint &point, int pressure);
    void liftPen();
    void pressKey(KeyStatus key);

    int inkCount() const;
    const InkPoint *inkPoint(int index) const; ///< null when there is no such point yet
    KeyStatus keyStatus() const;

    ResultCode setPenWidth(int width);
    ResultCode setPenColor(int red, int green, int blue);
    void setPenPressure(bool on);
    ResultCode setClip(bool enable, int marginX, int marginY);
    ResultCode setWpsCanvas(const QSize &canvas);
    ResultCode setFingerprintPlace(const FingerprintPlace &place);
    const FingerprintPlace &fingerprintPlace() const { return m_fingerprintPlace; }

    /// What a picture made now shows.
    Drawing drawing() const;

    void setKeyCallback(KeyCallback pfnKey) { m_pfnKey = pfnKey; }
    ResultCode setPictureCallback(int type, PictureCallback pfnPicture);
    News takeNews();

    bool lcdOn = true;
    bool showsInformation = false; ///< device information on the LCD
    Ink decodedInk;                ///< of the last call of Base64Decode
    LastPicture lastPicture;

private:
    quint64 m_session = 0;
    const PadModel *m_pModel = nullptr;
    bool m_signedByHand = false;
    QSize m_size;
    Ink m_ink;               ///< all of it, also what is not written yet
    QElapsedTimer m_writing; ///< since the pad was last emptied; by hand, since the first point
    KeyStatus m_pressedKey = NoKey;
    double m_speed = 1.0; ///< factor to real time, 0: at once
    Pen m_pen;
    std::optional<Clip> m_clip;
    std::optional<QSize> m_wpsCanvas;
    FingerprintPlace m_fingerprintPlace;
    KeyCallback m_pfnKey = nullptr;
    PictureCallback m_pfnPicture = nullptr;
    int m_pictureType = 0;
    KeyStatus m_reportedKey = NoKey;
    int m_reportedPoints = 0;
};

} // namespace virtualpad
