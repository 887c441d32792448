#include "tests/unit/virtualpad/support/LoadedPad.h"
#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <vector>

namespace {

const int kNumbers[] = {0,   1,    -1,   2,     3,     6,          7,           96,
                        600, 4096, 4097, 32768, 65536, 2147483647, -2147483647, std::numeric_limits<int>::min()};

} // namespace

class TestHostile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;

    /// Every function with the numbers wherever it takes one, and null wherever it takes an address.
    void callEverythingWith(LoadedPad &pad, int id, int a, int b)
    {
        char buffer[32] = "";
        _STRUCT_INK_POINT_DATA point{a, 0, 0, 0, 0};
        pad.OpenLCD(id, a);
        pad.GetHWPenID(id, nullptr, a);
        pad.GetHWPadID(id, nullptr, a);
        pad.GetHWVersion(id, nullptr, a);
        pad.GetHWVersion(id, buffer, std::min(a, 32));
        pad.DisplayHWVersion(id, a != 0);
        pad.SetPenStyle(id, b != 0);
        pad.SetPenWidth(id, a);
        pad.SetPenColor(id, a, b, a);
        pad.SetSaveClipImageMargin(id, a, b, a);
        pad.SignPadEventCallback(id, nullptr);
        pad.SetRealTimeSignBase64DataCallback(id, a, nullptr);
        pad.InitialWPSSignCanvas(id, std::min(a, 100), std::min(b, 100));
        pad.SetDisplayedFPImageAt(id, nullptr, std::min(a, 100), std::min(b, 100), b, a, std::min(b, 100),
                                  std::min(a, 100));
        pad.GetTotalInkPointsNumber(id);
        pad.GetInkPointData(id, nullptr);
        pad.GetInkPointData(id, &point);
        pad.taken(pad.GetInkPointDataTimeInfo(id, a), pad.FreeInkPointDataTimeInfo);
        pad.SaveDrawingImage(id, a, nullptr, b);
        pad.SaveDrawingImage(id, a, m_directory.filePath(QStringLiteral("a")).toStdWString().c_str(), b);
        pad.GetDeviceInfo(id, a, nullptr);
        pad.GetAboutInfo(id, nullptr);
        pad.Base64Decode(id, a, nullptr, L"");
        pad.Base64Decode(id, a, "QUJD", nullptr);
        pad.GetDecodeInkPointData(id, a, b);
        pad.taken(pad.Base64Encode(id, a), pad.Base64EncodeFree);
        pad.taken(pad.Base64EncodeEx(id, a, b), pad.Base64EncodeExFree);
        pad.taken(pad.WPSBase64Encode(id, a), pad.WPSBase64EncodeFree);
        pad.taken(pad.GetFPImageBase64Data(id, a, b), pad.FreeFPImageBase64Data);
        pad.taken(pad.GetSVGImageBase64Data(id), pad.FreeSVGImageBase64Data);
        pad.GetDeviceConfirmOrCancelKeyStatus(id);
        pad.Clear(id);
    }

