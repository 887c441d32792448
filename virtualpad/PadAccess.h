// What the exported functions are made of: access to the shared pad, and the ways in which results go out.
#pragma once

#include "virtualpad/SharedPad.h"
#include "virtualpad/WindowHost.h"

#include <algorithm>
#include <array>

namespace virtualpad {

/// What action(pad) returns, with the state locked; NoSuchPad when the device ID's pad is not plugged in.
template <typename Action>
int withPad(int deviceId, Action action)
{
    SharedPad &shared = SharedPad::instance();
    const std::lock_guard<std::mutex> lock(shared.mutex);
    if (!shared.pad.isPluggedIn(deviceId))
        return sdk::NoSuchPad;
    return action(shared.pad);
}

/// Takes the time that the pad needs to answer.
void waitForAnswer(int deviceId);

/// withPad for what a pad is asked over its cable; single points, for one, are in the library already.
template <typename Action>
int askPad(int deviceId, Action action)
{
    waitForAnswer(deviceId);
    return withPad(deviceId, action);
}

/// askPad for an action that the pad's window shows.
template <typename Action>
int askSeenPad(int deviceId, Action action)
{
    const int result = askPad(deviceId, action);
    updateWindow();
    return result;
}

/// None when the device ID's pad is not plugged in.
std::optional<Drawing> drawingOf(int deviceId);

/// The drawing in the wanted form, made anew only when something has changed since the last time.
QByteArray pictureOf(const Drawing &drawing, const PictureOptions &options);

/// Hands the text out until takeBack().
char *handOut(TextSource source, const QByteArray &text);
/// The same as base64; null when there is nothing to hand out.
char *handOutBase64(TextSource source, const QByteArray &data);
/// The pad's picture as base64; null when there is none.
char *handOutPicture(TextSource source, int deviceId, const PictureOptions &options);
/// Frees what this source handed out. Null is ignored; any other pointer is left alone with a line on stderr.
void takeBack(TextSource source, const char *pText);

/// Copies as much of the text as the buffer holds with its NUL. BadArgument without a buffer.
int copyText(const QByteArray &text, char *pBuffer, int bufferBytes);

/// Copies the text of the pad, or the empty text when there is no such pad.
template <typename TextOfPad>
int copyPadText(int deviceId, char *pBuffer, int bufferBytes, TextOfPad textOfPad)
{
    QByteArray text;
    const int result = askPad(deviceId, [&](Pad &pad) {
        text = textOfPad(pad);
        return sdk::Success;
    });
    const int copied = copyText(text, pBuffer, bufferBytes);
    return result == sdk::Success ? copied : result;
}

using Numbers = std::array<int, 2>;

/// Writes the pad's first `count` numbers, or zeros when there is no such pad.
template <int count, typename NumbersOfPad>
int copyNumbers(int deviceId, void *pOut, NumbersOfPad numbersOfPad)
{
    Numbers numbers{};
    const int result = askPad(deviceId, [&](Pad &pad) {
        numbers = numbersOfPad(pad);
        return sdk::Success;
    });
    std::copy_n(numbers.begin(), count, static_cast<int *>(pOut));
    return result;
}

/// Tells the callbacks what is new. They are called on the caller's thread with nothing locked: the pad has no thread
/// of its own, and a callback may call back into the library.
void deliverNews(int deviceId);

} // namespace virtualpad
