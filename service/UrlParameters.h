#pragma once

#include <QMap>
#include <QString>

/// No command takes more parameters than this; splitting stops once a query holds more keys.
const int nMostUrlParameters = 6;

/// Splits what follows the first "?" at "&" and "=" into raw texts, without any decoding. The last value of a
/// repeated key counts, what follows a second "=" is dropped, a piece without "=" has an empty value. Of a query with
/// more than nMostUrlParameters keys only the first nMostUrlParameters + 1 are returned.
QMap<QString, QString> ParseUrlParameters(const QString &url);
