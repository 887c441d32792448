#include "tests/unit/support/LogFiles.h"

#include <QFile>
#include <QRegularExpression>

QString mainLog()
{
    return QStringLiteral("/tmp/mvsignpadsdk_wssvr.log");
}

QString threadLog()
{
    return QStringLiteral("/tmp/mvsignpadsdk_wssvr_inthread.log");
}

void removeLogs()
{
    QFile::remove(mainLog());
    QFile::remove(threadLog());
}

QStringList loggedLines(const QString &file)
{
    QFile log(file);
    if (!log.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'));
    lines.removeLast(); // behind the last line break
    return lines;
}

QStringList maskedLines(const QString &file)
{
    QStringList lines = loggedLines(file);
    lines.replaceInStrings(QRegularExpression(QStringLiteral(":<[0-9]+>-")), QStringLiteral(":<N>-"));
    lines.replaceInStrings(QRegularExpression(QStringLiteral("stdstrOutput\\[0\\]=[0-9]+")),
                           QStringLiteral("stdstrOutput[0]=PID"));
    lines.replaceInStrings(QRegularExpression(QStringLiteral("m_pSignObjMgr=[0-9a-f]{4,16}")),
                           QStringLiteral("m_pSignObjMgr=P"));
    return lines;
}

QString logLine(const char *tag, const QString &message)
{
    return QStringLiteral("[%1]:<N>-%2, ").arg(QLatin1String(tag), message);
}

QString logLine(const char *tag, const char *message)
{
    return logLine(tag, QString::fromLatin1(message));
}

QString wrongLine(const QStringList &lines, const QStringList &expected, const QStringList &linesOfOthers)
{
    const auto lengthOfTag = [](const QString &line) { return line.indexOf(QLatin1String("]:")); };
    QStringList messages;
    for (const QString &line : linesOfOthers)
        messages.append(line.mid(lengthOfTag(line)));
    for (int i = 0; i < qMax(lines.size(), expected.size()); ++i) {
        const QString line = lines.value(i);
        const QString wanted = expected.value(i);
        const int tag = lengthOfTag(wanted);
        const bool bMixed = tag > 0 && line.left(tag) == wanted.left(tag) && messages.contains(line.mid(tag));
        if (line != wanted && !bMixed)
            return QStringLiteral("line %1 is \"%2\", not \"%3\"").arg(i).arg(line, wanted);
    }
    return {};
}
