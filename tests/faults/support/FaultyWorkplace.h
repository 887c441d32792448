#pragma once

#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/SignClient.h"

#include <optional>

/// A copy of the real program in a folder of its own, with the library beside it that a test wants there, on a desktop
/// of its own with a tray.
class FaultyWorkplace
{
public:
    /// The library's file; none for an empty name.
    explicit FaultyWorkplace(const QString &library = QStringLiteral(MVSIGNPAD_HOSTILE_SDK));

    bool isUsable() const { return m_usable; }
    quint16 port() const { return m_port; }
    DesktopSession &desktop() { return m_desktop; }
    TrayProgram &program() { return *m_program; }
    QString file(const QString &name) const { return m_folder.filePath(name); }

    /// Writes the settings that start the service on port(), and these lines behind them.
    bool writeServingSettings(const QStringList &furtherLines = {});
    /// Starts the program, through the wrapper that its first words are, if any, and waits until the service listens.
    bool startServing(const QStringList &wrapper = {});
    bool start(const QStringList &wrapper = {});
    /// Starts the service through the menu, or stops it.
    bool toggleService() { return m_desktop.chooseMenuEntry(0); }
    /// Ends the program through its menu; true when it then ends with status 0 and has complained about nothing.
    bool exitsCleanly();

    /// Makes the hostile library answer so from now on; see hostile/AnswersFromFile.cpp.
    bool answer(const QByteArray &script) const;
    /// Waits until the hostile library's function of this name blocks.
    bool waitUntilBlocked(const QString &function) const;
    /// Lets it go on.
    bool unblock(const QString &function) const;
    /// Puts a copy of this file into the place of the library, in one step.
    bool replaceLibrary(const QString &library) const;
    bool serves(const QString &command = QStringLiteral("GetSize"));
    long openDescriptors() const;
    /// Connections of clients that the program holds.
    int openConnections() const;
    /// Connections, also such as the system still keeps for the program, with bytes that it has not read.
    int unreadConnections() const;
    /// The program's threads that run or want to, with their state; when there is none, the program does nothing more
    /// until something happens.
    QStringList restlessThreads() const;
    /// None when it cannot be told.
    std::optional<long> residentKiB() const;
    /// Whether the memory has grown by less than that since residentKiB() told what it was. False when it cannot be
    /// told; always true under a sanitizer, which keeps the memory that is given back.
    bool hasGrownByLessThan(long kiB, std::optional<long> before) const;
    /// Processor time of the program, in hundredths of a second. None when it cannot be told.
    std::optional<long> processorTicks() const;

private:
    /// The lines of the system's table of TCP connections that have the service's port on their own side, as fields.
    QList<QList<QByteArray>> connections() const;
    /// The fields of a /proc file's one line, from the process's state on, which its name precedes.
    static QList<QByteArray> statusFields(const QString &file);
    QString blocks(const QString &function) const { return file(function + QStringLiteral("-blocks")); }

    DesktopSession m_desktop;
    QTemporaryDir m_folder;
    std::unique_ptr<TrayProgram> m_program;
    quint16 m_port;
    bool m_usable;
};

/// The service's reply to a request, as its JSON text.
QString replyText(const char *command, const QString &result);
