#pragma once

#include "service/OriginDesk.h"
#include "service/ServiceStatusSource.h"
#include "tray/OriginWindows.h"
#include "tray/TraySettings.h"

#include <QObject>
#include <QPointer>

class CheckSysTrayThread;
class QAction;
class QMenu;
class QSystemTrayIcon;
class WebSocketThread;
struct TrayTexts;

/// The application object: waits for the tray, shows the icon and its menu, starts and stops the service, and keeps
/// the tray settings. Main thread only.
class SysTrayMenuMgr : public QObject
{
    Q_OBJECT

public:
    explicit SysTrayMenuMgr(QObject *parent = nullptr);
    /// Stops the service, and the waiting for the tray.
    ~SysTrayMenuMgr() override;

    /// Starts waiting for the tray and returns at once; the tray is built when it is there.
    void Initialize();

    /// Builds icon and menu, and starts the service if the settings say so. At most once.
    void CreateSystemTray();

    /// Starts the service, or stops it and waits, without time limit, until its thread has ended. Leaves a service
    /// alone that is as it should be: it may run with its entry unchecked, since the secure entry unchecks that.
    void OpenWebSocketService(bool bOpenService);

    void LoadDataFromINIFIle();
    void WriteDataToINIFIle();

    const TraySettings &Settings() const { return INIDATA; }
    /// Lives as long as this object.
    const ServiceStatusSource &StatusSource() const { return m_statusSource; }
    OriginDesk &Desk() { return m_originDesk; } ///< likewise

Q_SIGNALS:
    /// The program is to end: the exit entry was chosen, or there is no tray.
    void closed();

public Q_SLOTS:
    void StartWebSocketService();
    void StartWebSecureSocketService();
    void AutoLaunchService();
    void ExitWebSocketService();
    void StartCreateSystemTrayIcon(bool bSysTrayAvailable);

private:
    void SetUpTray(const char *tag, QSystemTrayIcon &icon);
    QAction *AddEntry(const char *szText, bool bCheckable, void (SysTrayMenuMgr::*slot)());
    void FillMenu(const TrayTexts &texts, QMenu &menu);
    /// Checks the entries as the settings say, and starts the service if they do.
    void RestoreSavedState();

    TraySettings INIDATA;
    ServiceStatusSource m_statusSource;
    OriginDesk m_originDesk;
    OriginWindows m_originWindows{m_originDesk};
    QPointer<QAction> m_pStartServiceAction;
    QPointer<QAction> m_pStartSecureServiceAction;
    QPointer<QAction> m_pAutoLaunchAction;
    WebSocketThread *m_pWebSocketThread = nullptr;       // null while the service is stopped
    CheckSysTrayThread *m_pCheckSysTrayThread = nullptr; // null but while waiting for the tray
    qint32 m_nOSProductID = 0;
};
