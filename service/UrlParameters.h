#pragma once

#include <QMap>
#include <QString>

/// Splits what follows the first "?" at "&" and "=" into raw texts, without any decoding. The last value of a
/// repeated key counts, what follows a second "=" is dropped, a piece without "=" has an empty value. Of a query with
/// more than nMostParameters keys only the first nMostParameters + 1 are returned: no command takes as many.
QMap<QString, QString> ParseUrlParameters(const QString &url);
