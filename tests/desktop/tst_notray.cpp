// A desktop whose tray never comes: the program gives up by itself and leaves nothing behind.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

class NoTrayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void endsAfterThirtySeconds();
};

void NoTrayTest::endsAfterThirtySeconds()
{
    DesktopSession desktop;
    QVERIFY(desktop.isUsable());
    TrayProgram program(desktop);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(program.start());
    QVERIFY(program.waitForEnd(60000));
    const qint64 seconds = timer.elapsed() / 1000;
    QCOMPARE(program.exitStatus(), 0);
    QCOMPARE(program.output(), QByteArray());
    QVERIFY2(seconds >= 29 && seconds <= 35, qPrintable(QString::number(seconds)));
    QCOMPARE(QDir(desktop.home()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot),
             QStringList());
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/mvsignpadsdk_wssvr.log")));
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/mvsignpadsdk_wssvr_inthread.log")));
}

QTEST_GUILESS_MAIN(NoTrayTest)

#include "tst_notray.moc"
