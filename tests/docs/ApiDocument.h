#pragma once

#include <QMap>
#include <QString>

/// What docs/api.md or its translation tells of one command.
struct ApiSection {
    int nCount = 0;  ///< of sections with the command's name
    QString request; ///< the example, without what every request begins with
    QString reply;   ///< to it; "…" stands for the rest of a picture or its length
};

/// Adds the document's languages as the global rows of a test.
void AddApiDocuments();

/// The sections by the names of their commands, in the language of the current global row; none when the document
/// cannot be read.
QMap<QString, ApiSection> ReadApiDocument();
