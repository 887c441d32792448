// The parts of a reply one by one, each beside the same work of the library.

#include "base/JsonText.h"
#include "bench/Work.h"
#include "device/InkJson.h"
#include "service/UrlParameters.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <benchmark/benchmark.h>

namespace {

QString Base64(int size)
{
    PictureText picture(size);
    return QString::fromUtf8(picture.Next());
}

_STRUCT_INK_POINT_DATA InkPoint(int i)
{
    const WorkPoint point = PointAt(i);
    return {i, static_cast<std::int16_t>(point.x), static_cast<std::int16_t>(point.y),
            static_cast<std::int16_t>(point.pressure), static_cast<std::uint8_t>(point.strokeEnd)};
}

QString PointList(int count)
{
    InkPointList points;
    for (int i = 0; i < count; ++i)
        points.Append(InkPoint(i), QString::number(PointAt(i).timeMs));
    return points.Take();
}

/// Texts of about a million characters: without escapes, with one in four characters, without ASCII.
QString Text(int kind)
{
    switch (kind) {
    case 0:
        return Base64(1 << 20);
    case 1:
        return PointList(12000);
    default:
        return QString(1 << 20, QChar(0x7b7e));
    }
}
const char *const textNames[] = {"base64", "points", "Chinese"};

void Finish(benchmark::State &state, qint64 units)
{
    state.SetBytesProcessed(state.iterations() * units);
}

template <class Json>
void AppendString(benchmark::State &state)
{
    const QString text = Text(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Json json;
        AppendJsonString(json, text);
        benchmark::DoNotOptimize(json.constData());
    }
    state.SetLabel(textNames[state.range(0)]);
    Finish(state, text.size());
}
BENCHMARK(AppendString<QString>)->DenseRange(0, 2);
BENCHMARK(AppendString<QByteArray>)->DenseRange(0, 2);

void QtString(benchmark::State &state)
{
    const QString text = Text(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const QByteArray json = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
        benchmark::DoNotOptimize(json.constData());
    }
    state.SetLabel(textNames[state.range(0)]);
    Finish(state, text.size());
}
BENCHMARK(QtString)->DenseRange(0, 2);

void ImageReplyText(benchmark::State &state)
{
    const QString base64 = Base64(1 << 20);
    for (auto _ : state) {
        const QString json = ImageReply(ImageEvent::Ink, base64);
        benchmark::DoNotOptimize(json.constData());
    }
    Finish(state, base64.size());
}
BENCHMARK(ImageReplyText);

void PointListText(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(PointList(static_cast<int>(state.range(0))).constData());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(PointListText)->Arg(1000)->Arg(100000);

void QtPointList(benchmark::State &state)
{
    for (auto _ : state) {
        QJsonArray array;
        for (int i = 0; i < state.range(0); ++i) {
            const WorkPoint point = PointAt(i);
            array.append(QJsonObject{{QStringLiteral("Time"), QString::number(point.timeMs)},
                                     {QStringLiteral("bStrokeEnd"), QString::number(point.strokeEnd)},
                                     {QStringLiteral("pressure"), QString::number(point.pressure)},
                                     {QStringLiteral("x"), QString::number(point.x)},
                                     {QStringLiteral("y"), QString::number(point.y)}});
        }
        const QString json = QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
        benchmark::DoNotOptimize(json.constData());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(QtPointList)->Arg(1000)->Arg(100000);

void UrlParameters(benchmark::State &state)
{
    const QString url = QStringLiteral("ws://localhost:8089/MVSignSDK/SetPenColor?R=0&G=0&B=255");
    for (auto _ : state)
        benchmark::DoNotOptimize(ParseUrlParameters(url).size());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(UrlParameters);

} // namespace

BENCHMARK_MAIN();
