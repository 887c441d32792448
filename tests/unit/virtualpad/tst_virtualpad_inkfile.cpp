#include "tests/unit/virtualpad/support/LoadedPad.h"
#include "tests/unit/virtualpad/support/StderrTrap.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace {

const QByteArray kGoodPoint = "{\"Time\":\"0\",\"bStrokeEnd\":\"1\",\"pressure\":\"490\",\"x\":\"30\",\"y\":\"296\"}";

QByteArray repeated(const QByteArray &piece, int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? QByteArray() : QByteArray(",")) + piece;
    return text;
}

/// The good point with one piece of it replaced, alone in its array.
QByteArray changed(const char *before, const char *after)
{
    QByteArray point = kGoodPoint;
    point.replace(before, after);
    return "[" + point + "]";
}

} // namespace

class TestInkFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;

    static bool write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
    }

    QString path(const char *name) const { return m_directory.filePath(QLatin1String(name)); }

    /// What is wrong with a pad that can read no ink and has to say so in one line; nothing, if all is well.
    static QByteArray flawOfPadWithoutInk(const QString &inkPath, const QByteArray &reason)
    {
        LoadedPad pad;
        qputenv("MVSIGNPAD_VIRTUAL_INK", QFile::encodeName(inkPath));
        StderrTrap trap;
        if (!pad.initialiseWritten(400, 300))
            return "it is not there";
        const QByteArray line = trap.written();
        const QByteArray start =
            "virtual pad: the ink file " + QFile::encodeName(inkPath) + " cannot be used: " + reason;
        if (!line.startsWith(start) || line.count('\n') != 1 || !line.endsWith('\n'))
            return "it says: " + line;
        if (pad.GetTotalInkPointsNumber(2) != 0 || pad.GetDeviceConfirmOrCancelKeyStatus(2) != -1)
            return "it has ink, or a key was pressed";
        bool connected = false;
        if (pad.GetDeviceInfo(2, 1, &connected) != 0 || !connected)
            return "it is not connected";
        return QImage::fromData(pad.encoded(3), "png").size() == QSize(400, 300) ? "" : "its picture is no empty pad";
    }

