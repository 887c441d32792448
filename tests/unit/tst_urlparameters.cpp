#include "service/UrlParameters.h"

#include <QTest>

using Parameters = QMap<QString, QString>;

class UrlParametersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splits_data();
    void splits();
    void manyKeysAreMoreThanAnyCommandTakes();
    void longValue();
};

void UrlParametersTest::splits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("pairs"); // key, value, key, value ... in the order of the keys
    const auto row = [](const char *name, const char *text, std::initializer_list<const char *> pairs) {
        QStringList texts;
        for (const char *pair : pairs)
            texts.append(QString::fromUtf8(pair));
        QTest::newRow(name) << QString::fromUtf8(text) << texts;
    };
    const char none[] = "";
    row("empty text", "", {});
    row("no query", "ws://localhost:8089/MVSignSDK/Clear", {});
    row("pair without question mark", "a=1&b=2", {});
    row("one pair", "X?a=1", {"a", "1"});
    row("two pairs", "X?b=2&a=1", {"a", "1", "b", "2"});
    row("six pairs", "X?f=6&e=5&d=4&c=3&b=2&a=1", {"a", "1", "b", "2", "c", "3", "d", "4", "e", "5", "f", "6"});
    row("question mark first", "?a=1", {"a", "1"});
    row("repeated key, the last counts", "X?a=1&a=2&a=3", {"a", "3"});
    row("repeated among others", "X?a=1&b=2&a=3", {"a", "3", "b", "2"});
    row("keys are case-sensitive", "X?Width=1&width=2", {"Width", "1", "width", "2"});
    row("second equals sign", "X?a=1=2", {"a", "1"});
    row("many equals signs", "X?a=1=2=3=4", {"a", "1"});
    row("two equals signs in a row", "X?a==2", {"a", none});
    row("equals sign at the end", "X?a=", {"a", none});
    row("no key", "X?=1", {none, "1"});
    row("equals sign alone", "X?=", {none, none});
    row("key alone", "X?a", {"a", none});
    row("key alone after a pair", "X?b=1&a", {"a", none, "b", "1"});
    row("empty query", "X?", {none, none});
    row("empty piece in the middle", "X?a=1&&b=2", {none, none, "a", "1", "b", "2"});
    row("empty piece at the start", "X?&a=1", {none, none, "a", "1"});
    row("empty piece at the end", "X?a=1&", {none, none, "a", "1"});
    row("empty pieces only", "X?&&&", {none, none});
    row("empty key takes the last value", "X?=1&", {none, none});
    row("second question mark is part of the value", "X?a=1?b=2", {"a", "1?b"});
    row("question marks in a row", "X??a=1", {"?a", "1"});
    row("question mark in a later piece", "X?a=1&b?=2", {"a", "1", "b?", "2"});
    row("no percent-decoding", "X?a=%41&%62=2", {"%62", "2", "a", "%41"});
    row("plus is no space", "X?a=1+1", {"a", "1+1"});
    row("white space stays", "X? a = 1 ", {" a ", " 1 "});
    row("line feed stays", "X?a=1\n&b=\t2", {"a", "1\n", "b", "\t2"});
    row("non-ASCII", "X?名=签名&é=ü", {"é", "ü", "名", "签名"});
    row("semicolon separates nothing", "X?a=1;b=2", {"a", "1;b"});
    row("fragment mark is a character like others", "X?a=1#b", {"a", "1#b"});
    row("slashes", "X?path=/tmp/a.png", {"path", "/tmp/a.png"});
}

void UrlParametersTest::splits()
{
    QFETCH(QString, text);
    QFETCH(QStringList, pairs);
    Parameters expected;
    for (int i = 0; i < pairs.size(); i += 2)
        expected.insert(pairs.at(i), pairs.at(i + 1));
    QCOMPARE(ParseUrlParameters(text), expected);
}

void UrlParametersTest::manyKeysAreMoreThanAnyCommandTakes()
{
    QString text = QStringLiteral("X?a=1");
    for (int i = 0; i < 1000; ++i)
        text += QStringLiteral("&k%1=v").arg(i);
    QVERIFY(ParseUrlParameters(text).size() > 6);
}

void UrlParametersTest::longValue()
{
    const QString value(10000000, QLatin1Char('v'));
    QCOMPARE(ParseUrlParameters(QStringLiteral("X?a=") + value + QStringLiteral("&b=1")),
             (Parameters{{QStringLiteral("a"), value}, {QStringLiteral("b"), QStringLiteral("1")}}));
}

QTEST_APPLESS_MAIN(UrlParametersTest)

#include "tst_urlparameters.moc"
