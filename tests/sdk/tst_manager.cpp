/// SignObjManager: which pad object it holds and when it lets go of it.

#include "device/SignObjAlder.h"
#include "device/SignObjInterface.h"
#include "device/SignObjManager.h"
#include "tests/sdk/support/SdkTestCase.h"

#include <climits>
#include <cstring>
#include <type_traits>

static_assert(!std::is_polymorphic_v<SignObjManager>, "the manager is no pad and has nothing to override");
static_assert(std::has_virtual_destructor_v<SignObjInterface>, "pads are deleted through the interface");
static_assert(sizeof(SignObjInterface) == sizeof(void *), "the interface has no data of its own");

class TestManager : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void slotOrder_data();
    void slotOrder();
    void deviceID_data();
    void deviceID();
    void unknownDeviceID_data();
    void unknownDeviceID();
    void unknownDeviceIDClosesThePad();
    void sameDeviceIDTwice();
    void anotherDeviceID();
    void failedInitialisationKeepsTheObject();
    void failedUnInitialisation();
    void unInitialisingTwice();
    void newManagerTouchesNothing();
    void destructorClosesThePad();
    void newObjectForgetsTheOldOnesTexts();
};

template <typename Member>
static int slotOf(Member member)
{
    // A pointer to a virtual member function holds the offset of its table entry, plus one where the low bit tells
    // it from an address (elsewhere the second word does).
    size_t words[2];
    static_assert(sizeof member == sizeof words);
    memcpy(words, &member, sizeof words);
    return static_cast<int>((words[0] & ~size_t(1)) / sizeof(void *));
}

void TestManager::slotOrder_data()
{
    QTest::addColumn<int>("slot");
    QTest::addColumn<int>("expected");
#define TABLE_ENTRY(number, operation) QTest::newRow(#operation) << slotOf(&SignObjInterface::operation) << number
    TABLE_ENTRY(2, GetAboutInfo);
    TABLE_ENTRY(3, InitialDevice);
    TABLE_ENTRY(4, UnInitialDevice);
    TABLE_ENTRY(5, IsValid);
    TABLE_ENTRY(6, Clear);
    TABLE_ENTRY(7, GetSize);
    TABLE_ENTRY(8, GetPointer);
    TABLE_ENTRY(9, SetPenWidth);
    TABLE_ENTRY(10, SetPenStyle);
    TABLE_ENTRY(11, SetPenColor);
    TABLE_ENTRY(12, Encode);
    TABLE_ENTRY(13, Decode);
    TABLE_ENTRY(14, GetDecodeFilePath);
    TABLE_ENTRY(15, GetDeviceInfo);
    TABLE_ENTRY(16, SetClip);
    TABLE_ENTRY(17, SaveDrawImage);
    TABLE_ENTRY(18, GetInks);
    TABLE_ENTRY(19, GetOpaqueInks);
    TABLE_ENTRY(20, VersionID);
    TABLE_ENTRY(21, PenID);
    TABLE_ENTRY(22, PadID);
    TABLE_ENTRY(23, DisplayDeviceInfoInLCD);
    TABLE_ENTRY(24, CloseLCD);
    TABLE_ENTRY(25, OpenLCD);
    TABLE_ENTRY(26, GetDeviceConfirmOrCancelKeyStatus);
    TABLE_ENTRY(27, GetFingerPrintImage);
    TABLE_ENTRY(28, SetDisplayedFPImageAt);
    TABLE_ENTRY(29, WPSSignConfirmed);
    TABLE_ENTRY(30, WPSGetInks);
    TABLE_ENTRY(31, GetSVGImageBase64Data);
    TABLE_ENTRY(32, SetRealTimeSignBase64DataCallback);
    TABLE_ENTRY(33, InitialWPSSignCanvas);
#undef TABLE_ENTRY
}

void TestManager::slotOrder()
{
    QFETCH(int, slot);
    QFETCH(int, expected);
    QCOMPARE(slot, expected);
}

void TestManager::deviceID_data()
{
    QTest::addColumn<int>("nDeviceID");
    QTest::addColumn<QString>("family");
    QTest::newRow("2") << 2 << QStringLiteral("MVAlder");
    QTest::newRow("5") << 5 << QStringLiteral("MVBirch");
    QTest::newRow("7") << 7 << QStringLiteral("MVCedar");
    QTest::newRow("3") << 3 << QStringLiteral("MVMaple");
    QTest::newRow("4") << 4 << QStringLiteral("MVRowan");
}

void TestManager::deviceID()
{
    QFETCH(int, nDeviceID);
    QFETCH(QString, family);
    const std::string id = std::to_string(nDeviceID);
    SignObjManager manager;
    expect(family.toStdString() + "_InitialDevice(" + id + ", null, 0, 0, -1, 2147483647)", number(1));
    QCOMPARE(manager.InitialDevice(nDeviceID, -1, INT_MAX), true);
    expect(family.toStdString() + "_UnInitialDevice(" + id + ")", number(0));
    QCOMPARE(manager.UnInitialDevice(), true);
}

void TestManager::unknownDeviceID_data()
{
    QTest::addColumn<int>("nDeviceID");
    for (const int id : {0, 1, 6, 8, 9, -1, -2, 258, INT_MIN, INT_MAX}) {
        QTest::newRow(qPrintable(QString::number(id))) << id;
    }
}

