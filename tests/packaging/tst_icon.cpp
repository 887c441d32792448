// The icon beside the built program, read as the tray reads it: by Qt's own reader of the format.
#include <QGuiApplication>
#include <QIcon>
#include <QImageReader>
#include <QTest>

class IconTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsEverySize();
    void showsPadAndPenInEverySize_data();
    void showsPadAndPenInEverySize();
};

namespace {

const char iconFile[] = MVSIGNPAD_ICON;

int pixelsLike(const QImage &image, bool (*matches)(const QColor &))
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += matches(image.pixelColor(x, y)) ? 1 : 0;
    return count;
}

bool isBody(const QColor &colour)
{
    return colour.alpha() > 200 && colour.hsvHue() >= 205 && colour.hsvHue() <= 225 && colour.hsvSaturation() >= 160;
}

bool isPen(const QColor &colour)
{
    return colour.alpha() > 200 && colour.hsvHue() >= 25 && colour.hsvHue() <= 45 && colour.hsvSaturation() >= 150;
}

bool isScreen(const QColor &colour)
{
    return colour.alpha() > 200 && colour.lightness() >= 225;
}

bool isInk(const QColor &colour)
{
    return colour.alpha() > 200 && colour.hsvHue() >= 200 && colour.hsvHue() <= 240 && colour.value() <= 175;
}

bool isNothing(const QColor &colour)
{
    return colour.alpha() == 0;
}

} // namespace

void IconTest::holdsEverySize()
{
    QImageReader reader(QString::fromLatin1(iconFile));
    QCOMPARE(reader.format(), QByteArray("ico"));
    QList<int> sizes;
    for (int index = 0; index < reader.imageCount(); ++index) {
        QVERIFY(reader.jumpToImage(index));
        const QImage image = reader.read();
        QVERIFY(image.hasAlphaChannel());
        QCOMPARE(image.width(), image.height());
        sizes.append(image.width());
    }
    std::sort(sizes.begin(), sizes.end());
    QCOMPARE(sizes, QList<int>({16, 22, 24, 32, 48, 64, 128, 256}));
}

void IconTest::showsPadAndPenInEverySize_data()
{
    QTest::addColumn<int>("size");
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256})
        QTest::addRow("%d", size) << size;
}

/// Each part of the drawing takes at least its share of the area, also where there are few pixels to share.
void IconTest::showsPadAndPenInEverySize()
{
    QFETCH(int, size);
    const QIcon icon(QString::fromLatin1(iconFile));
    QVERIFY(icon.availableSizes().contains(QSize(size, size)));
    const QImage image = icon.pixmap(size, size).toImage().convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(image.size(), QSize(size, size));
    const int area = size * size;
    QVERIFY(pixelsLike(image, isNothing) >= area * 10 / 100);
    QVERIFY(pixelsLike(image, isBody) >= area * 8 / 100);
    QVERIFY(pixelsLike(image, isScreen) >= area * 20 / 100);
    QVERIFY(pixelsLike(image, isPen) >= area * 5 / 100);
    QVERIFY(pixelsLike(image, isInk) >= area * 1 / 100);
}

QTEST_MAIN(IconTest)

#include "tst_icon.moc"
