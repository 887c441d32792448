/// The fingerprint picture, which only Cedar has.

#include "device/SignObjCedar.h"
#include "tests/sdk/support/ModelTestCase.h"

#include <QTemporaryDir>

#include <climits>

class TestFingerprint : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void picture_data();
    void picture();
    void unchangedPicture();
    void theFlagDoesNotPartTheLastPictures();
    void nullPicture();
    void emptyPictureIsNoNews();
    void hostilePicture();
    void lastPictureIsApartFromTheInk();
    void reopeningKeepsTheLastPicture();
    void position();
    void withoutGiveBackNothingIsFetched();
    void withoutLibrary();
    void otherModelsHaveNone();
};

/// Asks for the fingerprint, for which the library hands out `picture` as its text number `serial`.
static QString ask(SignObjInterface &pad, const recording::Answer &picture, int serial)
{
    expect("MVCedar_GetFPImageBase64Data(7, 3, 0)", picture);
    if (picture.text) {
        expect("MVCedar_FreeFPImageBase64Data(7, #" + std::to_string(serial) + ")");
    }
    return pad.GetFingerPrintImage(false);
}

void TestFingerprint::picture_data()
{
    QTest::addColumn<bool>("bFPImageOnly");
    QTest::addColumn<QByteArray>("call");
    QTest::newRow("alone") << true << QByteArray("MVCedar_GetFPImageBase64Data(7, 3, 1)");
    QTest::newRow("on the canvas") << false << QByteArray("MVCedar_GetFPImageBase64Data(7, 3, 0)");
}

void TestFingerprint::picture()
{
    QFETCH(bool, bFPImageOnly);
    QFETCH(QByteArray, call);
    SignObjCedar pad;
    expect(call.toStdString(), text("RlBJTUc="));
    expect("MVCedar_FreeFPImageBase64Data(7, #1)");
    QCOMPARE(pad.GetFingerPrintImage(bFPImageOnly),
             QStringLiteral(R"([{"EventType":"3","Image":"RlBJTUc=","ImageLength":"8"}])"));
}

void TestFingerprint::unchangedPicture()
{
    const QString first = QStringLiteral(R"([{"EventType":"3","Image":"AAAA","ImageLength":"4"}])");
    const QString second = QStringLiteral(R"([{"EventType":"3","Image":"BBBB","ImageLength":"4"}])");
    SignObjCedar pad;
    QCOMPARE(ask(pad, text("AAAA"), 1), first);
    QCOMPARE(ask(pad, text("AAAA"), 2), QString());
    QCOMPARE(ask(pad, text("BBBB"), 3), second);
    QCOMPARE(ask(pad, text("AAAA"), 4), first);
    QCOMPARE(ask(pad, {}, 0), QString());
    QCOMPARE(ask(pad, text("AAAA"), 5), QString());
}

void TestFingerprint::theFlagDoesNotPartTheLastPictures()
{
    SignObjCedar pad;
    QCOMPARE(ask(pad, text("AAAA"), 1), QStringLiteral(R"([{"EventType":"3","Image":"AAAA","ImageLength":"4"}])"));
    expect("MVCedar_GetFPImageBase64Data(7, 3, 1)", text("AAAA"));
    expect("MVCedar_FreeFPImageBase64Data(7, #2)");
    QCOMPARE(pad.GetFingerPrintImage(true), QString());
}

void TestFingerprint::nullPicture()
{
    SignObjCedar pad;
    QCOMPARE(ask(pad, {}, 0), QString());
}

void TestFingerprint::emptyPictureIsNoNews()
{
    SignObjCedar pad;
    QCOMPARE(ask(pad, text(""), 1), QString());
}

void TestFingerprint::hostilePicture()
{
    SignObjCedar pad;
    QCOMPARE(ask(pad, text("\"\\\n\xFF"), 1),
             QString::fromUtf8("[{\"EventType\":\"3\",\"Image\":\"\\\"\\\\\\n\xEF\xBF\xBD\",\"ImageLength\":\"4\"}]"));
}

void TestFingerprint::lastPictureIsApartFromTheInk()
{
    const QString fingerprint = QStringLiteral(R"([{"EventType":"3","Image":"AAAA","ImageLength":"4"}])");
    const QString ink = QStringLiteral(R"([{"EventType":"0","Image":"AAAA","ImageLength":"4"}])");
    SignObjCedar pad;
    expect("MVCedar_Base64Encode(7, 3)", text("AAAA"));
    expect("MVCedar_Base64EncodeFree(7, #1)");
    QCOMPARE(pad.GetInks(), ink);
    QCOMPARE(ask(pad, text("AAAA"), 2), fingerprint);
    QCOMPARE(ask(pad, text("BBBB"), 3), QStringLiteral(R"([{"EventType":"3","Image":"BBBB","ImageLength":"4"}])"));
    expect("MVCedar_Base64Encode(7, 3)", text("BBBB"));
    expect("MVCedar_Base64EncodeFree(7, #4)");
    QCOMPARE(pad.GetInks(), QStringLiteral(R"([{"EventType":"0","Image":"BBBB","ImageLength":"4"}])"));
}

void TestFingerprint::reopeningKeepsTheLastPicture()
{
    SignObjCedar pad;
    QCOMPARE(ask(pad, text("AAAA"), 1), QStringLiteral(R"([{"EventType":"3","Image":"AAAA","ImageLength":"4"}])"));
    expect("MVCedar_UnInitialDevice(7)");
    pad.UnInitialDevice();
    expect("MVCedar_InitialDevice(7, null, 0, 0, 800, 480)", number(1));
    pad.InitialDevice(7, 800, 480);
    expect("MVCedar_Clear(7)");
    pad.Clear();
    QCOMPARE(ask(pad, text("AAAA"), 2), QString());
}

void TestFingerprint::position()
{
    SignObjCedar pad;
    expect("MVCedar_SetDisplayedFPImageAt(7, null, 800, 480, 600, 300, 150, 170)", number(0));
    pad.SetDisplayedFPImageAt(800, 480, 600, 300, 150, 170);
    expect("MVCedar_SetDisplayedFPImageAt(7, null, -1, 0, 2147483647, -2147483648, -5, 6)", number(-1));
    pad.SetDisplayedFPImageAt(-1, 0, INT_MAX, INT_MIN, -5, 6);
}

void TestFingerprint::withoutGiveBackNothingIsFetched()
{
    useLibrary(QStringLiteral("without-FreeFPImageBase64Data"));
    SignObjCedar pad;
    QCOMPARE(pad.GetFingerPrintImage(true), QString());
    expect("MVCedar_SetDisplayedFPImageAt(7, null, 1, 2, 3, 4, 5, 6)");
    pad.SetDisplayedFPImageAt(1, 2, 3, 4, 5, 6);
}

void TestFingerprint::withoutLibrary()
{
    const QTemporaryDir empty;
    QVERIFY(QDir::setCurrent(empty.path()));
    SignObjCedar pad;
    QCOMPARE(pad.GetFingerPrintImage(true), QString());
    pad.SetDisplayedFPImageAt(1, 2, 3, 4, 5, 6);
}

void TestFingerprint::otherModelsHaveNone()
{
    for (const Model &model : allModels) {
        if (model.letter != 'C') {
            const auto pad = newPad(model);
            QCOMPARE(pad->GetFingerPrintImage(true), QString());
            QCOMPARE(pad->GetFingerPrintImage(false), QString());
            pad->SetDisplayedFPImageAt(1, 2, 3, 4, 5, 6);
        }
    }
}

QTEST_GUILESS_MAIN(TestFingerprint)
#include "tst_fingerprint.moc"
