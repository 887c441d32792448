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
