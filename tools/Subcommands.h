// What mvsignctl does besides sending a request: one row per word.
#pragma once

#include "tools/Exchange.h"

#include <QString>
#include <QStringList>

struct Invocation {
    Target target;
    QStringList arguments; ///< behind the subcommand's name
    bool bJson = false;
};

struct Subcommand {
    const char *szName;
    const char *szArguments;
    const char *szMeaning; ///< to be translated
    int nFewestArguments;
    int nMostArguments;
    bool bKnowsJson;
    bool bAsksService; ///< whether it needs the target
    /// Returns the exit status.
    int (*run)(const Invocation &invocation);
};

/// Null when there is none of that name: the word is a command of the service then.
const Subcommand *FindSubcommand(const QString &name);

/// A line of help for each of them.
QString SubcommandsHelp();

int PrintStatus(const Invocation &invocation);
int SwitchLog(const Invocation &invocation);
int RuleAccess(const Invocation &invocation);
int ExamineEverything(const Invocation &invocation);
int ExamineLibrary(const Invocation &invocation);
int WatchPad(const Invocation &invocation);
int SaveDrawing(const Invocation &invocation);
