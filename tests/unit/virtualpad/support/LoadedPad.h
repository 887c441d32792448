#pragma once

#include "sdk/SdkFunctions.h"

#include <QByteArray>
#include <QImage>
#include <QLibrary>
#include <QList>
#include <QSize>

#include <optional>

/// The functions of one family, named without their prefix; null where the library has none.
struct PadFunctions {
#define MEMBER(Model, name, result, parameters, ...) result(*name) parameters = nullptr;
    MV_SDK_FUNCTIONS(MEMBER, Any)
#undef MEMBER
};

struct TestPoint {
    int x;
    int y;
    int pressure;
    int strokeEnd;
    QByteArray time;
};

bool operator==(const TestPoint &a, const TestPoint &b);
char *toString(const TestPoint &point);

/// The virtual pad's library, loaded for as long as the object lives. Its environment variables are set here, too:
/// they count from the next initialise() on and are unset at the end.
class LoadedPad : public PadFunctions
{
public:
    explicit LoadedPad(int deviceId = 2);
    ~LoadedPad();

    int id() const { return m_deviceId; }
    bool initialise(int width, int height);
    /// initialise() with the whole signature there at once.
    bool initialiseWritten(int width, int height);
    /// initialise() with the points of this text, all there at once.
    bool initialiseWith(const QByteArray &inkText, int width, int height);

    QList<TestPoint> points() const;
    /// Takes a text from one of the producers and frees it; nothing for a null text.
    std::optional<QByteArray> taken(char *pText, void (*pfnFree)(int, char *)) const;
    /// The same, out of base64.
    QByteArray decoded(char *pText, void (*pfnFree)(int, char *)) const;

    QByteArray encoded(int type) const { return decoded(Base64Encode(m_deviceId, type), Base64EncodeFree); }
    QByteArray encodedEx(int type) const { return decoded(Base64EncodeEx(m_deviceId, type, 0), Base64EncodeExFree); }

private:
    QLibrary m_library;
    int m_deviceId;
};

/// The text of a file of points, one row {x, y, pressure, stroke end, time} each.
QByteArray inkText(const QList<TestPoint> &points);
