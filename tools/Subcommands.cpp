#include "tools/Subcommands.h"

#include "tools/Text.h"

namespace {

const Subcommand subcommands[] = {
    {"status", "[--json]", QT_TRANSLATE_NOOP("Text", "what the running program says of itself"), 0, 0, true, false,
     PrintStatus},
    {"doctor", "", QT_TRANSLATE_NOOP("Text", "looks for what is wrong and says what to do"), 0, 0, false, false,
     ExamineEverything},
    {"log", "on|off", QT_TRANSLATE_NOOP("Text", "switches the running program's diagnostic log"), 1, 1, false, false,
     SwitchLog},
    {"access", "list|allow|block|forget [ORIGIN]",
     QT_TRANSLATE_NOOP("Text", "which pages are served; changes what was answered about them"), 1, 2, false, false,
     RuleAccess},
    {"watch", "", QT_TRANSLATE_NOOP("Text", "follows the pad; JSON lines where it is no terminal"), 0, 0, false, true,
     WatchPad},
    {"save", "FILE", QT_TRANSLATE_NOOP("Text", "saves what is on the pad as .png, .svg or .json"), 1, 1, false, true,
     SaveDrawing},
    {"library", "FILE", QT_TRANSLATE_NOOP("Text", "which functions of each model a pad library has"), 1, 1, false,
     false, ExamineLibrary},
};

} // namespace

const Subcommand *FindSubcommand(const QString &name)
{
    for (const Subcommand &subcommand : subcommands) {
        if (name == QLatin1String(subcommand.szName))
            return &subcommand;
    }
    return nullptr;
}

QString SubcommandsHelp()
{
    QString help;
    for (const Subcommand &subcommand : subcommands) {
        const QString call =
            QString::fromLatin1(subcommand.szName) + QLatin1Char(' ') + QString::fromLatin1(subcommand.szArguments);
        help += QStringLiteral("  %1 %2\n").arg(call, -16).arg(Text::tr(subcommand.szMeaning));
    }
    return help;
}
