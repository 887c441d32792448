#pragma once

#include <QString>
#include <QStringList>

/// The pad that a client asked for, and the maker's library as it was found then, as a value that crosses threads. All
/// empty while there is no pad object.
struct PadStatus {
    QString strModel;             ///< name of the model; empty when the pad could not be opened
    QString strLibrary;           ///< path of the library; empty when it could not be loaded
    QString strLibraryError;      ///< why it could not be loaded, in the loader's words
    QStringList missingFunctions; ///< full names of the functions of the model that the library lacks
};
