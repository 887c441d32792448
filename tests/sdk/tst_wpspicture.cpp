/// The WPS signature picture, compared pixel by pixel with pictures that this file composes out of the layout:
/// name band on top, drawing flush right below it, date band at the bottom.

#include "base/QtCompat.h"
#include "device/SignObjAlder.h"
#include "tests/sdk/support/ModelTestCase.h"

#include <QBuffer>
#include <QDateTime>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <ctime>
#include <limits>

namespace {

const QString drawingPath = QStringLiteral("/tmp/MVeSignWPS.png");
const QString composedPath = QStringLiteral("/tmp/MVeSignWPS_dt_name.png");

QFont textFont()
{
    return QFont(QStringLiteral("times"), 24);
}

int lineHeight()
{
    return QFontMetrics(textFont()).height();
}

int widthOf(const QString &text)
{
    return text.isEmpty() ? 0 : TextWidth(QFontMetrics(textFont()), text);
}

/// Text that stands in a canvas of the given width by itself, right-aligned, one line high.
QImage band(const QString &text, int width)
{
    QImage image(width, lineHeight(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(textFont());
    painter.drawText(QRect(0, 0, width, lineHeight()), Qt::AlignRight | Qt::AlignTop, text);
    return image;
}

void copyInto(QImage &canvas, int left, int top, const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            canvas.setPixel(left + x, top + y, image.pixel(x, y));
        }
    }
}

/// The picture as it has to be; an empty name or date stands for "none".
QImage composed(const QImage &drawing, const QString &name, const QString &date)
{
    const int line = lineHeight();
    const int width = std::max({drawing.width(), widthOf(name), widthOf(date)});
    const int nameHeight = name.isEmpty() ? 0 : line;
    const int dateHeight = date.isEmpty() ? 0 : line;
    QImage canvas(width, nameHeight + drawing.height() + dateHeight, QImage::Format_ARGB32);
    canvas.fill(Qt::transparent);
    if (!name.isEmpty()) {
        copyInto(canvas, 0, 0, band(name, width));
    }
    copyInto(canvas, width - drawing.width(), nameHeight, drawing);
    if (!date.isEmpty()) {
        copyInto(canvas, 0, nameHeight + drawing.height(), band(date, width));
    }
    return canvas;
}

/// A picture in which every pixel has a colour of its own, some of them transparent.
QImage drawingOf(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.setPixel(x, y, (x + y) % 3 == 0 ? qRgba(0, 0, 0, 0) : qRgba(x % 256, y % 256, (x / 256) * 16, 255));
        }
    }
    return image;
}

/// The first pixel in which two pictures differ; empty when there is none.
QString difference(const QImage &actual, const QImage &expected)
{
    if (actual.size() != expected.size()) {
        return QStringLiteral("size %1 x %2 instead of %3 x %4")
            .arg(actual.width())
            .arg(actual.height())
            .arg(expected.width())
            .arg(expected.height());
    }
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            if (actual.pixel(x, y) != expected.pixel(x, y)) {
                return QStringLiteral("pixel %1, %2: #%3 instead of #%4")
                    .arg(x)
                    .arg(y)
                    .arg(actual.pixel(x, y), 8, 16)
                    .arg(expected.pixel(x, y), 8, 16);
            }
        }
    }
    return {};
}

void removeFiles()
{
    for (const QString &path : {drawingPath, composedPath}) {
        QFile::remove(path);
        QDir().rmdir(path);
    }
}

} // namespace

