#include "service/UrlParameters.h"

#include "base/Logging.h"
#include "service/CommandTable.h"

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

/// Splits a query into keys and values.
QMap<QString, QString> SplitQuery(const QStringRef &query)
{
    QMap<QString, QString> parameters;
    for (int nAt = 0; nAt <= query.size() && parameters.size() <= nMostParameters;) {
        const QStringRef piece = TakePiece(query, QLatin1Char('&'), nAt);
        int nInPiece = 0;
        const QString key = TakePiece(piece, QLatin1Char('='), nInPiece).toString();
        const QString value =
            nInPiece <= piece.size() ? TakePiece(piece, QLatin1Char('='), nInPiece).toString() : QString();
        parameters.insert(key, value);
    }
    return parameters;
}

} // namespace

QMap<QString, QString> ParseUrlParameters(const QString &url)
{
    static const char tag[] = "WebSocketService::ParseUrlParameters()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    const int nMark = url.indexOf(QLatin1Char('?'));
    QMap<QString, QString> parameters;
    if (nMark >= 0)
        parameters = SplitQuery(url.midRef(nMark + 1));
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
    return parameters;
}
