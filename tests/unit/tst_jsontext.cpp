// Texts written in place must read exactly as the JSON document of Qt writes them.
#include "base/JsonText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <limits>
#include <random>

class JsonTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void string_data();
    void string();
    void everyCharacterAsQt();
    void randomTextsAsQt();
    void appendsBehindWhatIsThere();
    void longText();
    void tooLongText();
    void number_data();
    void number();
};

void JsonTextTest::string_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("json");
    const auto row = [](const char *name, const QString &text, const QString &json) {
        QTest::newRow(name) << text << json;
    };
    row("empty", QString(), QStringLiteral("\"\""));
    row("plain", QStringLiteral("iVBORw0KGgo+/="), QStringLiteral("\"iVBORw0KGgo+/=\""));
    row("quotation mark", QStringLiteral("a\"b"), QStringLiteral("\"a\\\"b\""));
    row("backslash", QStringLiteral("a\\b"), QStringLiteral("\"a\\\\b\""));
    row("slash", QStringLiteral("/tmp/a"), QStringLiteral("\"/tmp/a\""));
    row("short escapes", QStringLiteral("\b\f\n\r\t"), QStringLiteral("\"\\b\\f\\n\\r\\t\""));
    row("NUL", QString(1, QChar(0)), QStringLiteral("\"\\u0000\""));
    row("other controls", QStringLiteral("\x01\x1b\x1f"), QStringLiteral("\"\\u0001\\u001b\\u001f\""));
    row("delete is no control", QStringLiteral("\x7f"), QStringLiteral("\"\x7f\""));
    row("Latin", QStringLiteral("é"), QStringLiteral("\"é\""));
    row("Chinese", QStringLiteral("签名"), QStringLiteral("\"签名\""));
    row("beyond the basic plane", QStringLiteral("\U00020bb7"), QStringLiteral("\"\U00020bb7\""));
    row("escapes at both ends", QStringLiteral("\"x\""), QStringLiteral("\"\\\"x\\\"\""));
    row("nested JSON", QStringLiteral("[{\"x\":\"1\"}]"), QStringLiteral("\"[{\\\"x\\\":\\\"1\\\"}]\""));
    row("high surrogate alone", QString(QChar(0xd842)), QStringLiteral("\"\\ud842\""));
    row("low surrogate alone", QString(QChar(0xdfb7)), QStringLiteral("\"\\udfb7\""));
    row("surrogates swapped", QString(QChar(0xdfb7)) + QChar(0xd842), QStringLiteral("\"\\udfb7\\ud842\""));
    row("high surrogate before a letter", QString(QChar(0xd842)) + QLatin1Char('a'), QStringLiteral("\"\\ud842a\""));
}

void JsonTextTest::string()
{
    QFETCH(QString, text);
    QFETCH(QString, json);
    QString written;
    AppendJsonString(written, text);
    QCOMPARE(written.toUtf8(), json.toUtf8());
    QByteArray writtenUtf8;
    AppendJsonString(writtenUtf8, text);
    QCOMPARE(writtenUtf8, json.toUtf8());
}

/// The text as the only member of an array, written by Qt and by both functions. It is made longer by a few plain
/// characters, which move it to any place in the blocks that are looked at together (Qt 5.15 writes beyond its buffer
/// when a very short text needs escapes).
static void compareWithQt(const QString &text, int offset)
{
    const QString moved = QString(64 + offset % 64, QLatin1Char('x')) + text;
    const QByteArray expected = QJsonDocument(QJsonArray{moved}).toJson(QJsonDocument::Compact);
    QByteArray utf8 = "[";
    AppendJsonString(utf8, moved);
    QCOMPARE(utf8 + ']', expected);
    QString utf16 = QStringLiteral("[");
    AppendJsonString(utf16, moved);
    QCOMPARE(utf16 + QLatin1Char(']'), QString::fromUtf8(expected));
}

void JsonTextTest::everyCharacterAsQt()
{
    for (uint first = 0; first <= 0x10ffff; first += 997) {
        QString text;
        for (uint code = first; code < first + 997 && code <= 0x10ffff; ++code) {
            if (QChar::requiresSurrogates(code))
                text += QChar(QChar::highSurrogate(code));
            text += QChar(QChar::requiresSurrogates(code) ? QChar::lowSurrogate(code) : static_cast<ushort>(code));
        }
        compareWithQt(text, static_cast<int>(first));
        if (QTest::currentTestFailed())
            return;
    }
}

void JsonTextTest::randomTextsAsQt()
{
    // First and last of the characters to draw from, and how often: plain ones make up long runs.
    struct Range {
        int weight;
        ushort first, last;
    };
    static const Range ranges[] = {{60, ' ', '~'},      {2, '"', '"'},       {2, '\\', '\\'},
                                   {2, 0, 0x1f},        {1, 0x7f, 0xff},     {1, 0x100, 0xd7ff},
                                   {2, 0xd800, 0xdbff}, {2, 0xdc00, 0xdfff}, {1, 0xe000, 0xffff}};
    std::vector<int> weights;
    for (const Range &range : ranges)
        weights.push_back(range.weight);
    std::mt19937 random(20240229);
    std::discrete_distribution<std::size_t> drawRange(weights.begin(), weights.end());
    for (int i = 0; i < 20000; ++i) {
        QString text;
        for (auto left = random() % 120; left > 0; --left) {
            const Range &range = ranges[drawRange(random)];
            text += QChar(static_cast<ushort>(range.first + random() % (range.last - range.first + 1u)));
        }
        compareWithQt(text, i);
        if (QTest::currentTestFailed())
            return;
    }
}

void JsonTextTest::appendsBehindWhatIsThere()
{
    QString json = QStringLiteral("[");
    AppendJsonString(json, QStringLiteral("a"));
    json += QLatin1Char(',');
    AppendJsonNumberText(json, 12);
    QCOMPARE(json, QStringLiteral("[\"a\",\"12\""));
}

void JsonTextTest::longText()
{
    QString json;
    AppendJsonString(json, QString(5000000, QLatin1Char('\\')));
    QCOMPARE(json.size(), 10000002);
    QCOMPARE(json.count(QLatin1Char('\\')), 10000000);
}

void JsonTextTest::tooLongText()
{
    const QString text(360000000, QChar(1)); // six characters each, together more than Qt's texts hold
    QByteArray json = "[";
    AppendJsonString(json, text);
    QCOMPARE(json, QByteArray("[\"\""));
}

void JsonTextTest::number_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("json");
    QTest::newRow("zero") << 0 << QStringLiteral("\"0\"");
    QTest::newRow("positive") << 32767 << QStringLiteral("\"32767\"");
    QTest::newRow("negative") << -1 << QStringLiteral("\"-1\"");
    QTest::newRow("largest") << std::numeric_limits<int>::max() << QStringLiteral("\"2147483647\"");
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << QStringLiteral("\"-2147483648\"");
}

void JsonTextTest::number()
{
    QFETCH(int, number);
    QFETCH(QString, json);
    QString written;
    AppendJsonNumberText(written, number);
    QCOMPARE(written, json);
}

QTEST_APPLESS_MAIN(JsonTextTest)

#include "tst_jsontext.moc"
