#include "tray/SysTrayMenuMgr.h"

#include "base/Logging.h"
#include "base/QtCompat.h"
#include "service/AccessSettings.h"
#include "service/WebSocketThread.h"
#include "tray/CheckSysTrayThread.h"
#include "tray/DesktopVariant.h"
#include "tray/TrayTexts.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QMenu>
#include <QSysInfo>
#include <QSystemTrayIcon>

namespace {

/// Puts the desktop's entry for the launch at log-in into its place, or takes it away. What fails is not reported: the
/// next start looks at the entry on disk.
void SetAutostartEntry(int nOSProductID, bool bLaunch)
{
    QDir().mkpath(AutostartFolder());
    const QString target = AutostartTarget(nOSProductID);
    if (target.isEmpty()) // Qt complains about empty names
        return;
    if (bLaunch)
        QFile::copy(AutostartSource(nOSProductID), target); // keeps an entry that is there
    else
        QFile::remove(target);
}

ServiceStatus StoppedInTheMenu()
{
    ServiceStatus status;
    status.strReason = QStringLiteral("switched off in the menu");
    return status;
}

void ShowIcon(const TrayTexts &texts, QSystemTrayIcon &icon, QMenu &menu)
{
    icon.setIcon(QIcon(QStringLiteral("./mvsignpadsdk_wssvr.ico")));
    icon.setContextMenu(&menu);
    icon.setToolTip(QString::fromUtf8(texts.szToolTip));
    icon.show();
}

} // namespace

SysTrayMenuMgr::SysTrayMenuMgr(QObject *parent) : QObject(parent)
{
    static const char tag[] = "SysTrayMenuMgr::SysTrayMenuMgr()";
    qRegisterMetaType<ServiceStatus>();
    const QString productType = QSysInfo::productType();
    MV_LOG(tag, "Enter, OSProductType=%s", productType.toUtf8().constData());
    m_nOSProductID = DesktopVariantOf(productType);
    MV_LOG(tag, "m_nOSProductID=%d", m_nOSProductID);
    MV_LOG(tag, "Leave !");
}

