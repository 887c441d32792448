#include "base/Logging.h"
#include "base/RuntimeSettings.h"
#include "tray/DetectSigngleInstance.h"
#include "tray/StartOver.h"
#include "tray/StatusOnBus.h"
#include "tray/SysTrayMenuMgr.h"

#include <QApplication>
#include <QSessionManager>

namespace {

/// The autostart entry is what starts the program at log-in. A session that restored it besides would start two copies
/// at once, and each could give way to the other.
void StayOutOfRestoredSessions(const QGuiApplication &application)
{
    const auto neverRestart = [](QSessionManager &session) { session.setRestartHint(QSessionManager::RestartNever); };
    QObject::connect(&application, &QGuiApplication::commitDataRequest, neverRestart);
    QObject::connect(&application, &QGuiApplication::saveStateRequest, neverRestart);
}

/// The log's first switch; mvsignctl sets it later.
void StartLogIfAsked()
{
    if (qEnvironmentVariableIntValue("MVSIGNPAD_LOG") == 1)
        g_bEnableLog = true;
}

const char tag[] = "main()";

int RunFirstInstance()
{
    // Two lines, one after the other, on purpose: log readers look for either.
    MV_LOG(tag, "1st instance is running, keep going...");
    MV_LOG(tag, "First instance coming, keep going...");

    SysTrayMenuMgr manager(nullptr);
    StatusOnBus statusOnBus(manager.StatusSource());
    QObject::connect(&statusOnBus, &StatusOnBus::originAnswersChanged, &manager.Desk(), &OriginDesk::answersChanged);
    QObject::connect(&manager, &SysTrayMenuMgr::closed, &QCoreApplication::quit);
    manager.Initialize();
    MV_LOG(tag, "after call SysTrayMenuMgr.Initialize()...");
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    ApplyRuntimeSettings();
    StartLogIfAsked();
    QApplication application(argc, argv);
    // The tray menu is the program's only window of its own: closing any other window must not end it.
    QApplication::setQuitOnLastWindowClosed(false);
    StayOutOfRestoredSessions(application);
    MV_LOG(tag, "Enter, argc=%d", argc);

    DetectSigngleInstance detector(nullptr);
    int nRet = 1;
    // A copy that was let in once is not asked again: an editor that was opened since would turn it away.
    if (HasStartedOver() || detector.IsSingleInstance())
        nRet = RunFirstInstance();
    else
        MV_LOG(tag, "2nd instance is running, exit NOW !");
    MV_LOG(tag, "Leave with nRet=%d", nRet);
    return nRet;
}
