/// A stand-in for the maker's library: every exported function writes its call down in the Recorder and answers what
/// the test has scripted there.

#include "tests/sdk/recording/Recorder.h"

#include <cstdio>

using recording::Call;
using recording::InkPoint;
using recording::Recorder;
using recording::Reply;
using recording::TextCallback;

namespace {

std::string spelled(const char *format, unsigned value)
{
    char buffer[16];
    snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

template <typename Character>
std::string quoted(const Character *text, unsigned mask, const char *escape)
{
    if (!text) {
        return "null";
    }
    std::string result = "\"";
    for (; *text; ++text) {
        const unsigned code = static_cast<unsigned>(*text) & mask;
        result += code >= 0x20 && code < 0x7F ? std::string(1, static_cast<char>(code)) : spelled(escape, code);
    }
    return result + '"';
}

void take(Call &call, int value)
{
    call.index = value;
    call.arguments += std::to_string(value);
}

void take(Call &call, bool value)
{
    call.arguments += value ? "true" : "false";
}

void take(Call &call, void *output)
{
    call.output = output;
    call.arguments += output ? "buf" : "null";
}

void take(Call &call, InkPoint *point)
{
    call.output = point;
    call.index = point ? point->nIndex : -1;
    call.arguments += point ? "point " + std::to_string(point->nIndex) : "null";
}

void take(Call &call, char *text)
{
    call.givesBack = true;
    call.givenBack = text;
    call.arguments += Recorder::instance().nameOfText(text);
}

void take(Call &call, const char *text)
{
    call.arguments += quoted(text, 0xFF, "\\x%02X");
}

void take(Call &call, const wchar_t *text)
{
    call.arguments += quoted(text, 0xFFFFFFFF, "\\u{%X}");
}

void take(Call &call, TextCallback callback)
{
    Recorder::instance().registerCallback(callback);
    call.arguments += callback ? "callback" : "null";
}

template <typename Result>
Result resultOf(const Reply &reply)
{
    return static_cast<Result>(reply.value);
}

template <>
char *resultOf<char *>(const Reply &reply)
{
    return reply.text;
}

template <typename Result>
struct Recorded {
    const char *function;

    template <typename... Arguments>
    Result operator()(Arguments... arguments) const
    {
        Call call;
        call.function = function;
        const char *separator = "";
        ((call.arguments += separator, take(call, arguments), separator = ", "), ...);
        return resultOf<Result>(Recorder::instance().call(call));
    }
};

__attribute__((constructor)) void onLoad()
{
    Recorder::instance().loaded();
}

__attribute__((destructor)) void onUnload()
{
    Recorder::instance().unloaded();
}

} // namespace

// clang-format off
#define EXPORT_x(family, name, result, parameters, arguments)                                                          \
    extern "C" RECORDING_API result MV##family##_##name parameters;                                                    \
    extern "C" RECORDING_API result MV##family##_##name parameters                                                     \
    {                                                                                                                  \
        return Recorded<result>{"MV" #family "_" #name} arguments;                                                     \
    }
#define EXPORT__(family, name, result, parameters, arguments)

#define SDK_FUNCTION(name, result, parameters, arguments, alder, birch, cedar, maple, rowan)                           \
    EXPORT_##alder(Alder, name, result, parameters, arguments)                                                         \
    EXPORT_##birch(Birch, name, result, parameters, arguments)                                                         \
    EXPORT_##cedar(Cedar, name, result, parameters, arguments)                                                         \
    EXPORT_##maple(Maple, name, result, parameters, arguments)                                                         \
    EXPORT_##rowan(Rowan, name, result, parameters, arguments)
#include "tests/sdk/recording/SdkTable.h"
