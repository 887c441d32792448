// A signature from end to end: the real program with the virtual pad, driven over a real WebSocket.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/SignClient.h"

#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

class CaptureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void builtInSignatureIsWrittenInRealTime();
    void handwritingComesBackAsItWasRecorded();
    void pictureShowsTheHandwriting();
    void inkDataComesBackAsTheSamePoints();
    void everyModelCaptures_data();
    void everyModelCaptures();

private:
    bool start(const QString &speed, const QString &inkFile = QString());
    /// The command's result, after checking that the reply is to this command.
    QString ask(const QString &command);
    bool initialise(int model = 2);
    bool startWithHandwriting();

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    std::unique_ptr<SignClient> m_client;
};

namespace {

QJsonArray arrayOf(const QString &json)
{
    return QJsonDocument::fromJson(json.toUtf8()).array();
}

int coordinate(const QJsonValue &point, const char *name)
{
    return point.toObject().value(QLatin1String(name)).toString().toInt();
}

QString handwritingFile()
{
    return QStringLiteral(MVSIGNPAD_HANDWRITING);
}

QJsonArray recordedHandwriting()
{
    QFile file(handwritingFile());
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).array() : QJsonArray();
}

} // namespace

void CaptureTest::init()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
}

void CaptureTest::cleanup()
{
    m_client.reset();
    m_program.reset();
    m_desktop.reset();
}

bool CaptureTest::start(const QString &speed, const QString &inkFile)
{
    const quint16 port = freePort();
    m_program.reset(new TrayProgram(*m_desktop));
    QProcessEnvironment environment = m_desktop->environment();
    environment.insert(QStringLiteral("MVSIGNPAD_VIRTUAL_SPEED"), speed);
    environment.insert(QStringLiteral("MVSIGNPAD_VIRTUAL_WINDOW"), QStringLiteral("0"));
    if (!inkFile.isEmpty())
        environment.insert(QStringLiteral("MVSIGNPAD_VIRTUAL_INK"), inkFile);
    m_program->process().setProcessEnvironment(environment);
    m_client.reset(new SignClient);
    return m_desktop->writeSettings(
               {QStringLiteral("StartWebService=true"), QStringLiteral("WebSocketPort=%1").arg(port)})
           && m_program->start() && TrayProgram::waitForListening(port) && m_client->connectTo(port);
}

QString CaptureTest::ask(const QString &command)
{
    const QJsonObject reply = QJsonDocument::fromJson(m_client->command(command).toUtf8()).object();
    return reply.value(QLatin1String("API")).toString() == command.section(QLatin1Char('?'), 0, 0)
               ? reply.value(QLatin1String("Result")).toString()
               : QStringLiteral("not the reply to ") + command;
}

bool CaptureTest::initialise(int model)
{
    return ask(QStringLiteral("InitialDevice?id=%1&width=960&height=600").arg(model)) == QLatin1String("1");
}

bool CaptureTest::startWithHandwriting()
{
    return start(QStringLiteral("0"), handwritingFile()) && initialise();
}

void CaptureTest::builtInSignatureIsWrittenInRealTime()
{
    QVERIFY(start(QStringLiteral("1")));
    QVERIFY(initialise());
    QCOMPARE(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("-1"));
    // 200 points a second; between the two answers lies at least the inner time and at most the outer one.
    QElapsedTimer outer;
    outer.start();
    const int early = ask(QStringLiteral("GetSize")).toInt();
    QElapsedTimer inner;
    inner.start();
    QTRY_VERIFY_WITH_TIMEOUT(ask(QStringLiteral("GetSize")).toInt() >= qMin(early + 200, 600), patienceMs);
    const auto innerPoints = static_cast<int>(inner.elapsed() / 5);
    const int later = ask(QStringLiteral("GetSize")).toInt();
    const auto outerPoints = static_cast<int>(outer.elapsed() / 5);
    QVERIFY2(later - early >= qMin(innerPoints, 600 - early) - 1, qPrintable(QString::number(later - early)));
    QVERIFY2(later - early <= outerPoints + 1, qPrintable(QString::number(later - early)));
    QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("1"),
                              patienceMs);

    outer.start();
    QCOMPARE(ask(QStringLiteral("Clear")), QStringLiteral("0"));
    QCOMPARE(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("-1"));
    const int begunAgain = ask(QStringLiteral("GetSize")).toInt();
    QVERIFY2(begunAgain <= static_cast<int>(outer.elapsed() / 5) + 1, qPrintable(QString::number(begunAgain)));
}

void CaptureTest::handwritingComesBackAsItWasRecorded()
{
    const QJsonArray recorded = recordedHandwriting();
    if (recorded.isEmpty())
        QSKIP("the recorded handwriting is not here");
    QVERIFY(startWithHandwriting());
    QCOMPARE(ask(QStringLiteral("GetSize")), QStringLiteral("501"));
    QCOMPARE(arrayOf(ask(QStringLiteral("GetPointer"))), recorded);
}

