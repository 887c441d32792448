/// The operations that drive the pad: opening, pen, clip margin, LCD, key status, device information.

#include "device/SignObjAlder.h"
#include "tests/sdk/support/ModelTestCase.h"

#include <QTemporaryDir>

#include <climits>

using recording::output;
using recording::outputInts;
using recording::outputText;

class TestControl : public ModelTestCase
{
    Q_OBJECT

public:
    using ModelTestCase::ModelTestCase;

private Q_SLOTS:
    void initialDevicePassesTheCallersID();
    void unInitialDeviceIsTrueForZeroOnly_data();
    void unInitialDeviceIsTrueForZeroOnly();
    void isValid_data();
    void isValid();
    void getSizePassesThrough_data();
    void getSizePassesThrough();
    void penValuesPassThrough();
    void setClip_data();
    void setClip();
    void lcd();
    void keyStatusPassesThrough_data();
    void keyStatusPassesThrough();
    void deviceInfo_data();
    void deviceInfo();
    void deviceInfoOfAnUnknownType_data();
    void deviceInfoOfAnUnknownType();
    void texts_data();
    void texts();
    void textWithoutTerminator();
    void aboutInfoWithoutTerminator();
    void deviceInfoWithoutTerminator_data();
    void deviceInfoWithoutTerminator();
};

void TestControl::initialDevicePassesTheCallersID()
{
    expectCall("MV*_InitialDevice(99, null, 0, 0, 0, -480)", number(1));
    QCOMPARE(pad().InitialDevice(99, 0, -480), true);
    expectCall("MV*_InitialDevice(-2147483648, null, 0, 0, 2147483647, 1)", number(0));
    QCOMPARE(pad().InitialDevice(INT_MIN, INT_MAX, 1), false);
}

void TestControl::unInitialDeviceIsTrueForZeroOnly_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("expected");
    QTest::newRow("0") << 0 << true;
    QTest::newRow("1") << 1 << false;
    QTest::newRow("-1") << -1 << false;
    QTest::newRow("256") << 256 << false;
    QTest::newRow("smallest") << INT_MIN << false;
}

void TestControl::unInitialDeviceIsTrueForZeroOnly()
{
    QFETCH(int, code);
    QFETCH(bool, expected);
    expectCall("MV*_UnInitialDevice(ID)", number(code));
    QCOMPARE(pad().UnInitialDevice(), expected);
}

void TestControl::isValid_data()
{
    QTest::addColumn<QByteArray>("flag");
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("expected");
    QTest::newRow("connected") << QByteArray("\1") << 0 << true;
    QTest::newRow("not connected") << QByteArray("\0", 1) << 0 << false;
    QTest::newRow("flag not written") << QByteArray() << 0 << false;
    QTest::newRow("connected, but an error") << QByteArray("\1") << -1 << false;
    QTest::newRow("connected, but a positive code") << QByteArray("\1") << 1 << false;
    QTest::newRow("neither 0 nor 1") << QByteArray("\xFE") << 0 << true;
}

void TestControl::isValid()
{
    QFETCH(QByteArray, flag);
    QFETCH(int, code);
    QFETCH(bool, expected);
    expectCall("MV*_GetDeviceInfo(ID, 1, buf)", output(flag.toStdString(), code));
    QCOMPARE(pad().IsValid(), expected);
}

void TestControl::getSizePassesThrough_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, -1, 2000000, INT_MAX, INT_MIN}) {
        QTest::newRow(qPrintable(QString::number(count))) << count;
    }
}

void TestControl::getSizePassesThrough()
{
    QFETCH(int, count);
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(count));
    QCOMPARE(pad().GetSize(), count);
}

void TestControl::penValuesPassThrough()
{
    expectCall("MV*_SetPenWidth(ID, 0)");
    pad().SetPenWidth(0);
    expectCall("MV*_SetPenWidth(ID, -2147483648)");
    pad().SetPenWidth(INT_MIN);
    expectCall("MV*_SetPenStyle(ID, false)");
    pad().SetPenStyle(false);
    expectCall("MV*_SetPenStyle(ID, true)");
    pad().SetPenStyle(true);
    expectCall("MV*_SetPenColor(ID, 256, -1, 2147483647)");
    pad().SetPenColor(256, -1, INT_MAX);
    expectCall("MV*_Clear(ID)", number(-1));
    pad().Clear();
}

