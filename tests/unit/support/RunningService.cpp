#include "tests/unit/support/RunningService.h"

#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/Patience.h"

#include <QTcpSocket>
#include <QTest>

#include <atomic>
#include <utility>

namespace {

/// A class of the tests' own: ThreadSanitizer is told of the events of these alone.
class Guest : public QObject
{
};

} // namespace

RunningService::RunningService() : RunningService(freePort()) {}

RunningService::RunningService(quint16 port, AccessPolicy accessPolicy, OriginDesk *desk, ServiceStatusSource *source)
    : m_port(port), m_accessPolicy(std::move(accessPolicy)), m_desk(desk), m_source(source)
{
    start();
}

RunningService::~RunningService()
{
    stop();
}

bool RunningService::waitUntilListening(const QHostAddress &address) const
{
    const auto takesConnections = [this, address] {
        QTcpSocket probe;
        probe.connectToHost(address, m_port);
        return probe.waitForConnected(100);
    };
    return QTest::qWaitFor(takesConnections, patienceMs);
}

bool RunningService::waitUntilItsEventsAreHandled() const
{
    std::atomic<bool> isHandled{false};
    Guest guest;
    guest.moveToThread(m_thread.get());
    QMetaObject::invokeMethod(
        &guest,
        [&, home = QThread::currentThread()] {
            guest.moveToThread(home);
            isHandled = true;
        },
        Qt::QueuedConnection);
    return QTest::qWaitFor([&isHandled] { return isHandled.load(); }, patienceMs);
}

void RunningService::start()
{
    m_thread.reset(new WebSocketThread(nullptr, m_port, m_accessPolicy, m_source, m_desk));
    m_thread->start();
}

void RunningService::stop()
{
    if (!m_thread)
        return;
    m_thread->quit();
    m_thread->wait();
    m_thread.reset();
}
