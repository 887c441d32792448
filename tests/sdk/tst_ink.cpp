/// The operations that hand the drawing out: as points, as images, as SVG.

#include "tests/sdk/support/ModelTestCase.h"

#include "device/SignObjAlder.h"

#include <climits>

using recording::point;

class TestInk : public ModelTestCase
{
    Q_OBJECT

public:
    using ModelTestCase::ModelTestCase;

private Q_SLOTS:
    void noPoints_data();
    void noPoints();
    void pointAtTheLimits();
    void strokeEndIsUnsigned();
    void failedPointIsLeftOut();
    void pointWithoutTimeIsLeftOut();
    void pointWithNeitherIsLeftOut();
    void emptyTimeIsATime();
    void timeTextIsEscaped();
    void timeTextThatIsNotUtf8();
    void countIsTheOwnGetSize();

    void encodePassesTheTypeThrough_data();
    void encodePassesTheTypeThrough();
    void encodeRepeatsItself();
    void encodeGivesBackANullText();
    void encodeOfHostileText();
    void svg();
    void svgGivesBackANullText();

    void image_data();
    void image();
    void changedImageIsReportedAgain_data();
    void changedImageIsReportedAgain();
    void nullImage_data();
    void nullImage();
    void nullImageKeepsTheLastOne_data();
    void nullImageKeepsTheLastOne();
    void emptyImageIsNoNews_data();
    void emptyImageIsNoNews();
    void imageTextIsEscaped_data();
    void imageTextIsEscaped();
    void imageLengthCountsCharacters_data();
    void imageLengthCountsCharacters();
    void comparisonIsExact_data();
    void comparisonIsExact();
    void threeOperationsShareOneLastImage();
    void othersDoNotTouchTheLastImage();
    void reinitialisingKeepsTheLastImage();

private:
    enum Kind { Inks, OpaqueInks, WpsInks };

    void everyKindOfImage() const;
    /// Asks for an image, for which the library hands out `image` as its text number `serial`.
    QString ask(int kind, const recording::Answer &image, int serial);
};

void TestInk::noPoints_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("0") << 0;
    QTest::newRow("-1") << -1;
    QTest::newRow("smallest") << INT_MIN;
}

void TestInk::noPoints()
{
    QFETCH(int, count);
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(count));
    QCOMPARE(pad().GetPointer(), QStringLiteral("[]"));
}

void TestInk::pointAtTheLimits()
{
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(2));
    expectCall("MV*_GetInkPointData(ID, point 0)", point(-32768, 32767, -32768, 0));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)", text("2024-01-02 03:04:05.678"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #1)");
    expectCall("MV*_GetInkPointData(ID, point 1)", point(0, -1, 32767, 1));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 1)", text("1"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #2)");
    QCOMPARE(pad().GetPointer(),
             QStringLiteral(R"([{"Time":"2024-01-02 03:04:05.678","bStrokeEnd":"0","pressure":"-32768",)"
                            R"("x":"-32768","y":"32767"},)"
                            R"({"Time":"1","bStrokeEnd":"1","pressure":"32767","x":"0","y":"-1"}])"));
}

void TestInk::strokeEndIsUnsigned()
{
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(1));
    expectCall("MV*_GetInkPointData(ID, point 0)", point(1, 2, 3, 255));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)", text("t"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #1)");
    QCOMPARE(pad().GetPointer(), QStringLiteral(R"([{"Time":"t","bStrokeEnd":"255","pressure":"3","x":"1","y":"2"}])"));
}

void TestInk::failedPointIsLeftOut()
{
    recording::Answer kept = text("never given back");
    kept.keepsText = true;
    recording::Answer failed = point(9, 9, 9, 9);
    failed.value = -1;
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(3));
    expectCall("MV*_GetInkPointData(ID, point 0)", point(1, 2, 3, 0));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)", text("a"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #1)");
    expectCall("MV*_GetInkPointData(ID, point 1)", failed);
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 1)", kept);
    expectCall("MV*_GetInkPointData(ID, point 2)", point(4, 5, 6, 1));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 2)", text("c"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #3)");
    QCOMPARE(pad().GetPointer(), QStringLiteral(R"([{"Time":"a","bStrokeEnd":"0","pressure":"3","x":"1","y":"2"},)"
                                                R"({"Time":"c","bStrokeEnd":"1","pressure":"6","x":"4","y":"5"}])"));
}

