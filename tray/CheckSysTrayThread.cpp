#include "tray/CheckSysTrayThread.h"

#include "base/Logging.h"
#include "base/QtCompat.h"
#include "tray/StartOver.h"
#include "tray/StatusNotifierHost.h"

#include <QElapsedTimer>
#include <QSystemTrayIcon>

namespace {

const int nMostAttempts = 60;
const int nPeriodMs = 500;
const char runTag[] = "CheckSysTrayThread::run()";

bool IsTrayAvailable()
{
    const QSystemTrayIcon probe; // the desktop may only answer to a process that has an icon
    return QSystemTrayIcon::isSystemTrayAvailable();
}

} // namespace

CheckSysTrayThread::CheckSysTrayThread(QObject *parent) : QThread(parent)
{
    MV_LOG_INSIDE_THREAD("CheckSysTrayThread::CheckSysTrayThread()", "Enter...");
    connect(this, &CheckSysTrayThread::FirstLookWanted, this, [this] {
        QSystemTrayIcon::isSystemTrayAvailable();
        m_firstLook.release();
    });
    MV_LOG_INSIDE_THREAD("CheckSysTrayThread::CheckSysTrayThread()", "Leave !");
}

CheckSysTrayThread::~CheckSysTrayThread()
{
    m_stop.release();
    m_firstLook.release();
    WaitForEnd(*this);
}

bool CheckSysTrayThread::FindTray()
{
    const StatusNotifierHost host = FindStatusNotifierHost();
    if (host == StatusNotifierHost::Silent)
        return false; // Qt would wait for its answer for 25 seconds
    if (!m_bLooked) {
        Q_EMIT FirstLookWanted();
        m_firstLook.acquire();
        m_bLooked = true;
    }
    if (m_stop.available() > 0)
        return false;
    if (IsTrayAvailable())
        return true;
    // Qt decides at its first look, once per process, whether the tray is a StatusNotifier host. One that comes
    // later, as is common at log-in, is seen by a fresh start only; nothing has been touched yet.
    if (host == StatusNotifierHost::Registered && !HasStartedOver()) {
        MV_LOG_INSIDE_THREAD(runTag, "b4 call StartOver(), for a StatusNotifier host that came after Qt had looked...");
        StartOver();
    }
    return false;
}

void CheckSysTrayThread::run()
{
    MV_LOG_INSIDE_THREAD(runTag, "Enter...");
    QElapsedTimer waited;
    waited.start();
    int i = 0;
    bool bSysTrayAvailable = FindTray();
    while (!bSysTrayAvailable && i < nMostAttempts) {
        ++i;
        if (m_stop.tryAcquire(1, qMax(0, i * nPeriodMs - static_cast<int>(waited.elapsed()))))
            return;
        if (i < nMostAttempts)
            bSysTrayAvailable = FindTray();
    }
    MV_LOG_INSIDE_THREAD(runTag, "i=%d, bSysTrayAvailable=%d", i, bSysTrayAvailable);
    Q_EMIT SysTrayAvailable(bSysTrayAvailable);
    MV_LOG_INSIDE_THREAD(runTag, "Leave !");
}
