#pragma once

#include "service/AccessPolicy.h"

#include <QThread>

#include <memory>

class OriginDesk;
class ServiceStatusSource;
class WebSocketService;

/// The thread that a service lives on. Its owner starts it, and to stop it calls quit(), waits for it and deletes it.
class WebSocketThread : public QThread
{
    Q_OBJECT

public:
    /// Status source and desk, which the caller keeps, outlive this; either may be null.
    WebSocketThread(QObject *parent, int nWebSocketPort, AccessPolicy accessPolicy = {},
                    ServiceStatusSource *pStatusSource = nullptr, OriginDesk *pOriginDesk = nullptr);
    /// Deletes the service, on the deleting thread. The thread must have ended.
    ~WebSocketThread() override;

protected:
    void run() override;

private:
    std::unique_ptr<WebSocketService> m_pWebSocketService;
    int m_nWebSocketPort;
    AccessPolicy m_accessPolicy;
    ServiceStatusSource *m_pStatusSource;
    OriginDesk *m_pOriginDesk;
};
