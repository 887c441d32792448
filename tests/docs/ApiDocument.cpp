#include "tests/docs/ApiDocument.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

namespace {

QString InBackquotes(const QString &line)
{
    return QRegularExpression(QStringLiteral("`(.*)`$")).match(line).captured(1);
}

} // namespace

void AddApiDocuments()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("requestLabel");
    QTest::addColumn<QString>("replyLabel");
    QTest::newRow("English") << QStringLiteral("api.md") << QStringLiteral("- Request: ")
                             << QStringLiteral("- Reply: ");
    QTest::newRow("Chinese") << QStringLiteral("zh/api.md") << QStringLiteral("- 请求：") << QStringLiteral("- 应答：");
}

QMap<QString, ApiSection> ReadApiDocument()
{
    QFETCH_GLOBAL(const QString, document);
    QFETCH_GLOBAL(const QString, requestLabel);
    QFETCH_GLOBAL(const QString, replyLabel);
    QMap<QString, ApiSection> sections;
    QFile file(QStringLiteral(DOCUMENTS) + document);
    if (!file.open(QIODevice::ReadOnly))
        return sections;
    QString name;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (line.startsWith(QLatin1String("### "))) {
            name = line.mid(4);
            ++sections[name].nCount;
        } else if (line.startsWith(QLatin1String("## "))) {
            name.clear();
        } else if (!name.isEmpty() && line.startsWith(requestLabel)) {
            sections[name].request = InBackquotes(line);
        } else if (!name.isEmpty() && line.startsWith(replyLabel)) {
            sections[name].reply = InBackquotes(line);
        }
    }
    return sections;
}