void TestInk::pointWithoutTimeIsLeftOut()
{
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(2));
    expectCall("MV*_GetInkPointData(ID, point 0)", point(1, 2, 3, 0));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)");
    expectCall("MV*_GetInkPointData(ID, point 1)", point(4, 5, 6, 0));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 1)", text("b"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #1)");
    QCOMPARE(pad().GetPointer(), QStringLiteral(R"([{"Time":"b","bStrokeEnd":"0","pressure":"6","x":"4","y":"5"}])"));
}

void TestInk::pointWithNeitherIsLeftOut()
{
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(1));
    expectCall("MV*_GetInkPointData(ID, point 0)", number(1));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)");
    QCOMPARE(pad().GetPointer(), QStringLiteral("[]"));
}

void TestInk::emptyTimeIsATime()
{
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(1));
    expectCall("MV*_GetInkPointData(ID, point 0)", point(1, 2, 3, 0));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)", text(""));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #1)");
    QCOMPARE(pad().GetPointer(), QStringLiteral(R"([{"Time":"","bStrokeEnd":"0","pressure":"3","x":"1","y":"2"}])"));
}

void TestInk::timeTextIsEscaped()
{
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(1));
    expectCall("MV*_GetInkPointData(ID, point 0)", point(1, 2, 3, 0));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)", text("\"\\/\n\t\x01\xE7\xAD\xBE\xF0\x9F\x96\x8A\"}]"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #1)");
    QCOMPARE(pad().GetPointer(),
             QString::fromUtf8("[{\"Time\":\"\\\"\\\\/\\n\\t\\u0001\xE7\xAD\xBE\xF0\x9F\x96\x8A\\\"}]\","
                               "\"bStrokeEnd\":\"0\",\"pressure\":\"3\",\"x\":\"1\",\"y\":\"2\"}]"));
}

void TestInk::timeTextThatIsNotUtf8()
{
    expectCall("MV*_GetTotalInkPointsNumber(ID)", number(1));
    expectCall("MV*_GetInkPointData(ID, point 0)", point(1, 2, 3, 0));
    expectCall("MV*_GetInkPointDataTimeInfo(ID, 0)", text("A\xFFZ"));
    expectCall("MV*_FreeInkPointDataTimeInfo(ID, #1)");
    QCOMPARE(pad().GetPointer(),
             QString::fromUtf8("[{\"Time\":\"A\xEF\xBF\xBDZ\","
                               "\"bStrokeEnd\":\"0\",\"pressure\":\"3\",\"x\":\"1\",\"y\":\"2\"}]"));
}

void TestInk::countIsTheOwnGetSize()
{
    class OnePoint : public SignObjAlder
    {
    public:
        int GetSize() override { return 1; }
    } onePoint;
    expect("MVAlder_GetInkPointData(2, point 0)", point(1, 2, 3, 0));
    expect("MVAlder_GetInkPointDataTimeInfo(2, 0)", text("t"));
    expect("MVAlder_FreeInkPointDataTimeInfo(2, #1)");
    QCOMPARE(onePoint.GetPointer(),
             QStringLiteral(R"([{"Time":"t","bStrokeEnd":"0","pressure":"3","x":"1","y":"2"}])"));
}

void TestInk::encodePassesTheTypeThrough_data()
{
    QTest::addColumn<int>("nType");
    for (const int nType : {0, 1, 3, 6, -1, INT_MAX, INT_MIN}) {
        QTest::newRow(qPrintable(QString::number(nType))) << nType;
    }
}

void TestInk::encodePassesTheTypeThrough()
{
    QFETCH(int, nType);
    expect(spelled("MV*_Base64Encode(ID, ") + std::to_string(nType) + ")", text("QUJDRA=="));
    expectCall("MV*_Base64EncodeFree(ID, #1)");
    QCOMPARE(pad().Encode(nType), QStringLiteral("QUJDRA=="));
}

void TestInk::encodeRepeatsItself()
{
    for (const char *giveBack : {"MV*_Base64EncodeFree(ID, #1)", "MV*_Base64EncodeFree(ID, #2)"}) {
        expectCall("MV*_Base64Encode(ID, 3)", text("QUJD"));
        expectCall(giveBack);
        QCOMPARE(pad().Encode(3), QStringLiteral("QUJD"));
    }
}

