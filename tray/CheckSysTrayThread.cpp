#include "tray/CheckSysTrayThread.h"

#include "base/Logging.h"
#include "base/QtCompat.h"
#include "tray/StartOver.h"
#include "tray/StatusNotifierHost.h"

#include <QSystemTrayIcon>

namespace {

const int nMostAttempts = 60;
const int nPauseMs = 500;

bool IsTrayAvailable()
{
    const QSystemTrayIcon probe; // the desktop may only answer to a process that has an icon
    return QSystemTrayIcon::isSystemTrayAvailable();
}

} // namespace

CheckSysTrayThread::CheckSysTrayThread(QObject *parent) : QThread(parent)
{
    MV_LOG_INSIDE_THREAD("CheckSysTrayThread::CheckSysTrayThread()", "Enter...");
    MV_LOG_INSIDE_THREAD("CheckSysTrayThread::CheckSysTrayThread()", "Leave !");
}

CheckSysTrayThread::~CheckSysTrayThread()
{
    m_stop.release();
    WaitForEnd(*this);
}

void CheckSysTrayThread::run()
{
    static const char tag[] = "CheckSysTrayThread::run()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    int i = 0;
    bool bSysTrayAvailable = IsTrayAvailable();
    while (!bSysTrayAvailable && i < nMostAttempts) {
        // Qt decides at its first look, once per process, whether the tray is a StatusNotifier host. One that comes
        // later, as is common at log-in, is seen by a fresh start only; nothing has been touched yet.
        if (IsStatusNotifierHostRegistered())
            StartOver();
        if (m_stop.tryAcquire(1, nPauseMs))
            return;
        ++i;
        if (i < nMostAttempts)
            bSysTrayAvailable = IsTrayAvailable();
    }
    MV_LOG_INSIDE_THREAD(tag, "i=%d, bSysTrayAvailable=%d", i, bSysTrayAvailable);
    Q_EMIT SysTrayAvailable(bSysTrayAvailable);
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}
