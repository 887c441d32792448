// What counts as an origin: what browsers send, and nothing that could pass for something else in a window.
#include "service/OriginText.h"

#include <QTest>

class OriginTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isOrigin_data();
    void isOrigin();
    void isShared_data();
    void isShared();
};

void OriginTextTest::isOrigin_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("is");
    const auto row = [](const char *text, bool is) { QTest::newRow(text) << QString::fromUtf8(text) << is; };
    row("https://sign.example.org", true);
    row("http://localhost", true);
    row("http://127.0.0.1:8080", true);
    row("https://[2001:db8::1]:8443", true);
    row("https://[::ffff:10.0.0.1]", true);
    row("https://xn--fiqs8s.example", true);
    row("https://under_score.example", true);
    row("https://example.org.", true);
    row("chrome-extension://abcdefghijklmnopabcdefghijklmnop", true);
    row("moz-extension://2c127fa4-62c7-7e4f-90e5-472b45eecfdc", true);
    row("null", true);
    row("file://", true);

    row("", false);
    row("Null", false);
    row("file:///home/user", false);
    row("https://", false);
    row("https://:443", false);
    row("sign.example.org", false);
    row("://sign.example.org", false);
    row("1https://sign.example.org", false);
    row("HTTPS://sign.example.org", false);
    row("https://Sign.example.org", false);
    row("https://sign.example.org/", false);
    row("https://sign.example.org/page", false);
    row("https://sign.example.org?query", false);
    row("https://sign.example.org#part", false);
    row("https://bank.example@evil.example", false);
    row("https://sign.example.org:", false);
    row("https://sign.example.org:123456", false);
    row("https://sign.example.org:80a", false);
    row("https://sign.example.org:80:80", false);
    row(" https://sign.example.org", false);
    row("https://sign.example.org ", false);
    row("https://sign.example.org evil.example", false);
    row("https://sign.example.org\n", false);
    row("https://sign.example.org\r\nevil.example", false);
    row("https://sign.example.org\tevil.example", false);
    row("https://m\303\274nchen.example", false);
    row("https://\320\260pple.example", false);                // a Cyrillic letter
    row("https://example.org\342\200\256gro.live", false);     // text from right to left
    row("https://example.org\342\200\213", false);             // a blank without a width
    row("https://example.org\357\274\217evil.example", false); // a wide slash
    row("https://[::1", false);
    row("https://::1]", false);
    row("https://[fe80::1%eth0]", false);
    row("https://a%2eb.example", false);
    row("https://<b>example.org</b>", false);
    QTest::newRow("a zero") << QStringLiteral("https://sign.example.org") + QChar(0) << false;
    QTest::newRow("300 characters") << QStringLiteral("https://") + QString(292, QLatin1Char('a')) << true;
    QTest::newRow("301 characters") << QStringLiteral("https://") + QString(293, QLatin1Char('a')) << false;
}

void OriginTextTest::isOrigin()
{
    QFETCH(QString, text);
    QFETCH(bool, is);
    QCOMPARE(IsOrigin(text), is);
}

void OriginTextTest::isShared_data()
{
    QTest::addColumn<QString>("origin");
    QTest::addColumn<bool>("is");
    const auto row = [](const char *origin, bool is) { QTest::newRow(origin) << QString::fromLatin1(origin) << is; };
    row("null", true);
    row("file://", true);
    row("https://null", false);
    row("http://localhost", false);
}

void OriginTextTest::isShared()
{
    QFETCH(QString, origin);
    QFETCH(bool, is);
    QCOMPARE(IsSharedOrigin(origin), is);
}

QTEST_APPLESS_MAIN(OriginTextTest)

#include "tst_origintext.moc"