class TestWpsPicture : public ModelTestCase
{
    Q_OBJECT

public:
    using ModelTestCase::ModelTestCase;

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void bareDrawing_data();
    void bareDrawing();
    void picture_data();
    void picture();
    void blendsHalfTransparentInk();
    void keepsFaintInk();
    void drawingWithoutAlpha();
    void layoutInWords();
    void textIsBlack();
    void resolution();
    void nextPictureReplacesTheLast();
    void savesThroughTheObjectsOwnOperation();
    void saveError_data();
    void saveError();
    void positiveCodeGoesOn();
    void positiveCodeWithoutTexts();
    void missingDrawing();
    void unreadableDrawing_data();
    void unreadableDrawing();
    void staleDrawingWithoutLibrary();
    void pictureThatCannotBeWritten();
    void nameWithoutWidth();
    void nameTooWideForAPicture();

private:
    /// Confirms a signature for which the library saves `drawing` (a null picture: saves nothing) and answers `code`.
    QString confirm(const QImage &drawing, bool bEnableDateTime, const QString &strName, int code = 0);
    /// The same with the date; `date` receives the date that stands in the picture.
    QString confirmWithDate(const QImage &drawing, const QString &strName, QString &date, int code = 0);
};

/// Far from UTC, so that only the local time is the expected date.
void TestWpsPicture::initTestCase()
{
    ModelTestCase::initTestCase();
    qputenv("TZ", "TEST-5:45");
    tzset();
}

void TestWpsPicture::init()
{
    ModelTestCase::init();
    removeFiles();
}

void TestWpsPicture::cleanup()
{
    removeFiles();
    ModelTestCase::cleanup();
}

QString TestWpsPicture::confirm(const QImage &drawing, bool bEnableDateTime, const QString &strName, int code)
{
    recording::Answer save = number(code);
    save.effect = [drawing] {
        if (!drawing.isNull() && !drawing.save(drawingPath))
            qFatal("The library cannot save %s.", qPrintable(drawingPath));
    };
    expectCall("MV*_SetSaveClipImageMargin(ID, 1, 5, 5)");
    expectCall(R"(MV*_SaveDrawingImage(ID, 3, "/tmp/MVeSignWPS.png", 300))", save);
    return pad().WPSSignConfirmed(bEnableDateTime, strName);
}

QString TestWpsPicture::confirmWithDate(const QImage &drawing, const QString &strName, QString &date, int code)
{
    const auto now = [] { return QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd hh:mm:ss")); };
    QString reply;
    do { // until the call lies within one second, whose text is then the one in the picture
        date = now();
        reply = confirm(drawing, true, strName, code);
    } while (date != now());
    return reply;
}

void TestWpsPicture::bareDrawing_data()
{
    QTest::addColumn<QString>("strName");
    QTest::newRow("null name") << QString();
    QTest::newRow("empty name") << QStringLiteral("");
}

void TestWpsPicture::bareDrawing()
{
    QFETCH(QString, strName);
    QCOMPARE(confirm(drawingOf(40, 30), false, strName), QStringLiteral("/tmp/MVeSignWPS.png"));
    QVERIFY(!QFile::exists(composedPath));
}

void TestWpsPicture::picture_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("withDate");
    QTest::newRow("name only, drawing wider") << QSize(700, 120) << QStringLiteral("Ada Lovelace") << false;
    QTest::newRow("name only, text wider") << QSize(20, 50) << QStringLiteral("Ada Lovelace") << false;
    QTest::newRow("date only, drawing wider") << QSize(700, 120) << QString() << true;
    QTest::newRow("date only, text wider") << QSize(31, 17) << QStringLiteral("") << true;
    QTest::newRow("both, drawing wider") << QSize(900, 33) << QStringLiteral("Ada Lovelace") << true;
    QTest::newRow("both, date wider") << QSize(33, 90) << QStringLiteral("Ada") << true;
    QTest::newRow("both, name wider") << QSize(33, 90) << QStringLiteral("Augusta Ada King, Countess of Lovelace")
                                      << true;
    QTest::newRow("both, drawing between the two") << QSize(200, 90) << QStringLiteral("A") << true;
    QTest::newRow("CJK name") << QSize(300, 100) << QString::fromUtf8("王小明") << true;
    QTest::newRow("long CJK name") << QSize(100, 100) << QString::fromUtf8("欧阳娜娜司马相如诸葛孔明") << false;
    QTest::newRow("beyond the basic plane") << QSize(100, 100) << QString::fromUtf8("\xF0\xA0\xAE\xB7") << false;
    QTest::newRow("right to left") << QSize(300, 40) << QString::fromUtf8("שלום") << false;
    QTest::newRow("blank name") << QSize(3, 4) << QStringLiteral(" ") << false;
    QTest::newRow("ampersand and tag") << QSize(30, 40) << QStringLiteral("<b>A&B</b>") << false;
    QTest::newRow("one pixel") << QSize(1, 1) << QStringLiteral("i") << true;
    QTest::newRow("wide name") << QSize(50, 20) << QString(500, QLatin1Char('m')) << false;
}

