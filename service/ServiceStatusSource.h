#pragma once

#include "service/ServiceStatus.h"

#include <QObject>

/// Tells of the service's state. An object beside the tray, the service and its thread, whose signals and slots stay as
/// they are. Belongs to whoever owns the service's thread, and outlives it.
class ServiceStatusSource : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    /// The service's state once it has started, soon after every change, and when it was stopped. Emitted on the
    /// service's thread while the service runs.
    void statusChanged(const ServiceStatus &status);
};
