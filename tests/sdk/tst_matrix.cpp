/// Every operation of every model: the exact calls that reach the library, the exact reply, and what is left of
/// both when there is no pad object, no library, or a library that lacks one name.

#include "device/SignObjInterface.h"
#include "device/SignObjManager.h"
#include "tests/sdk/support/Operations.h"
#include "tests/sdk/support/SdkTestCase.h"

#include <QTemporaryDir>

Q_DECLARE_METATYPE(const Operation *)

namespace {

/// Opens the pad of a model: the manager then holds its object.
bool open(SignObjManager &manager, const Model &model)
{
    expectFor(model, "MV*_InitialDevice(ID, null, 0, 0, 800, 480)", number(1));
    return manager.InitialDevice(model.nDeviceID, 800, 480);
}

void expectSteps(const Model &model, const Outcome &outcome)
{
    for (const Step &step : outcome.steps) {
        expectFor(model, step.call, step.answer);
    }
}

/// The manager closes the pad when it goes, unless the operation has done so.
void expectClosing(const Model &model, const Operation &operation, const std::string &missing = {})
{
    if (qstrcmp(operation.name, "UnInitialDevice") != 0 && missing != "UnInitialDevice") {
        expectFor(model, "MV*_UnInitialDevice(ID)");
    }
}

QString join(const Model &model, const Operation &operation)
{
    return QLatin1String(model.name) + QLatin1Char(' ') + QLatin1String(operation.name);
}

} // namespace

class TestMatrix : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void operation_data();
    void operation();
    void withoutObject_data();
    void withoutObject();
    void withoutLibrary_data();
    void withoutLibrary();
    void withoutOneName_data();
    void withoutOneName();
    void baseClass_data();
    void baseClass();

private:
    static void everyOperation();
    static void everyOperationOfEveryModel();
};

void TestMatrix::everyOperation()
{
    QTest::addColumn<const Operation *>("operation");
    for (const Operation &operation : allOperations()) {
        QTest::newRow(operation.name) << &operation;
    }
}

void TestMatrix::everyOperationOfEveryModel()
{
    QTest::addColumn<const Model *>("model");
    QTest::addColumn<const Operation *>("operation");
    for (const Model &model : allModels) {
        for (const Operation &operation : allOperations()) {
            QTest::newRow(qPrintable(join(model, operation))) << &model << &operation;
        }
    }
}

void TestMatrix::operation_data()
{
    everyOperationOfEveryModel();
}

void TestMatrix::operation()
{
    QFETCH(const Model *, model);
    QFETCH(const Operation *, operation);
    const Outcome outcome = operation->outcome(*model);

    SignObjManager manager;
    QVERIFY(open(manager, *model));
    expectSteps(*model, outcome);
    QCOMPARE(operation->onManager(manager, model->nDeviceID), QString::fromUtf8(outcome.reply));
    expectClosing(*model, *operation);
}

void TestMatrix::withoutObject_data()
{
    everyOperation();
}

void TestMatrix::withoutObject()
{
    QFETCH(const Operation *, operation);
    recorder().traceLoading();
    SignObjManager manager;
    const int unknownID = 9;
    QCOMPARE(operation->onManager(manager, unknownID), QString::fromUtf8(operation->withoutObject));
}

void TestMatrix::withoutLibrary_data()
{
    everyOperationOfEveryModel();
}

void TestMatrix::withoutLibrary()
{
    QFETCH(const Model *, model);
    QFETCH(const Operation *, operation);
    QTemporaryDir empty;
    QVERIFY(QDir::setCurrent(empty.path()));

    SignObjManager manager;
    QVERIFY(!manager.InitialDevice(model->nDeviceID, 800, 480));
    QCOMPARE(operation->onManager(manager, model->nDeviceID),
             QString::fromUtf8(operation->belongsTo(*model) ? operation->withoutSdk : operation->base));
}

void TestMatrix::withoutOneName_data()
{
    QTest::addColumn<const Model *>("model");
    QTest::addColumn<QString>("missing");
    const QDir variants(QStringLiteral(SDK_VARIANTS_DIR));
    const QString prefix = QStringLiteral("without-");
    const QStringList directories = variants.entryList({prefix + QLatin1Char('*')}, QDir::Dirs);
    QCOMPARE(directories.size(), 38);
    for (const Model &model : allModels) {
        for (const QString &directory : directories) {
            const QString missing = directory.mid(prefix.size());
            QTest::newRow(qPrintable(QLatin1String(model.name) + QLatin1Char(' ') + missing)) << &model << missing;
        }
    }
}

void TestMatrix::withoutOneName()
{
    QFETCH(const Model *, model);
    QFETCH(QString, missing);
    useLibrary(QStringLiteral("without-") + missing);
    const std::string missingName = missing.toStdString();

    for (const Operation &operation : allOperations()) {
        const Outcome outcome = operation.outcome(*model, missingName);
        SignObjManager manager;
        const bool opens = missingName != "InitialDevice";
        if (opens) {
            expectFor(*model, "MV*_InitialDevice(ID, null, 0, 0, 800, 480)", number(1));
        }
        QCOMPARE(manager.InitialDevice(model->nDeviceID, 800, 480), opens);
        expectSteps(*model, outcome);
        const QString reply = operation.onManager(manager, model->nDeviceID);
        QVERIFY2(reply == QString::fromUtf8(outcome.reply), qPrintable(join(*model, operation) + reply));
        expectClosing(*model, operation, missingName);
        manager.UnInitialDevice();
        for (const std::string &problem : recorder().finish()) {
            QFAIL(qPrintable(QString::fromStdString(operation.name + (": " + problem))));
        }
    }
}

void TestMatrix::baseClass_data()
{
    everyOperation();
}

void TestMatrix::baseClass()
{
    QFETCH(const Operation *, operation);
    class BarePad : public SignObjInterface
    {
    } pad;
    QCOMPARE(operation->onPad(pad, 2), QString::fromUtf8(operation->base));
}

QTEST_GUILESS_MAIN(TestMatrix)
#include "tst_matrix.moc"
