// Reading and writing of settings records: one walk over a record's keys and fields serves both directions.
#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

/// One of the program's per-user settings files, inside its group "Settings". Written when it is destroyed.
class SettingsFile
{
public:
    explicit SettingsFile(const QString &application) : m_settings(QStringLiteral("mvsignpadsdk"), application)
    {
        m_settings.beginGroup(QStringLiteral("Settings"));
    }

    bool Contains(const QString &key) const { return m_settings.contains(key); }

    /// Reads the key into the field; an absent key leaves the field as it is, a text that is no number reads as 0.
    template <class Field>
    void Load(const QString &key, Field &field) const
    {
        if (m_settings.contains(key))
            field = qvariant_cast<Field>(m_settings.value(key));
    }

    template <class Field>
    void Save(const QString &key, const Field &field)
    {
        m_settings.setValue(key, field);
    }

private:
    QSettings m_settings;
};
