#include "tests/unit/virtualpad/support/LoadedPad.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <algorithm>

namespace {

/// The names that the library's symbol table offers to others, sorted.
QList<QByteArray> exportedNames()
{
    QProcess nm;
    nm.start(QStringLiteral(NM_TOOL), {QStringLiteral("-D"), QStringLiteral("--defined-only"),
                                       QStringLiteral("--format=posix"), QStringLiteral(VIRTUAL_PAD_LIBRARY)});
    nm.waitForFinished();
    QList<QByteArray> names;
    for (const QByteArray &line : nm.readAllStandardOutput().split('\n')) {
        if (!line.isEmpty())
            names.append(line.split(' ').first());
    }
    std::sort(names.begin(), names.end());
    return names;
}

QList<QByteArray> expectedNames()
{
    QFile file(QStringLiteral(EXPORTED_NAMES_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> names = file.readAll().split('\n');
    names.removeAll(QByteArray());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

class TestExports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingElseIsExported()
    {
        const QList<QByteArray> expected = expectedNames();
        QCOMPARE(expected.size(), 156);
        QCOMPARE(exportedNames(), expected);
    }

    void everyFamilyHasItsCount_data()
    {
        QTest::addColumn<QByteArray>("prefix");
        QTest::addColumn<int>("count");
        QTest::newRow("Alder") << QByteArray("MVAlder_") << 35;
        QTest::newRow("Birch") << QByteArray("MVBirch_") << 31;
        QTest::newRow("Cedar") << QByteArray("MVCedar_") << 34;
        QTest::newRow("Maple") << QByteArray("MVMaple_") << 28;
        QTest::newRow("Rowan") << QByteArray("MVRowan_") << 28;
    }

    void everyFamilyHasItsCount()
    {
        QFETCH(QByteArray, prefix);
        const QList<QByteArray> names = exportedNames();
        QTEST(int(std::count_if(names.begin(), names.end(),
                                [&](const QByteArray &name) { return name.startsWith(prefix); })),
              "count");
    }

    void everyNameResolves()
    {
        QLibrary library(QStringLiteral(VIRTUAL_PAD_LIBRARY));
        QVERIFY2(library.load(), qPrintable(library.errorString()));
        for (const QByteArray &name : expectedNames())
            QVERIFY2(library.resolve(name), name.constData());
        QVERIFY(!library.resolve("MVMaple_OpenLCD"));
        QVERIFY(!library.resolve("MVRowan_GetHWPenID"));
        QVERIFY(!library.resolve("MVBirch_InitialWPSSignCanvas"));
        QVERIFY(!library.resolve("MVAlder_GetFPImageBase64Data"));
    }

    void everyFamilyDrivesItsPad_data()
    {
        QTest::addColumn<int>("deviceId");
        QTest::addColumn<QByteArray>("padId");
        QTest::newRow("Alder") << 2 << QByteArray("VP-ALDER-0002");
        QTest::newRow("Birch") << 5 << QByteArray("VP-BIRCH-0005");
        QTest::newRow("Cedar") << 7 << QByteArray("VP-CEDAR-0007");
        QTest::newRow("Maple") << 3 << QByteArray("VP-MAPLE-0003");
        QTest::newRow("Rowan") << 4 << QByteArray("VP-ROWAN-0004");
    }

    void everyFamilyDrivesItsPad()
    {
        QFETCH(int, deviceId);
        LoadedPad pad(deviceId);
        QVERIFY(pad.initialiseWritten(400, 300));
        char padId[32];
        QCOMPARE(pad.GetHWPadID(deviceId, padId, sizeof padId), 0);
        QTEST(QByteArray(padId), "padId");
        QCOMPARE(pad.GetTotalInkPointsNumber(deviceId), 600);
        QCOMPARE(pad.UnInitialDevice(deviceId), 0);
        QCOMPARE(pad.UnInitialDevice(deviceId), -1);
    }
};

QTEST_GUILESS_MAIN(TestExports)
#include "tst_virtualpad_exports.moc"
