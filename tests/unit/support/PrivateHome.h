#pragma once

#include <QString>
#include <QTemporaryDir>

/// A home directory of the test's own, empty at first, that is also the working directory: no settings of the user
/// are read or written and no library lies about. Make it before anything asks for settings.
class PrivateHome
{
public:
    PrivateHome();
    ~PrivateHome();

    QString path(const QString &relative = QString()) const;
    /// ~/.config/mvsignpadsdk/NAME.conf
    QString configFile(const QString &name) const;
    void writeConfig(const QString &name, const QByteArray &content) const;
    /// The file's lines, sorted, without the empty ones: the order of keys in the file is no concern of a test.
    QStringList configLines(const QString &name) const;
    void removeConfig() const;

private:
    QString m_previousDirectory;
    QTemporaryDir m_directory;
};
