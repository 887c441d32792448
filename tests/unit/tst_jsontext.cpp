// Texts written in place must read exactly as the JSON document of Qt writes them.
#include "app/JsonText.h"

#include <QTest>
#include <limits>

class JsonTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void string_data();
    void string();
    void appendsBehindWhatIsThere();
    void longText();
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
    row("high surrogate alone", QString(QChar(0xd842)), QStringLiteral("\"?\""));
    row("low surrogate alone", QString(QChar(0xdfb7)), QStringLiteral("\"?\""));
    row("surrogates swapped", QString(QChar(0xdfb7)) + QChar(0xd842), QStringLiteral("\"??\""));
    row("high surrogate before a letter", QString(QChar(0xd842)) + QLatin1Char('a'), QStringLiteral("\"?a\""));
}

void JsonTextTest::string()
{
    QFETCH(QString, text);
    QFETCH(QString, json);
    QString written;
    AppendJsonString(written, text);
    QCOMPARE(written.toUtf8(), json.toUtf8());
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
