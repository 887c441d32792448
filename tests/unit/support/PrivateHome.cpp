#include "tests/unit/support/PrivateHome.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

PrivateHome::PrivateHome() : m_previousDirectory(QDir::currentPath())
{
    if (!m_directory.isValid())
        qFatal("no temporary directory for a home");
    qputenv("HOME", QFile::encodeName(m_directory.path()));
    qunsetenv("XDG_CONFIG_HOME");
    QDir::setCurrent(m_directory.path());
}

PrivateHome::~PrivateHome()
{
    QDir::setCurrent(m_previousDirectory);
}

QString PrivateHome::path(const QString &relative) const
{
    return m_directory.filePath(relative);
}

QString PrivateHome::configFile(const QString &name) const
{
    return path(QStringLiteral(".config/mvsignpadsdk/%1.conf").arg(name));
}

void PrivateHome::writeConfig(const QString &name, const QByteArray &content) const
{
    QFile file(configFile(name));
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write a settings file of the test");
}

QStringList PrivateHome::configLines(const QString &name) const
{
    QFile file(configFile(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeAll(QString());
    lines.sort();
    return lines;
}

void PrivateHome::removeConfig() const
{
    QDir(path(QStringLiteral(".config"))).removeRecursively();
}
