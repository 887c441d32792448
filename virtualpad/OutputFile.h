// Files that the library writes for its caller.
#pragma once

#include <QByteArray>

namespace virtualpad {

/// Writes the file, or leaves what was there. The path is a NUL-terminated array of 32-bit code points. False for an
/// empty path, for anything that is there and no regular file, and when the disk refuses.
bool writeOutputFile(const wchar_t *pwszFilePath, const QByteArray &content);

} // namespace virtualpad