void TestManager::unknownDeviceID()
{
    QFETCH(int, nDeviceID);
    recorder().traceLoading();
    SignObjManager manager;
    QCOMPARE(manager.InitialDevice(nDeviceID, 800, 480), false);
    QCOMPARE(manager.GetPointer(), QStringLiteral("[]"));
    QCOMPARE(manager.GetDeviceConfirmOrCancelKeyStatus(), -1);
}

void TestManager::unknownDeviceIDClosesThePad()
{
    recorder().traceLoading();
    SignObjManager manager;
    expect("load");
    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    QVERIFY(manager.InitialDevice(2, 800, 480));
    expect("MVAlder_UnInitialDevice(2)", number(0));
    expect("unload");
    QCOMPARE(manager.InitialDevice(9, 800, 480), false);
    QCOMPARE(recorder().isLoaded(), false);
    QCOMPARE(manager.GetPointer(), QStringLiteral("[]"));
    QCOMPARE(manager.GetDeviceConfirmOrCancelKeyStatus(), -1);
    QCOMPARE(manager.UnInitialDevice(), false);
}

void TestManager::sameDeviceIDTwice()
{
    recorder().traceLoading();
    expect("load");
    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    expect("MVAlder_UnInitialDevice(2)", number(0));
    expect("unload");
    expect("load");
    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    expect("MVAlder_UnInitialDevice(2)", number(0));
    expect("unload");
    SignObjManager manager;
    QCOMPARE(manager.InitialDevice(2, 800, 480), true);
    QCOMPARE(manager.InitialDevice(2, 800, 480), true);
}

void TestManager::anotherDeviceID()
{
    recorder().traceLoading();
    expect("load");
    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    expect("MVAlder_UnInitialDevice(2)", number(-1));
    expect("unload");
    expect("load");
    expect("MVMaple_InitialDevice(3, null, 0, 0, 320, 240)", number(1));
    expect("MVMaple_Clear(3)");
    expect("MVMaple_UnInitialDevice(3)", number(0));
    expect("unload");
    SignObjManager manager;
    QCOMPARE(manager.InitialDevice(2, 800, 480), true);
    QCOMPARE(manager.InitialDevice(3, 320, 240), true);
    manager.Clear();
}

void TestManager::failedInitialisationKeepsTheObject()
{
    SignObjManager manager;
    expect("MVRowan_InitialDevice(4, null, 0, 0, 800, 480)", number(0));
    QCOMPARE(manager.InitialDevice(4, 800, 480), false);
    expect("MVRowan_GetDeviceConfirmOrCancelKeyStatus(4)", number(3));
    QCOMPARE(manager.GetDeviceConfirmOrCancelKeyStatus(), 3);
    expect("MVRowan_UnInitialDevice(4)", number(0));
    QCOMPARE(manager.UnInitialDevice(), true);
}

void TestManager::failedUnInitialisation()
{
    SignObjManager manager;
    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    QVERIFY(manager.InitialDevice(2, 800, 480));
    expect("MVAlder_UnInitialDevice(2)", number(1));
    QCOMPARE(manager.UnInitialDevice(), false);
    QCOMPARE(recorder().isLoaded(), false);
    QCOMPARE(manager.GetDeviceConfirmOrCancelKeyStatus(), -1);
}

void TestManager::unInitialisingTwice()
{
    recorder().traceLoading();
    SignObjManager manager;
    QCOMPARE(manager.UnInitialDevice(), false);
    expect("load");
    expect("MVAlder_InitialDevice(2, null, 0, 0, 800, 480)", number(1));
    QVERIFY(manager.InitialDevice(2, 800, 480));
    expect("MVAlder_UnInitialDevice(2)", number(0));
    expect("unload");
    QCOMPARE(manager.UnInitialDevice(), true);
    QCOMPARE(manager.UnInitialDevice(), false);
    QCOMPARE(manager.GetSize(), 0);
}

void TestManager::newManagerTouchesNothing()
{
    recorder().traceLoading();
    SignObjManager manager;
    QCOMPARE(manager.IsValid(), false);
}

void TestManager::destructorClosesThePad()
{
    recorder().traceLoading();
    {
        SignObjManager manager;
        expect("load");
        expect("MVCedar_InitialDevice(7, null, 0, 0, 800, 480)", number(1));
        QVERIFY(manager.InitialDevice(7, 800, 480));
        expect("MVCedar_UnInitialDevice(7)", number(0));
        expect("unload");
    }
    QCOMPARE(recorder().isLoaded(), false);
}

void TestManager::newObjectForgetsTheOldOnesTexts()
{
    SignObjManager manager;
    for (int i = 1; i <= 2; ++i) {
        expect("MVBirch_InitialDevice(5, null, 0, 0, 800, 480)", number(1));
        QVERIFY(manager.InitialDevice(5, 800, 480));
        QCOMPARE(manager.GetDecodeFilePath(), QString());
        expect(R"(MVBirch_Base64Decode(5, 1, "QUJD", "/tmp/a"))");
        manager.Decode(1, QStringLiteral("a"), QStringLiteral("QUJD"));
        QCOMPARE(manager.GetDecodeFilePath(), QStringLiteral("/tmp/a"));
        expect("MVBirch_Base64Encode(5, 3)", text("QUJD"));
        expect("MVBirch_Base64EncodeFree(5, #" + std::to_string(i) + ")");
        QCOMPARE(manager.GetInks(), QStringLiteral(R"([{"EventType":"0","Image":"QUJD","ImageLength":"4"}])"));
        expect("MVBirch_UnInitialDevice(5)", number(0));
    }
}

QTEST_GUILESS_MAIN(TestManager)
#include "tst_manager.moc"
