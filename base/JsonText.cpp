#include "base/JsonText.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace {

constexpr int nBlock = 64;
/// What a text of Qt can hold, less some room for what follows; asking for more would end the program.
constexpr int nMaxBytes = std::numeric_limits<int>::max() - 1024;

/// 1 for what stands behind a backslash, 0 otherwise. Spelled without a branch, as is what calls it, so that compilers
/// make vector instructions of it.
int Quoted(ushort code)
{
    return static_cast<int>(code == '"') | static_cast<int>(code == '\\');
}

/// The number of quotation marks and backslashes in a block of nothing but printable ASCII, or -1 when there is
/// something else in it.
int CountQuoted(const ushort *pBlock)
{
    ushort others = 0;
    ushort quoted = 0;
    for (int i = 0; i < nBlock; ++i) {
        const auto code = static_cast<short>(pBlock[i]); // negative from 0x8000 on
        others |= static_cast<ushort>(static_cast<int>(code < 0x20) | static_cast<int>(code > 0x7e));
        quoted = static_cast<ushort>(quoted + Quoted(pBlock[i]));
    }
    return others ? -1 : quoted;
}

/// Counts the units of a text.
struct UnitCounter {
    qint64 nUnits = 0;

    void Put(uint) { ++nUnits; }
    void PutBlock(const ushort *, int nQuoted) { nUnits += nBlock + nQuoted; }
};

/// Writes the units of a text into room that was made before.
template <class Unit>
struct UnitWriter {
    Unit *pTo;

    void Put(uint unit) { *pTo++ = static_cast<Unit>(unit); }
    void PutBlock(const ushort *pBlock, int nQuoted)
    {
        if (nQuoted == 0) {
            Unit units[nBlock]; // which cannot overlap the text, and compilers know it
            for (int i = 0; i < nBlock; ++i)
                units[i] = static_cast<Unit>(pBlock[i]);
            pTo = std::copy_n(units, nBlock, pTo);
            return;
        }
        for (int i = 0; i < nBlock; ++i) {
            *pTo = '\\'; // overwritten when it is not wanted: faster than a branch that cannot be foreseen
            pTo += Quoted(pBlock[i]);
            *pTo++ = static_cast<Unit>(pBlock[i]);
        }
    }
};

struct Utf16 {
    using Unit = ushort;

    template <class Output>
    static void PutCharacter(Output &output, uint character)
    {
        if (QChar::requiresSurrogates(character)) {
            output.Put(QChar::highSurrogate(character));
            output.Put(QChar::lowSurrogate(character));
        } else {
            output.Put(character);
        }
    }
};

struct Utf8 {
    using Unit = char;

    template <class Output>
    static void PutCharacter(Output &output, uint character)
    {
        if (character < 0x80)
            return output.Put(character);
        if (character < 0x800) {
            output.Put(0xc0 | character >> 6);
        } else if (character < 0x10000) {
            output.Put(0xe0 | character >> 12);
            output.Put(0x80 | (character >> 6 & 0x3f));
        } else {
            output.Put(0xf0 | character >> 18);
            output.Put(0x80 | (character >> 12 & 0x3f));
            output.Put(0x80 | (character >> 6 & 0x3f));
        }
        output.Put(0x80 | (character & 0x3f));
    }
};

/// The letter behind the backslash in JSON's short escapes, or 0.
char ShortEscape(ushort code)
{
    switch (code) {
    case '"':
        return '"';
    case '\\':
        return '\\';
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return 0;
    }
}

template <class Output>
void PutEscaped(Output &output, ushort code)
{
    static const char hexDigits[] = "0123456789abcdef";
    output.Put('\\');
    if (const char letter = ShortEscape(code))
        return output.Put(static_cast<uchar>(letter));
    output.Put('u');
    for (const int nShift : {12, 8, 4, 0})
        output.Put(static_cast<uchar>(hexDigits[code >> nShift & 0xf]));
}

/// Takes the next character, which may be two units, from the text.
template <class Encoding, class Output>
void PutNext(Output &output, const ushort *&pAt, const ushort *pEnd)
{
    const ushort code = *pAt++;
    if (code >= 0x20 && Quoted(code) == 0 && !QChar::isSurrogate(code))
        Encoding::PutCharacter(output, code);
    else if (QChar::isHighSurrogate(code) && pAt != pEnd && QChar::isLowSurrogate(*pAt))
        Encoding::PutCharacter(output, QChar::surrogateToUcs4(code, *pAt++));
    else
        PutEscaped(output, code); // half a surrogate pair, too: it has no UTF-8 form
}

template <class Encoding, class Output>
void PutText(Output &output, const QString &text)
{
    const ushort *pAt = text.utf16();
    const ushort *const pEnd = pAt + text.size();
    while (pAt != pEnd) {
        const int nQuoted = pEnd - pAt >= nBlock ? CountQuoted(pAt) : -1;
        if (nQuoted >= 0) {
            output.PutBlock(pAt, nQuoted);
            pAt += nBlock;
        } else {
            const ushort *const pStop = pEnd - pAt > nBlock ? pAt + nBlock : pEnd;
            while (pAt < pStop)
                PutNext<Encoding>(output, pAt, pEnd);
        }
    }
}

/// Makes room for exactly what is to come, then writes it: the texts are large.
template <class Encoding, class Json>
void AppendString(Json &json, const QString &text)
{
    using Unit = typename Encoding::Unit;
    const int nBefore = json.size();
    UnitCounter counter;
    PutText<Encoding>(counter, text);
    const bool bFits = counter.nUnits <= nMaxBytes / int{sizeof(Unit)} - nBefore;
    json.resize(nBefore + 2 + (bFits ? static_cast<int>(counter.nUnits) : 0));
    UnitWriter<Unit> writer{reinterpret_cast<Unit *>(json.data()) + nBefore};
    writer.Put('"');
    if (bFits)
        PutText<Encoding>(writer, text);
    writer.Put('"');
}

} // namespace

void AppendJsonString(QString &json, const QString &text)
{
    AppendString<Utf16>(json, text);
}

void AppendJsonString(QByteArray &json, const QString &text)
{
    AppendString<Utf8>(json, text);
}

void AppendJsonNumberText(QString &json, int number)
{
    char digits[16];
    const std::to_chars_result result = std::to_chars(digits, digits + sizeof digits, number);
    json += QLatin1Char('"');
    json += QLatin1String(digits, static_cast<int>(result.ptr - digits));
    json += QLatin1Char('"');
}