void TestWpsPicture::picture()
{
    QFETCH(QSize, size);
    QFETCH(QString, name);
    QFETCH(bool, withDate);
    const QImage drawing = drawingOf(size.width(), size.height());
    QString date;
    const QString reply = withDate ? confirmWithDate(drawing, name, date) : confirm(drawing, false, name);
    QCOMPARE(reply, QStringLiteral("/tmp/MVeSignWPS_dt_name.png"));
    QCOMPARE(difference(QImage(composedPath), composed(drawing, name, date)), QString());
}

void TestWpsPicture::blendsHalfTransparentInk()
{
    QImage drawing(2, 1, QImage::Format_ARGB32);
    drawing.setPixel(0, 0, qRgba(255, 0, 0, 51));
    drawing.setPixel(1, 0, qRgba(0, 255, 0, 204));
    QCOMPARE(confirm(drawing, false, QStringLiteral("i")), composedPath);
    const QImage picture(composedPath);
    QCOMPARE(picture.pixel(picture.width() - 2, picture.height() - 1), qRgba(255, 0, 0, 51));
    QCOMPARE(picture.pixel(picture.width() - 1, picture.height() - 1), qRgba(0, 255, 0, 204));
}

/// A premultiplied canvas has hardly any colours left for ink that is as faint as this.
void TestWpsPicture::keepsFaintInk()
{
    QImage drawing(64, 1, QImage::Format_ARGB32);
    drawing.fill(qRgba(200, 100, 50, 3));
    QCOMPARE(confirm(drawing, false, QStringLiteral("i")), composedPath);
    const QImage picture(composedPath);
    const QRgb pixel = picture.pixel(picture.width() - 1, picture.height() - 1);
    QCOMPARE(qAlpha(pixel), 3);
    QVERIFY(qAbs(qRed(pixel) - 200) < 10); // premultiplied: 170
    QVERIFY(qAbs(qGreen(pixel) - 100) < 10);
    QVERIFY(qAbs(qBlue(pixel) - 50) < 10);
}

void TestWpsPicture::drawingWithoutAlpha()
{
    QImage drawing(60, 20, QImage::Format_RGB888);
    drawing.fill(QColor(10, 20, 30));
    QCOMPARE(confirm(drawing, false, QStringLiteral("Ada")), composedPath);
    QCOMPARE(difference(QImage(composedPath),
                        composed(drawing.convertToFormat(QImage::Format_ARGB32), QStringLiteral("Ada"), QString())),
             QString());
}

void TestWpsPicture::layoutInWords()
{
    QImage drawing(10, 8, QImage::Format_ARGB32);
    drawing.fill(QColor(Qt::red));
    const int line = lineHeight();

    QCOMPARE(confirm(drawing, false, QStringLiteral("Augusta Ada King")), composedPath);
    QImage picture(composedPath);
    const int width = picture.width();
    QVERIFY(width > 10);
    QCOMPARE(picture.height(), line + 8);
    QCOMPARE(picture.pixel(width - 1, line), qRgba(255, 0, 0, 255));
    QCOMPARE(picture.pixel(width - 10, line + 7), qRgba(255, 0, 0, 255));
    QCOMPARE(picture.pixel(width - 11, line), qRgba(0, 0, 0, 0));
    QCOMPARE(picture.pixel(width - 1, line - 1), qRgba(0, 0, 0, 0));

    QString date;
    QCOMPARE(confirmWithDate(drawing, QString(), date), composedPath);
    picture = QImage(composedPath);
    QCOMPARE(picture.height(), 8 + line);
    QCOMPARE(picture.pixel(picture.width() - 1, 0), qRgba(255, 0, 0, 255));
    QCOMPARE(picture.pixel(picture.width() - 10, 7), qRgba(255, 0, 0, 255));
    QCOMPARE(picture.pixel(0, 0), qRgba(0, 0, 0, 0));
}

