// Loads a pad library and looks for its functions. The library's own code runs then: the doctor starts this as a
// process of its own.
#include "sdk/SdkFunctions.h"
#include "tools/Subcommands.h"
#include "tools/Text.h"

#include <QFileInfo>
#include <QLibrary>

#include <iterator>

namespace {

#define FUNCTION_NAME(Model, name, result, parameters, ...)                                                            \
    MV_SDK_IF_MODEL_HAS(Model, __VA_ARGS__, "MV" #Model "_" #name, )

const char *const alderFunctions[] = {MV_SDK_FUNCTIONS(FUNCTION_NAME, Alder)};
const char *const birchFunctions[] = {MV_SDK_FUNCTIONS(FUNCTION_NAME, Birch)};
const char *const cedarFunctions[] = {MV_SDK_FUNCTIONS(FUNCTION_NAME, Cedar)};
const char *const mapleFunctions[] = {MV_SDK_FUNCTIONS(FUNCTION_NAME, Maple)};
const char *const rowanFunctions[] = {MV_SDK_FUNCTIONS(FUNCTION_NAME, Rowan)};

struct Family {
    const char *szModel;
    const char *const *functions;
    std::size_t nFunctions;
};

const Family families[] = {
    {"Alder", alderFunctions, std::size(alderFunctions)}, {"Birch", birchFunctions, std::size(birchFunctions)},
    {"Cedar", cedarFunctions, std::size(cedarFunctions)}, {"Maple", mapleFunctions, std::size(mapleFunctions)},
    {"Rowan", rowanFunctions, std::size(rowanFunctions)},
};

QStringList Missing(const Family &family, QLibrary &library)
{
    QStringList missing;
    for (std::size_t i = 0; i < family.nFunctions; ++i) {
        if (!library.resolve(family.functions[i]))
            missing += QString::fromLatin1(family.functions[i]);
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
    for (const Family &family : families) {
        const QStringList missing = Missing(family, library);
        bComplete = bComplete || missing.isEmpty();
        if (missing.isEmpty())
            Print(stdout, Text::tr("%1: complete").arg(QString::fromLatin1(family.szModel)));
        else if (missing.size() == static_cast<int>(family.nFunctions))
            Print(stdout, Text::tr("%1: not in it").arg(QString::fromLatin1(family.szModel)));
        else
            Print(stdout, Fill(Text::tr("%1: lacks %2"),
                               {QString::fromLatin1(family.szModel), missing.join(QLatin1Char(' '))}));
    }
    return bComplete ? 0 : 1;
}
