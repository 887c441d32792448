// Reading and writing of settings records: one walk over a record's keys and fields serves both directions.
#pragma once

#include <QFile>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

/// One group of one of the program's per-user settings files. What the user's file lacks is looked for in the
/// machine's file of the same name. Written when it is destroyed, if anything was saved.
class SettingsFile
{
public:
    explicit SettingsFile(const QString &application, const QString &group = QStringLiteral("Settings"))
        : m_settings(QStringLiteral("mvsignpadsdk"), application)
    {
        m_settings.beginGroup(group);
    }

    bool Contains(const QString &key) const { return m_settings.contains(key); }
    QStringList Keys() const { return m_settings.allKeys(); }
    QVariant Value(const QString &key) const { return m_settings.value(key); }

    /// True when some of the text is no setting; what else there is has been read.
    bool IsMalformed() const { return m_settings.status() == QSettings::FormatError; }
    /// True when the text, in the user's file or in the machine's, stands anywhere in it.
    bool Mentions(const char *text) const
    {
        for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope}) {
            const QSettings settings(scope, m_settings.organizationName(), m_settings.applicationName());
            QFile file(settings.fileName());
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains(text))
                return true;
        }
        return false;
    }

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
