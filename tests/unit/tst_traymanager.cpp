// The end of the session ends the event loop without the menu: the tray's manager goes as it stands.
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"
#include "tray/StatusOnBus.h"
#include "tray/SysTrayMenuMgr.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <atomic>

class TrayManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void goesWhileTheServiceRuns();
    void stoppedIsTheLastThatIsTold();
    void goesWhileItWaitsForTheTray_data();
    void goesWhileItWaitsForTheTray();

private:
    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
    std::unique_ptr<SysTrayMenuMgr> m_manager;
};

void TrayManagerTest::initTestCase()
{
    // No tray of the desktop that the test may run on.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
}

void TrayManagerTest::init()
{
    m_warnings.reset(new WarningTrap);
    m_manager.reset(new SysTrayMenuMgr);
}

void TrayManagerTest::cleanup()
{
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

void TrayManagerTest::goesWhileTheServiceRuns()
{
    const quint16 port = freePort();
    const QString name = QStringLiteral("MVSignPadSDK_WSSvr");
    m_home.writeConfig(name, "[Settings]\nWebSocketPort=" + QByteArray::number(port) + '\n');
    const QStringList settings = m_home.configLines(name);
    m_manager->LoadDataFromINIFIle();
    m_manager->OpenWebSocketService(true);
    SignClient client;
    QTRY_VERIFY_WITH_TIMEOUT(client.connectTo(port), patienceMs);
    m_manager.reset();
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(m_home.configLines(name), settings);
}

/// The service's own words come from its thread: they must not arrive behind the word of its end.
void TrayManagerTest::stoppedIsTheLastThatIsTold()
{
    m_home.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"),
                       "[Settings]\nWebSocketPort=" + QByteArray::number(freePort()) + '\n');
    m_manager->LoadDataFromINIFIle();
    const StatusOnBus status(m_manager->StatusSource());
    std::atomic<int> told{0};
    const auto count = [&told](const ServiceStatus &) { ++told; };
    connect(&m_manager->StatusSource(), &ServiceStatusSource::statusChanged, &status, count, Qt::DirectConnection);
    m_manager->OpenWebSocketService(true);
    QElapsedTimer timer;
    timer.start();
    while (told == 0 && timer.elapsed() < patienceMs) // without handling events: the word stays on its way
        QThread::msleep(1);
    QVERIFY(told > 0);
    m_manager->OpenWebSocketService(false);
    QCoreApplication::processEvents();
    QCOMPARE(status.Service().state, ServiceStatus::Stopped);
    QCOMPARE(status.Service().strReason, QStringLiteral("switched off in the menu"));
}

void TrayManagerTest::goesWhileItWaitsForTheTray_data()
{
    QTest::addColumn<int>("ms");
    QTest::newRow("at once") << 0;
    QTest::newRow("between two looks") << 700;
}

void TrayManagerTest::goesWhileItWaitsForTheTray()
{
    QFETCH(int, ms);
    m_manager->Initialize();
    QTimer::singleShot(ms, qApp, &QCoreApplication::quit);
    QApplication::exec();
    QElapsedTimer timer;
    timer.start();
    m_manager.reset();
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed()))); // it would wait for 30 seconds
}

QTEST_MAIN(TrayManagerTest)

#include "tst_traymanager.moc"
