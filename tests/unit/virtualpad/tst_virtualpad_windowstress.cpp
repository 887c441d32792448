#include "tests/unit/virtualpad/support/LoadedPad.h"
#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <random>
#include <thread>

namespace {

/// An application of its own, as long as it lives.
struct Application {
    int argc = 1;
    char name[8] = "stress";
    char *argv[2] = {name, nullptr};
    QApplication application{argc, argv};
};

/// A service that does everything a page can ask for, in any order, and loads and unloads the library in between.
void serve(const std::atomic<bool> &stop, unsigned seed, std::atomic<int> *pInitialised)
{
    std::mt19937 random(seed);
    const auto chance = [&random](int oneIn) { return random() % unsigned(oneIn) == 0; };
    const int ids[] = {2, 5, 7, 3, 4};
    while (!stop) {
        LoadedPad pad(ids[random() % 5]);
        const int id = pad.id();
        for (int round = int(random() % 4); round >= 0 && !stop; --round) {
            if (pad.initialise(200 + int(random() % 200), 100 + int(random() % 200)))
                ++*pInitialised;
            for (int step = int(random() % 40); step > 0 && !stop; --step) {
                pad.GetTotalInkPointsNumber(id);
                pad.GetDeviceConfirmOrCancelKeyStatus(id);
                if (chance(4))
                    pad.Clear(id);
                if (chance(4))
                    pad.SetPenWidth(id, 1 + int(random() % 9));
                if (chance(4) && pad.OpenLCD)
                    pad.OpenLCD(id, int(random() % 2));
                if (chance(4) && pad.DisplayHWVersion)
                    pad.DisplayHWVersion(id, chance(2));
                if (chance(6))
                    pad.encoded(1 + int(random() % 6));
                if (chance(6))
                    pad.points();
                if (chance(3))
                    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 8));
            }
            if (chance(2))
                pad.UnInitialDevice(id);
            if (chance(8))
                std::this_thread::sleep_for(std::chrono::milliseconds(300));
        }
    }
}

/// A user who signs, presses keys and closes the window in any order.
class WildUser : public QObject
{
public:
    explicit WildUser(unsigned seed) : m_random(seed)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { act(); });
        m_timer.start(1);
    }

    int actions = 0;

private:
    void act()
    {
        for (QWidget *pWindow : QApplication::topLevelWidgets()) {
            if (!pWindow->isVisible())
                continue;
            ++actions;
            const QList<QWidget *> children = pWindow->findChildren<QWidget *>();
            QWidget *const pChild = children[int(m_random() % unsigned(children.size()))];
            const QPoint position(int(m_random() % 300), int(m_random() % 200));
            const QEvent::Type types[] = {QEvent::MouseButtonPress, QEvent::MouseMove, QEvent::MouseMove,
                                          QEvent::MouseMove,        QEvent::MouseMove, QEvent::MouseButtonRelease};
            const QEvent::Type type = types[m_random() % 6];
            QMouseEvent event(type, position, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, Qt::LeftButton,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(pChild, &event);
            if (m_random() % 50 == 0)
                static_cast<void>(pWindow->grab());
            if (m_random() % 200 == 0)
                pWindow->close();
        }
    }

    std::mt19937 m_random;
    QTimer m_timer;
};

} // namespace

class TestWindowStress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theWindowEndsWithTheApplication()
    {
        qputenv("MVSIGNPAD_VIRTUAL_WINDOW", "1");
        LoadedPad pad;
        QPointer<QWidget> pWindow;
        {
            Application application;
            QVERIFY(pad.initialise(300, 200));
            QCoreApplication::processEvents();
            QCOMPARE(QApplication::topLevelWidgets().size(), 1);
            pWindow = QApplication::topLevelWidgets().first();
        }
        QVERIFY(!pWindow);
        // Nobody shows anything any more, and the pad can be asked all the same.
        pad.Clear(2);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
        Application application;
        QVERIFY(pad.initialise(300, 200));
        QCoreApplication::processEvents();
        QCOMPARE(QApplication::topLevelWidgets().size(), 1);
    }

    void withoutWidgetsThePadWritesByItself()
    {
        qputenv("MVSIGNPAD_VIRTUAL_WINDOW", "1");
        LoadedPad pad;
        StderrTrap trap;
        QVERIFY(pad.initialiseWritten(300, 200));
        QCOMPARE(trap.written(), QByteArray("virtual pad: this program shows no windows; the pad writes by itself\n"));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 600);
    }

    /// MVSIGNPAD_STRESS_SECONDS makes it longer than the usual ten seconds.
    void anythingAtAnyMoment()
    {
        qputenv("MVSIGNPAD_VIRTUAL_WINDOW", "1");
        bool isNumber = false;
        const int wanted = qEnvironmentVariableIntValue("MVSIGNPAD_STRESS_SECONDS", &isNumber);
        const int seconds = isNumber && wanted > 0 ? wanted : 10;
        QElapsedTimer timer;
        timer.start();
        std::atomic<int> initialised{0};
        int actions = 0;
        // A busy machine takes longer to do enough.
        for (unsigned seed = 1; timer.elapsed() < seconds * 1000 || initialised < 100 || actions < 400; ++seed) {
            // The program ends and starts again, with the window open more often than not.
            Application application;
            WildUser user(seed);
            // The service is stopped and started through the menu: the GUI thread waits for it.
            for (int start = 0; start < 4; ++start) {
                std::atomic<bool> stop{false};
                std::thread service([&] { serve(stop, seed * 16 + unsigned(start), &initialised); });
                QTest::qWait(300);
                stop = true;
                service.join();
            }
            LoadedPad last;
            QVERIFY(last.initialise(300, 200));
            QCoreApplication::processEvents();
            actions += user.actions;
        }
    }
};

int main(int argc, char *argv[])
{
    // Not QTEST_MAIN: the test makes its applications itself, one after the other.
    TestWindowStress test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_virtualpad_windowstress.moc"
