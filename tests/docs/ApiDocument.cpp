#include "tests/docs/ApiDocument.h"

#include <QFile>
#include <QRegularExpression>

namespace {

QString InBackquotes(const QString &line)
{
    return QRegularExpression(QStringLiteral("`(.*)`$")).match(line).captured(1);
}

} // namespace

QMap<QString, ApiSection> ReadApiDocument()
{
    QMap<QString, ApiSection> sections;
    QFile file(QStringLiteral(API_DOCUMENT));
    if (!file.open(QIODevice::ReadOnly))
        return sections;
    QString name;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("### "))) {
            name = line.mid(4);
            ++sections[name].nCount;
        } else if (line.startsWith(QLatin1String("## "))) {
            name.clear();
        } else if (!name.isEmpty() && line.startsWith(QLatin1String("- Request: "))) {
            sections[name].request = InBackquotes(line);
        } else if (!name.isEmpty() && line.startsWith(QLatin1String("- Reply: "))) {
            sections[name].reply = InBackquotes(line);
        }
    }
    return sections;
}
