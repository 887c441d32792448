#pragma once

#include <QThread>

/// Waits for the desktop's system tray, which at log-in may come later than the program: asks 60 times, 500 ms apart,
/// and answers with one SysTrayAvailable.
class CheckSysTrayThread : public QThread
{
    Q_OBJECT

public:
    explicit CheckSysTrayThread(QObject *parent);

Q_SIGNALS:
    /// Emitted once, on the polling thread.
    void SysTrayAvailable(bool bResult);

protected:
    void run() override;
};
