#include "tests/unit/virtualpad/support/LoadedPad.h"

#include <QTemporaryFile>
#include <QTest>

#include <tuple>

namespace {

const char *prefixOf(int deviceId)
{
    switch (deviceId) {
    case 5:
        return "MVBirch_";
    case 7:
        return "MVCedar_";
    case 3:
        return "MVMaple_";
    case 4:
        return "MVRowan_";
    default:
        return "MVAlder_";
    }
}

} // namespace

bool operator==(const TestPoint &a, const TestPoint &b)
{
    return std::tie(a.x, a.y, a.pressure, a.strokeEnd, a.time) == std::tie(b.x, b.y, b.pressure, b.strokeEnd, b.time);
}

char *toString(const TestPoint &point)
{
    return QTest::toString(QStringLiteral("{%1, %2, %3, %4, %5}")
                               .arg(point.x)
                               .arg(point.y)
                               .arg(point.pressure)
                               .arg(point.strokeEnd)
                               .arg(QString::fromUtf8(point.time)));
}

LoadedPad::LoadedPad(int deviceId) : m_library(QStringLiteral(VIRTUAL_PAD_LIBRARY)), m_deviceId(deviceId)
{
    if (!m_library.load())
        qFatal("%s", qPrintable(m_library.errorString()));
#define RESOLVE(Model, name, result, parameters, ...)                                                                  \
    name = reinterpret_cast<result(*) parameters>(m_library.resolve(QByteArray(prefixOf(deviceId)).append(#name)));
    MV_SDK_FUNCTIONS(RESOLVE, Any)
#undef RESOLVE
}

LoadedPad::~LoadedPad()
{
    UnInitialDevice(m_deviceId);
    m_library.unload();
    for (const char *variable : {"MVSIGNPAD_VIRTUAL_SPEED", "MVSIGNPAD_VIRTUAL_INK", "MVSIGNPAD_VIRTUAL_KEY",
                                 "MVSIGNPAD_VIRTUAL_FINGER", "MVSIGNPAD_VIRTUAL_UNPLUG", "MVSIGNPAD_VIRTUAL_DELAY"})
        qunsetenv(variable);
}

bool LoadedPad::initialise(int width, int height)
{
    return InitialDevice(m_deviceId, nullptr, 0, 0, width, height) != 0;
}

bool LoadedPad::initialiseWritten(int width, int height)
{
    qputenv("MVSIGNPAD_VIRTUAL_SPEED", "0");
    return initialise(width, height);
}

bool LoadedPad::initialiseWith(const QByteArray &inkText, int width, int height)
{
    QTemporaryFile file;
    if (!file.open() || file.write(inkText) != inkText.size() || !file.flush())
        return false;
    qputenv("MVSIGNPAD_VIRTUAL_INK", file.fileName().toLocal8Bit());
    return initialiseWritten(width, height);
}

QList<TestPoint> LoadedPad::points() const
{
    QList<TestPoint> points;
    const int count = GetTotalInkPointsNumber(m_deviceId);
    for (int i = 0; i < count; ++i) {
        _STRUCT_INK_POINT_DATA point{i, -1, -1, -1, 99};
        if (GetInkPointData(m_deviceId, &point) != 0)
            qFatal("a counted point cannot be read");
        const auto time = taken(GetInkPointDataTimeInfo(m_deviceId, i), FreeInkPointDataTimeInfo);
        points.append({point.x, point.y, point.pressure, point.bStrokeEnd, time.value_or("no time")});
    }
    return points;
}

std::optional<QByteArray> LoadedPad::taken(char *pText, void (*pfnFree)(int, char *)) const
{
    if (!pText)
        return std::nullopt;
    const QByteArray text(pText);
    pfnFree(m_deviceId, pText);
    return text;
}

QByteArray LoadedPad::decoded(char *pText, void (*pfnFree)(int, char *)) const
{
    return QByteArray::fromBase64(taken(pText, pfnFree).value_or(QByteArray()));
}

QByteArray inkText(const QList<TestPoint> &points)
{
    QByteArray text;
    for (const TestPoint &point : points) {
        text += text.isEmpty() ? "[" : ",";
        text += "{\"Time\":\"" + point.time + "\",\"bStrokeEnd\":\"" + QByteArray::number(point.strokeEnd)
                + "\",\"pressure\":\"" + QByteArray::number(point.pressure) + "\",\"x\":\""
                + QByteArray::number(point.x) + "\",\"y\":\"" + QByteArray::number(point.y) + "\"}";
    }
    return text + "]";
}
