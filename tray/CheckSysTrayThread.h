#pragma once

#include <QSemaphore>
#include <QThread>

/// Waits for the desktop's system tray, which at log-in may come later than the program: looks 60 times, every 500 ms,
/// and answers with one SysTrayAvailable, unless it is deleted before that. Needs the main thread's event loop.
class CheckSysTrayThread : public QThread
{
    Q_OBJECT

public:
    explicit CheckSysTrayThread(QObject *parent);
    /// Ends the thread and waits for that: for the look that it is at, and no pause.
    ~CheckSysTrayThread() override;

Q_SIGNALS:
    /// Emitted once, on the polling thread.
    void SysTrayAvailable(bool bResult);
    /// Qt's tray tracker belongs to the thread that asks Qt first, which must be the main one.
    void FirstLookWanted();

protected:
    void run() override;

private:
    bool FindTray();

    QSemaphore m_stop;
    QSemaphore m_firstLook;
    bool m_bLooked = false; // polling thread only
};
