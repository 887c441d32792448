#include "service/UrlParameters.h"

#include <QStringRef>

namespace {

/// The next piece of the text from nFrom on, up to the separator; moves nFrom behind it.
QStringRef TakePiece(const QStringRef &text, QChar separator, int &nFrom)
{
    const int nAt = text.indexOf(separator, nFrom);
    const int nEnd = nAt < 0 ? text.size() : nAt;
    QStringRef piece = text.mid(nFrom, nEnd - nFrom);
    nFrom = nEnd + 1;
    return piece;
}

} // namespace

QMap<QString, QString> ParseUrlParameters(const QString &url)
{
    QMap<QString, QString> parameters;
    const int nMark = url.indexOf(QLatin1Char('?'));
    if (nMark < 0)
        return parameters;
    const QStringRef query = url.midRef(nMark + 1);
    for (int nAt = 0; nAt <= query.size() && parameters.size() <= nMostUrlParameters;) {
        const QStringRef piece = TakePiece(query, QLatin1Char('&'), nAt);
        int nInPiece = 0;
        const QString key = TakePiece(piece, QLatin1Char('='), nInPiece).toString();
        const QString value =
            nInPiece <= piece.size() ? TakePiece(piece, QLatin1Char('='), nInPiece).toString() : QString();
        parameters.insert(key, value);
    }
    return parameters;
}
