#include "virtualpad/InkText.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace virtualpad {

namespace {

constexpr int kMaxTextBytes = 8 * 1024 * 1024;
constexpr int kMaxTimeMs = 24 * 60 * 60 * 1000;

enum Field { Time, StrokeEnd, Pressure, X, Y, FieldCount };

struct FieldRange {
    const char *szName;
    int smallest;
    int largest;
};

constexpr int kMin16 = std::numeric_limits<qint16>::min();
constexpr int kMax16 = std::numeric_limits<qint16>::max();

const FieldRange kFields[FieldCount] = {
    {"Time", 0, kMaxTimeMs}, {"bStrokeEnd", 0, 1},  {"pressure", 0, kMax16},
    {"x", kMin16, kMax16},   {"y", kMin16, kMax16},
};

/// The value of a field, if it is the decimal text of a number in the field's range and nothing besides.
std::optional<int> fieldValue(const QJsonObject &object, const FieldRange &field)
{
    const QString text = object.value(QLatin1String(field.szName)).toString();
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    if (!isNumber || QString::number(value) != text || value < field.smallest || value > field.largest)
        return std::nullopt;
    return value;
}

std::optional<InkPoint> pointFromJson(const QJsonValue &json, QString *pError)
{
    const QJsonObject object = json.toObject();
    if (object.size() != FieldCount) {
        *pError = QStringLiteral("is no object of five members");
        return std::nullopt;
    }
    int values[FieldCount];
    for (int i = 0; i < FieldCount; ++i) {
        const std::optional<int> value = fieldValue(object, kFields[i]);
        if (!value) {
            *pError = QStringLiteral("needs \"%1\" as the text of a whole number from %2 to %3")
                          .arg(QString::fromLatin1(kFields[i].szName))
                          .arg(kFields[i].smallest)
                          .arg(kFields[i].largest);
            return std::nullopt;
        }
        values[i] = *value;
    }
    return InkPoint{values[Time], qint16(values[X]), qint16(values[Y]), qint16(values[Pressure]),
                    values[StrokeEnd] != 0};
}

} // namespace

QByteArray inkToText(const Ink &ink)
{
    QJsonArray points;
    for (const InkPoint &point : ink) {
        const int values[FieldCount] = {point.timeMs, point.strokeEnd ? 1 : 0, point.pressure, point.x, point.y};
        QJsonObject object;
        for (int i = 0; i < FieldCount; ++i)
            object.insert(QString::fromLatin1(kFields[i].szName), QString::number(values[i]));
        points.append(object);
    }
    return QJsonDocument(points).toJson(QJsonDocument::Compact);
}

std::optional<Ink> inkFromText(const QByteArray &text, QString *pError)
{
    if (text.size() > kMaxTextBytes) {
        *pError = QStringLiteral("more than %1 bytes").arg(kMaxTextBytes);
        return std::nullopt;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(text, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        *pError = QStringLiteral("no JSON: %1 at byte %2").arg(parseError.errorString()).arg(parseError.offset);
        return std::nullopt;
    }
    if (!document.isArray()) {
        *pError = QStringLiteral("no array of points");
        return std::nullopt;
    }
    const QJsonArray points = document.array();
    if (points.size() > kMaxInkPoints) {
        *pError = QStringLiteral("more than %1 points").arg(kMaxInkPoints);
        return std::nullopt;
    }
    Ink ink;
    ink.reserve(points.size());
    for (const QJsonValue &json : points) {
        QString error;
        const std::optional<InkPoint> point = pointFromJson(json, &error);
        if (point && !ink.isEmpty() && point->timeMs < ink.last().timeMs)
            error = QStringLiteral("is earlier than the one before it");
        if (!error.isEmpty()) {
            *pError = QStringLiteral("point %1 %2").arg(ink.size()).arg(error);
            return std::nullopt;
        }
        ink.append(*point);
    }
    return ink;
}

std::optional<Ink> inkFromFile(const QString &path, QString *pError)
{
    // Opening a pipe would wait for its writer, and a device may never end.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) {
        *pError = QStringLiteral("no regular file");
        return std::nullopt;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *pError = file.errorString();
        return std::nullopt;
    }
    return inkFromText(file.read(kMaxTextBytes + 1), pError);
}

} // namespace virtualpad
