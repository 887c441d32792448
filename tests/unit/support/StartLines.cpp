#include "tests/unit/support/StartLines.h"

#include "tests/unit/support/LogFiles.h"

#include <QSysInfo>

namespace {

/// What the guard logs when pgrep printed these process identifiers.
QStringList linesOfTheGuard(int argc, const QString &processName, const QStringList &printed, bool bLetIn)
{
    const char isRunning[] = "DetectSigngleInstance::IsProcessRunning()";
    QStringList lines{logLine("main()", QStringLiteral("Enter, argc=%1").arg(argc)),
                      logLine("DetectSigngleInstance::DetectSigngleInstance()", "Enter..."),
                      logLine("DetectSigngleInstance::DetectSigngleInstance()", "Leave !"),
                      logLine("DetectSigngleInstance::IsSingleInstance()", "Enter..."),
                      logLine(isRunning, "Enter..."),
                      logLine(isRunning, QStringLiteral("stdprocessName=") + processName),
                      logLine(isRunning, QStringLiteral("strOutputParts.size=%1").arg(printed.size() + 1))};
    for (int i = 0; i <= printed.size(); ++i)
        lines << logLine(isRunning, QStringLiteral("stdstrOutput[%1]=%2").arg(i).arg(printed.value(i)));
    return lines << logLine(isRunning, QStringLiteral("Leave with bRet=%1").arg(bLetIn ? 0 : 1))
                 << logLine("DetectSigngleInstance::IsSingleInstance()",
                            QStringLiteral("Leave with bRet=%1").arg(bLetIn ? 1 : 0));
}

} // namespace

QStringList linesOfFirstCopy(int argc, const QString &processName)
{
    const char manager[] = "SysTrayMenuMgr::SysTrayMenuMgr()";
    return linesOfTheGuard(argc, processName, {QStringLiteral("PID")}, true)
           << logLine("main()", "1st instance is running, keep going...")
           << logLine("main()", "First instance coming, keep going...")
           << logLine(manager, QStringLiteral("Enter, OSProductType=") + QSysInfo::productType())
           << logLine(manager, "m_nOSProductID=0") << logLine(manager, "Leave !")
           << logLine("SysTrayMenuMgr::Initialize()", "Enter...");
}

QStringList linesOfSecondCopy(int argc, const QString &processName, const QStringList &others)
{
    return linesOfTheGuard(argc, processName, QStringList{QStringLiteral("PID")} + others, false)
           << logLine("main()", "2nd instance is running, exit NOW !") << logLine("main()", "Leave with nRet=1");
}
