#pragma once

#include "tests/desktop/DesktopSession.h"

#include <QProcess>

/// The real program, run on a desktop of the test's own.
class TrayProgram
{
public:
    explicit TrayProgram(const DesktopSession &desktop, const QString &file = QStringLiteral(MVSIGNPAD_PROGRAM));
    /// Ends the program if a failed test left it running.
    ~TrayProgram();

    /// Has it write its log from its next start on.
    void switchLogOn();
    /// How often a service was started according to the log: it tells that at once, a port opens a moment later.
    static int startsOfAService();
    bool start();
    bool isRunning() const { return m_process.state() != QProcess::NotRunning; }
    bool waitForEnd(int timeoutMs = patienceMs);
    /// Chooses the menu's exit entry and waits for the end. Says what went wrong; empty when the program ended with
    /// status 0 and without a word.
    QString exitThroughMenu(const DesktopSession &desktop);
    /// -1 while it runs and when a signal ended it.
    int exitStatus() const;
    /// All that it wrote on its standard output and standard error so far.
    QByteArray output();

    /// Waits until the port takes connections, or until it takes none.
    static bool waitForListening(quint16 port);
    static bool waitForSilence(quint16 port);

    QProcess &process() { return m_process; }

private:
    QString m_file;
    QProcess m_process;
    QByteArray m_output;
};
