// The texts that the library has handed out and not got back yet.
#pragma once

#include <QByteArray>

#include <memory>
#include <unordered_map>

namespace virtualpad {

/// The functions that hand out texts; each has a free function of its own.
enum class TextSource { PointTime, Base64Encode, Base64EncodeEx, WpsBase64Encode, Svg, Fingerprint };

/// Owns every text until its own free function brings it back. Not thread-safe.
class TextStore
{
public:
    /// A NUL-terminated copy of the text.
    char *handOut(TextSource source, const QByteArray &text);

    /// Frees the text if this source handed it out; leaves any other pointer alone. False: there was nothing to free.
    bool takeBack(TextSource source, const char *pText);

private:
    struct Text {
        TextSource source;
        std::unique_ptr<char[]> content;
    };
    std::unordered_map<const char *, Text> m_texts;
};

} // namespace virtualpad
