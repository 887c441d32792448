#include "tests/sdk/support/DeviceLog.h"

#include "base/Logging.h"

#include <QFile>
#include <QRegularExpression>

static const QString deviceLog = QStringLiteral("/tmp/mvsignpadsdk_wssvr_inthread.log");
static const QString mainThreadLog = QStringLiteral("/tmp/mvsignpadsdk_wssvr.log");

static void removeLogs()
{
    QFile::remove(deviceLog);
    QFile::remove(mainThreadLog);
}

static QStringList readLines()
{
    QFile file(deviceLog);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    // What stands behind the last line break is no line; it is left in to be seen unless it is empty.
    if (lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

DeviceLog::DeviceLog()
{
    removeLogs();
    g_bEnableLog = true;
}

DeviceLog::~DeviceLog()
{
    g_bEnableLog = false;
    removeLogs();
}

QStringList DeviceLog::lines()
{
    QStringList lines = readLines();
    QFile::remove(deviceLog);
    return lines.replaceInStrings(QRegularExpression(QStringLiteral("\\]:<\\d+>-")), QStringLiteral("]:<T>-"));
}

QList<qint64> DeviceLog::ticks()
{
    QList<qint64> ticks;
    for (const QString &line : readLines()) {
        ticks << QRegularExpression(QStringLiteral("\\]:<(\\d+)>-")).match(line).captured(1).toLongLong();
    }
    return ticks;
}

bool DeviceLog::fileExists()
{
    return QFile::exists(deviceLog);
}

bool DeviceLog::mainThreadFileExists()
{
    return QFile::exists(mainThreadLog);
}
