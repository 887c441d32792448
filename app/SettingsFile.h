// Reading and writing of settings records: one walk over a record's keys and fields serves both directions.
#pragma once

#include <QByteArrayList>
#include <QFile>
#include <QLockFile>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

/// One group of one of the program's per-user settings files. What the user's file lacks is looked for in the
/// machine's file of the same name. Written when it is destroyed, if anything was saved: as a whole or not at all.
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

    /// The user's file and the machine's as they are, whether or not they make sense; empty where there is none.
    QByteArrayList RawTexts() const
    {
        QByteArrayList texts;
        for (const QSettings::Scope scope : {QSettings::UserScope, QSettings::SystemScope}) {
            const QSettings settings(scope, m_settings.organizationName(), m_settings.applicationName());
            QFile file(settings.fileName());
            texts += file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
        return texts;
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

    /// Clears away the lock of a program that was killed in the midst of writing, for which the next writer would wait
    /// half a minute. A lock that somebody holds stays.
    void RemoveStaleLock() { QLockFile(m_settings.fileName() + QStringLiteral(".lock")).removeStaleLockFile(); }

private:
    QSettings m_settings;
};
