// Texts and lists of points beyond what can be worked with.
#include "device/InkJson.h"
#include "device/SdkTexts.h"

#include <QTest>

#include <string>

class TestTextLimits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void text_data();
    void text();
    void textThatIsTooLong();
    void listIsFull();
    void decodedListIsFull();
    void listHoldsMillionsOfPoints();
};

void TestTextLimits::text_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << QByteArray() << QString();
    QTest::newRow("empty") << QByteArray("") << QString();
    QTest::newRow("letters") << QByteArray("iVBORw0KGgo=") << QStringLiteral("iVBORw0KGgo=");
    QTest::newRow("Chinese") << QByteArray("\xe7\xad\xbe") << QStringLiteral("签");
    QTest::newRow("not UTF-8") << QByteArray("a\xff") << QStringLiteral("a\ufffd");
}

void TestTextLimits::text()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, expected);
    QCOMPARE(TextFromLibrary(bytes.isNull() ? nullptr : bytes.constData()), expected);
}

void TestTextLimits::textThatIsTooLong()
{
    const std::string text(500000001, 'A');
    QCOMPARE(TextFromLibrary(text.c_str()), QString());
}

void TestTextLimits::listIsFull()
{
    InkPointList points(100);
    QVERIFY(!points.IsFull());
    points.Append({0, 1, 2, 3, 0}, QStringLiteral("t"));
    QVERIFY(!points.IsFull());
    points.Append({1, 4, 5, 6, 1}, QString());
    QVERIFY(points.IsFull());
    QCOMPARE(points.Take(), QStringLiteral(R"([{"Time":"t","bStrokeEnd":"0","pressure":"3","x":"1","y":"2"},)"
                                           R"({"Time":"","bStrokeEnd":"1","pressure":"6","x":"4","y":"5"}])"));
}

void TestTextLimits::decodedListIsFull()
{
    InkPointList points(36);
    points.AppendDecoded(1, 2, 0); // 34 characters and the bracket before them
    QVERIFY(!points.IsFull());
    points.AppendDecoded(3, 4, 1);
    QVERIFY(points.IsFull());
    QCOMPARE(points.Take(),
             QStringLiteral(R"([{"bStrokeEnd":"0","x":"1","y":"2"},{"bStrokeEnd":"1","x":"3","y":"4"}])"));
}

void TestTextLimits::listHoldsMillionsOfPoints()
{
    InkPointList points;
    for (int i = 0; i < 3000000; ++i)
        points.AppendDecoded(1, 2, 0);
    QVERIFY(!points.IsFull());
    const QString json = points.Take();
    QCOMPARE(json.count(QLatin1Char('{')), 3000000);
}

QTEST_APPLESS_MAIN(TestTextLimits)

#include "tst_textlimits.moc"
