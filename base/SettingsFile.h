// The program's settings files: where they are, and reading and writing them. One walk over a record's keys and fields
// serves both directions.
#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

/// The names of the settings files, without their folder and ending.
constexpr char traySettingsName[] = "MVSignPadSDK_WSSvr";
constexpr char wpsSettingsName[] = "MVeSign_WPS";
constexpr char accessSettingsName[] = "MVSignPadSDK_Access";
constexpr char originAnswersName[] = "MVSignPadSDK_Origins";

/// The paths of the settings files of this name: the machine's, then the user's own, which has the last word. No other
/// file has a say, not even one for all programs of the organization. The files need not exist.
QStringList SettingsPaths(const char *szName);

/// A settings file as it is: empty when there is none, absent when it cannot be read.
std::optional<QByteArray> ReadSettingsText(const QString &path);

/// The settings of a file by group and key, as in "Settings/UILangID": empty when there is none, absent when it cannot
/// be read or has a value that must not be decoded.
std::optional<QVariantMap> ReadSettings(const QString &path);

/// Whether the file has a line that is neither a setting, a group's heading nor a comment. ReadSettings passes over it
/// in silence.
bool HasOtherLines(const QByteArray &text);

/// The group Settings of the files of one name. What the user's own file lacks is taken from the machine's; a file that
/// ReadSettings cannot read counts as none.
class SettingsReader
{
public:
    explicit SettingsReader(const char *szName);

    bool Contains(const QString &key) const { return m_values.contains(Path(key)); }

    /// Reads the key into the field; an absent key leaves the field as it is, a text that is no number reads as 0.
    template <class Field>
    void Load(const QString &key, Field &field) const
    {
        if (Contains(key))
            field = qvariant_cast<Field>(m_values.value(Path(key)));
    }

private:
    static QString Path(const QString &key) { return QStringLiteral("Settings/") + key; }

    QVariantMap m_values;
};

/// The group Settings of the user's own file of one name. Written when it is destroyed: as a whole or not at all. The
/// rest of the file stays, unless it has a value that must not be decoded: such a file is replaced.
class SettingsWriter
{
public:
    explicit SettingsWriter(const char *szName);

    template <class Field>
    void Save(const QString &key, const Field &field)
    {
        m_settings.setValue(key, field);
    }

private:
    QSettings m_settings;
};
