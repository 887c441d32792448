#include "virtualpad/Pad.h"

#include "virtualpad/BuiltInSignature.h"

#include <algorithm>

using namespace sdk;

namespace virtualpad {

namespace {

constexpr int kMsPerPoint = 1000 / kPointsPerSecond;

bool isWithin(int value, int smallest, int largest)
{
    return smallest <= value && value <= largest;
}

double secondsOf(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e9;
}

bool isCanvas(const QSize &size)
{
    return isWithin(size.width(), 1, kMaxPadSide) && isWithin(size.height(), 1, kMaxPadSide);
}

} // namespace

bool Pad::plugIn(int deviceId, const QSize &size, bool signedByHand)
{
    unplug();
    const PadModel *const pModel = findPadModel(deviceId);
    if (!pModel || !isCanvas(size))
        return false;
    m_pModel = pModel;
    m_size = size;
    // Unless told otherwise, the fingerprint stands in the lower right corner.
    const QSize fingerprint = QSize(size.width() / 4, size.height() / 2).expandedTo(QSize(1, 1));
    m_fingerprintPlace = {size, QPoint(size.width() - fingerprint.width(), size.height() - fingerprint.height()),
                          fingerprint};
    m_signedByHand = signedByHand;
    m_behaviour = environmentBehaviour();
    m_pluggedIn.start();
    if (!signedByHand)
        m_ink = environmentNamesInk() ? environmentInk() : builtInSignature(size);
    clear();
    return true;
}

void Pad::unplug()
{
    const quint64 next = m_session + 1;
    *this = Pad();
    m_session = next;
}

bool Pad::isPluggedIn(int deviceId) const
{
    // Who signs by hand pulls the plug by hand.
    const bool wasPulledOut =
        !m_signedByHand && m_behaviour.unpluggedAfter && secondsOf(m_pluggedIn) >= *m_behaviour.unpluggedAfter;
    return m_pModel != nullptr && m_pModel->deviceId == deviceId && !wasPulledOut;
}

bool Pad::hasFingerOnSensor() const
{
    return m_pModel->hasFingerprintSensor && secondsOf(m_pluggedIn) >= m_behaviour.fingerAfter;
}

void Pad::clear()
{
    if (m_signedByHand)
        m_ink.clear();
    m_writing.start();
    m_pressedKey = SIGNPAD_NO_BUTTON;
    m_reportedKey = SIGNPAD_NO_BUTTON;
    m_reportedPoints = 0;
}

bool Pad::write(const QPoint &point, int pressure)
{
    if (!m_signedByHand || !lcdOn || m_pressedKey != SIGNPAD_NO_BUTTON || m_ink.size() >= kMaxInkPoints)
        return false;
    if (m_ink.isEmpty())
        m_writing.start();
    m_ink.append({int(m_writing.elapsed()), qint16(point.x()), qint16(point.y()), qint16(pressure), false});
    return true;
}

void Pad::liftPen()
{
    if (m_signedByHand && !m_ink.isEmpty())
        m_ink.last().strokeEnd = true;
}

void Pad::pressKey(KeyEvent key)
{
    if (m_signedByHand)
        m_pressedKey = key;
}

int Pad::inkCount() const
{
    if (m_signedByHand || m_behaviour.speed == 0.0 || m_ink.isEmpty())
        return m_ink.size();
    // The first point is there one sampling step after the pad was emptied.
    const double writtenMs = secondsOf(m_writing) * 1e3 * m_behaviour.speed - kMsPerPoint + m_ink.first().timeMs;
    const auto *const notYet = std::upper_bound(m_ink.begin(), m_ink.end(), writtenMs,
                                                [](double time, const InkPoint &point) { return time < point.timeMs; });
    return int(notYet - m_ink.begin());
}

const InkPoint *Pad::inkPoint(int index) const
{
    return isWithin(index, 0, inkCount() - 1) ? &m_ink[index] : nullptr;
}

KeyEvent Pad::keyStatus() const
{
    if (m_signedByHand)
        return m_pressedKey;
    return !m_ink.isEmpty() && inkCount() == m_ink.size() ? m_behaviour.key : SIGNPAD_NO_BUTTON;
}

ResultCode Pad::setPenWidth(int width)
{
    if (!isWithin(width, 1, kMaxPenWidth))
        return BadArgument;
    m_pen.width = width;
    return Success;
}

ResultCode Pad::setPenColor(int red, int green, int blue)
{
    if (!isWithin(red, 0, 255) || !isWithin(green, 0, 255) || !isWithin(blue, 0, 255))
        return BadArgument;
    m_pen.color = QColor(red, green, blue);
    return Success;
}

void Pad::setPenPressure(bool on)
{
    m_pen.pressure = on;
}

ResultCode Pad::setClip(bool enable, int marginX, int marginY)
{
    if (!isWithin(marginX, 0, kMaxClipMargin) || !isWithin(marginY, 0, kMaxClipMargin))
        return BadArgument;
    m_clip = enable ? std::optional<Clip>(Clip{marginX, marginY}) : std::nullopt;
    return Success;
}

ResultCode Pad::setWpsCanvas(const QSize &canvas)
{
    if (!m_pModel->hasWpsCanvas || !isCanvas(canvas))
        return BadArgument;
    m_wpsCanvas = canvas;
    return Success;
}

ResultCode Pad::setFingerprintPlace(const FingerprintPlace &place)
{
    const bool isOnCanvas = isWithin(place.position.x(), -kMaxPadSide, kMaxPadSide)
                            && isWithin(place.position.y(), -kMaxPadSide, kMaxPadSide);
    if (!m_pModel->hasFingerprintSensor || !isCanvas(place.canvas) || !isCanvas(place.size) || !isOnCanvas)
        return BadArgument;
    m_fingerprintPlace = place;
    return Success;
}

Drawing Pad::drawing() const
{
    return {m_size, m_ink.mid(0, inkCount()), m_pen, m_clip, m_wpsCanvas};
}

ResultCode Pad::setPictureCallback(int type, PictureCallback pfnPicture)
{
    if (!isWithin(type, BmpImage, InkData))
        return BadArgument;
    m_pictureType = type;
    m_pfnPicture = pfnPicture;
    return Success;
}

News Pad::takeNews()
{
    News news;
    const KeyEvent key = keyStatus();
    if (key != m_reportedKey) {
        news.key = key;
        news.pfnKey = key == SIGNPAD_NO_BUTTON ? nullptr : m_pfnKey;
        m_reportedKey = key;
    }
    const int points = inkCount();
    if (points != m_reportedPoints) {
        news.pictureType = m_pictureType;
        news.pfnPicture = m_pfnPicture;
        m_reportedPoints = points;
    }
    return news;
}

} // namespace virtualpad
