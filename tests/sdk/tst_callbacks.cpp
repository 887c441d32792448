/// The real-time callbacks, which only Alder has.

#include "device/SignObjAlder.h"
#include "tests/sdk/support/ModelTestCase.h"

#include <QTemporaryDir>

#include <climits>

namespace {

std::vector<int> keys;
std::vector<char *> pictures;

void onKey(int nEventID)
{
    keys.push_back(nEventID);
}

void onPicture(char *pData)
{
    pictures.push_back(pData);
}

char picture[] = "QUJD";

/// Hands one event of each kind to the pad, as the library would if it were told to.
void deliver(SignObjAlder &pad)
{
    pad.ProcessSignPadEvent(1);
    pad.ProcessSignBase64Data(picture);
}

} // namespace

class TestCallbacks : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void registersTheEmptyFunction();
    void passesOnWhatTheLibraryAnswers();
    void deliversToTheClientsFunctions();
    void deliversNothingBeforeRegistration();
    void eitherFunctionMayBeNull();
    void laterRegistrationReplaces();
    void storedBeforeTheyAreRegistered();
    void forgottenBeforeThePadIsClosed();
    void unInitialDeviceForgetsThem_data();
    void unInitialDeviceForgetsThem();
    void withoutLibraryTheyAreStillStored();
    void withoutTheFunctionTheyAreStillStored();
    void otherModelsRegisterNothing();
};

void TestCallbacks::init()
{
    SdkTestCase::init();
    keys.clear();
    pictures.clear();
}

void TestCallbacks::registersTheEmptyFunction()
{
    SignObjAlder pad;
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 4, callback)", number(1));
    QCOMPARE(pad.SetRealTimeSignBase64DataCallback(4, onKey, onPicture), true);
    QVERIFY(recorder().registeredCallback() == SignObjAlderSignBase64DataCallback);
    recorder().registeredCallback()(picture);
    recorder().registeredCallback()(nullptr);
    SignObjAlderEventCallback(1);
    SignObjAlderEventCallback(0);
    QCOMPARE(keys, std::vector<int>());
    QCOMPARE(pictures, std::vector<char *>());
    QCOMPARE(QByteArray(picture), QByteArray("QUJD"));
}

void TestCallbacks::passesOnWhatTheLibraryAnswers()
{
    SignObjAlder pad;
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, -2147483648, callback)", number(0));
    QCOMPARE(pad.SetRealTimeSignBase64DataCallback(INT_MIN, onKey, onPicture), false);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>({1}));
}

void TestCallbacks::deliversToTheClientsFunctions()
{
    SignObjAlder pad;
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", number(1));
    pad.SetRealTimeSignBase64DataCallback(1, onKey, onPicture);
    for (const int key : {1, 0, 5, -1, INT_MAX, INT_MIN}) {
        pad.ProcessSignPadEvent(key);
    }
    QCOMPARE(keys, std::vector<int>({1, 0, 5, -1, INT_MAX, INT_MIN}));
    pad.ProcessSignBase64Data(picture);
    pad.ProcessSignBase64Data(nullptr);
    QCOMPARE(pictures, std::vector<char *>({picture, nullptr}));
}

void TestCallbacks::deliversNothingBeforeRegistration()
{
    SignObjAlder pad;
    deliver(pad);
    QCOMPARE(keys, std::vector<int>());
    QCOMPARE(pictures, std::vector<char *>());
}

void TestCallbacks::eitherFunctionMayBeNull()
{
    SignObjAlder pad;
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", number(1));
    QCOMPARE(pad.SetRealTimeSignBase64DataCallback(1, nullptr, onPicture), true);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>());
    QCOMPARE(pictures, std::vector<char *>({picture}));
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", number(1));
    QCOMPARE(pad.SetRealTimeSignBase64DataCallback(1, onKey, nullptr), true);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>({1}));
    QCOMPARE(pictures, std::vector<char *>({picture}));
}

