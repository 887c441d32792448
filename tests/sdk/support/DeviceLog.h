#pragma once

#include <QStringList>

/// Switches logging on for its lifetime, on empty log files, which it removes at its end.
class DeviceLog
{
public:
    DeviceLog();
    ~DeviceLog();
    DeviceLog(const DeviceLog &) = delete;
    DeviceLog &operator=(const DeviceLog &) = delete;

    /// The lines written since the last call, whole but for their line break, with "<T>" in place of each tick.
    QStringList lines();
    /// The ticks of all lines in the file.
    static QList<qint64> ticks();
    static bool fileExists();
    static bool mainThreadFileExists();
};
