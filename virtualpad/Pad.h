// The one pad of the process: what is plugged in, what is written on it, and how it is drawn.
#pragma once

#include "sdk/SdkNumbers.h"
#include "virtualpad/Environment.h"
#include "virtualpad/Fingerprint.h"
#include "virtualpad/PadModel.h"
#include "virtualpad/Picture.h"

#include <QElapsedTimer>

namespace virtualpad {

constexpr int kMaxPadSide = 4096;    ///< pad pixels
constexpr int kMaxClipMargin = 4096; ///< pad pixels

using KeyCallback = void (*)(int nEventID);
using PictureCallback = void (*)(char *pData);

/// What the registered callbacks have yet to hear; a null function has nothing to hear.
struct News {
    KeyCallback pfnKey = nullptr;
    sdk::KeyEvent key = sdk::SIGNPAD_NO_BUTTON;
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
    bool isPluggedIn(int deviceId) const;
    bool isSignedByHand() const { return m_signedByHand; }
    const PadModel &model() const { return *m_pModel; } ///< of the pad that is plugged in
    const QSize &size() const { return m_size; }
    double answersAfter() const { return m_behaviour.answersAfter; } ///< seconds since it was asked
    bool hasFingerOnSensor() const;

    /// Empties the pad and waits for the next key; a pad that writes by itself begins again.
    void clear();

    /// The hand at a pad that is signed by hand. A switched-off LCD takes no ink, nor does a pad whose key was
    /// pressed, until it is cleared. False: not taken.
    bool write(const QPoint &point, int pressure);
    void liftPen();
    void pressKey(sdk::KeyEvent key);

    int inkCount() const;
    const InkPoint *inkPoint(int index) const; ///< null when there is no such point yet
    sdk::KeyEvent keyStatus() const;

    sdk::ResultCode setPenWidth(int width);
    sdk::ResultCode setPenColor(int red, int green, int blue);
    void setPenPressure(bool on);
    sdk::ResultCode setClip(bool enable, int marginX, int marginY);
    sdk::ResultCode setWpsCanvas(const QSize &canvas);
    sdk::ResultCode setFingerprintPlace(const FingerprintPlace &place);
    const FingerprintPlace &fingerprintPlace() const { return m_fingerprintPlace; }

    /// What a picture made now shows.
    Drawing drawing() const;

    void setKeyCallback(KeyCallback pfnKey) { m_pfnKey = pfnKey; }
    sdk::ResultCode setPictureCallback(int type, PictureCallback pfnPicture);
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
    Ink m_ink; ///< all of it, also what is not written yet
    QElapsedTimer m_pluggedIn;
    QElapsedTimer m_writing; ///< since the pad was last emptied; by hand, since the first point
    sdk::KeyEvent m_pressedKey = sdk::SIGNPAD_NO_BUTTON;
    Behaviour m_behaviour;
    Pen m_pen;
    std::optional<Clip> m_clip;
    std::optional<QSize> m_wpsCanvas;
    FingerprintPlace m_fingerprintPlace;
    KeyCallback m_pfnKey = nullptr;
    PictureCallback m_pfnPicture = nullptr;
    int m_pictureType = 0;
    sdk::KeyEvent m_reportedKey = sdk::SIGNPAD_NO_BUTTON;
    int m_reportedPoints = 0;
};

} // namespace virtualpad