void TestControl::setClip_data()
{
    QTest::addColumn<int>("nWidth");
    QTest::addColumn<int>("nHeight");
    QTest::addColumn<QByteArray>("call");
    QTest::newRow("off") << 0 << 0 << QByteArray("MV*_SetSaveClipImageMargin(ID, 0, 0, 0)");
    QTest::newRow("both") << 30 << 40 << QByteArray("MV*_SetSaveClipImageMargin(ID, 1, 30, 40)");
    QTest::newRow("height only") << 0 << 40 << QByteArray("MV*_SetSaveClipImageMargin(ID, 1, 0, 40)");
    QTest::newRow("width only") << 30 << 0 << QByteArray("MV*_SetSaveClipImageMargin(ID, 1, 30, 0)");
    QTest::newRow("largest") << INT_MAX << INT_MAX
                             << QByteArray("MV*_SetSaveClipImageMargin(ID, 1, 2147483647, 2147483647)");
    QTest::newRow("negative width") << -1 << 50 << QByteArray();
    QTest::newRow("negative height") << 50 << -1 << QByteArray();
    QTest::newRow("zero and negative") << 0 << -1 << QByteArray();
    QTest::newRow("both negative") << INT_MIN << INT_MIN << QByteArray();
}

void TestControl::setClip()
{
    QFETCH(int, nWidth);
    QFETCH(int, nHeight);
    QFETCH(QByteArray, call);
    if (!call.isEmpty()) {
        expectCall(call.constData(), number(-3));
    }
    pad().SetClip(nWidth, nHeight);
}

void TestControl::lcd()
{
    if (hasPenAndLcd()) {
        expectCall("MV*_OpenLCD(ID, 1)");
        expectCall("MV*_OpenLCD(ID, 0)");
        expectCall("MV*_DisplayHWVersion(ID, true)");
        expectCall("MV*_DisplayHWVersion(ID, false)");
    }
    pad().OpenLCD();
    pad().CloseLCD();
    pad().DisplayDeviceInfoInLCD(true);
    pad().DisplayDeviceInfoInLCD(false);
}

void TestControl::keyStatusPassesThrough_data()
{
    QTest::addColumn<int>("status");
    for (const int status : {1, 0, -1, 5, INT_MAX, INT_MIN}) {
        QTest::newRow(qPrintable(QString::number(status))) << status;
    }
}

void TestControl::keyStatusPassesThrough()
{
    QFETCH(int, status);
    expectCall("MV*_GetDeviceConfirmOrCancelKeyStatus(ID)", number(status));
    QCOMPARE(pad().GetDeviceConfirmOrCancelKeyStatus(), status);
}

Q_DECLARE_METATYPE(recording::Answer)

void TestControl::deviceInfo_data()
{
    QTest::addColumn<int>("nType");
    QTest::addColumn<recording::Answer>("answer");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, int nType, const recording::Answer &answer, const char *expected) {
        QTest::newRow(name) << nType << answer << QString::fromUtf8(expected);
    };
    row("1 connected", 1, output("\1"), "true");
    row("1 not connected", 1, output(std::string(1, '\0')), "false");
    row("1 not written", 1, output(""), "false");
    row("1 connected, but an error", 1, output("\1", -1), "true");
    row("1 neither 0 nor 1", 1, output("\xFF"), "true");
    row("2", 2, outputInts({800, 480}), "800,480");
    row("2 negative", 2, outputInts({-1, INT_MIN}), "-1,-2147483648");
    row("2 with an error", 2, outputInts({1, 2}, -5), "1,2");
    row("3", 3, outputInts({0, INT_MAX}), "0,2147483647");
    row("3 negative", 3, outputInts({-800, -480}), "-800,-480");
    row("4", 4, outputInts({7}), "0,7");
    row("4 not written", 4, output(""), "0,0");
    row("4 negative", 4, outputInts({-7}), "0,-7");
    row("4 with an error", 4, outputInts({1023}, 3), "0,1023");
    row("5", 5, outputText("Alder 7\""), "Alder 7\"");
    row("5 empty", 5, outputText(""), "");
    row("5 with an error", 5, outputText("SN-1", -1), "SN-1");
    row("5 not ASCII", 5, outputText("\xE7\xAD\xBE\xE5\x90\x8D"), "签名");
    row("5 up to the first NUL", 5, outputText(std::string("AB\0CD", 5)), "AB");
    row("6", 6, outputText("SN-2024-0001"), "SN-2024-0001");
    row("6 not UTF-8", 6, outputText("A\xFFZ"), "A\xEF\xBF\xBDZ");
    row("7", 7, outputInts({1, 20}), "1.20");
    row("7 negative", 7, outputInts({-1, -2}), "-1.-2");
    row("7 with an error", 7, outputInts({3, 0}, -1), "3.0");
}

