#include "tests/unit/virtualpad/support/LoadedPad.h"
#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <QTest>

#include <cstring>

class TestDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void informationOfAPad()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(400, 300));
        bool connected = false;
        QCOMPARE(pad.GetDeviceInfo(2, 1, &connected), 0);
        QCOMPARE(connected, true);
        int pair[3] = {-7, -7, -7};
        QCOMPARE(pad.GetDeviceInfo(2, 2, pair), 0);
        QCOMPARE(pair[0], 400);
        QCOMPARE(pair[1], 300);
        QCOMPARE(pad.GetDeviceInfo(2, 3, pair), 0);
        QCOMPARE(pair[0], 200);
        QCOMPARE(pair[1], 96);
        int single[2] = {-7, -7};
        QCOMPARE(pad.GetDeviceInfo(2, 4, single), 0);
        QCOMPARE(single[0], 1023);
        QCOMPARE(single[1], -7);
        char text[256];
        QCOMPARE(pad.GetDeviceInfo(2, 5, text), 0);
        QCOMPARE(text, "Virtual Alder");
        QCOMPARE(pad.GetDeviceInfo(2, 6, text), 0);
        QCOMPARE(text, "VP-ALDER-0002");
        QCOMPARE(pad.GetDeviceInfo(2, 7, pair), 0);
        QCOMPARE(pair[0], 1);
        QCOMPARE(pair[1], 0);
        QCOMPARE(pair[2], -7);
    }

    void informationOfNoPad()
    {
        LoadedPad pad;
        bool connected = true;
        QCOMPARE(pad.GetDeviceInfo(2, 1, &connected), 0);
        QCOMPARE(connected, false);
        for (int type : {2, 3, 7}) {
            int pair[2] = {-7, -7};
            QCOMPARE(pad.GetDeviceInfo(2, type, pair), -1);
            QCOMPARE(pair[0], 0);
            QCOMPARE(pair[1], 0);
        }
        for (int type : {5, 6}) {
            char text[256];
            std::memset(text, 'x', sizeof text);
            QCOMPARE(pad.GetDeviceInfo(2, type, text), -1);
            QCOMPARE(text, "");
        }
    }

    void identifiers()
    {
        LoadedPad pad(5);
        char text[32] = "nothing yet";
        QCOMPARE(pad.GetHWPadID(5, text, 32), -1);
        QCOMPARE(text, "");
        QVERIFY(pad.initialiseWritten(400, 300));
        QCOMPARE(pad.GetHWPadID(5, text, 32), 0);
        QCOMPARE(text, "VP-BIRCH-0005");
        QCOMPARE(pad.GetHWPenID(5, text, 32), 0);
        QCOMPARE(text, "VPEN-0001");
        QCOMPARE(pad.GetHWVersion(5, text, 32), 0);
        QCOMPARE(text, "1.0");
    }

    void shortBuffersAreNotOverrun()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(400, 300));
        char text[8];
        std::memset(text, 'x', sizeof text);
        QCOMPARE(pad.GetHWPadID(2, text, 5), 0);
        QCOMPARE(text, "VP-A");
        QCOMPARE(text[5], 'x');
        QCOMPARE(pad.GetHWPadID(2, text, 1), 0);
        QCOMPARE(text, "");
        QCOMPARE(text[1], 'P');
        QCOMPARE(pad.GetHWPadID(2, text, 0), -2);
        QCOMPARE(pad.GetHWPadID(2, text, -1), -2);
        QCOMPARE(pad.GetHWPadID(2, nullptr, 32), -2);
    }

    void about()
    {
        LoadedPad pad;
        char text[256];
        std::memset(text, 'x', sizeof text);
        pad.GetAboutInfo(2, text);
        QCOMPARE(text, "Virtual signature pad 1.0: a software pad, no hardware attached.");
        pad.GetAboutInfo(2, nullptr);
        StderrTrap trap;
        pad.AboutBox(2);
        QCOMPARE(trap.written(),
                 QByteArray("virtual pad: Virtual signature pad 1.0: a software pad, no hardware attached.\n"));
    }

    void lcd()
    {
        LoadedPad pad;
        QCOMPARE(pad.OpenLCD(2, 1), -1);
        QCOMPARE(pad.DisplayHWVersion(2, true), -1);
        QVERIFY(pad.initialiseWritten(400, 300));
        QCOMPARE(pad.OpenLCD(2, 0), 0);
        QCOMPARE(pad.OpenLCD(2, 1), 0);
        QCOMPARE(pad.DisplayHWVersion(2, true), 0);
    }

    void textsAreFreedOnceByTheirOwnFunction()
    {
        LoadedPad pad(2);
        QVERIFY(pad.initialiseWritten(400, 300));
        char *const pText = pad.Base64Encode(2, 6);
        char *const pTime = pad.GetInkPointDataTimeInfo(2, 3);
        QVERIFY(pText && pTime);
        const QByteArray content(pText);
        const QByteArray complaint =
            "virtual pad: a text was given back twice, or through another text's free function\n";
        {
            StderrTrap trap;
            pad.Base64EncodeExFree(2, pText);
            QCOMPARE(trap.written(), complaint);
        }
        QCOMPARE(QByteArray(pText), content);
        // The text stays good whatever happens to the pad, until it is freed.
        QVERIFY(pad.initialiseWritten(100, 100));
        pad.UnInitialDevice(2);
        QCOMPARE(QByteArray(pText), content);
        QCOMPARE(QByteArray(pTime), QByteArray("15"));
        StderrTrap trap;
        pad.Base64EncodeFree(2, pText);
        pad.FreeInkPointDataTimeInfo(2, pTime);
        pad.Base64EncodeFree(2, nullptr);
        QCOMPARE(trap.written(), QByteArray());
        pad.FreeInkPointDataTimeInfo(2, pTime);
        QCOMPARE(trap.written(), complaint);
    }

    void unloadsAndLoadsAgain()
    {
        for (int i = 0; i < 200; ++i) {
            LoadedPad pad(i % 2 ? 2 : 7);
            char padId[32];
            QCOMPARE(pad.GetHWPadID(pad.id(), padId, 32), -1);
            QVERIFY(pad.initialiseWritten(200 + i, 100));
            QCOMPARE(pad.GetTotalInkPointsNumber(pad.id()), 600);
            QCOMPARE(QImage::fromData(pad.encoded(3)).size(), QSize(200 + i, 100));
        }
    }
};

QTEST_GUILESS_MAIN(TestDevice)
#include "tst_virtualpad_device.moc"
