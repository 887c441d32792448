#include "app/JsonText.h"

#include <charconv>

namespace {

bool IsPlain(QChar character)
{
    const ushort code = character.unicode();
    return code >= 0x20 && code != '"' && code != '\\' && !character.isSurrogate();
}

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

void AppendEscaped(QString &json, ushort code)
{
    static const char hexDigits[] = "0123456789abcdef";
    if (const char letter = ShortEscape(code)) {
        json += QLatin1Char('\\');
        json += QLatin1Char(letter);
    } else {
        json += QLatin1String("\\u00");
        json += QLatin1Char(hexDigits[code >> 4]);
        json += QLatin1Char(hexDigits[code & 0xf]);
    }
}

} // namespace

void AppendJsonString(QString &json, const QString &text)
{
    const QChar *at = text.constData();
    const QChar *const end = at + text.size();
    json.reserve(json.size() + text.size() + 2);
    json += QLatin1Char('"');
    while (at != end) {
        const QChar *const run = at;
        while (at != end && IsPlain(*at))
            ++at;
        json.append(run, static_cast<int>(at - run));
        if (at == end)
            break;
        if (!at->isSurrogate()) {
            AppendEscaped(json, at->unicode());
            ++at;
        } else if (at->isHighSurrogate() && at + 1 != end && at[1].isLowSurrogate()) {
            json.append(at, 2);
            at += 2;
        } else {
            json += QLatin1Char('?'); // half a surrogate pair has no UTF-8 form
            ++at;
        }
    }
    json += QLatin1Char('"');
}

void AppendJsonNumberText(QString &json, int number)
{
    char digits[16];
    const std::to_chars_result result = std::to_chars(digits, digits + sizeof digits, number);
    json += QLatin1Char('"');
    json += QLatin1String(digits, static_cast<int>(result.ptr - digits));
    json += QLatin1Char('"');
}
