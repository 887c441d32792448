#pragma once

#include <QSemaphore>
#include <QThread>

/// Waits for the desktop's system tray, which at log-in may come later than the program: asks 60 times, 500 ms apart,
/// and answers with one SysTrayAvailable, unless it is deleted before that.
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

protected:
    void run() override;

private:
    QSemaphore m_stop;
};
