/// Answers taken from the fuzzer's input. Once it is used up, every answer is a harmless one.

#include "tests/fuzz/AnswersFromBytes.h"
#include "tests/faults/hostile/Answers.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>

namespace {

const std::uint8_t *next = nullptr;
const std::uint8_t *end = nullptr;

std::uint8_t byte()
{
    return next == end ? std::uint8_t(0) : *next++;
}

/// A fifth of a million points is what a run has time for; two million are tried on the real program.
const int mostPoints = 2000;

bool isCount(const char *function)
{
    return std::strstr(function, "PointsNumber") != nullptr;
}

} // namespace

void HostileSdkFeed(const std::uint8_t *bytes, std::size_t size)
{
    next = bytes;
    end = bytes + size;
    hostile::forgetTexts();
}

void hostile::enter(const char * /*function*/) {}

int hostile::number(const char *function)
{
    static const int numbers[] = {0,  1,   -1,    2,  7, 100, 32767, std::numeric_limits<int>::max(),
                                  -2, 255, 65535, 10, 3, -99, 1000,  std::numeric_limits<int>::min()};
    const std::uint8_t choice = byte();
    const int value = choice < std::size(numbers) ? numbers[choice] : choice - 128;
    return isCount(function) ? std::min(value, mostPoints) : value;
}

bool hostile::text(const char * /*function*/, std::string &content)
{
    const std::uint8_t size = byte();
    if (size == 1)
        return false;
    content.clear();
    for (int i = 0; i < size && next != end; ++i)
        content += static_cast<char>(byte());
    if (size == 0xFF)
        content.resize(100000, content.empty() ? 'A' : content.back());
    return true;
}

void hostile::fill(const char * /*function*/, void *buffer, std::size_t size)
{
    const std::uint8_t pattern = byte();
    if (pattern == 0)
        return;
    std::memset(buffer, pattern, size);
    const std::size_t own = std::min<std::size_t>({size, pattern, static_cast<std::size_t>(end - next)});
    std::memcpy(buffer, next, own);
    next += own;
}