void TestInk::encodeGivesBackANullText()
{
    expectCall("MV*_Base64Encode(ID, 3)");
    expectCall("MV*_Base64EncodeFree(ID, null)");
    QCOMPARE(pad().Encode(3), QString());
}

void TestInk::encodeOfHostileText()
{
    expectCall("MV*_Base64Encode(ID, 1)", text("\"\n\xFF\xE7\xAD\xBE"));
    expectCall("MV*_Base64EncodeFree(ID, #1)");
    QCOMPARE(pad().Encode(1), QString::fromUtf8("\"\n\xEF\xBF\xBD\xE7\xAD\xBE"));
}

void TestInk::svg()
{
    for (const char *giveBack : {"MV*_FreeSVGImageBase64Data(ID, #1)", "MV*_FreeSVGImageBase64Data(ID, #2)"}) {
        expectCall("MV*_GetSVGImageBase64Data(ID)", text("PHN2Zz4="));
        expectCall(giveBack);
        QCOMPARE(pad().GetSVGImageBase64Data(), QStringLiteral("PHN2Zz4="));
    }
}

void TestInk::svgGivesBackANullText()
{
    expectCall("MV*_GetSVGImageBase64Data(ID)");
    expectCall("MV*_FreeSVGImageBase64Data(ID, null)");
    QCOMPARE(pad().GetSVGImageBase64Data(), QString());
}

void TestInk::everyKindOfImage() const
{
    QTest::addColumn<int>("kind");
    QTest::newRow("GetInks") << int(Inks);
    QTest::newRow("GetOpaqueInks") << int(OpaqueInks);
    QTest::newRow("WPSGetInks") << int(WpsInks);
}

QString TestInk::ask(int kind, const recording::Answer &image, int serial)
{
    static const struct {
        const char *encode;
        const char *giveBack;
        QString (*ask)(SignObjInterface &);
    } kinds[] = {
        {"MV*_Base64Encode(ID, 3)", "MV*_Base64EncodeFree(ID, #", [](auto &pad) { return pad.GetInks(); }},
        {"MV*_Base64EncodeEx(ID, 3, 0)", "MV*_Base64EncodeExFree(ID, #", [](auto &pad) { return pad.GetOpaqueInks(); }},
        {"MV*_Base64EncodeEx(ID, 2, 0)", "MV*_Base64EncodeExFree(ID, #", [](auto &pad) { return pad.WPSGetInks(); }},
    };
    expectCall(kinds[kind].encode, image);
    if (image.text) {
        expect(spelled(kinds[kind].giveBack) + std::to_string(serial) + ")");
    }
    return kinds[kind].ask(pad());
}

void TestInk::image_data()
{
    everyKindOfImage();
}

void TestInk::image()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, text("QUJDRA=="), 1),
             QStringLiteral(R"([{"EventType":"0","Image":"QUJDRA==","ImageLength":"8"}])"));
    QCOMPARE(ask(kind, text("QUJDRA=="), 2), QString());
    QCOMPARE(ask(kind, text("QUJDRA=="), 3), QString());
}

void TestInk::changedImageIsReportedAgain_data()
{
    everyKindOfImage();
}

void TestInk::changedImageIsReportedAgain()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, text("AAAA"), 1), QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])"));
    QCOMPARE(ask(kind, text("BB=="), 2), QStringLiteral(R"([{"EventType":"0","Image":"BB==","ImageLength":"4"}])"));
    QCOMPARE(ask(kind, text("AAAA"), 3), QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])"));
}

void TestInk::nullImage_data()
{
    everyKindOfImage();
}

void TestInk::nullImage()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, {}, 0), QString());
}

void TestInk::nullImageKeepsTheLastOne_data()
{
    everyKindOfImage();
}

void TestInk::nullImageKeepsTheLastOne()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, text("AAAA"), 1), QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])"));
    QCOMPARE(ask(kind, {}, 0), QString());
    QCOMPARE(ask(kind, text("AAAA"), 2), QString());
}

void TestInk::emptyImageIsNoNews_data()
{
    everyKindOfImage();
}

