// docs/api.md and its translation tell of every command, once, with its keys in their order and a reply that a client
// can parse.

#include "service/CommandTable.h"
#include "tests/docs/ApiDocument.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class tst_ApiDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { AddApiDocuments(); }
    void init();
    void describesEveryCommandOnce();
    void describesNothingElse();
    void requestHasTheKeysInOrder_data() { addCommands(); }
    void requestHasTheKeysInOrder();
    void replyIsAnEnvelope_data() { addCommands(); }
    void replyIsAnEnvelope();

private:
    static void addCommands();

    QMap<QString, ApiSection> m_sections;
};

void tst_ApiDocument::init()
{
    m_sections = ReadApiDocument();
    QVERIFY(!m_sections.isEmpty());
}

void tst_ApiDocument::addCommands()
{
    QTest::addColumn<int>("number");
    for (int i = 0; i < nCommandCount; ++i)
        QTest::newRow(commandTable[i].szName) << i;
}

void tst_ApiDocument::describesEveryCommandOnce()
{
    for (const Command &command : commandTable)
        QVERIFY2(m_sections.value(QLatin1String(command.szName)).nCount == 1, command.szName);
}

void tst_ApiDocument::describesNothingElse()
{
    QCOMPARE(m_sections.size(), 34);
}

void tst_ApiDocument::requestHasTheKeysInOrder()
{
    QFETCH(int, number);
    const Command &command = commandTable[number];
    const QString request = m_sections.value(QLatin1String(command.szName)).request;
    const QStringList parts = request.split(QLatin1Char('?'));
    QCOMPARE(parts.first(), QLatin1String(command.szName));
    QStringList keys;
    for (const QString &piece : parts.value(1).split(QLatin1Char('&'))) {
        if (!piece.isEmpty())
            keys += piece.section(QLatin1Char('='), 0, 0);
    }
    QCOMPARE(keys, command.Keys());
}

void tst_ApiDocument::replyIsAnEnvelope()
{
    QFETCH(int, number);
    const QString name = QLatin1String(commandTable[number].szName);
    const QJsonObject reply = QJsonDocument::fromJson(m_sections.value(name).reply.toUtf8()).object();
    QCOMPARE(reply.keys(), QStringList({QStringLiteral("API"), QStringLiteral("Result")}));
    QCOMPARE(reply.value(QLatin1String("API")).toString(), name);
    QVERIFY(reply.value(QLatin1String("Result")).isString());
}

QTEST_GUILESS_MAIN(tst_ApiDocument)
#include "tst_apidocument.moc"
