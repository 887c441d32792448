// Whether the session bus answers, tried on a real bus and on sockets that only look like one.
#include "base/SessionBusProbe.h"
#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateBus.h"

#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <unistd.h>

class SessionBusProbeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void realBus_data();
    void realBus();
    void noBus_data();
    void noBus();
    void silentBus();
    void otherAnswers_data();
    void otherAnswers();

private:
    QString bus() const { return m_folder.filePath(QStringLiteral("bus")); }

    QTemporaryDir m_folder;
};

void SessionBusProbeTest::init()
{
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qunsetenv("XDG_RUNTIME_DIR");
}

void SessionBusProbeTest::realBus_data()
{
    QTest::addColumn<QString>("listen");
    QTest::newRow("in the file system") << QStringLiteral("unix:path=") + bus();
    QTest::newRow("abstract") << QStringLiteral("unix:abstract=") + bus();
}

void SessionBusProbeTest::realBus()
{
    QFETCH(QString, listen);
    const PrivateBus daemon(listen);
    QVERIFY(!daemon.address().isEmpty());
    const QString addresses = QStringLiteral("tcp:host=192.0.2.1,port=1;") + daemon.address();
    qputenv("DBUS_SESSION_BUS_ADDRESS", addresses.toUtf8());
    SessionBusProbe probe;
    QSignalSpy spy(&probe, &SessionBusProbe::answered);
    QVERIFY(probe.Start());
    QVERIFY(spy.wait(patienceMs));
    QCOMPARE(spy.at(0).at(0).toString(), addresses);
}

void SessionBusProbeTest::noBus_data()
{
    QTest::addColumn<QByteArray>("address");
    for (const char *address : {"", "unix:", "unix:path=", "unix:path=/nonexistent/bus", "unix:tmpdir=/tmp",
                                "tcp:host=127.0.0.1,port=1", "autolaunch:", ";;,=,", "unix:abstract=no such name"})
        QTest::newRow(address) << QByteArray(address);
    QTest::newRow("longer than a socket's name") << "unix:path=/tmp/" + QByteArray(500, 'x');
}

void SessionBusProbeTest::noBus()
{
    QFETCH(QByteArray, address);
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    SessionBusProbe probe;
    QVERIFY(!probe.Start());
}

void SessionBusProbeTest::silentBus()
{
    QLocalServer server;
    QVERIFY(server.listen(bus()));
    qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
    QElapsedTimer timer;
    timer.start();
    std::unique_ptr<SessionBusProbe> probe(new SessionBusProbe);
    QSignalSpy spy(probe.get(), &SessionBusProbe::answered);
    QVERIFY(probe->Start());
    QVERIFY(timer.elapsed() < 5000);
    QVERIFY(server.waitForNewConnection(patienceMs));
    QLocalSocket *const client = server.nextPendingConnection();
    QTRY_VERIFY_WITH_TIMEOUT(client->bytesAvailable() > 0, patienceMs);
    QCOMPARE(client->readAll(),
             QByteArray("\0AUTH EXTERNAL ", 15) + QByteArray::number(geteuid()).toHex() + QByteArray("\r\n"));
    probe.reset();
    QTRY_COMPARE_WITH_TIMEOUT(client->state(), QLocalSocket::UnconnectedState, patienceMs); // the probe has hung up
    QCOMPARE(spy.size(), 0);
}

void SessionBusProbeTest::otherAnswers_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::newRow("refused") << QByteArray("REJECTED EXTERNAL\r\n");
    QTest::newRow("another protocol") << QByteArray("HTTP/1.1 400 Bad Request\r\n");
    QTest::newRow("end") << QByteArray();
}

void SessionBusProbeTest::otherAnswers()
{
    QFETCH(QByteArray, answer);
    QLocalServer server;
    QVERIFY(server.listen(bus()));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + bus().toUtf8());
    SessionBusProbe probe;
    QSignalSpy spy(&probe, &SessionBusProbe::answered);
    QVERIFY(probe.Start());
    QVERIFY(server.waitForNewConnection(patienceMs));
    QLocalSocket *const client = server.nextPendingConnection();
    client->write(answer);
    client->flush();
    if (answer.isEmpty())
        client->abort();
    QTRY_COMPARE_WITH_TIMEOUT(client->state(), QLocalSocket::UnconnectedState, patienceMs); // the probe has hung up
    QCOMPARE(spy.size(), 0);
}

QTEST_GUILESS_MAIN(SessionBusProbeTest)

#include "tst_sessionbusprobe.moc"
