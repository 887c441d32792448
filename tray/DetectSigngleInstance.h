#pragma once

#include <QObject>
#include <QString>

/// Finds out, through pgrep, whether another copy of the program runs. Main thread.
class DetectSigngleInstance : public QObject
{
    Q_OBJECT

public:
    explicit DetectSigngleInstance(QObject *parent = nullptr);

    /// True when no other process's command line holds this program's file name, or when pgrep cannot tell.
    /// Blocks for at most 30 seconds.
    bool IsSingleInstance();

    /// True when pgrep reports more than one process whose command line matches processName.
    bool IsProcessRunning(const QString &processName);
};
