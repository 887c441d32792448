// What the environment makes the pad do by itself, and when. Times are held against clocks that were started before and
// after what they concern, so that a busy machine makes no difference.
#include "tests/unit/support/Patience.h"
#include "tests/unit/virtualpad/support/LoadedPad.h"
#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

bool isConnected(const LoadedPad &pad)
{
    bool connected = false;
    return pad.GetDeviceInfo(pad.id(), 1, &connected) == 0 && connected;
}

bool hasFingerprint(const LoadedPad &cedar, bool only = true)
{
    return cedar.taken(cedar.GetFPImageBase64Data(7, 3, only ? 1 : 0), cedar.FreeFPImageBase64Data).has_value();
}

} // namespace

class TestBehaviour : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keyAtTheEndOfTheSignature_data()
    {
        QTest::addColumn<QByteArray>("setting");
        QTest::addColumn<int>("key");
        QTest::addColumn<QByteArray>("complaint");
        QTest::newRow("not set") << QByteArray() << 1 << QByteArray();
        QTest::newRow("confirm") << QByteArray("confirm") << 1 << QByteArray();
        QTest::newRow("cancel") << QByteArray("cancel") << 0 << QByteArray();
        QTest::newRow("none") << QByteArray("none") << -1 << QByteArray();
        QTest::newRow("nonsense") << QByteArray("0") << 1
                                  << QByteArray("virtual pad: MVSIGNPAD_VIRTUAL_KEY=0 is neither confirm nor cancel "
                                                "nor none and does not count\n");
    }

    void keyAtTheEndOfTheSignature()
    {
        QFETCH(QByteArray, setting);
        QFETCH(int, key);
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_KEY", setting);
        StderrTrap trap;
        QVERIFY(pad.initialiseWritten(400, 300));
        QTEST(trap.written(), "complaint");
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), key);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 600);
        // Before the end no key is pressed, whichever it will be.
        qputenv("MVSIGNPAD_VIRTUAL_SPEED", "0.0001");
        QVERIFY(pad.initialise(400, 300));
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
    }

    void aPadWithoutInkPressesNoKey()
    {
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_KEY", "cancel");
        QVERIFY(pad.initialiseWith("[]", 400, 300));
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
    }

    void isUnpluggedAfterAWhile()
    {
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_UNPLUG", "0.3");
        QElapsedTimer sinceBefore;
        sinceBefore.start();
        QVERIFY(pad.initialiseWritten(400, 300));
        QElapsedTimer sinceAfter;
        sinceAfter.start();
        bool connected = true;
        while (connected) {
            const bool mustBeOut = sinceAfter.nsecsElapsed() >= 300000000;
            connected = isConnected(pad);
            QVERIFY(connected || sinceBefore.nsecsElapsed() >= 300000000);
            QVERIFY(!connected || !mustBeOut);
        }
        // As before InitialDevice.
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
        QCOMPARE(pad.SetPenWidth(2, 3), -1);
        QVERIFY(!pad.Base64Encode(2, 3));
        QCOMPARE(pad.UnInitialDevice(2), -1);
        qunsetenv("MVSIGNPAD_VIRTUAL_UNPLUG");
        QVERIFY(pad.initialiseWritten(400, 300));
        QVERIFY(isConnected(pad));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 600);
    }

    void initialiseIsThereEvenWhenThePlugIsPulledAtOnce()
    {
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_UNPLUG", "0");
        QVERIFY(pad.initialiseWritten(400, 300));
        QVERIFY(!isConnected(pad));
    }

    void theFingerComesAfterAMoment_data()
    {
        QTest::addColumn<QByteArray>("setting");
        QTest::addColumn<QByteArray>("speed");
        QTest::addColumn<int>("milliseconds");
        QTest::newRow("a second, by itself") << QByteArray() << QByteArray() << 1000;
        QTest::newRow("as fast as the signature") << QByteArray() << QByteArray("4") << 250;
        QTest::newRow("set") << QByteArray("0.4") << QByteArray() << 400;
        QTest::newRow("set, whatever the speed") << QByteArray("0.4") << QByteArray("0") << 400;
    }

    void theFingerComesAfterAMoment()
    {
        QFETCH(QByteArray, setting);
        QFETCH(QByteArray, speed);
        QFETCH(int, milliseconds);
        LoadedPad pad(7);
        qputenv("MVSIGNPAD_VIRTUAL_FINGER", setting);
        qputenv("MVSIGNPAD_VIRTUAL_SPEED", speed);
        QElapsedTimer sinceBefore;
        sinceBefore.start();
        QVERIFY(pad.initialise(400, 300));
        QElapsedTimer sinceAfter;
        sinceAfter.start();
        bool isThere = false;
        while (!isThere) {
            const bool mustBeThere = sinceAfter.nsecsElapsed() >= milliseconds * 1000000LL;
            isThere = hasFingerprint(pad);
            QVERIFY(!isThere || sinceBefore.nsecsElapsed() >= milliseconds * 1000000LL);
            QVERIFY(isThere || !mustBeThere);
        }
        pad.Clear(7);
        QVERIFY(hasFingerprint(pad));
        QVERIFY(hasFingerprint(pad, false));
    }

    void withoutAFingerThereIsNoFingerprint()
    {
        LoadedPad pad(7);
        qputenv("MVSIGNPAD_VIRTUAL_FINGER", "86400");
        QVERIFY(pad.initialiseWritten(400, 300));
        QVERIFY(!hasFingerprint(pad));
        QVERIFY(!hasFingerprint(pad, false));
        QCOMPARE(pad.GetTotalInkPointsNumber(7), 600);
    }

    void theFingerIsThereAtOnce_data()
    {
        QTest::addColumn<QByteArray>("setting");
        QTest::addColumn<QByteArray>("speed");
        QTest::newRow("set") << QByteArray("0") << QByteArray("0.0001");
        QTest::newRow("with the signature") << QByteArray() << QByteArray("0");
    }

    void theFingerIsThereAtOnce()
    {
        QFETCH(QByteArray, setting);
        QFETCH(QByteArray, speed);
        LoadedPad pad(7);
        qputenv("MVSIGNPAD_VIRTUAL_FINGER", setting);
        qputenv("MVSIGNPAD_VIRTUAL_SPEED", speed);
        QVERIFY(pad.initialise(400, 300));
        QVERIFY(hasFingerprint(pad));
    }

    void answersSlowly()
    {
        QTemporaryDir directory;
        const std::wstring file = directory.filePath(QStringLiteral("out")).toStdWString();
        LoadedPad pad;
        LoadedPad cedar(7);
        char text[256];
        const std::function<void(int)> calls[] = {
            [&](int id) { pad.InitialDevice(id, nullptr, 0, 0, 40, 30); },
            [&](int id) { pad.OpenLCD(id, 1); },
            [&](int id) { pad.Clear(id); },
            [&](int id) { pad.GetHWPenID(id, text, 32); },
            [&](int id) { pad.GetHWPadID(id, text, 32); },
            [&](int id) { pad.GetHWVersion(id, text, 32); },
            [&](int id) { pad.DisplayHWVersion(id, false); },
            [&](int id) { pad.SetPenStyle(id, true); },
            [&](int id) { pad.SetPenWidth(id, 3); },
            [&](int id) { pad.SetPenColor(id, 0, 0, 0); },
            [&](int id) { pad.SetSaveClipImageMargin(id, 0, 0, 0); },
            [&](int id) { pad.SetRealTimeSignBase64DataCallback(id, 3, nullptr); },
            [&](int id) { pad.GetTotalInkPointsNumber(id); },
            [&](int id) { pad.GetDeviceConfirmOrCancelKeyStatus(id); },
            [&](int id) { pad.GetDeviceInfo(id, 1, text); },
            [&](int id) { pad.GetDeviceInfo(id, 2, text); },
            [&](int id) { pad.GetDeviceInfo(id, 5, text); },
            [&](int id) { pad.taken(pad.Base64Encode(id, 3), pad.Base64EncodeFree); },
            [&](int id) { pad.taken(pad.Base64EncodeEx(id, 3, 0), pad.Base64EncodeExFree); },
            [&](int id) { pad.taken(pad.GetSVGImageBase64Data(id), pad.FreeSVGImageBase64Data); },
            [&](int id) { pad.taken(pad.WPSBase64Encode(id, 3), pad.WPSBase64EncodeFree); },
            [&](int id) { pad.InitialWPSSignCanvas(id, 40, 30); },
            [&](int id) { cedar.SetDisplayedFPImageAt(id, nullptr, 40, 30, 0, 0, 40, 30); },
            [&](int id) { cedar.taken(cedar.GetFPImageBase64Data(id, 3, 1), cedar.FreeFPImageBase64Data); },
            [&](int id) { pad.SaveDrawingImage(id, 3, file.c_str(), 96); },
            [&](int id) { pad.Base64Decode(id, 1, "QUJD", file.c_str()); },
            [&](int id) { pad.UnInitialDevice(id); },
        };
        qputenv("MVSIGNPAD_VIRTUAL_DELAY", "0.05");
        QVERIFY(pad.initialiseWritten(40, 30));
        for (const std::function<void(int)> &call : calls) {
            QElapsedTimer timer;
            timer.start();
            call(2);
            QVERIFY2(timer.nsecsElapsed() >= 50000000, qPrintable(QString::number(&call - std::begin(calls))));
        }
    }

    void whatIsInTheLibraryNeedsNoAnswer()
    {
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_DELAY", "1");
        QVERIFY(pad.initialiseWritten(400, 300));
        const auto ink = pad.taken(pad.Base64Encode(2, 6), pad.Base64EncodeFree);
        QTemporaryDir directory;
        const std::wstring file = directory.filePath(QStringLiteral("out")).toStdWString();
        QCOMPARE(pad.Base64Decode(2, 6, ink->constData(), file.c_str()), 0);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(pad.points().size(), 600); // counted once, and 1800 calls for the points
        for (int i = 0; i < 600; ++i)
            pad.GetDecodeInkPointData(2, i, 1);
        char text[256];
        pad.GetAboutInfo(2, text);
        QVERIFY(timer.elapsed() < patienceMs);
    }

    void brokenSecondsAreALineOnStderr_data()
    {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("text");
        for (const char *variable : {"MVSIGNPAD_VIRTUAL_FINGER", "MVSIGNPAD_VIRTUAL_UNPLUG", "MVSIGNPAD_VIRTUAL_DELAY"})
            for (const char *text : {"soon", "-1", "nan", "inf", "86401", "1s"})
                QTest::addRow("%s=%s", variable, text) << QByteArray(variable) << QByteArray(text);
    }

    void brokenSecondsAreALineOnStderr()
    {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, text);
        LoadedPad pad(7);
        qputenv(variable.constData(), text);
        StderrTrap trap;
        QVERIFY(pad.initialiseWritten(400, 300));
        QCOMPARE(trap.written(), "virtual pad: " + variable + "=" + text
                                     + " is no number of seconds from 0 to 86400 and does not count\n");
        QVERIFY(isConnected(pad));
        QVERIFY(hasFingerprint(pad));
    }
};

QTEST_GUILESS_MAIN(TestBehaviour)
#include "tst_virtualpad_behaviour.moc"
