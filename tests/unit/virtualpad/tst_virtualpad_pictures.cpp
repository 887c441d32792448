#include "tests/unit/support/Patience.h"
#include "tests/unit/virtualpad/support/LoadedPad.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

/// A straight line from (100, 50) to (300, 50), one point every 10 pixels, all with the same pressure.
QByteArray straightLine(int pressure)
{
    QList<TestPoint> points;
    for (int i = 0; i <= 20; ++i)
        points.append({100 + 10 * i, 50, pressure, i == 20 ? 1 : 0, QByteArray::number(5 * i)});
    return inkText(points);
}

/// How many pixels of the column are more ink than not.
int inkInColumn(const QImage &image, int x)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        count += image.hasAlphaChannel() ? qAlpha(image.pixel(x, y)) > 127 : qGray(image.pixel(x, y)) < 128;
    return count;
}

QByteArray formatOf(QByteArray data)
{
    QBuffer buffer(&data);
    return QImageReader(&buffer).format();
}

} // namespace

class TestPictures : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;

    /// The saved picture, empty with the result in *pResult when it was not saved.
    QByteArray saved(LoadedPad &pad, int type, int dpi, int *pResult = nullptr)
    {
        const QString path = m_directory.filePath(QStringLiteral("unterschrift-签名-\U0001F58B.out"));
        QFile::remove(path);
        std::vector<wchar_t> widePath(size_t(path.size()) + 1, L'\0');
        path.toWCharArray(widePath.data());
        const int result = pad.SaveDrawingImage(pad.id(), type, widePath.data(), dpi);
        if (pResult)
            *pResult = result;
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private Q_SLOTS:
    void pixelTypes_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QByteArray>("format");
        QTest::addColumn<bool>("transparent");
        QTest::addColumn<bool>("transparentEx");
        QTest::newRow("1") << 1 << QByteArray("bmp") << false << false;
        QTest::newRow("2") << 2 << QByteArray("png") << true << true;
        QTest::newRow("3") << 3 << QByteArray("png") << true << false;
        QTest::newRow("4") << 4 << QByteArray("jpeg") << false << false;
    }

    void pixelTypes()
    {
        QFETCH(int, type);
        QFETCH(QByteArray, format);
        QFETCH(bool, transparent);
        QFETCH(bool, transparentEx);
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(1023), 400, 100));
        const struct {
            QByteArray data;
            bool transparent;
        } pictures[] = {{pad.encoded(type), transparent},
                        {pad.encodedEx(type), transparentEx},
                        {saved(pad, type, 96), transparent}};
        for (const auto &picture : pictures) {
            QCOMPARE(formatOf(picture.data), format);
            const QImage image = QImage::fromData(picture.data);
            QCOMPARE(image.size(), QSize(400, 100));
            QCOMPARE(image.hasAlphaChannel(), picture.transparent);
            QCOMPARE(image.pixel(5, 5), picture.transparent ? 0x00000000u : 0xffffffffu);
            const QRgb ink = image.pixel(200, 50);
            QCOMPARE(qAlpha(ink), 255);
            QVERIFY2(qGray(ink) < 12, "black, but for what JPEG makes of it");
            QCOMPARE(qRound(image.dotsPerMeterX() * 0.0254), 96);
        }
    }

    void jpegHasFewTraces()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(500), 400, 100));
        for (const QByteArray &picture : {pad.encoded(4), saved(pad, 4, 96)}) {
            // The last divisor of the quantization table of brightness is 99 at a quality of 50, and 16 at 92.
            const int table = picture.indexOf(QByteArray::fromHex("ffdb004300"));
            QVERIFY(table > 0);
            QCOMPARE(int(picture.at(table + 5 + 63)), 16);
        }
    }

    void svgIsAPictureOfTheSameInk()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(960, 600));
        pad.SetPenColor(2, 18, 52, 171);
        const QByteArray svg = pad.encoded(5);
        QXmlStreamReader xml(svg);
        int paths = 0;
        while (!xml.atEnd()) {
            if (xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (xml.name() == QLatin1String("svg")) {
                QCOMPARE(xml.attributes().value(QLatin1String("width")).toString(), QStringLiteral("960"));
                QCOMPARE(xml.attributes().value(QLatin1String("height")).toString(), QStringLiteral("600"));
            }
            if (xml.name() == QLatin1String("g"))
                QCOMPARE(xml.attributes().value(QLatin1String("fill")).toString(), QStringLiteral("#1234ab"));
            paths += xml.name() == QLatin1String("path");
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
        QCOMPARE(paths, 4);
        QCOMPARE(pad.decoded(pad.GetSVGImageBase64Data(2), pad.FreeSVGImageBase64Data), svg);
        QCOMPARE(pad.encodedEx(5), svg);
        QCOMPARE(saved(pad, 5, 300), svg);
    }

    void svgIsDrawnByOthersAsThePngIs()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(960, 600));
        QProcess converter;
        converter.start(QStringLiteral("rsvg-convert"), QStringList());
        QVERIFY2(converter.waitForStarted(), "needs rsvg-convert");
        converter.write(pad.encoded(5));
        converter.closeWriteChannel();
        QVERIFY(converter.waitForFinished());
        const QImage drawn = QImage::fromData(converter.readAllStandardOutput(), "png");
        const QImage own = QImage::fromData(pad.encoded(2), "png");
        QCOMPARE(drawn.size(), QSize(960, 600));
        int inked = 0;
        int different = 0;
        for (int y = 0; y < 600; ++y) {
            for (int x = 0; x < 960; ++x) {
                inked += qAlpha(own.pixel(x, y)) > 127;
                different += std::abs(qAlpha(own.pixel(x, y)) - qAlpha(drawn.pixel(x, y))) > 40;
            }
        }
        QVERIFY2(inked > 5000, "a signature is more than a few dots");
        QVERIFY2(different < 50, qPrintable(QString::number(different)));
    }

    void inkDataComesBackAsTheSamePoints()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(960, 600));
        const QList<TestPoint> points = pad.points();
        const auto text = pad.taken(pad.Base64Encode(2, 6), pad.Base64EncodeFree);
        QVERIFY(text);
        QVERIFY(pad.initialise(100, 100));
        QCOMPARE(pad.GetTotalDecodeInkPointsNumber(2), 0);
        const std::wstring path = m_directory.filePath(QStringLiteral("ink.json")).toStdWString();
        QCOMPARE(pad.Base64Decode(2, 6, text->constData(), path.c_str()), 0);
        QCOMPARE(pad.GetTotalDecodeInkPointsNumber(2), 600);
        for (int i = 0; i < 600; ++i) {
            QCOMPARE(pad.GetDecodeInkPointData(2, i, 1), points[i].x);
            QCOMPARE(pad.GetDecodeInkPointData(2, i, 2), points[i].y);
            QCOMPARE(pad.GetDecodeInkPointData(2, i, 3), points[i].strokeEnd);
        }

        // The file is one that the pad can write from.
        qputenv("MVSIGNPAD_VIRTUAL_INK", m_directory.filePath(QStringLiteral("ink.json")).toLocal8Bit());
        QVERIFY(pad.initialiseWritten(960, 600));
        QCOMPARE(pad.points(), points);
    }

    void decodeWritesTheDataOfAnyPicture_data()
    {
        QTest::addColumn<int>("type");
        for (int type = 1; type <= 5; ++type)
            QTest::addRow("%d", type) << type;
    }

    void decodeWritesTheDataOfAnyPicture()
    {
        QFETCH(int, type);
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(200, 100));
        const auto text = pad.taken(pad.Base64Encode(2, type), pad.Base64EncodeFree);
        QVERIFY(text);
        const QString path = m_directory.filePath(QStringLiteral("decoded"));
        QCOMPARE(pad.Base64Decode(2, type, text->constData(), path.toStdWString().c_str()), 0);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), pad.encoded(type));
        QCOMPARE(pad.GetTotalDecodeInkPointsNumber(2), 0);
    }

    void penWidthShows_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<bool>("pressureOn");
        QTest::addColumn<int>("pressure");
        QTest::addColumn<int>("pixels");
        QTest::newRow("2 without pressure") << 2 << false << 100 << 2;
        QTest::newRow("10 without pressure") << 10 << false << 100 << 10;
        QTest::newRow("40 without pressure") << 40 << false << 1023 << 40;
        QTest::newRow("20, firm") << 20 << true << 1023 << 24;
        QTest::newRow("20, half") << 20 << true << 455 << 14;
        QTest::newRow("20, light") << 20 << true << 0 << 6;
        QTest::newRow("20, firmer than the pad knows") << 20 << true << 32767 << 24;
    }

    void penWidthShows()
    {
        QFETCH(int, width);
        QFETCH(bool, pressureOn);
        QFETCH(int, pressure);
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(pressure), 400, 100));
        QCOMPARE(pad.SetPenWidth(2, width), 0);
        QCOMPARE(pad.SetPenStyle(2, pressureOn), 0);
        for (int x : {120, 200, 280})
            QTEST(inkInColumn(QImage::fromData(pad.encoded(3)), x), "pixels");
    }

    void penColorShows()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(1023), 400, 100));
        pad.SetPenWidth(2, 10);
        QCOMPARE(pad.SetPenColor(2, 200, 30, 60), 0);
        for (int type : {1, 2, 3})
            QCOMPARE(QImage::fromData(pad.encoded(type)).pixel(200, 50), qRgb(200, 30, 60));
        const QRgb jpeg = QImage::fromData(pad.encoded(4)).pixel(200, 50);
        QVERIFY(std::abs(qRed(jpeg) - 200) < 12 && std::abs(qGreen(jpeg) - 30) < 12 && std::abs(qBlue(jpeg) - 60) < 12);
        QVERIFY(pad.encoded(5).contains("fill=\"#c81e3c\""));
    }

    void linesAreSmooth()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(1023), 400, 100));
        pad.SetPenStyle(2, false);
        pad.SetPenWidth(2, 5);
        const QImage image = QImage::fromData(pad.encoded(3));
        // Round at the end, half covered at the upper and lower edge.
        QVERIFY(qAlpha(image.pixel(302, 48)) < 128);
        const int edge = qAlpha(image.pixel(200, 47));
        QVERIFY2(edge > 100 && edge < 155, qPrintable(QString::number(edge)));
        QCOMPARE(qAlpha(image.pixel(200, 48)), 255);
        QCOMPARE(qAlpha(image.pixel(200, 46)), 0);
    }

    void aDotIsRound()
    {
        LoadedPad pad;
        QVERIFY(
            pad.initialiseWith(inkText({{50, 50, 0, 0, "0"}, {50, 50, 1023, 0, "5"}, {50, 50, 0, 1, "10"}}), 100, 100));
        pad.SetPenWidth(2, 20);
        const QImage image = QImage::fromData(pad.encoded(3));
        QCOMPARE(inkInColumn(image, 50), 24);
        QCOMPARE(qAlpha(image.pixel(50 + 9, 50 + 9)), 0);
        QCOMPARE(qAlpha(image.pixel(50 + 7, 50 + 7)), 255);
    }

    void aCornerIsCutFromMiddleToMiddle()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(inkText({{50, 50, 500, 0, "0"}, {150, 50, 500, 0, "5"}, {150, 250, 500, 1, "10"}}),
                                   400, 300));
        pad.SetPenStyle(2, false);
        pad.SetPenWidth(2, 6);
        const QImage image = QImage::fromData(pad.encoded(3));
        for (const QPoint inked : {QPoint(51, 50), QPoint(95, 50), QPoint(137, 75), QPoint(150, 160), QPoint(150, 249)})
            QCOMPARE(qAlpha(image.pixel(inked)), 255);
        for (const QPoint clear : {QPoint(45, 50), QPoint(95, 45), QPoint(95, 55), QPoint(150, 50), QPoint(150, 255)})
            QCOMPARE(qAlpha(image.pixel(clear)), 0);
    }

    void clipCropsToTheInk_data()
    {
        QTest::addColumn<int>("enable");
        QTest::addColumn<int>("marginX");
        QTest::addColumn<int>("marginY");
        QTest::addColumn<QSize>("size");
        QTest::newRow("off") << 0 << 0 << 0 << QSize(400, 100);
        QTest::newRow("off with margins") << 0 << 30 << 40 << QSize(400, 100);
        QTest::newRow("to the ink") << 1 << 0 << 0 << QSize(210, 10);
        QTest::newRow("one side") << 1 << 0 << 40 << QSize(210, 90);
        QTest::newRow("both") << 1 << 5 << 5 << QSize(220, 20);
        QTest::newRow("beyond the pad") << 1 << 300 << 1 << QSize(810, 12);
    }

    void clipCropsToTheInk()
    {
        QFETCH(int, enable);
        QFETCH(int, marginX);
        QFETCH(int, marginY);
        QFETCH(QSize, size);
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(500), 400, 100));
        pad.SetPenStyle(2, false);
        pad.SetPenWidth(2, 10);
        QCOMPARE(pad.SetSaveClipImageMargin(2, enable, marginX, marginY), 0);
        for (int type = 1; type <= 4; ++type)
            QCOMPARE(QImage::fromData(saved(pad, type, 96)).size(), size);
        const QImage image = QImage::fromData(saved(pad, 3, 192));
        QCOMPARE(image.size(), 2 * size);
        QVERIFY(saved(pad, 5, 96)
                    .contains(QStringLiteral("viewBox=\"0 0 %1 %2\"").arg(size.width()).arg(size.height()).toLatin1()));
        if (enable) {
            QCOMPARE(qAlpha(image.pixel(image.width() / 2, image.height() / 2)), 255);
            QCOMPARE(inkInColumn(image, image.width() / 2), 20);
        }
    }

    void clipOfAnEmptyPadIsTheWholePad()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith("[]", 400, 100));
        pad.SetSaveClipImageMargin(2, 1, 5, 5);
        QCOMPARE(QImage::fromData(saved(pad, 3, 96)).size(), QSize(400, 100));
    }

    void clipConcernsSavedPicturesOnly()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(500), 400, 100));
        pad.SetSaveClipImageMargin(2, 1, 5, 5);
        QVERIFY(QImage::fromData(saved(pad, 3, 96)).width() < 400);
        for (int type = 1; type <= 4; ++type) {
            QCOMPARE(QImage::fromData(pad.encoded(type)).size(), QSize(400, 100));
            QCOMPARE(QImage::fromData(pad.encodedEx(type)).size(), QSize(400, 100));
        }
        const QByteArray wholePad = "viewBox=\"0 0 400 100\"";
        QVERIFY(pad.encoded(5).contains(wholePad));
        QVERIFY(pad.decoded(pad.GetSVGImageBase64Data(2), pad.FreeSVGImageBase64Data).contains(wholePad));
        const QByteArray forWps = pad.decoded(pad.WPSBase64Encode(2, 3), pad.WPSBase64EncodeFree);
        QCOMPARE(QImage::fromData(forWps).size(), QSize(400, 100));
    }

    void inkOutsideThePadIsNotSeen()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(
            inkText({{-30000, 50, 500, 0, "0"}, {30000, 50, 500, 1, "5"}, {50, 20000, 500, 1, "10"}}), 400, 100));
        pad.SetPenStyle(2, false);
        pad.SetPenWidth(2, 10);
        pad.SetSaveClipImageMargin(2, 1, 2, 3);
        const QImage image = QImage::fromData(saved(pad, 3, 96));
        QCOMPARE(image.width(), 404);
        for (int x : {2, 200, 401})
            QCOMPARE(qAlpha(image.pixel(x, 8)), 255);
    }

    void dpiIsStoredAndScales_data()
    {
        QTest::addColumn<int>("dpi");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("dotsPerMeter");
        QTest::addColumn<int>("lineWidth");
        QTest::newRow("96") << 96 << QSize(400, 100) << 3780 << 16;
        QTest::newRow("48") << 48 << QSize(200, 50) << 1890 << 8;
        QTest::newRow("300") << 300 << QSize(1250, 313) << 11811 << 50;
        QTest::newRow("600") << 600 << QSize(2500, 625) << 23622 << 100;
        QTest::newRow("1") << 1 << QSize(4, 1) << 39 << 0;
    }

    void dpiIsStoredAndScales()
    {
        QFETCH(int, dpi);
        QFETCH(QSize, size);
        QFETCH(int, lineWidth);
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(500), 400, 100));
        pad.SetPenStyle(2, false);
        pad.SetPenWidth(2, 16);
        for (int type = 1; type <= 3; ++type) {
            const QImage image = QImage::fromData(saved(pad, type, dpi));
            QCOMPARE(image.size(), size);
            QTEST(image.dotsPerMeterX(), "dotsPerMeter");
            QTEST(image.dotsPerMeterY(), "dotsPerMeter");
            if (dpi > 1)
                QVERIFY(std::abs(inkInColumn(image, size.width() / 2) - lineWidth) <= 1);
        }
        QImage jpeg = QImage::fromData(saved(pad, 4, dpi));
        QCOMPARE(jpeg.size(), size);
        QCOMPARE(qRound(jpeg.dotsPerMeterX() * 0.0254), dpi);
    }

    void wpsCanvas()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWith(straightLine(500), 400, 100));
        pad.SetPenStyle(2, false);
        pad.SetPenWidth(2, 12);
        QVERIFY(pad.InitialWPSSignCanvas(2, 200, 200));
        // Half the size, in the middle of the higher canvas.
        for (const QByteArray &data :
             {pad.encoded(2), pad.encodedEx(2), pad.decoded(pad.WPSBase64Encode(2, 3), pad.WPSBase64EncodeFree)}) {
            const QImage image = QImage::fromData(data);
            QCOMPARE(image.size(), QSize(200, 200));
            QCOMPARE(inkInColumn(image, 100), 6);
            QCOMPARE(qAlpha(image.pixel(100, 100)), 255);
            QCOMPARE(qAlpha(image.pixel(40, 100)), 0);
        }
        QCOMPARE(QImage::fromData(pad.encoded(3)).size(), QSize(400, 100));
        QVERIFY(!pad.InitialWPSSignCanvas(2, 0, 200));
        QVERIFY(!pad.InitialWPSSignCanvas(2, 200, 4097));
        QCOMPARE(QImage::fromData(pad.encoded(2)).size(), QSize(200, 200));
    }

    void picturesGrowWithTheWriting()
    {
        LoadedPad pad;
        QVERIFY(pad.initialise(400, 300));
        const auto inked = [&pad] {
            const QImage image = QImage::fromData(pad.encoded(3));
            int count = 0;
            for (int x = 0; x < image.width(); ++x)
                count += inkInColumn(image, x);
            return count;
        };
        QTRY_VERIFY_WITH_TIMEOUT(inked() > 0, patienceMs);
        const int early = inked();
        QTRY_VERIFY_WITH_TIMEOUT(inked() > early, patienceMs);
    }

    void tooLargePicturesAreRefused()
    {
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(4096, 4096));
        int result = 0;
        QCOMPARE(saved(pad, 3, 400, &result), QByteArray());
        QCOMPARE(result, -3);
        QVERIFY(pad.initialiseWritten(400, 100));
        saved(pad, 1, 2400, &result);
        QCOMPARE(result, 0);
        pad.SetSaveClipImageMargin(2, 1, 4096, 4096);
        QCOMPARE(saved(pad, 1, 96, &result), QByteArray());
        QCOMPARE(result, -3);
        QCOMPARE(QImage::fromData(pad.encoded(3)).size(), QSize(400, 100));
        QCOMPARE(saved(pad, 5, 96, &result).left(4), QByteArray("<svg"));
    }

    void filesThatCannotBeWritten_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("empty") << QString();
        QTest::newRow("directory") << m_directory.path();
        QTest::newRow("below nothing") << m_directory.filePath(QStringLiteral("no/such/directory/a.png"));
        QTest::newRow("device") << QStringLiteral("/dev/null");
        QTest::newRow("too long") << m_directory.filePath(QString(5000, QLatin1Char('a')));
    }

    void filesThatCannotBeWritten()
    {
        QFETCH(QString, path);
        LoadedPad pad;
        QVERIFY(pad.initialiseWritten(100, 100));
        const std::wstring widePath = path.toStdWString();
        QCOMPARE(pad.SaveDrawingImage(2, 3, widePath.c_str(), 96), -5);
        QCOMPARE(pad.Base64Decode(2, 1, "QUJD", widePath.c_str()), -5);
        QVERIFY(!QFileInfo(QStringLiteral("/dev/null")).isFile());
    }
};

QTEST_GUILESS_MAIN(TestPictures)
#include "tst_virtualpad_pictures.moc"
