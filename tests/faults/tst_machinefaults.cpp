// Faults of the machine around the program: other people's files, missing files, a clock that jumps, a helper that
// hangs.
#include "tests/faults/support/FaultyWorkplace.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const uid_t somebodyElse = 12345;

bool writeExecutable(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
           && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

class MachineFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void picturesOfSomebodyElseStayAsTheyAre();
    void missingIconIsSurvived();
    void clockIsSetBack();
    void hangingProcessListIsGivenUp();

private:
    QString confirmSignature(SignClient &client);

    std::unique_ptr<FaultyWorkplace> m_place;
};

void MachineFaultsTest::init()
{
#ifdef MVSIGNPAD_VIRTUAL_SDK
    qputenv("MVSIGNPAD_VIRTUAL_SPEED", "0"); // the whole signature at once
    qputenv("MVSIGNPAD_VIRTUAL_WINDOW", "0");
    m_place = std::make_unique<FaultyWorkplace>(QStringLiteral(MVSIGNPAD_VIRTUAL_SDK));
    QVERIFY(m_place->isUsable());
    QVERIFY(m_place->writeServingSettings());
#else
    QSKIP("built without the virtual pad");
#endif
}

QString MachineFaultsTest::confirmSignature(SignClient &client)
{
    client.command(QStringLiteral("InitialDevice?id=2&width=480&height=320"));
    client.command(QStringLiteral("UpdateWPSSettings?id=1&dt=1&af=0&pw=3&name=Lin"));
    return client.command(QStringLiteral("WPSSignConfirmed?id=1"));
}

void MachineFaultsTest::picturesOfSomebodyElseStayAsTheyAre()
{
    const QStringList pictures{QStringLiteral("/tmp/MVeSignWPS.png"), QStringLiteral("/tmp/MVeSignWPS_dt_name.png")};
    if (geteuid() != 0)
        QSKIP("only root can make files of somebody else's");
    for (const QString &picture : pictures) {
        QFile file(picture);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("somebody else's");
        file.close();
        const QByteArray path = QFile::encodeName(picture);
        if (::chmod(path.constData(), 0644) != 0 || ::chown(path.constData(), somebodyElse, somebodyElse) != 0)
            QSKIP("this machine has no second user");
    }
    // Without the powers that let root write everywhere.
    QVERIFY(m_place->startServing({QStringLiteral("setpriv"),
                                   QStringLiteral("--bounding-set=-dac_override,-dac_read_search,-fowner,-chown"),
                                   QStringLiteral("--inh-caps=-all")}));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(confirmSignature(client), replyText("WPSSignConfirmed", QStringLiteral("-5")));
    for (const QString &picture : pictures) {
        QFile file(picture);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("somebody else's"));
    }

    // The drawing is the user's again, the finished picture is not.
    QVERIFY(QFile::remove(pictures.first()));
    QCOMPARE(client.command(QStringLiteral("WPSSignConfirmed?id=1")),
             replyText("WPSSignConfirmed", QStringLiteral("-1")));
    QVERIFY(QFile::remove(pictures.last()));
    QCOMPARE(client.command(QStringLiteral("WPSSignConfirmed?id=1")),
             replyText("WPSSignConfirmed", QStringLiteral("/tmp/MVeSignWPS_dt_name.png")));
    QVERIFY(!QImage(pictures.last()).isNull());
    QVERIFY(m_place->exitsCleanly());
}

void MachineFaultsTest::missingIconIsSurvived()
{
    QVERIFY(QFile::remove(m_place->file(QStringLiteral("mvsignpadsdk_wssvr.ico"))));
    QVERIFY(m_place->startServing());
    QVERIFY(m_place->serves());
    QVERIFY(m_place->program().isRunning());
}

void MachineFaultsTest::clockIsSetBack()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("a sanitizer must be the first library of the process");
#endif
    const QString shift = m_place->file(QStringLiteral("clock-shift"));
    const auto shiftBy = [&shift](int seconds) {
        QFile file(shift);
        return file.open(QIODevice::WriteOnly) && file.write(QByteArray::number(seconds)) > 0;
    };
    const int year = 365 * 24 * 3600;
    QVERIFY(shiftBy(3 * year));
    // By way of env, so that the library is loaded into the program alone.
    QVERIFY(m_place->startServing({QStringLiteral("env"), QStringLiteral("LD_PRELOAD=" MVSIGNPAD_CLOCK_SHIFT),
                                   QStringLiteral("MVSIGNPAD_CLOCK_SHIFT_FILE=") + shift}));
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    const QString confirmed = replyText("WPSSignConfirmed", QStringLiteral("/tmp/MVeSignWPS_dt_name.png"));
    QCOMPARE(confirmSignature(client), confirmed);
    for (const int shiftedBy : {0, -10 * year, 3 * year, -20 * year}) {
        QVERIFY(shiftBy(shiftedBy));
        QCOMPARE(confirmSignature(client), confirmed);
        SignClient other;
        QVERIFY(other.connectTo(m_place->port()));
        QCOMPARE(other.command(QStringLiteral("IsValid")), replyText("IsValid", QStringLiteral("1")));
        QVERIFY(m_place->toggleService());
        QVERIFY(TrayProgram::waitForSilence(m_place->port()));
        QVERIFY(m_place->toggleService());
        QVERIFY(TrayProgram::waitForListening(m_place->port()));
        QVERIFY(client.waitForDisconnect());
        QVERIFY(client.connectTo(m_place->port()));
    }
    QVERIFY(m_place->exitsCleanly());
}

void MachineFaultsTest::hangingProcessListIsGivenUp()
{
    QVERIFY(writeExecutable(m_place->file(QStringLiteral("pgrep")), "#!/bin/sh\nexec sleep 1000\n"));
    const QString path = m_place->desktop().environment().value(QStringLiteral("PATH"));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(m_place->start({QStringLiteral("env"), QStringLiteral("PATH=%1:%2").arg(m_place->file(QString()), path)}));
    QVERIFY(m_place->desktop().waitForIcon(60000));
    QVERIFY(clock.elapsed() >= 30000);
    QVERIFY(TrayProgram::waitForListening(m_place->port()));
    QVERIFY(m_place->serves());
    QVERIFY(m_place->desktop().chooseMenuEntry(2));
    QVERIFY(m_place->program().waitForEnd());
    QCOMPARE(m_place->program().exitStatus(), 0);
}

QTEST_GUILESS_MAIN(MachineFaultsTest)

#include "tst_machinefaults.moc"