private Q_SLOTS:
    void anyNumbersAndNoAddresses()
    {
        LoadedPad pad(2);
        LoadedPad cedar(7);
        // Each family lacks some functions; with both there are all.
        pad.SetDisplayedFPImageAt = cedar.SetDisplayedFPImageAt;
        pad.GetFPImageBase64Data = cedar.GetFPImageBase64Data;
        pad.FreeFPImageBase64Data = cedar.FreeFPImageBase64Data;
        for (int id : {2, 7}) {
            callEverythingWith(pad, id, 1, 2);
            for (int a : kNumbers) {
                for (int b : kNumbers) {
                    QVERIFY(pad.InitialDevice(id, nullptr, 0, 0, 120, 80));
                    callEverythingWith(pad, id, a, b);
                    QCOMPARE(pad.UnInitialDevice(id), 0);
                }
            }
        }
    }

    void padsOfAnySize_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<bool>("there");
        QTest::newRow("none") << 0 << 0 << false;
        QTest::newRow("flat") << 400 << 0 << false;
        QTest::newRow("negative") << -400 << -300 << false;
        QTest::newRow("smallest") << 1 << 1 << true;
        QTest::newRow("largest") << 4096 << 4096 << true;
        QTest::newRow("too wide") << 4097 << 1 << false;
        QTest::newRow("too high") << 1 << 4097 << false;
        QTest::newRow("huge") << 2147483647 << 2147483647 << false;
    }

    void padsOfAnySize()
    {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(bool, there);
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(10, 10));
        QCOMPARE(pad.initialise(width, height), there);
        bool connected = !there;
        QCOMPARE(pad.GetDeviceInfo(2, 1, &connected), 0);
        QCOMPARE(connected, there);
        QCOMPARE(pad.GetTotalInkPointsNumber(2), there ? 600 : 0);
        QCOMPARE(QImage::fromData(pad.encoded(3)).size(), there ? QSize(width, height) : QSize(0, 0));
    }

    void valuesOutOfRangeChangeNothing()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(200, 100));
        const QByteArray before = pad.encoded(2);
        QVERIFY(!before.isEmpty());
        for (int width : {0, -1, 101, 2147483647})
            QCOMPARE(pad.SetPenWidth(2, width), -2);
        for (int value : {-1, 256, 2147483647}) {
            QCOMPARE(pad.SetPenColor(2, value, 0, 0), -2);
            QCOMPARE(pad.SetPenColor(2, 0, value, 0), -2);
            QCOMPARE(pad.SetPenColor(2, 0, 0, value), -2);
        }
        for (int margin : {-1, 4097, 2147483647}) {
            QCOMPARE(pad.SetSaveClipImageMargin(2, 1, margin, 0), -2);
            QCOMPARE(pad.SetSaveClipImageMargin(2, 1, 0, margin), -2);
        }
        QVERIFY(!pad.InitialWPSSignCanvas(2, -1, 100));
        QCOMPARE(pad.encoded(2), before);
        for (int dpi : {0, -96, 2401, 2147483647})
            QCOMPARE(pad.SaveDrawingImage(2, 3, L"/nowhere/a.png", dpi), -2);
        for (int type : {0, -1, 7, 2147483647}) {
            QCOMPARE(pad.SaveDrawingImage(2, type, L"/nowhere/a.png", 96), -2);
            QVERIFY(!pad.Base64Encode(2, type));
            QVERIFY(!pad.Base64EncodeEx(2, type, 0));
            QCOMPARE(pad.Base64Decode(2, type, "QUJD", L"/nowhere/a.png"), -2);
        }
        QCOMPARE(pad.SaveDrawingImage(2, 3, nullptr, 96), -2);
        for (int type : {0, 8, -1, 2147483647}) {
            char untouched[256] = "as before";
            QCOMPARE(pad.GetDeviceInfo(2, type, untouched), -2);
            QCOMPARE(untouched, "as before");
        }
        _STRUCT_INK_POINT_DATA point{600, 5, 5, 5, 5};
        QCOMPARE(pad.GetInkPointData(2, &point), -2);
        point.nIndex = -1;
        QCOMPARE(pad.GetInkPointData(2, &point), -2);
        QCOMPARE(point.x, short(5));
        QVERIFY(!pad.GetInkPointDataTimeInfo(2, 600));
        QVERIFY(!pad.GetInkPointDataTimeInfo(2, -1));
    }

    void dataThatIsNoInk_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no base64") << QByteArray("*** not base64 ***");
        QTest::newRow("blank inside") << QByteArray("W10 =");
        QTest::newRow("only padding") << QByteArray("====");
        QTest::newRow("not UTF-8") << QByteArray("\xff\xfe\xfd");
        QTest::newRow("base64 of prose") << QByteArray("my name is not ink").toBase64();
        QTest::newRow("base64 of a picture") << QByteArray("\x89PNG\r\n\x1a\n\0\0", 10).toBase64();
        QTest::newRow("base64 of a broken point") << QByteArray("[{\"x\":\"1\"}]").toBase64();
        QTest::newRow("base64 of 9 MB") << QByteArray(9 * 1024 * 1024, '[').toBase64();
    }

    void dataThatIsNoInk()
    {
        QFETCH(QByteArray, data);
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(200, 100));
        const std::wstring path = m_directory.filePath(QStringLiteral("ink")).toStdWString();
        const auto good = pad.taken(pad.Base64Encode(2, 6), pad.Base64EncodeFree);
        QCOMPARE(pad.Base64Decode(2, 6, good->constData(), path.c_str()), 0);
        QCOMPARE(pad.GetTotalDecodeInkPointsNumber(2), 600);
        QCOMPARE(pad.Base64Decode(2, 6, data.constData(), path.c_str()), -4);
        QCOMPARE(pad.GetTotalDecodeInkPointsNumber(2), 0);
        QCOMPARE(pad.GetDecodeInkPointData(2, 0, 1), 0);
    }

    void inkIsDecodedThoughTheFileCannotBeWritten()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(200, 100));
        const auto text = pad.taken(pad.Base64Encode(2, 6), pad.Base64EncodeFree);
        QCOMPARE(pad.Base64Decode(2, 6, text->constData(), L"/tmp/"), -5);
        QCOMPARE(pad.GetTotalDecodeInkPointsNumber(2), 600);
        QCOMPARE(pad.GetDecodeInkPointData(2, 0, 4), 0);
        QCOMPARE(pad.GetDecodeInkPointData(2, 600, 1), 0);
        QCOMPARE(pad.GetDecodeInkPointData(2, -1, 1), 0);
    }

    void pathsOfImpossibleCodePoints()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(100, 100));
        const wchar_t path[] = {L'/', L'n', L'/', wchar_t(0x7fffffff), wchar_t(0xd800), wchar_t(0x110000), 0};
        QCOMPARE(pad.SaveDrawingImage(2, 3, path, 96), -5);
    }

    void theMostInkInALargePadIsDrawn()
    {
        QByteArray text = "[";
        for (int i = 0; i < 3000; ++i) {
            const bool odd = i % 2;
            text += QByteArray(i ? "," : "") + "{\"Time\":\"" + QByteArray::number(i)
                    + "\",\"bStrokeEnd\":\"0\",\"pressure\":\"1023\",\"x\":\"" + (odd ? "32767" : "-32768")
                    + "\",\"y\":\"" + QByteArray::number(i) + "\"}";
        }
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(text + "]", 2000, 2000));
        pad.SetPenWidth(2, 100);
        QCOMPARE(QImage::fromData(pad.encoded(4)).size(), QSize(2000, 2000));
    }
};

QTEST_GUILESS_MAIN(TestHostile)
#include "tst_virtualpad_hostile.moc"
