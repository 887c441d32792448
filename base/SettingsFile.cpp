#include "base/SettingsFile.h"

#include <QFile>
#include <QLockFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>

namespace {

QString Organization()
{
    return QStringLiteral("mvsignpadsdk");
}

/// Whether the letters behind a backslash begin with an escape that Qt writes, and not one for "@".
bool IsOrdinaryEscape(const QByteArray &letters)
{
    static const QRegularExpression ordinary(
        QStringLiteral(R"(\A([abfnrtv"\\]|0(?![0-7])|x(?!0*40(?![0-9a-f]))[0-9a-f]{1,4}(?![0-9a-fA-F])))"));
    return ordinary.match(QString::fromLatin1(letters)).hasMatch();
}

/// Whether a value of the file is, or may be, one that Qt would build from a stream of bytes: a forged one asks for any
/// amount of memory or stack. Such a value begins with "@Variant(" or "@DateTime(". The program writes none, whatever
/// text it is given: where a text begins with "@", Qt puts a second one before it.
bool HoldsStreamedValue(const QByteArray &text)
{
    bool bQuoted = false;
    bool bBegins = false; // the next character is the first one of a value, or of an entry of a list
    for (int i = 0; i < text.size(); ++i) {
        const char c = text.at(i);
        if (c == '"') {
            bQuoted = !bQuoted;
        } else if (!bQuoted && c == ';') { // a comment, to the end of the line
            while (i + 1 < text.size() && text.at(i + 1) != '\n' && text.at(i + 1) != '\r')
                ++i;
        } else if (!bQuoted && (c == '=' || c == ',')) {
            bBegins = true;
        } else if (bBegins && (bQuoted || static_cast<uchar>(c) > ' ')) {
            const QByteArray behind = text.mid(i + 1, 6);
            if (c == '@' ? QByteArray("VD\"\\").contains(behind.left(1)) : c == '\\' && !IsOrdinaryEscape(behind))
                return true;
            bBegins = false;
        }
        if (c == '\\')
            ++i; // what is escaped is no mark
    }
    return false;
}

} // namespace

QStringList SettingsPaths(const char *szName)
{
    const QString name = QString::fromLatin1(szName);
    QStringList paths(QSettings(Organization(), name).fileName());
    const QStringList folders = QStandardPaths::standardLocations(QStandardPaths::GenericConfigLocation).mid(1);
    for (const QString &folder : folders)
        paths.prepend(folder + QLatin1Char('/') + Organization() + QLatin1Char('/') + name + QStringLiteral(".conf"));
    return paths;
}

std::optional<QByteArray> ReadSettingsText(const QString &path)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly))
        return file.readAll();
    if (file.exists())
        return std::nullopt;
    return QByteArray();
}

std::optional<QVariantMap> ReadSettings(const QString &path)
{
    const std::optional<QByteArray> text = ReadSettingsText(path);
    if (!text || HoldsStreamedValue(*text))
        return std::nullopt;
    const QSettings file(path, QSettings::NativeFormat);
    QVariantMap settings;
    const QStringList keys = file.allKeys();
    for (const QString &key : keys) {
        const bool bNameless = key.count(QLatin1Char('/')) == key.size(); // Qt complains when it is asked for these
        settings.insert(key, bNameless ? QVariant() : file.value(key));
    }
    return settings;
}

bool HasOtherLines(const QByteArray &text)
{
    static const QRegularExpression sound(QStringLiteral(R"(\A\s*(\w+\s*=.*|\[\w+\]\s*|;.*)?\z)"));
    const QList<QByteArray> lines = QByteArray(text).replace('\r', '\n').split('\n');
    return std::any_of(lines.begin(), lines.end(),
                       [](const QByteArray &line) { return !sound.match(QString::fromUtf8(line)).hasMatch(); });
}

SettingsReader::SettingsReader(const char *szName)
{
    const QStringList paths = SettingsPaths(szName);
    for (const QString &path : paths) {
        const QVariantMap settings = ReadSettings(path).value_or(QVariantMap());
        for (auto setting = settings.begin(); setting != settings.end(); ++setting)
            m_values.insert(setting.key(), setting.value());
    }
}

SettingsWriter::SettingsWriter(const char *szName) : m_settings(Organization(), QString::fromLatin1(szName))
{
    const QString path = m_settings.fileName();
    // A program that was killed in the midst of writing leaves a lock, for which the next would wait half a minute. A
    // lock that somebody holds stays.
    QLockFile(path + QStringLiteral(".lock")).removeStaleLockFile();
    if (HoldsStreamedValue(ReadSettingsText(path).value_or(QByteArray())))
        QFile::remove(path); // writing would read it first
    m_settings.beginGroup(QStringLiteral("Settings"));
}