void TestCallbacks::laterRegistrationReplaces()
{
    SignObjAlder pad;
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", number(1));
    pad.SetRealTimeSignBase64DataCallback(1, onKey, onPicture);
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 0, callback)", number(1));
    pad.SetRealTimeSignBase64DataCallback(0, nullptr, nullptr);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>());
    QCOMPARE(pictures, std::vector<char *>());
}

/// The library may call back as soon as it is told to.
void TestCallbacks::storedBeforeTheyAreRegistered()
{
    SignObjAlder pad;
    recording::Answer registered = number(1);
    registered.effect = [&pad] { deliver(pad); };
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", registered);
    pad.SetRealTimeSignBase64DataCallback(1, onKey, onPicture);
    QCOMPARE(keys, std::vector<int>({1}));
    QCOMPARE(pictures, std::vector<char *>({picture}));
}

void TestCallbacks::forgottenBeforeThePadIsClosed()
{
    SignObjAlder pad;
    expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", number(1));
    pad.SetRealTimeSignBase64DataCallback(1, onKey, onPicture);
    recording::Answer closed = number(0);
    closed.effect = [&pad] { deliver(pad); };
    expect("MVAlder_UnInitialDevice(2)", closed);
    QCOMPARE(pad.UnInitialDevice(), true);
    QCOMPARE(keys, std::vector<int>());
    QCOMPARE(pictures, std::vector<char *>());
}

void TestCallbacks::unInitialDeviceForgetsThem_data()
{
    QTest::addColumn<QString>("variant");
    QTest::addColumn<bool>("expected");
    QTest::newRow("complete library") << QStringLiteral("complete") << true;
    QTest::newRow("without UnInitialDevice") << QStringLiteral("without-UnInitialDevice") << false;
    QTest::newRow("no library") << QString() << false;
}

void TestCallbacks::unInitialDeviceForgetsThem()
{
    QFETCH(QString, variant);
    QFETCH(bool, expected);
    const QTemporaryDir empty;
    if (variant.isEmpty()) {
        QVERIFY(QDir::setCurrent(empty.path()));
    } else {
        useLibrary(variant);
        expect("MVAlder_SetRealTimeSignBase64DataCallback(2, 1, callback)", number(1));
    }
    SignObjAlder pad;
    pad.SetRealTimeSignBase64DataCallback(1, onKey, onPicture);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>({1}));

    if (expected) {
        expect("MVAlder_UnInitialDevice(2)", number(0));
    }
    QCOMPARE(pad.UnInitialDevice(), expected);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>({1}));
    QCOMPARE(pictures, std::vector<char *>({picture}));
}

void TestCallbacks::withoutLibraryTheyAreStillStored()
{
    const QTemporaryDir empty;
    QVERIFY(QDir::setCurrent(empty.path()));
    SignObjAlder pad;
    QCOMPARE(pad.SetRealTimeSignBase64DataCallback(1, onKey, onPicture), false);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>({1}));
    QCOMPARE(pictures, std::vector<char *>({picture}));
}

void TestCallbacks::withoutTheFunctionTheyAreStillStored()
{
    useLibrary(QStringLiteral("without-SetRealTimeSignBase64DataCallback"));
    SignObjAlder pad;
    QCOMPARE(pad.SetRealTimeSignBase64DataCallback(1, onKey, onPicture), false);
    deliver(pad);
    QCOMPARE(keys, std::vector<int>({1}));
}

void TestCallbacks::otherModelsRegisterNothing()
{
    for (const Model &model : allModels) {
        if (model.letter != 'A') {
            const auto pad = newPad(model);
            QCOMPARE(pad->SetRealTimeSignBase64DataCallback(1, onKey, onPicture), false);
        }
    }
    QVERIFY(!recorder().registeredCallback());
}

QTEST_GUILESS_MAIN(TestCallbacks)
#include "tst_callbacks.moc"
