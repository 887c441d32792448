#pragma once

#include "service/WebSocketThread.h"

#include <QHostAddress>
#include <memory>

/// The service in its own thread on a free port, started and stopped as the tray menu does it.
class RunningService
{
public:
    RunningService();
    /// The desk and the source, if any, outlive this.
    explicit RunningService(quint16 port, AccessPolicy accessPolicy = {}, OriginDesk *desk = nullptr,
                            ServiceStatusSource *source = nullptr);
    ~RunningService();

    quint16 port() const { return m_port; }
    /// Waits until the port takes connections.
    bool waitUntilListening(const QHostAddress &address = QHostAddress::LocalHost) const;
    /// Waits until the thread's event loop runs, also when the service could not listen.
    bool waitUntilItsEventsAreHandled() const;
    void start();
    /// quit(), unbounded wait(), delete.
    void stop();
    const QThread *thread() const { return m_thread.get(); }
    bool isRunning() const { return m_thread && m_thread->isRunning(); }

private:
    quint16 m_port;
    AccessPolicy m_accessPolicy;
    OriginDesk *m_desk;
    ServiceStatusSource *m_source;
    std::unique_ptr<WebSocketThread> m_thread;
};
