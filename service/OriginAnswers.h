#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the user has answered for good about the origins of pages. It is kept in a file of its own in the user's
/// folder, which nobody else can read, and which both the program and mvsignctl change: each change is made to the file
/// as it is then, while the other waits. Any thread.
class OriginAnswers
{
public:
    /// As the file has them, none when there is no file; absent when it cannot be read or something in it is not
    /// understood.
    static std::optional<OriginAnswers> Read();

    /// Each changes the file, and takes back what was answered about that origin before. False when the file cannot be
    /// read or written, or the text is no origin (IsOrigin). What changes nothing makes no file.
    static bool Allow(const QString &strOrigin); ///< also false for an origin that many pages share (IsSharedOrigin)
    static bool Block(const QString &strOrigin);
    static bool Forget(const QString &strOrigin);

    /// The file's path.
    static QString Path();

    const QStringList &Allowed() const { return m_allowed; } ///< always; in the order of the answers
    const QStringList &Blocked() const { return m_blocked; } ///< never; likewise

    /// The same in this object alone.
    void SetAllowed(const QString &strOrigin) { PutOn(&OriginAnswers::m_allowed, strOrigin); }
    void SetBlocked(const QString &strOrigin) { PutOn(&OriginAnswers::m_blocked, strOrigin); }

private:
    using List = QStringList OriginAnswers::*;

    static bool Change(const QString &strOrigin, List list);
    void PutOn(List list, const QString &strOrigin);
    bool Write() const;

    QStringList m_allowed;
    QStringList m_blocked;
};
