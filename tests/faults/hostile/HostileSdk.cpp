/// The maker's interface with answers that no sound library gives. It keeps to the interface in one thing only: its
/// texts end in a NUL. A text that is given back although it was not handed out ends the process.

#include "sdk/SdkFunctions.h"
#include "tests/faults/hostile/Answers.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>

namespace {

using InkPoint = _STRUCT_INK_POINT_DATA;
using TextCallback = void (*)(char *);

std::mutex textsMutex;
std::set<char *> texts; // handed out and not yet given back

char *handOut(const std::string &content)
{
    auto *const copy = static_cast<char *>(std::malloc(content.size() + 1));
    std::memcpy(copy, content.c_str(), content.size() + 1);
    const std::lock_guard<std::mutex> lock(textsMutex);
    texts.insert(copy);
    return copy;
}

void takeBack(const char *function, char *text)
{
    if (!text)
        return;
    const std::lock_guard<std::mutex> lock(textsMutex);
    if (texts.erase(text) == 0) {
        std::fprintf(stderr, "hostile library: %s was given a text that is not out\n", function);
        std::abort();
    }
    std::free(text);
}

struct Call {
    const char *function;
    void *output = nullptr;
    std::size_t outputSize = 256; // what GetAboutInfo and GetDeviceInfo promise
    int lastNumber = 0;
};

void take(Call &call, int number)
{
    call.lastNumber = number;
    if (call.output)
        call.outputSize = static_cast<std::size_t>(number);
    else if (std::strstr(call.function, "_GetDeviceInfo"))
        call.outputSize = number == 5 || number == 6 ? 256 : number == 1 ? 1 : 2 * sizeof(int);
}

void take(Call & /*call*/, bool /*flag*/) {}
void take(Call & /*call*/, const wchar_t * /*path*/) {}
void take(Call & /*call*/, const char * /*data*/) {}
void take(Call & /*call*/, TextCallback /*callback*/) {}

void take(Call &call, void *output)
{
    call.output = output;
}

void take(Call &call, InkPoint *point)
{
    call.output = point;
    call.outputSize = sizeof *point;
}

void take(Call &call, char *text)
{
    takeBack(call.function, text);
}

template <class Result>
Result resultOf(const char *function)
{
    return static_cast<Result>(hostile::number(function));
}

template <>
char *resultOf<char *>(const char *function)
{
    std::string content;
    return hostile::text(function, content) ? handOut(content) : nullptr;
}

template <class Result>
struct Answer {
    const char *function;

    template <class... Arguments>
    Result operator()(Arguments... arguments) const
    {
        Call call{function};
        hostile::enter(function);
        (take(call, arguments), ...);
        if (call.output)
            hostile::fill(function, call.output, call.outputSize);
        return resultOf<Result>(function);
    }
};

} // namespace

void hostile::forgetTexts()
{
    const std::lock_guard<std::mutex> lock(textsMutex);
    for (char *text : texts)
        std::free(text);
    texts.clear();
}

#define EXPORT_x(family, name, result, parameters, arguments)                                                          \
    extern "C" __attribute__((visibility("default"))) result MV##family##_##name parameters;                           \
    extern "C" result MV##family##_##name parameters                                                                   \
    {                                                                                                                  \
        return Answer<result>{"MV" #family "_" #name} arguments;                                                       \
    }
#define EXPORT__(family, name, result, parameters, arguments)

#define SDK_FUNCTION(name, result, parameters, arguments, alder, birch, cedar, maple, rowan)                           \
    EXPORT_##alder(Alder, name, result, parameters, arguments)                                                         \
        EXPORT_##birch(Birch, name, result, parameters, arguments)                                                     \
            EXPORT_##cedar(Cedar, name, result, parameters, arguments)                                                 \
                EXPORT_##maple(Maple, name, result, parameters, arguments)                                             \
                    EXPORT_##rowan(Rowan, name, result, parameters, arguments)
#include "tests/sdk/recording/SdkTable.h"
