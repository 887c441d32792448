#include "tests/unit/support/WarningTrap.h"

#include <QMutex>
#include <QMutexLocker>

namespace {

/// How the platform without a display begins what it says of windows.
const char noDisplay[] = "This plugin does not support ";

QMutex g_mutex;
QStringList g_warnings;
QtMessageHandler g_previous = nullptr;

void keepWarning(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type != QtDebugMsg && type != QtInfoMsg && !message.startsWith(QLatin1String(noDisplay))) {
        QMutexLocker locker(&g_mutex);
        g_warnings.append(message);
    }
    if (g_previous)
        g_previous(type, context, message);
}

} // namespace

WarningTrap::WarningTrap()
{
    taken();
    g_previous = qInstallMessageHandler(keepWarning);
}

WarningTrap::~WarningTrap()
{
    qInstallMessageHandler(g_previous);
    g_previous = nullptr;
}

QStringList WarningTrap::taken()
{
    QMutexLocker locker(&g_mutex);
    QStringList warnings;
    warnings.swap(g_warnings);
    return warnings;
}
