// A pad library that claims more points than any text holds.
#include "device/SignObjManager.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class EndlessPointsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void drawing();
    void decoded();

private:
    QTemporaryDir m_folder;
    SignObjManager m_manager;
};

void EndlessPointsTest::initTestCase()
{
    QVERIFY(QDir::setCurrent(m_folder.path()));
    QVERIFY(QFile::link(QStringLiteral(MVSIGNPAD_HOSTILE_SDK), QStringLiteral("libmvsignpadsdk.so")));
    QFile answers(QStringLiteral("hostile-answers"));
    QVERIFY(answers.open(QIODevice::WriteOnly));
    QVERIFY(answers.write("points 2147483647\ntext repeat 1 55\n") > 0);
    answers.close();
    QVERIFY(m_manager.InitialDevice(2, 480, 320));
}

void EndlessPointsTest::drawing()
{
    const QString points = m_manager.GetPointer();
    QCOMPARE(points.size(), 500000043); // the first whole point at or beyond the limit, and the bracket
    QVERIFY(points.endsWith(QLatin1String(R"(,{"Time":"7","bStrokeEnd":"0","pressure":"0","x":"0","y":"0"}])")));
}

void EndlessPointsTest::decoded()
{
    const QString points = m_manager.Decode(6, QStringLiteral("x"), QStringLiteral("y"));
    QCOMPARE(points.size(), 500000026);
    QVERIFY(points.endsWith(QLatin1String(R"(,{"bStrokeEnd":"0","x":"0","y":"0"}])")));
}

QTEST_APPLESS_MAIN(EndlessPointsTest)

#include "tst_endlesspoints.moc"