void TestInk::emptyImageIsNoNews()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, text(""), 1), QString());
    QCOMPARE(ask(kind, text("AAAA"), 2), QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])"));
    QCOMPARE(ask(kind, text(""), 3), QStringLiteral(R"([{"EventType":"0","Image":"","ImageLength":"0"}])"));
}

void TestInk::imageTextIsEscaped_data()
{
    everyKindOfImage();
}

void TestInk::imageTextIsEscaped()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, text("\"}]\\/\b\f\n\r\t\x01\x1F\x7F"), 1),
             QStringLiteral(R"([{"EventType":"0","Image":"\"}]\\/\b\f\n\r\t\u0001\u001f)"
                            "\x7F"
                            R"(","ImageLength":"13"}])"));
}

void TestInk::imageLengthCountsCharacters_data()
{
    everyKindOfImage();
}

void TestInk::imageLengthCountsCharacters()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, text("\xE7\xAD\xBE\xFF"), 1),
             QString::fromUtf8("[{\"EventType\":\"0\",\"Image\":\"\xE7\xAD\xBE\xEF\xBF\xBD\",\"ImageLength\":\"2\"}]"));
}

void TestInk::comparisonIsExact_data()
{
    everyKindOfImage();
}

void TestInk::comparisonIsExact()
{
    QFETCH(int, kind);
    QCOMPARE(ask(kind, text("abcd"), 1), QStringLiteral(R"([{"EventType":"0","Image":"abcd","ImageLength":"4"}])"));
    QCOMPARE(ask(kind, text("ABCD"), 2), QStringLiteral(R"([{"EventType":"0","Image":"ABCD","ImageLength":"4"}])"));
    QCOMPARE(ask(kind, text("ABCD "), 3), QStringLiteral(R"([{"EventType":"0","Image":"ABCD ","ImageLength":"5"}])"));
    QCOMPARE(ask(kind, text("ABCD"), 4), QStringLiteral(R"([{"EventType":"0","Image":"ABCD","ImageLength":"4"}])"));
}

void TestInk::threeOperationsShareOneLastImage()
{
    const QString image = QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])");
    const QString other = QStringLiteral(R"([{"EventType":"0","Image":"BBBB","ImageLength":"4"}])");
    QCOMPARE(ask(Inks, text("AAAA"), 1), image);
    QCOMPARE(ask(OpaqueInks, text("AAAA"), 2), QString());
    QCOMPARE(ask(WpsInks, text("AAAA"), 3), QString());
    QCOMPARE(ask(OpaqueInks, text("BBBB"), 4), other);
    QCOMPARE(ask(Inks, text("BBBB"), 5), QString());
    QCOMPARE(ask(WpsInks, text("AAAA"), 6), image);
    QCOMPARE(ask(Inks, text("AAAA"), 7), QString());
}

void TestInk::othersDoNotTouchTheLastImage()
{
    QCOMPARE(ask(Inks, text("AAAA"), 1), QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])"));
    expectCall("MV*_Base64Encode(ID, 3)", text("BBBB"));
    expectCall("MV*_Base64EncodeFree(ID, #2)");
    QCOMPARE(pad().Encode(3), QStringLiteral("BBBB"));
    expectCall("MV*_GetSVGImageBase64Data(ID)", text("CCCC"));
    expectCall("MV*_FreeSVGImageBase64Data(ID, #3)");
    QCOMPARE(pad().GetSVGImageBase64Data(), QStringLiteral("CCCC"));
    expectCall("MV*_Clear(ID)");
    pad().Clear();
    QCOMPARE(ask(Inks, text("AAAA"), 4), QString());
}

void TestInk::reinitialisingKeepsTheLastImage()
{
    QCOMPARE(ask(Inks, text("AAAA"), 1), QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])"));
    expectCall("MV*_UnInitialDevice(ID)");
    pad().UnInitialDevice();
    expectCall("MV*_InitialDevice(1, null, 0, 0, 2, 3)", number(1));
    pad().InitialDevice(1, 2, 3);
    QCOMPARE(ask(Inks, text("AAAA"), 2), QString());
}

MV_TEST_EVERY_MODEL(QCoreApplication, TestInk)
#include "tst_ink.moc"
