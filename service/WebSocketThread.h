#pragma once

#include "service/AccessPolicy.h"
#include "service/ServiceStatus.h"

#include <QThread>

#include <memory>

class WebSocketService;

/// The thread that a service lives on. Its owner starts it, and to stop it calls quit(), waits for it and deletes it.
class WebSocketThread : public QThread
{
    Q_OBJECT

public:
    WebSocketThread(QObject *parent, int nWebSocketPort, AccessPolicy accessPolicy = {});
    /// Deletes the service, on the deleting thread. The thread must have ended.
    ~WebSocketThread() override;

Q_SIGNALS:
    /// The service's state once it has started, and after every change. Emitted on the service's thread.
    void statusChanged(const ServiceStatus &status);

protected:
    void run() override;

private:
    std::unique_ptr<WebSocketService> m_pWebSocketService;
    int m_nWebSocketPort;
    AccessPolicy m_accessPolicy;
};
