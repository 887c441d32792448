#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

/// A home and working directory of the fuzzer's own, in memory, so that no settings of the user's are touched.
class FuzzHome
{
public:
    FuzzHome() : m_directory(QStringLiteral("/dev/shm/mvsignpad-fuzz-XXXXXX"))
    {
        if (!m_directory.isValid())
            qFatal("no temporary directory for a home");
        qputenv("HOME", QFile::encodeName(m_directory.path()));
        qunsetenv("XDG_CONFIG_HOME");
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QDir(m_directory.path()).mkpath(QStringLiteral(".config/mvsignpadsdk"));
    }

    QString settingsFile(const QString &application) const
    {
        return m_directory.filePath(QStringLiteral(".config/mvsignpadsdk/%1.conf").arg(application));
    }

private:
    QTemporaryDir m_directory;
};
