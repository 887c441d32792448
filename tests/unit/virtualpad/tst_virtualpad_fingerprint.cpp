#include "tests/unit/virtualpad/support/LoadedPad.h"

#include <QTest>

class TestFingerprint : public QObject
{
    Q_OBJECT

    static QImage picture(LoadedPad &pad, bool only, int type = 3)
    {
        return QImage::fromData(
            pad.decoded(pad.GetFPImageBase64Data(7, type, only ? 1 : 0), pad.FreeFPImageBase64Data));
    }

    /// How often dark and light take turns along a row.
    static int ridgesAlong(const QImage &image, int y, int fromX, int toX)
    {
        int ridges = 0;
        bool onRidge = false;
        for (int x = fromX; x < toX; ++x) {
            const bool isDark = qAlpha(image.pixel(x, y)) > 127;
            ridges += isDark && !onRidge;
            onRidge = isDark;
        }
        return ridges;
    }

private Q_SLOTS:
    void aloneItFillsItsRectangle()
    {
        LoadedPad pad(7);
        QVERIFY(pad.initialiseWritten(800, 600));
        QCOMPARE(pad.SetDisplayedFPImageAt(7, nullptr, 800, 600, 20, 30, 300, 400), 0);
        const QImage image = picture(pad, true);
        QCOMPARE(image.size(), QSize(300, 400));
        QVERIFY(image.hasAlphaChannel());
        for (const QPoint corner : {QPoint(0, 0), QPoint(299, 0), QPoint(0, 399), QPoint(299, 399)})
            QCOMPARE(qAlpha(image.pixel(corner)), 0);
        for (int y : {150, 200, 250}) {
            const int ridges = ridgesAlong(image, y, 0, 300);
            QVERIFY2(ridges >= 15 && ridges <= 45, qPrintable(QString::number(ridges)));
        }
    }

    void otherwiseItStandsOnTheCanvasWithTheInk()
    {
        LoadedPad pad(7);
        QVERIFY(pad.initialiseWith(inkText({{10, 20, 500, 0, "0"}, {30, 20, 500, 1, "5"}}), 400, 300));
        pad.SetPenStyle(7, false);
        pad.SetPenWidth(7, 4);
        QCOMPARE(pad.SetDisplayedFPImageAt(7, nullptr, 800, 600, 500, 180, 300, 400), 0);
        const QImage image = picture(pad, false);
        QCOMPARE(image.size(), QSize(800, 600));
        QCOMPARE(qAlpha(image.pixel(40, 40)), 255);
        QCOMPARE(qAlpha(image.pixel(40, 46)), 0);
        QCOMPARE(ridgesAlong(image, 380, 0, 500), 0);
        QVERIFY(ridgesAlong(image, 380, 500, 800) >= 15);
        const QImage alone = picture(pad, true);
        QCOMPARE(image.copy(500, 180, 300, 400).convertToFormat(QImage::Format_ARGB32),
                 alone.convertToFormat(QImage::Format_ARGB32));
    }

    void withoutAPlaceItHasOne()
    {
        LoadedPad pad(7);
        QVERIFY(pad.initialiseWritten(400, 300));
        QCOMPARE(picture(pad, false).size(), QSize(400, 300));
        QCOMPARE(picture(pad, true).size(), QSize(100, 150));
        QVERIFY(pad.initialiseWritten(1, 1));
        QCOMPARE(picture(pad, true).size(), QSize(1, 1));
    }

    void onWhiteInTheTypesThatKnowNoTransparency()
    {
        LoadedPad pad(7);
        QVERIFY(pad.initialiseWritten(400, 300));
        for (int type : {1, 4})
            QCOMPARE(picture(pad, true, type).pixel(0, 0), 0xffffffffu);
        for (int type : {0, 5, 6, 7, -1})
            QVERIFY(!pad.GetFPImageBase64Data(7, type, 1));
    }

    void onlyCedarHasASensor()
    {
        LoadedPad pad(7);
        QVERIFY(pad.InitialDevice(5, nullptr, 0, 0, 400, 300));
        QVERIFY(!pad.GetFPImageBase64Data(7, 3, 1));
        QVERIFY(!pad.GetFPImageBase64Data(5, 3, 1));
        QCOMPARE(pad.SetDisplayedFPImageAt(7, nullptr, 800, 600, 20, 30, 300, 400), -1);
        QCOMPARE(pad.SetDisplayedFPImageAt(5, nullptr, 800, 600, 20, 30, 300, 400), -2);
    }

    void hostilePlacesAreRefused_data()
    {
        QTest::addColumn<QSize>("canvas");
        QTest::addColumn<QPoint>("position");
        QTest::addColumn<QSize>("size");
        const int huge = 2147483647;
        QTest::newRow("no canvas") << QSize(0, 0) << QPoint(0, 0) << QSize(10, 10);
        QTest::newRow("negative canvas") << QSize(-5, 100) << QPoint(0, 0) << QSize(10, 10);
        QTest::newRow("huge canvas") << QSize(huge, huge) << QPoint(0, 0) << QSize(10, 10);
        QTest::newRow("no size") << QSize(100, 100) << QPoint(0, 0) << QSize(0, 10);
        QTest::newRow("huge size") << QSize(100, 100) << QPoint(0, 0) << QSize(huge, huge);
        QTest::newRow("huge left") << QSize(100, 100) << QPoint(huge, 0) << QSize(10, 10);
        QTest::newRow("huge negative top") << QSize(100, 100) << QPoint(0, -huge - 1) << QSize(10, 10);
    }

    void hostilePlacesAreRefused()
    {
        QFETCH(QSize, canvas);
        QFETCH(QPoint, position);
        QFETCH(QSize, size);
        LoadedPad pad(7);
        QVERIFY(pad.initialiseWritten(400, 300));
        QCOMPARE(pad.SetDisplayedFPImageAt(7, nullptr, canvas.width(), canvas.height(), position.x(), position.y(),
                                           size.width(), size.height()),
                 -2);
        QCOMPARE(picture(pad, false).size(), QSize(400, 300));
    }
};

QTEST_GUILESS_MAIN(TestFingerprint)
#include "tst_virtualpad_fingerprint.moc"