private Q_SLOTS:
    void brokenText_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("reason");
        const QByteArray noObject = "point 0 is no object of five members";
        const auto range = [](const char *name, const char *from, const char *to) {
            return QByteArray("point 0 needs \"") + name + "\" as the text of a whole number from " + from + " to "
                   + to;
        };
        const QByteArray x = range("x", "-32768", "32767");
        const QByteArray y = range("y", "-32768", "32767");
        const QByteArray pressure = range("pressure", "0", "32767");
        const QByteArray strokeEnd = range("bStrokeEnd", "0", "1");
        const QByteArray time = range("Time", "0", "86400000");
        QTest::newRow("empty file") << QByteArray() << QByteArray("no JSON: ");
        QTest::newRow("prose") << QByteArray("my name\n") << QByteArray("no JSON: ");
        QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1a\n", 8) << QByteArray("no JSON: ");
        QTest::newRow("cut off") << ("[" + kGoodPoint.left(40)) << QByteArray("no JSON: ");
        QTest::newRow("no closing bracket") << ("[" + kGoodPoint) << QByteArray("no JSON: ");
        QTest::newRow("something behind") << ("[" + kGoodPoint + "]x") << QByteArray("no JSON: ");
        QTest::newRow("object") << kGoodPoint << QByteArray("no array of points");
        QTest::newRow("null in it") << QByteArray("[null]") << noObject;
        QTest::newRow("number in it") << QByteArray("[12]") << noObject;
        QTest::newRow("array in it") << QByteArray("[[]]") << noObject;
        QTest::newRow("empty object in it") << QByteArray("[{}]") << noObject;
        QTest::newRow("no Time") << changed("\"Time\":\"0\",", "") << noObject;
        QTest::newRow("a sixth member") << changed("{", "{\"z\":\"1\",") << noObject;
        QTest::newRow("another member instead") << changed("\"x\"", "\"X\"") << x;
        QTest::newRow("x as a number") << changed("\"30\"", "30") << x;
        QTest::newRow("x null") << changed("\"30\"", "null") << x;
        QTest::newRow("x empty") << changed("\"30\"", "\"\"") << x;
        QTest::newRow("x with a fraction") << changed("\"30\"", "\"30.5\"") << x;
        QTest::newRow("x hexadecimal") << changed("\"30\"", "\"0x30\"") << x;
        QTest::newRow("x with a blank") << changed("\"30\"", "\" 30\"") << x;
        QTest::newRow("x with a plus") << changed("\"30\"", "\"+30\"") << x;
        QTest::newRow("x with a leading zero") << changed("\"30\"", "\"030\"") << x;
        QTest::newRow("x beyond 16 bits") << changed("\"30\"", "\"32768\"") << x;
        QTest::newRow("x beyond 32 bits") << changed("\"30\"", "\"4294967326\"") << x;
        QTest::newRow("y below 16 bits") << changed("\"296\"", "\"-32769\"") << y;
        QTest::newRow("negative pressure") << changed("\"490\"", "\"-1\"") << pressure;
        QTest::newRow("pressure as text") << changed("\"490\"", "\"hard\"") << pressure;
        QTest::newRow("stroke end 2") << changed("\"1\"", "\"2\"") << strokeEnd;
        QTest::newRow("stroke end true") << changed("\"1\"", "true") << strokeEnd;
        QTest::newRow("negative time") << changed("\"0\"", "\"-5\"") << time;
        QTest::newRow("a day and more") << changed("\"0\"", "\"86400001\"") << time;
        QTest::newRow("time runs backwards")
            << ("[" + QByteArray(kGoodPoint).replace("\"0\"", "\"9\"") + "," + kGoodPoint + "]")
            << QByteArray("point 1 is earlier than the one before it");
        QTest::newRow("third point broken")
            << ("[" + kGoodPoint + "," + kGoodPoint + ",7]") << QByteArray("point 2 is no object of five members");
        QTest::newRow("50001 points") << ("[" + repeated(kGoodPoint, 50001) + "]")
                                      << QByteArray("more than 50000 points");
        QTest::newRow("deeply nested") << QByteArray(100000, '[') << QByteArray("no JSON: ");
        QTest::newRow("over 8 MiB") << ("[" + QByteArray(8 * 1024 * 1024, ' ') + "]")
                                    << QByteArray("more than 8388608 bytes");
    }

    void brokenText()
    {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, reason);
        const QString file = path("broken.json");
        QVERIFY(write(file, content));
        QCOMPARE(flawOfPadWithoutInk(file, reason), QByteArray());
    }

    void brokenFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("missing") << path("nowhere.json") << QByteArray("No such file or directory");
        QTest::newRow("directory") << m_directory.path() << QByteArray("no regular file");
        QTest::newRow("endless device") << QStringLiteral("/dev/zero") << QByteArray("no regular file");
        QCOMPARE(::mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
        QTest::newRow("pipe") << path("pipe") << QByteArray("no regular file");
    }

    void brokenFile()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, reason);
        QCOMPARE(flawOfPadWithoutInk(file, reason), QByteArray());
    }

    void noPointsAreNoMistake()
    {
        LoadedPad pad;
        StderrTrap trap;
        QVERIFY(pad.initialiseWith("[]", 400, 300));
        QCOMPARE(trap.written(), QByteArray());
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 0);
        QCOMPARE(pad.GetDeviceConfirmOrCancelKeyStatus(2), -1);
    }

    void theLargestFileIsTaken()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith("[" + repeated(kGoodPoint, 50000) + "]", 400, 300));
        QCOMPARE(pad.GetTotalInkPointsNumber(2), 50000);
    }

    void whiteSpaceAndOrderDoNotMatter()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(
            "\n[ { \"y\": \"-7\",\t\"x\": \"5\", \"Time\": \"12\", \"pressure\": \"3\", \"bStrokeEnd\": \"0\" } ]\n",
            400, 300));
        QCOMPARE(pad.points(), (QList<TestPoint>{{5, -7, 3, 0, "12"}}));
    }

    void aPersonsHandwritingComesBackEqual()
    {
        QFile file(QStringLiteral(MVSIGNPAD_HANDWRITING));
        if (!file.open(QIODevice::ReadOnly))
            QSKIP("the recorded handwriting is not on this machine");
        const QByteArray text = file.readAll();
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(text, 960, 600));
        const QList<TestPoint> points = pad.points();
        QCOMPARE(points.size(), 501);
        QCOMPARE(inkText(points), text);
        QCOMPARE(points.first(), (TestPoint{30, 296, 490, 0, "0"}));
        QCOMPARE(points.last(), (TestPoint{659, 443, 442, 1, "9040"}));

        // The picture shows it: dark on the pen's way, clear away from it.
        const QImage image = QImage::fromData(pad.encoded(3), "png");
        QCOMPARE(image.size(), QSize(960, 600));
        for (const TestPoint &point : points)
            QVERIFY(qAlpha(image.pixel(point.x, point.y)) > 60);
        QCOMPARE(qAlpha(image.pixel(480, 560)), 0);
        QCOMPARE(qAlpha(image.pixel(10, 10)), 0);
    }
};

QTEST_GUILESS_MAIN(TestInkFile)
#include "tst_virtualpad_inkfile.moc"
