// Reading and writing of settings records: one walk over a record's keys and fields serves both directions.
#pragma once

#include <QByteArrayList>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

/// The group of the settings that say who is served; only an administrator writes it.
constexpr char accessGroup[] = "Access";

/// One group of one of the program's per-user settings files. What the user's file lacks is looked for in the
/// machine's file of the same name. Written when it is destroyed, if anything was saved: as a whole or not at all.
/// Unreadable, as if there were none, when one of the files has a value that must not be decoded.
class SettingsFile
{
public:
    explicit SettingsFile(const QString &application, const QString &group = QStringLiteral("Settings"));

    bool Contains(const QString &key) const { return m_bReadable && m_settings.contains(key); }
    QStringList Keys() const { return m_bReadable ? m_settings.allKeys() : QStringList(); }
    QVariant Value(const QString &key) const { return m_bReadable ? m_settings.value(key) : QVariant(); }

    /// The files that Qt reads, the user's own first, as they are, whether or not they make sense; empty where there
    /// is none.
    QByteArrayList RawTexts() const;

    /// Whether it is unreadable and may hide settings of the access group. It is then never written either.
    bool MayHideAccess() const { return m_bMayHideAccess; }

    /// Reads the key into the field; an absent key leaves the field as it is, a text that is no number reads as 0.
    template <class Field>
    void Load(const QString &key, Field &field) const
    {
        if (Contains(key))
            field = qvariant_cast<Field>(m_settings.value(key));
    }

    template <class Field>
    void Save(const QString &key, const Field &field)
    {
        if (MakeWritable())
            m_settings.setValue(key, field);
    }

    /// Clears away the lock of a program that was killed in the midst of writing, for which the next writer would wait
    /// half a minute. A lock that somebody holds stays.
    void RemoveStaleLock();

private:
    bool MakeWritable();

    QSettings m_settings;
    bool m_bReadable = false;
    bool m_bOwnReadable = false;
    bool m_bMayHideAccess = false;
};
