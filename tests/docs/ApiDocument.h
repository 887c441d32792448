#pragma once

#include <QMap>
#include <QString>

/// What docs/api.md tells of one command.
struct ApiSection {
    int nCount = 0;  ///< of sections with the command's name
    QString request; ///< the example, without what every request begins with
    QString reply;   ///< to it; "…" stands for the rest of a picture or its length
};

/// The sections by the names of their commands; none when the document cannot be read.
QMap<QString, ApiSection> ReadApiDocument();
