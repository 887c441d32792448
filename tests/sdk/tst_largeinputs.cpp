/// Drawings, texts and paths of a size no pad has: nothing is lost, and the time grows no faster than the input.

#include "device/SignObjAlder.h"
#include "tests/sdk/support/SdkTestCase.h"

#include <ctime>

class TestLargeInputs : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void points();
    void decodedPoints();
    void image();
    void encodedText();
    void decodeData();
    void path();

private:
    static qint64 millisecondsForPoints(SignObjAlder &pad, int count);
    static qint64 millisecondsForDecodedPoints(SignObjAlder &pad, int count);
};

/// Time that this process has computed; it does not grow while others do.
static qint64 processorMilliseconds()
{
    return qint64(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

/// Linear growth takes ten times as long for ten times as much, quadratic growth a hundred times.
static bool growsLinearly(qint64 tenth, qint64 whole)
{
    return whole < 35 * std::max<qint64>(tenth, 20);
}

/// "[" + item + "," + item + ... + "]"
static QString arrayOf(const char *item, int count)
{
    QString array = (QLatin1String(item) + QLatin1Char(',')).repeated(count);
    array[array.size() - 1] = QLatin1Char(']');
    return QLatin1Char('[') + array;
}

qint64 TestLargeInputs::millisecondsForPoints(SignObjAlder &pad, int count)
{
    recorder().answerAll("MVAlder_GetTotalInkPointsNumber", [count](long) { return number(count); });
    recorder().answerAll("MVAlder_GetInkPointData", [](long) { return recording::point(2, 3, 1, 0); });
    recorder().answerAll("MVAlder_GetInkPointDataTimeInfo", [](long) { return text("t"); });
    recorder().answerAll("MVAlder_FreeInkPointDataTimeInfo", [](long) { return number(0); });
    const qint64 start = processorMilliseconds();
    const QString points = pad.GetPointer();
    const qint64 elapsed = processorMilliseconds() - start;
    const bool complete = points == arrayOf(R"({"Time":"t","bStrokeEnd":"0","pressure":"1","x":"2","y":"3"})", count)
                          && recorder().callsAnswered("MVAlder_FreeInkPointDataTimeInfo") == count;
    return complete ? elapsed : -1;
}

void TestLargeInputs::points()
{
    SignObjAlder pad;
    const qint64 tenth = millisecondsForPoints(pad, 200000);
    QVERIFY(tenth >= 0);
    const qint64 whole = millisecondsForPoints(pad, 2000000);
    QVERIFY(whole >= 0);
    qInfo("200,000 points: %lld ms; 2,000,000 points: %lld ms", tenth, whole);
    QVERIFY(growsLinearly(tenth, whole));
}

qint64 TestLargeInputs::millisecondsForDecodedPoints(SignObjAlder &pad, int count)
{
    recorder().answerAll("MVAlder_Base64Decode", [](long) { return number(0); });
    recorder().answerAll("MVAlder_GetTotalDecodeInkPointsNumber", [count](long) { return number(count); });
    recorder().answerAll("MVAlder_GetDecodeInkPointData", [](long nField) { return number(nField * 10); });
    const qint64 start = processorMilliseconds();
    const QString points = pad.Decode(6, QStringLiteral("a"), QStringLiteral("QUJD"));
    const qint64 elapsed = processorMilliseconds() - start;
    return points == arrayOf(R"({"bStrokeEnd":"30","x":"10","y":"20"})", count) ? elapsed : -1;
}

void TestLargeInputs::decodedPoints()
{
    SignObjAlder pad;
    const qint64 tenth = millisecondsForDecodedPoints(pad, 200000);
    QVERIFY(tenth >= 0);
    const qint64 whole = millisecondsForDecodedPoints(pad, 2000000);
    QVERIFY(whole >= 0);
    qInfo("200,000 points: %lld ms; 2,000,000 points: %lld ms", tenth, whole);
    QVERIFY(growsLinearly(tenth, whole));
}

void TestLargeInputs::image()
{
    SignObjAlder pad;
    const int length = 32 * 1024 * 1024;
    expect("MVAlder_Base64Encode(2, 3)", text(std::string(length, 'A')));
    expect("MVAlder_Base64EncodeFree(2, #1)");
    const QString reply = pad.GetInks();
    QVERIFY(reply
            == QStringLiteral(R"([{"EventType":"0","Image":")") + QString(length, QLatin1Char('A'))
                   + QStringLiteral(R"(","ImageLength":"33554432"}])"));
    expect("MVAlder_Base64EncodeEx(2, 3, 0)", text(std::string(length, 'A')));
    expect("MVAlder_Base64EncodeExFree(2, #2)");
    QCOMPARE(pad.GetOpaqueInks(), QString());
}

void TestLargeInputs::encodedText()
{
    SignObjAlder pad;
    const int length = 32 * 1024 * 1024;
    expect("MVAlder_Base64Encode(2, 1)", text(std::string(length, 'Q')));
    expect("MVAlder_Base64EncodeFree(2, #1)");
    QVERIFY(pad.Encode(1) == QString(length, QLatin1Char('Q')));
}

void TestLargeInputs::decodeData()
{
    SignObjAlder pad;
    const int length = 10 * 1024 * 1024;
    expect("MVAlder_Base64Decode(2, 1, \"" + std::string(length, 'Q') + "\", \"/tmp/a\")");
    QCOMPARE(pad.Decode(1, QStringLiteral("a"), QString(length, QLatin1Char('Q'))), QString());
}

void TestLargeInputs::path()
{
    SignObjAlder pad;
    const int length = 1024 * 1024;
    const std::string spelling = QByteArray("\\u{1F58A}").repeated(length).toStdString();
    const QString pens = QString::fromUtf8("\xF0\x9F\x96\x8A").repeated(length);
    expect("MVAlder_SaveDrawingImage(2, 2, \"/tmp/" + spelling + "\", 300)", number(-2));
    QCOMPARE(pad.SaveDrawImage(2, 300, pens), QStringLiteral("-2"));
    expect("MVAlder_Base64Decode(2, 1, \"\", \"/tmp/" + spelling + "\")");
    QCOMPARE(pad.Decode(1, pens, QString()), QString());
    QVERIFY(pad.GetDecodeFilePath() == QStringLiteral("/tmp/") + pens);
}

QTEST_GUILESS_MAIN(TestLargeInputs)
#include "tst_largeinputs.moc"
