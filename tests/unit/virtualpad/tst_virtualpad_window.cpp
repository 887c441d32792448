#include "tests/unit/support/Patience.h"
#include "tests/unit/support/ShownWindows.h"
#include "tests/unit/virtualpad/support/LoadedPad.h"
#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLocale>
#include <QPointer>
#include <QSignalSpy>
#include <QTabletEvent>
#include <QTemporaryFile>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <future>

namespace {

/// The pad's window, once it is there; null when it does not come.
QWidget *padWindow()
{
    const auto isThere = [] { return shownWindows<QWidget>().size() == 1; };
    return QTest::qWaitFor(isThere, patienceMs) ? shownWindows<QWidget>().first() : nullptr;
}

QWidget *surfaceOf(QWidget *pWindow)
{
    for (QWidget *pChild : pWindow->findChildren<QWidget *>()) {
        if (!qobject_cast<QAbstractButton *>(pChild))
            return pChild;
    }
    return nullptr;
}

QAbstractButton *keyOf(QWidget *pWindow, const QString &text)
{
    for (QAbstractButton *pKey : pWindow->findChildren<QAbstractButton *>()) {
        if (pKey->text() == text)
            return pKey;
    }
    return nullptr;
}

/// Until every timer of the GUI thread that is set to that time or less by now has had its turn: timers fire in the
/// order in which they are due, however late.
bool waitForTimersOf(int ms)
{
    bool isDue = false;
    constexpr int kMoreThanTimersAreCoarse = 2;
    QTimer::singleShot(ms * kMoreThanTimersAreCoarse, [&isDue] { isDue = true; });
    return QTest::qWaitFor([&isDue] { return isDue; }, patienceMs);
}

/// Lets the window take over what the pad was told.
void settle()
{
    QCoreApplication::processEvents();
}

void drag(QWidget *pSurface, const QList<QPoint> &way)
{
    QTest::mousePress(pSurface, Qt::LeftButton, Qt::NoModifier, way.first());
    for (const QPoint &position : way.mid(1)) {
        // QTest::mouseMove has no button pressed.
        QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(pSurface, &move);
    }
    QTest::mouseRelease(pSurface, Qt::LeftButton, Qt::NoModifier, way.last());
}

void sendTablet(QWidget *pSurface, QEvent::Type type, const QPointF &position, qreal pressure,
                QTabletEvent::PointerType pointer = QTabletEvent::Pen)
{
    const bool isMove = type == QEvent::TabletMove;
    QTabletEvent event(type, position, pSurface->mapToGlobal(position.toPoint()), QTabletEvent::Stylus, pointer,
                       pressure, 0, 0, 0, 0, 0, Qt::NoModifier, 1, isMove ? Qt::NoButton : Qt::LeftButton,
                       type == QEvent::TabletRelease ? Qt::NoButton : Qt::LeftButton);
    QCoreApplication::sendEvent(pSurface, &event);
}

QList<QPoint> positions(const QList<TestPoint> &points)
{
    QList<QPoint> result;
    for (const TestPoint &point : points)
        result.append(QPoint(point.x, point.y));
    return result;
}

QList<int> strokeEnds(const QList<TestPoint> &points)
{
    QList<int> result;
    for (const TestPoint &point : points)
        result.append(point.strokeEnd);
    return result;
}

int darkPixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qGray(image.pixel(x, y)) < 64;
    }
    return count;
}

bool isConnected(const LoadedPad &pad)
{
    bool connected = false;
    return pad.GetDeviceInfo(pad.id(), 1, &connected) == 0 && connected;
}

} // namespace

class TestWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void init() { qputenv("MVSIGNPAD_VIRTUAL_WINDOW", "1"); }

    void cleanup()
    {
        QLocale::setDefault(QLocale::c());
        qunsetenv("MVSIGNPAD_VIRTUAL_WINDOW");
        QTRY_COMPARE_WITH_TIMEOUT(shownWindows<QWidget>().size(), 0, patienceMs);
    }

    void showsThePad()
    {
        LoadedPad pad(7);
        QVERIFY(pad.initialiseWritten(400, 300));
        QWidget *const pWindow = padWindow();
        QVERIFY(pWindow);
        QCOMPARE(pWindow->windowTitle(), QStringLiteral("Cedar \u2013 virtual signature pad"));
        QCOMPARE(surfaceOf(pWindow)->size(), QSize(400, 300));
        QVERIFY(keyOf(pWindow, QStringLiteral("Confirm")));
        QVERIFY(keyOf(pWindow, QStringLiteral("Cancel")));
        QVERIFY(isConnected(pad));
        // What writes by itself would have done so at once.
        QCOMPARE(pad.GetTotalInkPointsNumber(7), 0);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(7), -1);
    }

    void theBodyIsAsWideAsItsHeaderNeeds_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::addColumn<QSize>("window");
        QTest::newRow("a wide pad") << QSize(400, 300) << QSize(452, 426);
        QTest::newRow("a narrow pad") << QSize(100, 60) << QSize(382, 186);
    }

    void theBodyIsAsWideAsItsHeaderNeeds()
    {
        QFETCH(QSize, screen);
        LoadedPad pad;
        QVERIFY(pad.initialise(screen.width(), screen.height()));
        QWidget *const pWindow = padWindow();
        QVERIFY(pWindow);
        QTEST(pWindow->size(), "window");
        QCOMPARE(surfaceOf(pWindow)->geometry(), QRect(QPoint((pWindow->width() - screen.width()) / 2, 46), screen));
    }

    void theIconIsAPadWithAStroke()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QVERIFY(pWindow);
        const QImage icon = pWindow->windowIcon().pixmap(64, 64).toImage();
        QCOMPARE(icon.size(), QSize(64, 64));
        QCOMPARE(qAlpha(icon.pixel(32, 2)), 0);
        QCOMPARE(icon.pixel(5, 30), 0xff292d32u);
        QCOMPARE(icon.pixel(10, 17), 0xffffffffu);
        QVERIFY(darkPixels(icon.copy(10, 16, 44, 26)) > 100);
        QCOMPARE(icon.pixel(32, 50), 0xff2f8f5bu);
    }

    void theWritingLineKeepsOffBothEdges()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QVERIFY(pWindow);
        const QImage line = surfaceOf(pWindow)->grab(QRect(1, 222, 398, 1)).toImage();
        QList<int> inked;
        for (int x = 0; x < line.width(); ++x) {
            if ((line.pixel(x, 0) & 0xffffff) != 0xf4f6f1)
                inked.append(x + 1);
        }
        QVERIFY(inked.size() > 100);
        QVERIFY2(std::abs(inked.first() - 32) <= 1, qPrintable(QString::number(inked.first())));
        QVERIFY2(inked.last() >= 360 && inked.last() <= 369, qPrintable(QString::number(inked.last())));
    }

    void theHintGoesWithTheFirstPoint()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        const auto hint = [pSurface] {
            const QImage below = pSurface->grab(QRect(100, 226, 200, 28)).toImage();
            QRect inked;
            for (int y = 0; y < below.height(); ++y)
                for (int x = 0; x < below.width(); ++x)
                    if (qGray(below.pixel(x, y)) < 200)
                        inked |= QRect(x, y, 1, 1);
            return inked;
        };
        QVERIFY(hint().width() > 40);
        QVERIFY2(std::abs(hint().center().x() - 100) <= 3, "not in the middle");
        drag(pSurface, {{50, 60}, {60, 65}});
        QCOMPARE(hint(), QRect());
        pad.Clear(2);
        settle();
        QVERIFY(hint().width() > 40);
    }

    void theLampAndTheKeysShowTheState()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QVERIFY(pWindow);
        const auto ready = [](QRgb pixel) { return (pixel & 0xffffff) == 0x6cb8f0; };
        const auto dark = [](QRgb pixel) { return (pixel & 0xffffff) == 0x5c636a; };
        const auto green = [](QRgb pixel) { return qGreen(pixel) > 160 && qRed(pixel) < 100 && qBlue(pixel) < 160; };
        const auto red = [](QRgb pixel) { return qRed(pixel) > 200 && qGreen(pixel) < 130; };
        const auto shows = [pWindow](const auto &isWanted) {
            const QImage header = pWindow->grab(QRect(0, 0, pWindow->width(), 40)).toImage();
            int count = 0;
            for (int y = 0; y < header.height(); ++y)
                for (int x = 0; x < header.width(); ++x)
                    count += isWanted(header.pixel(x, y)) ? 1 : 0;
            return count > 9;
        };
        const auto redness = [pWindow](const char *key) {
            QAbstractButton *const pKey = keyOf(pWindow, QLatin1String(key));
            const QRgb pixel = pKey->grab().toImage().pixel(pKey->width() / 2, 8);
            return qRed(pixel) - qGreen(pixel);
        };
        QVERIFY(shows(ready) && !shows(dark) && !shows(green) && !shows(red));
        pad.OpenLCD(2, 0);
        settle();
        QVERIFY(!shows(ready) && shows(dark));
        pad.OpenLCD(2, 1);
        settle();
        QTest::mouseClick(keyOf(pWindow, QStringLiteral("Cancel")), Qt::LeftButton);
        QVERIFY(!shows(ready) && shows(red) && !shows(green));
        QVERIFY(redness("Cancel") > 80 && std::abs(redness("Confirm")) < 20);
        QTest::mouseClick(keyOf(pWindow, QStringLiteral("Confirm")), Qt::LeftButton);
        QVERIFY(!shows(ready) && !shows(red) && shows(green));
        QVERIFY(redness("Confirm") < -60 && std::abs(redness("Cancel")) < 20);
    }

    void speaksChinese_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("confirm");
        QTest::newRow("simplified") << QStringLiteral("zh_CN") << QStringLiteral("Alder \u2013 虚拟签名板")
                                    << QStringLiteral("确认");
        QTest::newRow("traditional") << QStringLiteral("zh_TW") << QStringLiteral("Alder \u2013 虛擬簽名板")
                                     << QStringLiteral("確認");
        QTest::newRow("any other") << QStringLiteral("de_DE") << QStringLiteral("Alder \u2013 virtual signature pad")
                                   << QStringLiteral("Confirm");
    }

    void speaksChinese()
    {
        QFETCH(QString, locale);
        QFETCH(QString, confirm);
        QLocale::setDefault(QLocale(locale));
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QVERIFY(pWindow);
        QTEST(pWindow->windowTitle(), "title");
        QVERIFY(keyOf(pWindow, confirm));
    }

    void aMouseSigns()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        drag(pSurface, {{50, 60}, {60, 65}, {70, 80}});
        QTest::qWait(30);
        drag(pSurface, {{200, 100}});
        const QList<TestPoint> points = pad.points();
        // The release of the mouse adds no point of its own.
        QCOMPARE(positions(points), (QList<QPoint>{{50, 60}, {60, 65}, {70, 80}, {200, 100}}));
        QCOMPARE(strokeEnds(points), (QList<int>{0, 0, 1, 1}));
        QCOMPARE(points.first().time, QByteArray("0"));
        QVERIFY(points[3].time.toInt() - points[2].time.toInt() >= 25);
        for (const TestPoint &point : points)
            QVERIFY(point.pressure > 200 && point.pressure < 1000);
    }

    void thePictureShowsWhatIsSigned()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        pad.SetPenStyle(2, false);
        pad.SetPenWidth(2, 8);
        pad.SetPenColor(2, 0, 0, 200);
        settle();
        drag(pSurface, {{50, 150}, {100, 150}, {150, 150}, {200, 150}, {300, 150}});
        const QImage picture = QImage::fromData(pad.encoded(3));
        const QImage screen = pSurface->grab().toImage();
        for (int x : {60, 150, 290}) {
            QCOMPARE(picture.pixel(x, 150), qRgb(0, 0, 200));
            QCOMPARE(screen.pixel(x, 150), qRgb(0, 0, 200));
            QCOMPARE(qAlpha(picture.pixel(x, 140)), 0);
            QVERIFY(qGray(screen.pixel(x, 140)) > 200);
        }
        pad.SetPenColor(2, 200, 0, 0);
        settle();
        QCOMPARE(pSurface->grab().toImage().pixel(150, 150), qRgb(200, 0, 0));
        pad.Clear(2);
        settle();
        QCOMPARE(darkPixels(pSurface->grab().toImage().copy(40, 100, 300, 100)), 0);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
    }

    void aStrokeIsSeenWhileItIsWritten()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        sendTablet(pSurface, QEvent::TabletPress, QPointF(50, 100), 1.0);
        // Longer than the window draws in one piece.
        for (int i = 1; i <= 500; ++i)
            sendTablet(pSurface, QEvent::TabletMove, QPointF(50 + 0.5 * i, 100), 1.0);
        const QImage screen = pSurface->grab().toImage();
        for (int x = 52; x < 298; ++x)
            QVERIFY2(qGray(screen.pixel(x, 100)) < 40, qPrintable(QString::number(x)));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 501);
        QCOMPARE(pad.points().last().strokeEnd, 0);
        // A change of the pen in the middle of the stroke leaves no gap in it.
        pad.SetPenWidth(2, 5);
        settle();
        sendTablet(pSurface, QEvent::TabletMove, QPointF(330, 100), 1.0);
        sendTablet(pSurface, QEvent::TabletRelease, QPointF(330, 100), 0.0);
        const QImage later = pSurface->grab().toImage();
        for (int x = 52; x < 328; ++x)
            QVERIFY2(qGray(later.pixel(x, 100)) < 40, qPrintable(QString::number(x)));
        QCOMPARE(pad.points().last().strokeEnd, 1);
    }

    void aTabletTellsItsPressure()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        sendTablet(pSurface, QEvent::TabletMove, QPointF(5, 5), 0.0); // hovering
        sendTablet(pSurface, QEvent::TabletPress, QPointF(10, 10), 0.25);
        sendTablet(pSurface, QEvent::TabletMove, QPointF(20.4, 10.6), 1.0);
        sendTablet(pSurface, QEvent::TabletMove, QPointF(30, 12), 0.0);
        sendTablet(pSurface, QEvent::TabletRelease, QPointF(30, 12), 0.0);
        sendTablet(pSurface, QEvent::TabletMove, QPointF(40, 40), 0.0);
        const QList<TestPoint> points = pad.points();
        QCOMPARE(positions(points), (QList<QPoint>{{10, 10}, {20, 11}, {30, 12}}));
        QCOMPARE(points[0].pressure, 256);
        QCOMPARE(points[1].pressure, 1023);
        QCOMPARE(points[2].pressure, 0);
        QCOMPARE(strokeEnds(points), (QList<int>{0, 0, 1}));
    }

    void anEraserDoesNothing()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        sendTablet(pSurface, QEvent::TabletPress, QPointF(10, 10), 0.5, QTabletEvent::Eraser);
        sendTablet(pSurface, QEvent::TabletMove, QPointF(20, 10), 0.5, QTabletEvent::Eraser);
        sendTablet(pSurface, QEvent::TabletRelease, QPointF(20, 10), 0.5, QTabletEvent::Eraser);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
    }

    void aFingerSigns()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        QTouchDevice *const pDevice = QTest::createTouchDevice();
        QTest::touchEvent(pSurface, pDevice).press(0, QPoint(30, 40), pSurface);
        QTest::touchEvent(pSurface, pDevice).move(0, QPoint(50, 45), pSurface);
        QTest::touchEvent(pSurface, pDevice).move(0, QPoint(70, 60), pSurface);
        QTest::touchEvent(pSurface, pDevice).release(0, QPoint(70, 60), pSurface);
        const QList<TestPoint> points = pad.points();
        QCOMPARE(positions(points), (QList<QPoint>{{30, 40}, {50, 45}, {70, 60}}));
        QCOMPARE(strokeEnds(points), (QList<int>{0, 0, 1}));
    }

    void aSecondFingerRests()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        QTouchDevice *const pDevice = QTest::createTouchDevice();
        QTest::touchEvent(pSurface, pDevice).press(0, QPoint(30, 40), pSurface);
        QTest::touchEvent(pSurface, pDevice).move(0, QPoint(50, 45), pSurface).press(1, QPoint(200, 200), pSurface);
        QTest::touchEvent(pSurface, pDevice).release(0, QPoint(50, 45), pSurface).stationary(1);
        QTest::touchEvent(pSurface, pDevice).move(1, QPoint(210, 200), pSurface);
        QTest::touchEvent(pSurface, pDevice).release(1, QPoint(210, 200), pSurface);
        const QList<TestPoint> points = pad.points();
        QCOMPARE(positions(points), (QList<QPoint>{{30, 40}, {50, 45}}));
        QCOMPARE(strokeEnds(points), (QList<int>{0, 1}));
    }

    void beyondTheEdgeThePenIsLifted()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        drag(pSurface, {{380, 100}, {398, 100}, {440, 100}, {440, 120}, {399, 130}, {380, 130}});
        const QList<TestPoint> points = pad.points();
        QCOMPARE(positions(points), (QList<QPoint>{{380, 100}, {398, 100}, {399, 130}, {380, 130}}));
        QCOMPARE(strokeEnds(points), (QList<int>{0, 1, 0, 1}));
    }

    void keysReadUntilTheNextClear_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("shortcut");
        QTest::addColumn<int>("status");
        QTest::newRow("confirm") << QStringLiteral("Confirm") << int(Qt::Key_Return) << 1;
        QTest::newRow("cancel") << QStringLiteral("Cancel") << int(Qt::Key_Escape) << 0;
    }

    void keysReadUntilTheNextClear()
    {
        QFETCH(QString, text);
        QFETCH(int, shortcut);
        QFETCH(int, status);
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QWidget *const pSurface = surfaceOf(pWindow);
        drag(pSurface, {{50, 60}, {60, 65}});
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
        QAbstractButton *const pKey = keyOf(pWindow, text);
        QTest::mouseClick(pKey, Qt::LeftButton);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), status);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), status);
        QVERIFY(pKey->isChecked());
        // The signature is closed.
        drag(pSurface, {{100, 60}, {110, 65}});
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 2);
        pad.Clear(2);
        settle();
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
        QVERIFY(!pKey->isChecked());
        drag(pSurface, {{100, 60}, {110, 65}, {120, 65}});
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 3);
        QApplication::setActiveWindow(pWindow);
        QVERIFY(QTest::qWaitForWindowActive(pWindow));
        QTest::keyClick(pWindow, Qt::Key(shortcut));
        QTRY_COMPARE_WITH_TIMEOUT(pad.GetDeviceConfirmOrCancelKeyStatus(2), status, patienceMs);
    }

    void theOtherKeyCorrectsTheFirst()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QTest::mouseClick(keyOf(pWindow, QStringLiteral("Cancel")), Qt::LeftButton);
        QTest::mouseClick(keyOf(pWindow, QStringLiteral("Confirm")), Qt::LeftButton);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), 1);
        QVERIFY(!keyOf(pWindow, QStringLiteral("Cancel"))->isChecked());
    }

    void aDarkScreenTakesNoInk()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        drag(pSurface, {{50, 60}, {60, 65}});
        pad.OpenLCD(2, 0);
        settle();
        QVERIFY(darkPixels(pSurface->grab().toImage()) > 100000);
        drag(pSurface, {{150, 60}, {160, 65}});
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 2);
        pad.OpenLCD(2, 1);
        settle();
        QVERIFY(darkPixels(pSurface->grab().toImage()) < 1000);
        drag(pSurface, {{150, 60}, {160, 65}});
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 4);
    }

    void informationIsShown()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        const QRect upperHalf(0, 20, 400, 130);
        QCOMPARE(darkPixels(pSurface->grab().toImage().copy(upperHalf)), 0);
        pad.DisplayHWVersion(2, true);
        settle();
        QVERIFY(darkPixels(pSurface->grab().toImage().copy(upperHalf)) > 100);
        pad.DisplayHWVersion(2, false);
        settle();
        QCOMPARE(darkPixels(pSurface->grab().toImage().copy(upperHalf)), 0);
    }

    void closingUnplugsThePad()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QPointer<QWidget> pWindow = padWindow();
        drag(surfaceOf(pWindow), {{50, 60}, {60, 65}});
        QVERIFY(isConnected(pad));
        QVERIFY(QApplication::quitOnLastWindowClosed());
        QSignalSpy lastClosed(qApp, &QGuiApplication::lastWindowClosed);
        pWindow->close();
        QVERIFY(!isConnected(pad));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
        QVERIFY(!pad.Base64Encode(2, 3));
        QTRY_VERIFY_WITH_TIMEOUT(!pWindow, patienceMs);
        QCOMPARE(shownWindows<QWidget>().size(), 0);
        QCOMPARE(lastClosed.count(), 0);
        QCOMPARE(pad.UnInitialDevice(2), -1);
        QVERIFY(pad.initialise(300, 200));
        pWindow = padWindow();
        QVERIFY(pWindow);
        QVERIFY(isConnected(pad));
        drag(surfaceOf(pWindow), {{50, 60}});
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 1);
    }

    void closingAnOldWindowLeavesTheNewPadIn()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QVERIFY(pad.initialise(300, 200));
        // The window has not heard of the second pad when the user closes it.
        pWindow->close();
        QVERIFY(isConnected(pad));
        QTRY_COMPARE_WITH_TIMEOUT(shownWindows<QWidget>().size(), 1, patienceMs);
        QCOMPARE(surfaceOf(shownWindows<QWidget>().first())->size(), QSize(300, 200));
    }

    void anOldWindowWritesNotOnTheNewPad()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pWindow = padWindow();
        QWidget *const pSurface = surfaceOf(pWindow);
        QTest::mousePress(pSurface, Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
        QVERIFY(pad.initialise(400, 300));
        QMouseEvent move(QEvent::MouseMove, QPoint(60, 60), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(pSurface, &move);
        QTest::mouseClick(keyOf(pWindow, QStringLiteral("Confirm")), Qt::LeftButton);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
        settle();
        QCoreApplication::sendEvent(pSurface, &move);
        QTest::mouseRelease(pSurface, Qt::LeftButton, Qt::NoModifier, QPoint(60, 60));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
    }

    void theWindowStaysForTheNextPad()
    {
        QPointer<QWidget> pWindow;
        {
            LoadedPad pad;
            QVERIFY(pad.initialise(400, 300));
            pWindow = padWindow();
            pad.UnInitialDevice(2);
        }
        settle();
        LoadedPad pad(4);
        QVERIFY(pad.initialise(300, 200));
        constexpr int kPatienceOfTheWindowMs = 250;
        QVERIFY(waitForTimersOf(kPatienceOfTheWindowMs));
        QVERIFY(pWindow);
        QVERIFY(pWindow->isVisible());
        QCOMPARE(pWindow->windowTitle(), QStringLiteral("Rowan \u2013 virtual signature pad"));
        QCOMPARE(surfaceOf(pWindow)->size(), QSize(300, 200));
        pad.UnInitialDevice(4);
        QTRY_VERIFY_WITH_TIMEOUT(!pWindow, patienceMs);
    }

    void aPadLargerThanTheScreenIsShownSmaller()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(4096, 2048));
        QWidget *const pWindow = padWindow();
        QWidget *const pSurface = surfaceOf(pWindow);
        QVERIFY(pWindow->width() <= 800);
        QVERIFY(std::abs(pSurface->width() - 2 * pSurface->height()) <= 2);
        drag(
            pSurface,
            {{1, 1}, {pSurface->width() / 2, pSurface->height() / 2}, {pSurface->width() - 1, pSurface->height() - 1}});
        const QList<TestPoint> points = pad.points();
        QCOMPARE(points.size(), 3);
        QVERIFY(points[0].x > 0 && points[0].x < 16 && points[0].y > 0 && points[0].y < 16);
        QVERIFY(std::abs(points[1].x - 2048) <= 8 && std::abs(points[1].y - 1024) <= 8);
        QVERIFY(points[2].x > 4080 && points[2].x < 4096 && points[2].y > 2032 && points[2].y < 2048);
    }

    void theSmallestPadIsShown()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(1, 1));
        QWidget *const pSurface = surfaceOf(padWindow());
        QTest::mouseClick(pSurface, Qt::LeftButton, Qt::NoModifier, QPoint(0, 0));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 1);
        pad.DisplayHWVersion(2, true);
        settle();
        QCOMPARE(pSurface->grab().size(), QSize(1, 1));
    }

    void inkHasAnEnd()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QWidget *const pSurface = surfaceOf(padWindow());
        sendTablet(pSurface, QEvent::TabletPress, QPointF(10, 10), 0.5);
        for (int i = 0; i < 50100; ++i)
            sendTablet(pSurface, QEvent::TabletMove, QPointF(10 + i % 380, 10 + i % 280), 0.5);
        sendTablet(pSurface, QEvent::TabletRelease, QPointF(10, 10), 0.5);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 50000);
    }

    void theServiceNeverWaitsForTheWindow()
    {
        // The GUI thread waits for the service thread, as it does when the user stops the service.
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QVERIFY(padWindow());
        std::future<void> service = std::async(std::launch::async, [&pad] {
            for (int i = 0; i < 50; ++i) {
                pad.UnInitialDevice(2);
                pad.initialise(200 + i, 100);
                pad.Clear(2);
                pad.SetPenWidth(2, 1 + i);
                pad.OpenLCD(2, i % 2);
                pad.encoded(3);
            }
            pad.UnInitialDevice(2);
        });
        if (service.wait_for(std::chrono::milliseconds(patienceMs)) != std::future_status::ready)
            qFatal("a call waits for the GUI thread");
        QTRY_COMPARE_WITH_TIMEOUT(shownWindows<QWidget>().size(), 0, patienceMs);
    }

    void callbacksHearOfTheKey()
    {
        static int lastKey;
        lastKey = -9;
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        pad.SignPadEventCallback(2, [](int nEventID) { lastKey = nEventID; });
        QWidget *const pWindow = padWindow();
        QTest::mouseClick(keyOf(pWindow, QStringLiteral("Cancel")), Qt::LeftButton);
        QCOMPARE(lastKey, -9);
        pad.GetDeviceConfirmOrCancelKeyStatus(2);
        QCOMPARE(lastKey, 0);
    }

    void noWindowUnlessItIsWanted_data()
    {
        QTest::addColumn<QByteArray>("setting");
        QTest::addColumn<QByteArray>("complaint");
        QTest::newRow("switched off") << QByteArray("0") << QByteArray();
        QTest::newRow("by itself, but on no desktop") << QByteArray("") << QByteArray();
        QTest::newRow("nonsense") << QByteArray("yes")
                                  << QByteArray("virtual pad: MVSIGNPAD_VIRTUAL_WINDOW=yes is neither 0 nor 1 and does "
                                                "not count\n");
    }

    void noWindowUnlessItIsWanted()
    {
        QFETCH(QByteArray, setting);
        QFETCH(QByteArray, complaint);
        qputenv("MVSIGNPAD_VIRTUAL_WINDOW", setting);
        LoadedPad pad;
        StderrTrap trap;
        QVERIFY(pad.initialiseWritten(400, 300));
        QCOMPARE(trap.written(), complaint);
        settle();
        QCOMPARE(shownWindows<QWidget>().size(), 0);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 600);
    }

    void whoSignsByHandPullsThePlugAndPressesKeysByHand()
    {
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_UNPLUG", "0");
        qputenv("MVSIGNPAD_VIRTUAL_KEY", "cancel");
        QVERIFY(pad.initialiseWritten(400, 300));
        drag(surfaceOf(padWindow()), {{50, 60}, {60, 65}});
        QVERIFY(isConnected(pad));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 2);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
    }

    void aWindowThatIsAskedForWinsOverAnInkFile()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith("[]", 400, 300));
        QVERIFY(padWindow());
        drag(surfaceOf(padWindow()), {{50, 60}});
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 1);
    }
};

QTEST_MAIN(TestWindow)
#include "tst_virtualpad_window.moc"