SysTrayMenuMgr::~SysTrayMenuMgr()
{
    static const char tag[] = "SysTrayMenuMgr::~SysTrayMenuMgr()";
    MV_LOG(tag, "Enter...");
    if (m_pWebSocketThread) // the end of the session does not come by way of the exit entry
        OpenWebSocketService(false);
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::Initialize()
{
    static const char tag[] = "SysTrayMenuMgr::Initialize()";
    MV_LOG(tag, "Enter...");
    m_pCheckSysTrayThread = new CheckSysTrayThread(this);
    connect(m_pCheckSysTrayThread, &CheckSysTrayThread::SysTrayAvailable, this,
            &SysTrayMenuMgr::StartCreateSystemTrayIcon);
    m_pCheckSysTrayThread->start();
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::StartCreateSystemTrayIcon(bool bSysTrayAvailable)
{
    static const char tag[] = "SysTrayMenuMgr::StartCreateSystemTrayIcon()";
    MV_LOG(tag, "Enter, bSysTrayAvailable=%d", bSysTrayAvailable);
    delete m_pCheckSysTrayThread;
    m_pCheckSysTrayThread = nullptr;
    if (bSysTrayAvailable) {
        MV_LOG(tag, "b4 call CreateSystemTray()...");
        CreateSystemTray();
    } else {
        MV_LOG(tag, "b4 call closed()...");
        Q_EMIT closed();
    }
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::CreateSystemTray()
{
    static const char tag[] = "SysTrayMenuMgr::CreateSystemTray()";
    MV_LOG(tag, "Enter...");
    auto *const pSysTrayIcon = new QSystemTrayIcon; // icon and menu live until the process ends
    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        MV_LOG(tag, "System Tray Available...");
        SetUpTray(tag, *pSysTrayIcon);
    } else {
        // Runs on without a tray, on purpose: it was there just now.
        // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): the icon lives on
        MV_LOG(tag, "System Tray Is NOT Available !!!");
    }
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::SetUpTray(const char *tag, QSystemTrayIcon &icon)
{
    auto *const pSysTrayIconMenu = new QMenu;
    // The SDK library and the icon are opened relative to the program's own directory.
    QDir::setCurrent(QCoreApplication::applicationDirPath());
    LoadDataFromINIFIle();
    MV_LOG(tag, "after call LoadDataFromINIFIle()...");
    const TrayTexts &texts = TrayTextsOf(INIDATA.nUILangID);
    FillMenu(texts, *pSysTrayIconMenu);
    RestoreSavedState();
    ShowIcon(texts, icon, *pSysTrayIconMenu);
    MV_LOG(tag, "after call pSysTrayIcon->show()...");
}

QAction *SysTrayMenuMgr::AddEntry(const char *szText, bool bCheckable, void (SysTrayMenuMgr::*slot)())
{
    auto *const pAction = new QAction(QString::fromUtf8(szText), this);
    pAction->setCheckable(bCheckable);
    connect(pAction, &QAction::triggered, this, slot); // checking it by program does not trigger it
    return pAction;
}

void SysTrayMenuMgr::FillMenu(const TrayTexts &texts, QMenu &menu)
{
    m_pStartServiceAction = AddEntry(texts.szStartService, true, &SysTrayMenuMgr::StartWebSocketService);
    m_pStartSecureServiceAction =
        AddEntry(texts.szStartSecureService, true, &SysTrayMenuMgr::StartWebSecureSocketService);
    m_pAutoLaunchAction = AddEntry(texts.szAutoLaunch, true, &SysTrayMenuMgr::AutoLaunchService);
    QAction *const pExitAction = AddEntry(texts.szExit, false, &SysTrayMenuMgr::ExitWebSocketService);

    // The secure entry works, but is not shown, on purpose: there is no secure service to start.
    menu.addAction(m_pStartServiceAction);
    menu.addSeparator();
    menu.addAction(m_pAutoLaunchAction);
    menu.addSeparator();
    menu.addAction(pExitAction);
    m_originWindows.UseMenu(menu, *pExitAction);
}

void SysTrayMenuMgr::RestoreSavedState()
{
    Q_EMIT m_statusSource.statusChanged(StoppedInTheMenu());
    if (INIDATA.bStartWebService) {
        INIDATA.bStartWebServiceWithSSL = false;
        m_pStartServiceAction->setChecked(true);
        OpenWebSocketService(true);
    } else {
        m_originWindows.OfferList(ReadAccessPolicy(), TrayTextsOf(INIDATA.nUILangID));
    }
    m_pStartSecureServiceAction->setChecked(INIDATA.bStartWebServiceWithSSL);
    m_pAutoLaunchAction->setChecked(INIDATA.bAutoLaunch);
}

void SysTrayMenuMgr::OpenWebSocketService(bool bOpenService)
{
    static const char tag[] = "SysTrayMenuMgr::OpenWebSocketService()";
    MV_LOG(tag, "Enter, bOpenService=%d", bOpenService);
    if (bOpenService && !m_pWebSocketThread) {
        const AccessPolicy accessPolicy = LoadAccessPolicy();
        m_originWindows.StartAsking(accessPolicy, TrayTextsOf(INIDATA.nUILangID));
        m_pWebSocketThread =
            new WebSocketThread(this, INIDATA.nWebSocketPort, accessPolicy, &m_statusSource, &m_originDesk);
        m_pWebSocketThread->start();
        MV_LOG(tag, "after call m_pWebSocketThread->start()...");
    } else if (!bOpenService && m_pWebSocketThread) {
        m_originWindows.StopAsking();
        MV_LOG(tag, "b4 call m_pWebSocketThread->quit()...");
        m_pWebSocketThread->quit();
        WaitForEnd(*m_pWebSocketThread);
        delete m_pWebSocketThread;
        m_pWebSocketThread = nullptr;
        Q_EMIT m_statusSource.statusChanged(StoppedInTheMenu());
        MV_LOG(tag, "after call m_pWebSocketThread = nullptr...");
    }
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::StartWebSocketService()
{
    static const char tag[] = "SysTrayMenuMgr::StartWebSocketService()";
    MV_LOG(tag, "Enter...");
    if (m_pStartServiceAction) {
        const bool bStart = m_pStartServiceAction->isChecked();
        INIDATA.bStartWebService = bStart;
        if (bStart) {
            INIDATA.bStartWebServiceWithSSL = false;
            if (m_pStartSecureServiceAction)
                m_pStartSecureServiceAction->setChecked(false);
        }
        OpenWebSocketService(bStart);
        WriteDataToINIFIle();
    }
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::StartWebSecureSocketService()
{
    // A flag held for the next write, on purpose: nothing is started, stopped or written here.
    static const char tag[] = "SysTrayMenuMgr::StartWebSecureSocketService()";
    MV_LOG(tag, "Enter...");
    if (m_pStartSecureServiceAction) {
        INIDATA.bStartWebServiceWithSSL = m_pStartSecureServiceAction->isChecked();
        if (INIDATA.bStartWebServiceWithSSL) {
            INIDATA.bStartWebService = false;
            if (m_pStartServiceAction)
                m_pStartServiceAction->setChecked(false);
        }
    }
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::AutoLaunchService()
{
    static const char tag[] = "SysTrayMenuMgr::AutoLaunchService()";
    MV_LOG(tag, "Enter...");
    if (m_pAutoLaunchAction) {
        INIDATA.bAutoLaunch = m_pAutoLaunchAction->isChecked();
        SetAutostartEntry(m_nOSProductID, INIDATA.bAutoLaunch);
        MV_LOG(tag, "%s", INIDATA.bAutoLaunch ? "INIDATA.bAutoLaunch = TRUE..." : "INIDATA.bAutoLaunch = false !");
        WriteDataToINIFIle();
    }
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::ExitWebSocketService()
{
    static const char tag[] = "SysTrayMenuMgr::ExitWebSocketService()";
    MV_LOG(tag, "Enter...");
    WriteDataToINIFIle();
    OpenWebSocketService(false);
    Q_EMIT closed();
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::LoadDataFromINIFIle()
{
    static const char tag[] = "SysTrayMenuMgr::LoadDataFromINIFIle()";
    MV_LOG(tag, "Enter, OSKernelType=%s, OSProductType=%s", QSysInfo::kernelType().toUtf8().constData(),
           QSysInfo::productType().toUtf8().constData());
    INIDATA.Load(m_nOSProductID);
    MV_LOG(tag, "Leave !");
}

void SysTrayMenuMgr::WriteDataToINIFIle()
{
    static const char tag[] = "SysTrayMenuMgr::WriteDataToINIFIle()";
    MV_LOG(tag, "Enter...");
    INIDATA.Save();
    MV_LOG(tag, "Leave !");
}
