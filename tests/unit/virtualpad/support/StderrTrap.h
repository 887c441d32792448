#pragma once

#include <QByteArray>
#include <QTemporaryFile>

/// While it lives, what the process writes to stderr goes into a file.
class StderrTrap
{
public:
    StderrTrap();
    ~StderrTrap();

    /// All that was written since the trap was laid.
    QByteArray written();

private:
    QTemporaryFile m_file;
    int m_previous;
};
