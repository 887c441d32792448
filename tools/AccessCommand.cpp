#include "service/AccessSettings.h"
#include "service/OriginText.h"
#include "tools/BusStatus.h"
#include "tools/Subcommands.h"
#include "tools/Text.h"

namespace {

struct Change {
    const char *szName;
    bool (*make)(const QString &strOrigin);
};

const Change changes[] = {
    {"allow", OriginAnswers::Allow},
    {"block", OriginAnswers::Block},
    {"forget", OriginAnswers::Forget},
};

void PrintOrigins(const QString &what, const QStringList &origins)
{
    for (const QString &origin : origins)
        Print(stdout, what + QStringLiteral(": ") + origin);
}

QString FateOfOthers(UnknownOrigins unknown)
{
    switch (unknown) {
    case UnknownOrigins::Ask:
        return Text::tr("the user is asked");
    case UnknownOrigins::Block:
        return Text::tr("refused");
    case UnknownOrigins::Allow:
        break;
    }
    return Text::tr("served");
}

/// What the settings and the user's answers come to.
int PrintAccess()
{
    const AccessPolicy access = ReadAccessPolicy();
    if (!access.bServesAnybody)
        return Fail(Text::tr("nobody is served: %1").arg(access.strClosedReason));
    PrintOrigins(Text::tr("allowed by the settings"), access.allowedOrigins.value_or(QStringList()));
    PrintOrigins(access.AsksTheUser() ? Text::tr("allowed")
                                      : Text::tr("allowed where the user is asked, which is not so"),
                 access.originAnswers.Allowed());
    PrintOrigins(Text::tr("blocked"), access.originAnswers.Blocked());
    Print(stdout, Text::tr("pages of other origins: %1").arg(FateOfOthers(access.ForUnknownOrigins())));
    return Success;
}

/// Tells the program that runs, if any.
int TellProgram()
{
    const BusStatus bus;
    if (!bus.HasBus() || bus.Properties().isEmpty())
        return Success; // it reads the file when its service starts
    const QString error = bus.Call("ReloadOrigins", {});
    return error.isEmpty() ? Success : Fail(error);
}

int ChangeAnswer(const Change &change, const QString &origin)
{
    if (!IsOrigin(origin))
        return WrongUsage(Text::tr("not an origin such as https://sign.example.org: %1").arg(origin));
    if (change.make == OriginAnswers::Allow && IsSharedOrigin(origin))
        return Fail(Text::tr("%1 stands for many pages, which cannot be allowed together").arg(origin));
    if (!change.make(origin))
        return Fail(Text::tr("%1 cannot be changed: check its owner, its rights and its lines, or remove it")
                        .arg(OriginAnswers::Path()));
    return TellProgram();
}

} // namespace

int RuleAccess(const Invocation &invocation)
{
    const QString verb = invocation.arguments.constFirst();
    const bool bOrigin = invocation.arguments.size() == 2;
    if (verb == QLatin1String("list") && !bOrigin)
        return PrintAccess();
    for (const Change &change : changes) {
        if (verb == QLatin1String(change.szName) && bOrigin)
            return ChangeAnswer(change, invocation.arguments.at(1));
    }
    return WrongUsage(Text::tr("neither list nor allow, block or forget with an origin: %1")
                          .arg(invocation.arguments.join(QLatin1Char(' '))));
}
