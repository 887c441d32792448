#include "tools/Subcommands.h"
#include "tools/Text.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Machine.h"

namespace {

struct Check {
    const char *szSubject; ///< to be translated
    Finding (*look)(const Machine &machine);
};

/// In the order in which one thing needs another.
const Check checks[] = {
    {QT_TRANSLATE_NOOP("Text", "program"), CheckProgram},
    {QT_TRANSLATE_NOOP("Text", "other copies"), CheckGuard},
    {QT_TRANSLATE_NOOP("Text", "tray"), CheckTray},
    {QT_TRANSLATE_NOOP("Text", "icon"), CheckIcon},
    {QT_TRANSLATE_NOOP("Text", "launch at log-in"), CheckAutostart},
    {QT_TRANSLATE_NOOP("Text", "settings files"), CheckSettingsFiles},
    {QT_TRANSLATE_NOOP("Text", "access settings"), CheckAccess},
    {QT_TRANSLATE_NOOP("Text", "port"), CheckPort},
    {QT_TRANSLATE_NOOP("Text", "name localhost"), CheckLocalhost},
    {QT_TRANSLATE_NOOP("Text", "answer over IPv4"), CheckAnswerIPv4},
    {QT_TRANSLATE_NOOP("Text", "answer over IPv6"), CheckAnswerIPv6},
    {QT_TRANSLATE_NOOP("Text", "browser policy"), CheckBrowserPolicy},
    {QT_TRANSLATE_NOOP("Text", "pad library"), CheckLibrary},
    {QT_TRANSLATE_NOOP("Text", "library's machine"), CheckLibraryKind},
    {QT_TRANSLATE_NOOP("Text", "library's functions"), CheckLibraryFunctions},
    {QT_TRANSLATE_NOOP("Text", "pad"), CheckPads},
    {QT_TRANSLATE_NOOP("Text", "Chinese font"), CheckFont},
};

} // namespace

int ExamineEverything(const Invocation &)
{
    const Machine machine;
    bool bAllOk = true;
    for (const Check &check : checks) {
        const Finding finding = check.look(machine);
        bAllOk = bAllOk && finding.bOk;
        Print(stdout, Fill(QStringLiteral("%1  %2: %3"), {finding.bOk ? QStringLiteral("ok ") : QStringLiteral("BAD"),
                                                          Text::tr(check.szSubject), finding.text.simplified()}));
    }
    return bAllOk ? 0 : 1;
}
