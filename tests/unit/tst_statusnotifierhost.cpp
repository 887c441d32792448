// Whether a StatusNotifier host is registered, asked of a real bus and of watchers of the test's own.
#include "tests/unit/support/PrivateBus.h"
#include "tray/StatusNotifierHost.h"

#include <QDBusConnection>
#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <thread>

namespace {

const char watcherName[] = "org.kde.StatusNotifierWatcher";
const char watcherPath[] = "/StatusNotifierWatcher";

/// What a desktop has on the bus that knows the hosts.
class Watcher : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered CONSTANT)

public:
    explicit Watcher(bool hostRegistered) : m_hostRegistered(hostRegistered) {}
    bool isHostRegistered() const { return m_hostRegistered; }

private:
    bool m_hostRegistered;
};

/// As the waiting for the tray asks; this thread answers for its watcher meanwhile.
StatusNotifierHost askedFromAnotherThread()
{
    auto answer = StatusNotifierHost::Silent;
    std::atomic<bool> isAnswered{false};
    std::thread asking([&] {
        answer = FindStatusNotifierHost();
        isAnswered = true;
    });
    while (!isAnswered)
        QTest::qWait(1);
    asking.join();
    return answer;
}

} // namespace

class StatusNotifierHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void nobodyHoldsTheName();
    void watcherAnswers_data();
    void watcherAnswers();
    void holderKnowsNoSuchProperty();
    void holderIsSilent();

private:
    QDBusConnection holder() const { return QDBusConnection(QStringLiteral("holder")); }

    PrivateBus m_bus;
};

void StatusNotifierHostTest::initTestCase()
{
    QVERIFY(!m_bus.address().isEmpty());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    QVERIFY(QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("holder")).isConnected());
}

void StatusNotifierHostTest::nobodyHoldsTheName()
{
    QCOMPARE(FindStatusNotifierHost(), StatusNotifierHost::None);
}

void StatusNotifierHostTest::watcherAnswers_data()
{
    QTest::addColumn<bool>("hostRegistered");
    QTest::addColumn<int>("found");
    QTest::newRow("host") << true << int(StatusNotifierHost::Registered);
    QTest::newRow("no host") << false << int(StatusNotifierHost::None);
}

void StatusNotifierHostTest::watcherAnswers()
{
    QFETCH(bool, hostRegistered);
    QFETCH(int, found);
    Watcher watcher(hostRegistered);
    QVERIFY(holder().registerObject(QLatin1String(watcherPath), &watcher, QDBusConnection::ExportAllProperties));
    QVERIFY(holder().registerService(QLatin1String(watcherName)));
    const StatusNotifierHost answer = askedFromAnotherThread();
    holder().unregisterService(QLatin1String(watcherName));
    holder().unregisterObject(QLatin1String(watcherPath));
    QCOMPARE(int(answer), found);
}

/// The object is not there: the bus's connection says so by itself, whoever runs.
void StatusNotifierHostTest::holderKnowsNoSuchProperty()
{
    QVERIFY(holder().registerService(QLatin1String(watcherName)));
    const StatusNotifierHost answer = askedFromAnotherThread();
    holder().unregisterService(QLatin1String(watcherName));
    QCOMPARE(answer, StatusNotifierHost::None);
}

void StatusNotifierHostTest::holderIsSilent()
{
    Watcher watcher(true);
    QVERIFY(holder().registerObject(QLatin1String(watcherPath), &watcher, QDBusConnection::ExportAllProperties));
    QVERIFY(holder().registerService(QLatin1String(watcherName)));
    // The watcher lives on this thread, which asks and so does not answer.
    QElapsedTimer timer;
    timer.start();
    const StatusNotifierHost answer = FindStatusNotifierHost();
    const qint64 elapsed = timer.elapsed();
    holder().unregisterService(QLatin1String(watcherName));
    holder().unregisterObject(QLatin1String(watcherPath));
    QCOMPARE(answer, StatusNotifierHost::Silent);
    QVERIFY2(elapsed >= 450 && elapsed < 10000, qPrintable(QString::number(elapsed))); // Qt would wait for 25 seconds
}

QTEST_GUILESS_MAIN(StatusNotifierHostTest)

#include "tst_statusnotifierhost.moc"
