#include "virtualpad/PadAccess.h"

#include "virtualpad/Environment.h"

#include <chrono>
#include <thread>

using namespace sdk;

namespace virtualpad {

void waitForAnswer(int deviceId)
{
    double seconds = 0.0;
    withPad(deviceId, [&](Pad &pad) {
        seconds = pad.answersAfter();
        return Success;
    });
    if (seconds > 0.0)
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

std::optional<Drawing> drawingOf(int deviceId)
{
    std::optional<Drawing> drawing;
    askPad(deviceId, [&](Pad &pad) {
        drawing = pad.drawing();
        return Success;
    });
    return drawing;
}

QByteArray pictureOf(const Drawing &drawing, const PictureOptions &options)
{
    SharedPad &shared = SharedPad::instance();
    {
        const std::lock_guard<std::mutex> lock(shared.mutex);
        const LastPicture &last = shared.pad.lastPicture;
        if (last.options == options && last.drawing == drawing)
            return last.encoded;
    }
    QByteArray encoded = encodedDrawing(drawing, options);
    constexpr int kLargestToKeep = 8 * 1024 * 1024;
    if (encoded.size() > kLargestToKeep)
        return encoded;
    const std::lock_guard<std::mutex> lock(shared.mutex);
    shared.pad.lastPicture = {drawing, options, encoded};
    return encoded;
}

char *handOut(TextSource source, const QByteArray &text)
{
    SharedPad &shared = SharedPad::instance();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    return shared.texts.handOut(source, text);
}

char *handOutBase64(TextSource source, const QByteArray &data)
{
    return data.isEmpty() ? nullptr : handOut(source, data.toBase64());
}

char *handOutPicture(TextSource source, int deviceId, const PictureOptions &options)
{
    const std::optional<Drawing> drawing = drawingOf(deviceId);
    return drawing ? handOutBase64(source, pictureOf(*drawing, options)) : nullptr;
}

void takeBack(TextSource source, const char *pText)
{
    if (!pText)
        return;
    SharedPad &shared = SharedPad::instance();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    if (!shared.texts.takeBack(source, pText))
        complain(QStringLiteral("a text was given back twice, or through another text's free function"));
}

int copyText(const QByteArray &text, char *pBuffer, int bufferBytes)
{
    if (!pBuffer || bufferBytes < 1)
        return BadArgument;
    const int length = std::min(text.size(), bufferBytes - 1);
    std::copy_n(text.constData(), length, pBuffer);
    pBuffer[length] = '\0';
    return Success;
}

void deliverNews(int deviceId)
{
    News news;
    Drawing drawing;
    withPad(deviceId, [&](Pad &pad) {
        news = pad.takeNews();
        if (news.pfnPicture)
            drawing = pad.drawing();
        return Success;
    });
    if (news.pfnPicture) {
        PictureOptions options;
        options.type = news.pictureType;
        news.pfnPicture(pictureOf(drawing, options).toBase64().data());
    }
    if (news.pfnKey)
        news.pfnKey(news.key);
}

} // namespace virtualpad
