// What the doctor looks at. Each check looks at one thing and says in one line that it is as it should be, or what to
// do.
#pragma once

#include <QString>

struct Machine;

struct Finding {
    bool bOk = false;
    QString text;
};

inline Finding Ok(const QString &text)
{
    return {true, text};
}

inline Finding Bad(const QString &text)
{
    return {false, text};
}

Finding CheckProgram(const Machine &machine);
Finding CheckGuard(const Machine &machine);
Finding CheckTray(const Machine &machine);
Finding CheckIcon(const Machine &machine);
Finding CheckAutostart(const Machine &machine);

Finding CheckSettingsFiles(const Machine &machine);
Finding CheckAccess(const Machine &machine);

Finding CheckPort(const Machine &machine);
Finding CheckLocalhost(const Machine &machine);
Finding CheckAnswerIPv4(const Machine &machine);
Finding CheckAnswerIPv6(const Machine &machine);
Finding CheckBrowserPolicy(const Machine &machine);

Finding CheckLibrary(const Machine &machine);
Finding CheckLibraryKind(const Machine &machine);
Finding CheckLibraryFunctions(const Machine &machine);
Finding CheckPads(const Machine &machine);
Finding CheckFont(const Machine &machine);