void TestWpsPicture::textIsBlack()
{
    QImage drawing(400, 1, QImage::Format_ARGB32);
    drawing.fill(Qt::transparent);
    QCOMPARE(confirm(drawing, false, QStringLiteral("Ada")), composedPath);
    const QImage picture(composedPath);
    int inked = 0;
    int leftmost = picture.width();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            if (qAlpha(pixel) == 0) {
                continue;
            }
            QCOMPARE(pixel & 0x00FFFFFFu, 0u);
            ++inked;
            leftmost = std::min(leftmost, x);
        }
    }
    QVERIFY(inked > 50);
    QVERIFY(leftmost > 300); // three letters at the right end of 400 pixels
}

void TestWpsPicture::resolution()
{
    QCOMPARE(confirm(drawingOf(40, 30), false, QStringLiteral("Ada")), composedPath);
    const QImage picture(composedPath);
    QCOMPARE(picture.dotsPerMeterX(), 11811);
    QCOMPARE(picture.dotsPerMeterY(), 11811);
    QCOMPARE(picture.hasAlphaChannel(), true);
    QFile file(composedPath);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QCOMPARE(bytes.left(8), QByteArray("\x89PNG\r\n\x1A\n"));
    // 11811 = 0x2E23, both ways, per metre
    QVERIFY(bytes.contains(QByteArray("pHYs\x00\x00\x2E\x23\x00\x00\x2E\x23\x01", 13)));
}

void TestWpsPicture::nextPictureReplacesTheLast()
{
    QCOMPARE(confirm(drawingOf(300, 200), false, QStringLiteral("Ada Lovelace")), composedPath);
    QCOMPARE(confirm(drawingOf(5, 6), false, QStringLiteral("B")), composedPath);
    QCOMPARE(difference(QImage(composedPath), composed(drawingOf(5, 6), QStringLiteral("B"), QString())), QString());
}

void TestWpsPicture::savesThroughTheObjectsOwnOperation()
{
    class OtherFiles : public SignObjAlder
    {
    public:
        QString SaveDrawImage(int nType, int nDPI, QString strPath) override
        {
            asked = QStringLiteral("%1, %2, %3").arg(nType).arg(nDPI).arg(strPath);
            return QStringLiteral("-7");
        }
        void SetClip(int nWidth, int nHeight) override { clip = QSize(nWidth, nHeight); }
        QString asked;
        QSize clip;
    } pad;
    QCOMPARE(pad.WPSSignConfirmed(true, QStringLiteral("Ada")), QStringLiteral("-7"));
    QCOMPARE(pad.asked, QStringLiteral("3, 300, MVeSignWPS.png"));
    QCOMPARE(pad.clip, QSize(5, 5));
}

void TestWpsPicture::saveError_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("expected");
    QTest::newRow("-5") << -5 << QStringLiteral("-5");
    QTest::newRow("-1") << -1 << QStringLiteral("-1");
    QTest::newRow("smallest") << std::numeric_limits<int>::min() << QStringLiteral("-2147483648");
}

void TestWpsPicture::saveError()
{
    QFETCH(int, code);
    QFETCH(QString, expected);
    QCOMPARE(confirm(drawingOf(40, 30), true, QStringLiteral("Ada"), code), expected);
    QCOMPARE(confirm(drawingOf(40, 30), false, QString(), code), expected);
    QVERIFY(!QFile::exists(composedPath));
}

