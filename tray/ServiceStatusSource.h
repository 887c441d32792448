#pragma once

#include "service/ServiceStatus.h"

#include <QObject>

/// Where the service's state comes from while the tray starts and stops the service. An object beside SysTrayMenuMgr,
/// whose signals and slots stay as they are. Main thread only.
class ServiceStatusSource : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    /// The service is in another state than before.
    void statusChanged(const ServiceStatus &status);
};
