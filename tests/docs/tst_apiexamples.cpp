// The examples of docs/api.md and of its translation are true: a service with the virtual pad gives each reply as it
// stands there.

#include "service/CommandTable.h"
#include "tests/docs/ApiDocument.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"

#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

namespace {

const QByteArray onePoint = R"([{"Time":"0","bStrokeEnd":"1","pressure":"490","x":"30","y":"296"}])";

/// What the document says of the way to an example: the requests that go before it.
QStringList requestsBefore(const QString &name, const QMap<QString, ApiSection> &sections)
{
    if (name == QLatin1String("InitialDevice"))
        return {};
    QString initialise = sections.value(QStringLiteral("InitialDevice")).request;
    if (name == QLatin1String("GetFingerPrintImage") || name == QLatin1String("SetDisplayedFPImageAt"))
        initialise.replace(QLatin1String("id=2"), QLatin1String("id=7"));
    QStringList requests{initialise};
    if (name == QLatin1String("GetDecodeFilePath"))
        requests += sections.value(QStringLiteral("Decode")).request;
    if (name == QLatin1String("WPSSignConfirmed"))
        requests += sections.value(QStringLiteral("UpdateWPSSettings")).request;
    return requests;
}

/// The documented text, each "…" in it standing for any base64 or number.
QRegularExpression patternOf(const QString &documented)
{
    QStringList parts = documented.split(QStringLiteral("…"));
    for (QString &part : parts)
        part = QRegularExpression::escape(part);
    return QRegularExpression(QLatin1Char('^') + parts.join(QLatin1String("[A-Za-z0-9+/]+=*")) + QLatin1Char('$'));
}

/// Whether the result that the document shortens is a whole picture.
bool isPicture(const QString &result)
{
    const QJsonObject picture = QJsonDocument::fromJson(result.toUtf8()).array().first().toObject();
    if (picture.isEmpty())
        return QByteArray::fromBase64(result.toLatin1()).endsWith("</svg>\n");
    const QString image = picture.value(QLatin1String("Image")).toString();
    return QString::number(image.size()) == picture.value(QLatin1String("ImageLength")).toString()
           && !QImage::fromData(QByteArray::fromBase64(image.toLatin1()), "PNG").isNull();
}

} // namespace

class tst_ApiExamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { AddApiDocuments(); }
    void initTestCase();
    void init();
    void example_data();
    void example();

private:
    QMap<QString, ApiSection> m_sections;
    const PrivateHome m_home;
};

void tst_ApiExamples::initTestCase()
{
    QVERIFY(QFile::link(QStringLiteral(VIRTUAL_PAD_LIBRARY), m_home.path(QStringLiteral("libmvsignpadsdk.so"))));
    QFile ink(m_home.path(QStringLiteral("ink.json")));
    QVERIFY(ink.open(QIODevice::WriteOnly));
    QCOMPARE(ink.write(onePoint), qint64(onePoint.size()));
    qputenv("MVSIGNPAD_VIRTUAL_INK", QFile::encodeName(ink.fileName()));
    qputenv("MVSIGNPAD_VIRTUAL_SPEED", "0");
}

void tst_ApiExamples::init()
{
    m_sections = ReadApiDocument();
    QCOMPARE(m_sections.size(), 34);
    m_home.removeConfig();
}

void tst_ApiExamples::example_data()
{
    QTest::addColumn<QString>("name");
    for (const Command &command : commandTable)
        QTest::newRow(command.szName) << QString::fromLatin1(command.szName);
}

void tst_ApiExamples::example()
{
    QFETCH(QString, name);
    const ApiSection section = m_sections.value(name);
    RunningService service;
    QVERIFY(service.waitUntilListening());
    SignClient client;
    QVERIFY(client.connectTo(service.port()));
    for (const QString &request : requestsBefore(name, m_sections))
        QVERIFY(!client.command(request).isEmpty());
    const QString reply = client.command(section.request);
    if (section.reply.contains(QStringLiteral("…"))) {
        QVERIFY2(patternOf(section.reply).match(reply).hasMatch(), qPrintable(reply));
        QVERIFY(isPicture(QJsonDocument::fromJson(reply.toUtf8()).object().value(QLatin1String("Result")).toString()));
    } else {
        QCOMPARE(reply, section.reply);
    }
}

QTEST_MAIN(tst_ApiExamples)
#include "tst_apiexamples.moc"
