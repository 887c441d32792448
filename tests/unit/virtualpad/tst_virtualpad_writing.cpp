#include "tests/unit/support/Patience.h"
#include "tests/unit/virtualpad/support/LoadedPad.h"
#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>

namespace {

const QList<TestPoint> kTwoStrokes = {
    {10, 20, 500, 0, "0"},    {15, 20, 700, 0, "100"}, {20, 20, 400, 1, "200"},
    {-3, 90, 1023, 0, "900"}, {40, 290, 0, 1, "1000"},
};

int g_confirmed = 0;
int g_pictures = 0;
QByteArray g_lastPicture;

void countKey(int nEventID)
{
    g_confirmed += nEventID == 1 ? 1 : 1000;
}

void countPicture(char *pData)
{
    ++g_pictures;
    g_lastPicture = pData;
}

} // namespace

class TestWriting : public QObject
{
    Q_OBJECT

    /// What is wrong with the number of points after that time, at 200 points a second times the speed; nothing, if
    /// it lies where the clock's readings before and after the count have it.
    static QString flawOfCountAfter(LoadedPad &pad, int waitMs, double speed)
    {
        QElapsedTimer sinceBefore;
        sinceBefore.start();
        pad.Clear(pad.id());
        QElapsedTimer sinceAfter;
        sinceAfter.start();
        if (waitMs > 0)
            QTest::qSleep(waitMs);
        const double fewest = double(sinceAfter.nsecsElapsed()) * 200e-9 * speed;
        const int count = pad.GetTotalInkPointsNumber(pad.id());
        const double most = double(sinceBefore.nsecsElapsed()) * 200e-9 * speed;
        if (count >= int(fewest) && count <= int(most))
            return {};
        return QStringLiteral("%1 points, not %2 to %3").arg(count).arg(fewest).arg(most);
    }

private Q_SLOTS:
    void writesTwoHundredPointsASecond()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        QCOMPARE(flawOfCountAfter(pad, 0, 1.0), QString());
        QCOMPARE(flawOfCountAfter(pad, 150, 1.0), QString());
        QCOMPARE(flawOfCountAfter(pad, 700, 1.0), QString());
    }

    void speedIsAFactor_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<double>("speed");
        QTest::newRow("four times") << QByteArray("4") << 4.0;
        QTest::newRow("a tenth") << QByteArray("0.1") << 0.1;
        QTest::newRow("real time") << QByteArray("1") << 1.0;
        QTest::newRow("empty") << QByteArray("") << 1.0;
    }

    void speedIsAFactor()
    {
        QFETCH(QByteArray, text);
        QFETCH(double, speed);
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_SPEED", text);
        QVERIFY(pad.initialise(400, 300));
        QCOMPARE(flawOfCountAfter(pad, 300, speed), QString());
    }

    void brokenSpeedIsRealTimeAndALineOnStderr_data()
    {
        QTest::addColumn<QByteArray>("text");
        for (const char *text : {"fast", "-1", "nan", "inf", "1x", "1,5"})
            QTest::newRow(text) << QByteArray(text);
    }

    void brokenSpeedIsRealTimeAndALineOnStderr()
    {
        QFETCH(QByteArray, text);
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_SPEED", text);
        StderrTrap trap;
        QVERIFY(pad.initialise(400, 300));
        QCOMPARE(trap.written(),
                 "virtual pad: MVSIGNPAD_VIRTUAL_SPEED=" + text + " is no number from 0 up; writing in real time\n");
        QCOMPARE(flawOfCountAfter(pad, 100, 1.0), QString());
    }

    void speedZeroWritesAllAtOnce()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(400, 300));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 600);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), 1);
        pad.Clear(2);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 600);
    }

    void confirmKeyReadsOneOnceTheSignatureIsComplete()
    {
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_SPEED", "4");
        QVERIFY(pad.initialise(400, 300));
        int pointsBefore = 0;
        while (pointsBefore < 600) {
            pointsBefore = pad.GetTotalInkPointsNumber(2);
            const int key = pad.GetDeviceConfirmOrCancelKeyStatus(2);
            if (pointsBefore == 600)
                QCOMPARE(key, 1);
            else if (pad.GetTotalInkPointsNumber(2) < 600)
                QCOMPARE(key, -1);
        }
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), 1);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), 1);
        pad.Clear(2);
        const int key = pad.GetDeviceConfirmOrCancelKeyStatus(2);
        QVERIFY(key == -1 || pad.GetTotalInkPointsNumber(2) == 600);
    }

    void builtInSignatureLooksWritten()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(960, 600));
        const QList<TestPoint> points = pad.points();
        QCOMPARE(points.size(), 600);
        int strokes = 0;
        int left = 960, right = 0, top = 600, bottom = 0, lightest = 1023, firmest = 0;
        for (int i = 0; i < points.size(); ++i) {
            const TestPoint &point = points[i];
            QCOMPARE(point.time, QByteArray::number(5 * i));
            strokes += point.strokeEnd;
            left = std::min(left, point.x);
            right = std::max(right, point.x);
            top = std::min(top, point.y);
            bottom = std::max(bottom, point.y);
            lightest = std::min(lightest, point.pressure);
            firmest = std::max(firmest, point.pressure);
            if (i > 0 && !points[i - 1].strokeEnd) {
                // No jumps: neither of the pen nor of the hand's force.
                QVERIFY(std::abs(point.x - points[i - 1].x) <= 20 && std::abs(point.y - points[i - 1].y) <= 20);
                QVERIFY(std::abs(point.pressure - points[i - 1].pressure) <= 150);
            }
        }
        const TestPoint touch = {108, 282, 154, 0, "0"};
        QCOMPARE(points.first(), touch);
        QCOMPARE(strokes, 4);
        QCOMPARE(points.last().strokeEnd, 1);
        QVERIFY2(left >= 70 && right <= 890 && right - left >= 800, "fills the pad's width but for a margin");
        QVERIFY2(top >= 100 && bottom <= 500 && bottom - top >= 250, "keeps its shape");
        QVERIFY2(lightest > 0 && lightest < 200 && firmest > 700 && firmest <= 1023, "swells and fades");
    }

    void builtInSignatureFitsEveryPad_data()
    {
        QTest::addColumn<QSize>("size");
        for (const QSize size : {QSize(1, 1), QSize(4096, 1), QSize(1, 4096), QSize(100, 700), QSize(4096, 4096)})
            QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }

    void builtInSignatureFitsEveryPad()
    {
        QFETCH(QSize, size);
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(size.width(), size.height()));
        const QList<TestPoint> points = pad.points();
        QCOMPARE(points.size(), 600);
        for (const TestPoint &point : points)
            QVERIFY(point.x >= 0 && point.x <= size.width() && point.y >= 0 && point.y <= size.height());
    }

    void recordedInkComesBackEqual()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(inkText(kTwoStrokes), 400, 300));
        QCOMPARE(pad.points(), kTwoStrokes);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), 1);
    }

    void recordedInkKeepsItsOwnTime()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(inkText(kTwoStrokes), 400, 300));
        // The file is gone by now; Clear writes what was read from it once more.
        pad.Clear(2);
        QCOMPARE(pad.points(), kTwoStrokes);

        qputenv("MVSIGNPAD_VIRTUAL_SPEED", "2");
        QTemporaryFile file;
        QVERIFY(file.open());
        file.write(inkText(kTwoStrokes));
        QVERIFY(file.flush());
        qputenv("MVSIGNPAD_VIRTUAL_INK", file.fileName().toLocal8Bit());
        const double appearAtMs[] = {2.5, 52.5, 102.5, 452.5, 502.5};
        QElapsedTimer sinceBefore;
        sinceBefore.start();
        QVERIFY(pad.initialise(400, 300));
        QElapsedTimer sinceAfter;
        sinceAfter.start();
        const auto pointsAt = [&](const QElapsedTimer &timer) {
            const double ms = double(timer.nsecsElapsed()) / 1e6;
            return int(
                std::count_if(std::begin(appearAtMs), std::end(appearAtMs), [ms](double at) { return at <= ms; }));
        };
        while (sinceAfter.elapsed() < 600) {
            const int fewest = pointsAt(sinceAfter);
            const int count = pad.GetTotalInkPointsNumber(2);
            const bool confirmed = pad.GetDeviceConfirmOrCancelKeyStatus(2) == 1;
            const int most = pointsAt(sinceBefore);
            QVERIFY(fewest <= count && count <= most);
            QVERIFY(confirmed ? most == 5 : fewest < 5);
            QTest::qSleep(7);
        }
        QCOMPARE(pad.points(), kTwoStrokes);
    }

    void padsStartFresh()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        pad.SetPenWidth(2, 50);
        pad.SetPenColor(2, 255, 0, 0);
        pad.SetPenStyle(2, false);
        pad.SetSaveClipImageMargin(2, 1, 0, 0);
        pad.InitialWPSSignCanvas(2, 10, 10);
        QTRY_VERIFY_WITH_TIMEOUT(pad.GetTotalInkPointsNumber(2) >= 99, patienceMs);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(pad.initialise(300, 200));
        QVERIFY(pad.GetTotalInkPointsNumber(2) <= int(double(timer.nsecsElapsed()) * 200e-9));
        QVERIFY(pad.initialiseWritten(400, 300));
        const QByteArray afterOthers = pad.encoded(2);

        LoadedPad fresh;
        QVERIFY(fresh.initialiseWritten(400, 300));
        QVERIFY(!afterOthers.isEmpty());
        QCOMPARE(afterOthers, fresh.encoded(2));
    }

    void onlyTheLastInitialisedPadIsThere()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(400, 300));
        QVERIFY(pad.InitialDevice(5, nullptr, 0, 0, 200, 100));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
        QCOMPARE(pad.UnInitialDevice(2), -1);
        QCOMPARE(pad.GetTotalInkPointsNumber(5), 600);
        QVERIFY(!pad.InitialDevice(6, nullptr, 0, 0, 200, 100));
        QCOMPARE(pad.GetTotalInkPointsNumber(5), 0);
    }

    void callbacksHearOfInkAndKeyWhenThePadIsAsked()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        g_confirmed = g_pictures = 0;
        pad.SignPadEventCallback(2, countKey);
        QVERIFY(!pad.SetRealTimeSignBase64DataCallback(2, 7, countPicture));
        QVERIFY(pad.SetRealTimeSignBase64DataCallback(2, 2, countPicture));
        _STRUCT_INK_POINT_DATA first{};
        QTRY_COMPARE_WITH_TIMEOUT(pad.GetInkPointData(2, &first), 0, patienceMs);
        QCOMPARE(g_pictures, 0);
        QVERIFY(pad.GetTotalInkPointsNumber(2) > 0);
        QCOMPARE(g_pictures, 1);
        QVERIFY(QImage::fromData(QByteArray::fromBase64(g_lastPicture), "png").hasAlphaChannel());
        while (pad.GetDeviceConfirmOrCancelKeyStatus(2) == -1)
            QCOMPARE(g_confirmed, 0);
        pad.GetDeviceConfirmOrCancelKeyStatus(2);
        QCOMPARE(g_confirmed, 1);
        const int picturesThen = g_pictures;
        pad.GetTotalInkPointsNumber(2);
        pad.GetDeviceConfirmOrCancelKeyStatus(2);
        QCOMPARE(g_confirmed, 1);
        QCOMPARE(g_pictures, picturesThen);
        pad.UnInitialDevice(2);
        QVERIFY(pad.initialiseWritten(400, 300));
        pad.GetDeviceConfirmOrCancelKeyStatus(2);
        QCOMPARE(g_confirmed, 1);
    }
};

QTEST_GUILESS_MAIN(TestWriting)
#include "tst_virtualpad_writing.moc"
