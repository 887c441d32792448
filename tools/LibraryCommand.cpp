// Loads a pad library and looks for its functions. The library's own code runs then: the doctor starts this as a
// process of its own.
#include "sdk/SdkFunctions.h"
#include "tools/Subcommands.h"
#include "tools/Text.h"

#include <QFileInfo>
#include <QLibrary>

#include <vector>

namespace {

struct Family {
    const char *szModel;
    std::vector<const char *> functions;
};

std::vector<Family> Families()
{
#define FUNCTION_NAME(Model, name, result, parameters, ...)                                                            \
    MV_SDK_IF_MODEL_HAS(Model, __VA_ARGS__, "MV" #Model "_" #name, )
#define FAMILY(Model, nID) {#Model, {MV_SDK_FUNCTIONS(FUNCTION_NAME, Model)}},
    return {MV_SDK_MODELS(FAMILY)};
#undef FAMILY
#undef FUNCTION_NAME
}

QStringList Missing(const Family &family, QLibrary &library)
{
    QStringList missing;
    for (const char *szFunction : family.functions) {
        if (!library.resolve(szFunction))
            missing += QString::fromLatin1(szFunction);
    }
    return missing;
}

} // namespace

int ExamineLibrary(const Invocation &invocation)
{
    QLibrary library(QFileInfo(invocation.arguments.constFirst()).absoluteFilePath());
    if (!library.load())
        return Fail(library.errorString());
    bool bComplete = false;
    for (const Family &family : Families()) {
        const QStringList missing = Missing(family, library);
        bComplete = bComplete || missing.isEmpty();
        if (missing.isEmpty())
            Print(stdout, Text::tr("%1: complete").arg(QString::fromLatin1(family.szModel)));
        else if (missing.size() == static_cast<int>(family.functions.size()))
            Print(stdout, Text::tr("%1: not in it").arg(QString::fromLatin1(family.szModel)));
        else
            Print(stdout, Fill(Text::tr("%1: lacks %2"),
                               {QString::fromLatin1(family.szModel), missing.join(QLatin1Char(' '))}));
    }
    return bComplete ? 0 : 1;
}