void TestControl::deviceInfo()
{
    QFETCH(int, nType);
    QFETCH(recording::Answer, answer);
    QFETCH(QString, expected);
    expect(spelled("MV*_GetDeviceInfo(ID, ") + std::to_string(nType) + ", buf)", answer);
    QCOMPARE(pad().GetDeviceInfo(nType), expected);
}

void TestControl::deviceInfoOfAnUnknownType_data()
{
    QTest::addColumn<int>("nType");
    for (const int nType : {0, 8, 9, -1, -7, INT_MAX, INT_MIN}) {
        QTest::newRow(qPrintable(QString::number(nType))) << nType;
    }
}

void TestControl::deviceInfoOfAnUnknownType()
{
    QFETCH(int, nType);
    QCOMPARE(pad().GetDeviceInfo(nType), QString());
}

void TestControl::texts_data()
{
    QTest::addColumn<recording::Answer>("answer");
    QTest::addColumn<QString>("expected");
    QTest::newRow("text") << outputText("V1.0") << QStringLiteral("V1.0");
    QTest::newRow("empty") << outputText("") << QString();
    QTest::newRow("with an error") << outputText("V1.0", -1) << QStringLiteral("V1.0");
    QTest::newRow("up to the first NUL") << outputText(std::string("V1\0.0", 5)) << QStringLiteral("V1");
    QTest::newRow("quotes and control characters") << outputText("\"a\"\t\x01\\") << QStringLiteral("\"a\"\t\x01\\");
    QTest::newRow("not ASCII") << outputText("\xC3\xA9") << QString(QChar(0xE9));
    QTest::newRow("not UTF-8") << outputText("\xFE") << QString(QChar(0xFFFD));
    QTest::newRow("31 characters") << outputText("1234567890123456789012345678901")
                                   << QStringLiteral("1234567890123456789012345678901");
}

void TestControl::texts()
{
    QFETCH(recording::Answer, answer);
    QFETCH(QString, expected);
    expectCall("MV*_GetHWVersion(ID, buf, 32)", answer);
    QCOMPARE(pad().VersionID(), expected);
    expectCall("MV*_GetHWPadID(ID, buf, 32)", answer);
    QCOMPARE(pad().PadID(), expected);
    expectCall("MV*_GetAboutInfo(ID, buf)", answer);
    QCOMPARE(pad().GetAboutInfo(), expected);
    if (hasPenAndLcd()) {
        expectCall("MV*_GetHWPenID(ID, buf, 32)", answer);
        QCOMPARE(pad().PenID(), expected);
    } else {
        QCOMPARE(pad().PenID(), QString());
    }
}

void TestControl::textWithoutTerminator()
{
    const recording::Answer full = output("12345678901234567890123456789012");
    const QString expected = QStringLiteral("12345678901234567890123456789012");
    expectCall("MV*_GetHWVersion(ID, buf, 32)", full);
    QCOMPARE(pad().VersionID(), expected);
    expectCall("MV*_GetHWPadID(ID, buf, 32)", full);
    QCOMPARE(pad().PadID(), expected);
    if (hasPenAndLcd()) {
        expectCall("MV*_GetHWPenID(ID, buf, 32)", full);
        QCOMPARE(pad().PenID(), expected);
    }
}

void TestControl::aboutInfoWithoutTerminator()
{
    expectCall("MV*_GetAboutInfo(ID, buf)", output(std::string(256, 'a')));
    QCOMPARE(pad().GetAboutInfo(), QString(256, QLatin1Char('a')));
}

void TestControl::deviceInfoWithoutTerminator_data()
{
    QTest::addColumn<QByteArray>("call");
    QTest::addColumn<int>("nType");
    QTest::newRow("5") << QByteArray("MV*_GetDeviceInfo(ID, 5, buf)") << 5;
    QTest::newRow("6") << QByteArray("MV*_GetDeviceInfo(ID, 6, buf)") << 6;
}

void TestControl::deviceInfoWithoutTerminator()
{
    QFETCH(QByteArray, call);
    QFETCH(int, nType);
    expectCall(call.constData(), output(std::string(256, 'x')));
    QCOMPARE(pad().GetDeviceInfo(nType), QString(256, QLatin1Char('x')));
}

MV_TEST_EVERY_MODEL(QCoreApplication, TestControl)
#include "tst_control.moc"