void CaptureTest::pictureShowsTheHandwriting()
{
    const QJsonArray recorded = recordedHandwriting();
    if (recorded.isEmpty())
        QSKIP("the recorded handwriting is not here");
    QVERIFY(startWithHandwriting());
    ask(QStringLiteral("SetPenColor?R=200&G=0&B=0"));
    const QJsonObject reply = arrayOf(ask(QStringLiteral("GetInks"))).at(0).toObject();
    const QByteArray base64 = reply.value(QLatin1String("Image")).toString().toLatin1();
    QCOMPARE(reply.value(QLatin1String("ImageLength")).toString(), QString::number(base64.size()));
    const QImage picture = QImage::fromData(QByteArray::fromBase64(base64), "PNG");
    QCOMPARE(picture.size(), QSize(960, 600));

    QImage written(picture.size(), QImage::Format_Mono); // where ink may be: near a point or between two of a stroke
    written.fill(0);
    bool bDown = false;
    QPoint last;
    for (const QJsonValue &value : recorded) {
        const QPoint point(coordinate(value, "x"), coordinate(value, "y"));
        QVERIFY2(qAlpha(picture.pixel(point)) > 0, "a point without ink");
        const int steps = bDown ? qMax(1, (point - last).manhattanLength()) : 1;
        for (int step = 0; step <= steps; ++step) {
            const QPoint between = bDown ? last + (point - last) * step / steps : point;
            for (int y = qMax(0, between.y() - 8); y <= qMin(599, between.y() + 8); ++y)
                for (int x = qMax(0, between.x() - 8); x <= qMin(959, between.x() + 8); ++x)
                    written.setPixel(x, y, 1);
        }
        last = point;
        bDown = coordinate(value, "bStrokeEnd") == 0;
    }
    for (int y = 0; y < 600; ++y)
        for (int x = 0; x < 960; ++x)
            QVERIFY2(written.pixelIndex(x, y) == 1 || qAlpha(picture.pixel(x, y)) == 0, "ink where nobody wrote");
    const QPoint first(coordinate(recorded.at(0), "x"), coordinate(recorded.at(0), "y"));
    QVERIFY(qRed(picture.pixel(first)) > 150 && qBlue(picture.pixel(first)) < 50);
}

void CaptureTest::inkDataComesBackAsTheSamePoints()
{
    const QJsonArray recorded = recordedHandwriting();
    if (recorded.isEmpty())
        QSKIP("the recorded handwriting is not here");
    QVERIFY(startWithHandwriting());
    const QString data = ask(QStringLiteral("Encode?type=6"));
    const QJsonArray decoded = arrayOf(ask(QStringLiteral("Decode?type=6&path=tst_capture.ink&data=") + data));
    QCOMPARE(ask(QStringLiteral("GetDecodeFilePath")), QStringLiteral("/tmp/tst_capture.ink"));
    QCOMPARE(decoded.size(), 501);
    for (int i = 0; i < decoded.size(); ++i) {
        for (const char *member : {"x", "y", "bStrokeEnd"})
            QCOMPARE(coordinate(decoded.at(i), member), coordinate(recorded.at(i), member));
    }
    QFile::remove(QStringLiteral("/tmp/tst_capture.ink"));
}

void CaptureTest::everyModelCaptures_data()
{
    QTest::addColumn<int>("model");
    QTest::newRow("Alder") << 2;
    QTest::newRow("Birch") << 5;
    QTest::newRow("Cedar") << 7;
    QTest::newRow("Maple") << 3;
    QTest::newRow("Rowan") << 4;
}

void CaptureTest::everyModelCaptures()
{
    QFETCH(int, model);
    QVERIFY(start(QStringLiteral("0")));
    QVERIFY(initialise(model));
    QCOMPARE(ask(QStringLiteral("IsValid")), QStringLiteral("1"));
    QCOMPARE(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("1"));
    const QString file = m_desktop->home() + QStringLiteral("/signature.png");
    QCOMPARE(ask(QStringLiteral("SaveDrawingImage?type=3&dpi=300&path=") + file), file);
    const QImage picture(file);
    QVERIFY(picture.width() > 0 && picture.height() > 0);
    QCOMPARE(picture.dotsPerMeterX(), 11811);
    QCOMPARE(ask(QStringLiteral("UninitialDevice")), QStringLiteral("1"));
    QCOMPARE(ask(QStringLiteral("IsValid")), QStringLiteral("0"));
}

QTEST_GUILESS_MAIN(CaptureTest)
#include "tst_capture.moc"
