/// The virtual pad's file of points. What it takes must come back from it the same.

#include "virtualpad/InkText.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace virtualpad;
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    QString error;
    const std::optional<Ink> ink = inkFromText(text, &error);
    if (ink.has_value() != error.isEmpty())
        std::abort();
    if (!ink)
        return 0;
    const std::optional<Ink> again = inkFromText(inkToText(*ink), &error);
    if (!again || *again != *ink)
        std::abort();
    return 0;
}
