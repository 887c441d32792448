#include "service/OriginText.h"

#include <QRegularExpression>

namespace {

/// Characters. A host has 253 at most.
constexpr int nLongestOrigin = 300;

} // namespace

bool IsOrigin(const QString &strText)
{
    static const QRegularExpression webOrigin(
        QStringLiteral(R"(\A[a-z][a-z0-9+.-]*://([a-z0-9_.-]+|\[[0-9a-f:.]+\])(:[0-9]{1,5})?\z)"));
    return strText.size() <= nLongestOrigin && (IsSharedOrigin(strText) || webOrigin.match(strText).hasMatch());
}

bool IsSharedOrigin(const QString &strOrigin)
{
    return strOrigin == QLatin1String("null") || strOrigin == QLatin1String("file://");
}
