#pragma once

#include "device/UniqueDescriptor.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// A file that the maker's library is to write, and that must lie below one of some folders if any are given. The
/// folder is opened once and looked at through its descriptor, the library writes into a folder of our own within it,
/// and what it has written is moved to its name there: a link that is changed meanwhile leads nowhere, and one that has
/// the file's name is replaced, not followed. Service thread only.
class SaveTarget
{
public:
    /// Without a list strPath is handed on as it is. The folders are absolute; one that is not there opens nothing.
    SaveTarget(const QString &strPath, const std::optional<QStringList> &saveFolders);
    /// Removes what was not moved to its place.
    ~SaveTarget();
    SaveTarget(const SaveTarget &) = delete;
    SaveTarget &operator=(const SaveTarget &) = delete;

    /// The path for the library. One that nobody can write to when the file may not lie where it was asked for.
    const QString &PathForLibrary() const { return m_strPathForLibrary; }
    /// To be called when the library has written the file; false when it did not come to its place.
    bool Finish();

private:
    bool OpenBelow(const QStringList &saveFolders, const QByteArray &folder);
    bool MakeStagingFolder();

    QString m_strPathForLibrary;
    bool m_bConfined;
    QByteArray m_fileName;
    UniqueDescriptor m_folder;
    QByteArray m_stagingName;
    UniqueDescriptor m_staging;
};
