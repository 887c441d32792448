#include "virtualpad/OutputFile.h"

#include <QFileInfo>
#include <QSaveFile>

namespace virtualpad {

bool writeOutputFile(const wchar_t *pwszFilePath, const QByteArray &content)
{
    const QString path = QString::fromWCharArray(pwszFilePath);
    const QFileInfo existing(path);
    // Writing would replace a device, and would wait for the reader of a pipe.
    if (path.isEmpty() || (existing.exists() && !existing.isFile()))
        return false;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit();
}

} // namespace virtualpad
