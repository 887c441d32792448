#include "device/SaveTarget.h"

#include <QFile>
#include <QUuid>

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <climits>

namespace {

/// Below a file, so that nobody can write there: the library then answers as for any file that it cannot write.
const char nowhere[] = "/dev/null/";

QByteArray PathOfDescriptor(int nDescriptor)
{
    return "/proc/self/fd/" + QByteArray::number(nDescriptor);
}

/// Where the opened folder lies in truth, with a slash at its end; empty when that cannot be told.
QByteArray PlaceOf(const UniqueDescriptor &folder)
{
    char place[PATH_MAX];
    const ssize_t nLength = ::readlink(PathOfDescriptor(folder.Get()).constData(), place, sizeof place);
    if (nLength <= 0 || nLength == sizeof place || place[0] != '/')
        return {};
    const QByteArray path(place, static_cast<int>(nLength));
    return path.endsWith('/') ? path : path + '/';
}

int OpenFolder(const QByteArray &path)
{
    return ::open(path.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

} // namespace

SaveTarget::SaveTarget(const QString &strPath, const std::optional<QStringList> &saveFolders)
    : m_strPathForLibrary(strPath), m_bConfined(saveFolders)
{
    if (!m_bConfined)
        return;
    const QByteArray path = QFile::encodeName(strPath);
    const int nSlash = path.lastIndexOf('/');
    m_fileName = path.mid(nSlash + 1);
    const bool bNamesFile = !m_fileName.isEmpty() && m_fileName != "." && m_fileName != ".." && !path.contains('\0');
    const bool bMayBeWritten = bNamesFile
                               && OpenBelow(*saveFolders, nSlash < 0 ? QByteArray(".") : path.left(nSlash + 1))
                               && MakeStagingFolder();
    m_strPathForLibrary =
        QFile::decodeName((bMayBeWritten ? PathOfDescriptor(m_staging.Get()) + '/' : QByteArray(nowhere)) + m_fileName);
}

SaveTarget::~SaveTarget()
{
    if (!m_staging.IsOpen())
        return;
    ::unlinkat(m_staging.Get(), m_fileName.constData(), 0); // what Finish did not move
    ::unlinkat(m_folder.Get(), m_stagingName.constData(), AT_REMOVEDIR);
}

bool SaveTarget::Finish()
{
    return !m_bConfined
           || (m_staging.IsOpen()
               && ::renameat(m_staging.Get(), m_fileName.constData(), m_folder.Get(), m_fileName.constData()) == 0);
}

bool SaveTarget::OpenBelow(const QStringList &saveFolders, const QByteArray &folder)
{
    m_folder.Reset(OpenFolder(folder));
    if (!m_folder.IsOpen())
        return false;
    const QByteArray place = PlaceOf(m_folder);
    return std::any_of(saveFolders.begin(), saveFolders.end(), [&place](const QString &strSaveFolder) {
        const UniqueDescriptor saveFolder(OpenFolder(QFile::encodeName(strSaveFolder)));
        const QByteArray open = saveFolder.IsOpen() ? PlaceOf(saveFolder) : QByteArray();
        return !open.isEmpty() && place.startsWith(open);
    });
}

/// Only this user can reach into it, so that what lies in it is what the library has written.
bool SaveTarget::MakeStagingFolder()
{
    m_stagingName = ".mvsignpad-" + QUuid::createUuid().toByteArray().mid(1, 36);
    if (::mkdirat(m_folder.Get(), m_stagingName.constData(), S_IRWXU) != 0)
        return false;
    m_staging.Reset(::openat(m_folder.Get(), m_stagingName.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (m_staging.IsOpen() && ::fstat(m_staging.Get(), &status) == 0 && status.st_uid == ::geteuid())
        return true;
    ::unlinkat(m_folder.Get(), m_stagingName.constData(), AT_REMOVEDIR);
    m_staging.Reset();
    return false;
}