void TestWpsPicture::positiveCodeGoesOn()
{
    const QImage drawing = drawingOf(64, 32);
    QCOMPARE(confirm(drawing, false, QStringLiteral("Ada"), 5), composedPath);
    QCOMPARE(difference(QImage(composedPath), composed(drawing, QStringLiteral("Ada"), QString())), QString());
}

void TestWpsPicture::positiveCodeWithoutTexts()
{
    QCOMPARE(confirm(drawingOf(64, 32), false, QString(), 5), QStringLiteral("5"));
    QVERIFY(!QFile::exists(composedPath));
}

void TestWpsPicture::missingDrawing()
{
    QString date;
    QCOMPARE(confirmWithDate(QImage(), QStringLiteral("Ada"), date), composedPath);
    QCOMPARE(difference(QImage(composedPath), composed(QImage(), QStringLiteral("Ada"), date)), QString());
    QCOMPARE(confirm(QImage(), false, QString()), QStringLiteral("/tmp/MVeSignWPS.png"));
}

void TestWpsPicture::unreadableDrawing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isDirectory");
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(drawingOf(64, 64).save(&buffer, "PNG"));
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("a text") << QByteArray("This is no picture.") << false;
    QTest::newRow("only the beginning") << buffer.data().left(40) << false;
    QTest::newRow("a directory") << QByteArray() << true;
}

void TestWpsPicture::unreadableDrawing()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isDirectory);
    if (isDirectory) {
        QVERIFY(QDir().mkdir(drawingPath));
    } else {
        QFile file(drawingPath);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QCOMPARE(confirm(QImage(), false, QStringLiteral("Ada")), composedPath);
    QCOMPARE(difference(QImage(composedPath), composed(QImage(), QStringLiteral("Ada"), QString())), QString());
}

void TestWpsPicture::staleDrawingWithoutLibrary()
{
    const QImage stale = drawingOf(70, 20);
    QVERIFY(stale.save(drawingPath));
    useLibrary(QStringLiteral("without-SaveDrawingImage"));
    expectCall("MV*_SetSaveClipImageMargin(ID, 1, 5, 5)");
    QCOMPARE(pad().WPSSignConfirmed(false, QStringLiteral("Ada")), composedPath);
    QCOMPARE(difference(QImage(composedPath), composed(stale, QStringLiteral("Ada"), QString())), QString());
    expectCall("MV*_SetSaveClipImageMargin(ID, 1, 5, 5)");
    QCOMPARE(pad().WPSSignConfirmed(false, QString()), QString());
}

void TestWpsPicture::pictureThatCannotBeWritten()
{
    QVERIFY(QDir().mkdir(composedPath));
    QCOMPARE(confirm(drawingOf(40, 30), false, QStringLiteral("Ada")), QStringLiteral("-1"));
    QCOMPARE(confirm(drawingOf(40, 30), true, QString()), QStringLiteral("-1"));
    QCOMPARE(confirm(drawingOf(40, 30), false, QString()), QStringLiteral("/tmp/MVeSignWPS.png"));
    QVERIFY(QFileInfo(composedPath).isDir());
}

void TestWpsPicture::nameWithoutWidth()
{
    const QString zeroWidthSpace = QString(QChar(0x200B));
    QCOMPARE(widthOf(zeroWidthSpace), 0);
    QCOMPARE(confirm(QImage(), false, zeroWidthSpace), QStringLiteral("-1"));
    QVERIFY(!QFile::exists(composedPath));
}

void TestWpsPicture::nameTooWideForAPicture()
{
    // The PNG format's library refuses pictures of more than a million columns.
    QCOMPARE(confirm(drawingOf(40, 30), false, QString(200000, QLatin1Char('m'))), QStringLiteral("-1"));
}

MV_TEST_EVERY_MODEL(QGuiApplication, TestWpsPicture)
#include "tst_wpspicture.moc"
