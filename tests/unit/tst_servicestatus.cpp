// What the service tells of itself: where it listens or why it does not, its clients, and the pad with its library.
#include "service/ServiceStatusSource.h"
#include "tests/sdk/support/SdkTestCase.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QDir>
#include <QTcpServer>

class ServiceStatusTest : public SdkTestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void listening_data();
    void listening();
    void closedBySettings();
    void portTaken();
    void addressOfAnotherMachine();
    void clientsInTheirOrder();
    void manyClientsAreToldTogether();
    void padThatOpens();
    void padThatDoesNotOpen();
    void padWithoutAFunction();
    void padWithoutALibrary();

private:
    void start(const AccessPolicy &policy = {}, quint16 port = freePort());
    /// Starts the service and connects a client to it.
    bool serve();
    bool initialise();
    /// The latest status; a default one before the first.
    ServiceStatus status() const { return m_told.value(m_told.size() - 1); }

    PrivateHome m_home;
    std::unique_ptr<WarningTrap> m_warnings;
    ServiceStatusSource m_source;
    QVector<ServiceStatus> m_told;
    std::unique_ptr<RunningService> m_service;
    SignClient m_client;
};

void ServiceStatusTest::initTestCase()
{
    qRegisterMetaType<ServiceStatus>();
    connect(&m_source, &ServiceStatusSource::statusChanged, this,
            [this](const ServiceStatus &status) { m_told.append(status); });
}

void ServiceStatusTest::init()
{
    SdkTestCase::init();
    m_warnings.reset(new WarningTrap);
    m_told.clear();
}

void ServiceStatusTest::cleanup()
{
    m_client.abort();
    m_service.reset();
    QCoreApplication::processEvents(); // what was told last
    SdkTestCase::cleanup();
    m_warnings.reset();
}

void ServiceStatusTest::start(const AccessPolicy &policy, quint16 port)
{
    m_service = std::make_unique<RunningService>(port, policy, nullptr, &m_source);
}

bool ServiceStatusTest::serve()
{
    start();
    return QTest::qWaitFor([this] { return !m_told.isEmpty(); }, patienceMs) && m_client.connectTo(m_service->port())
           && QTest::qWaitFor([this] { return status().clients.size() == 1; }, patienceMs);
}

bool ServiceStatusTest::initialise()
{
    return m_client.command(QStringLiteral("InitialDevice?id=2&width=400&height=300"))
           == QLatin1String(R"({"API":"InitialDevice","Result":"1"})");
}

void ServiceStatusTest::listening_data()
{
    QTest::addColumn<QString>("listenAddress");
    QTest::addColumn<QString>("address");
    QTest::newRow("everywhere") << QString() << QStringLiteral("*");
    QTest::newRow("this machine") << QStringLiteral("127.0.0.1") << QStringLiteral("127.0.0.1");
}

void ServiceStatusTest::listening()
{
    QFETCH(QString, listenAddress);
    AccessPolicy policy;
    if (!listenAddress.isEmpty())
        policy.listenAddress = QHostAddress(listenAddress);
    start(policy);
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 1, patienceMs);
    QCOMPARE(status().state, ServiceStatus::Listening);
    QCOMPARE(status().strReason, QString());
    QTEST(status().strAddress, "address");
    QCOMPARE(status().nPort, int(m_service->port()));
    QCOMPARE(status().clients.size(), 0);
    QCOMPARE(status().pad.strModel + status().pad.strLibrary + status().pad.strLibraryError, QString());
    QCOMPARE(status().pad.missingFunctions, QStringList());
}

void ServiceStatusTest::closedBySettings()
{
    AccessPolicy policy;
    policy.bServesAnybody = false;
    policy.strClosedReason = QStringLiteral("why");
    start(policy);
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 1, patienceMs);
    QCOMPARE(status().state, ServiceStatus::ClosedBySettings);
    QCOMPARE(status().strReason, QStringLiteral("why"));
    QCOMPARE(status().strAddress, QStringLiteral("*"));
    QCOMPARE(status().nPort, int(m_service->port()));
}

void ServiceStatusTest::portTaken()
{
    QTcpServer holder;
    QVERIFY(holder.listen(QHostAddress::Any, 0));
    start({}, holder.serverPort());
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 1, patienceMs);
    QCOMPARE(status().state, ServiceStatus::PortTaken);
    QCOMPARE(status().strReason, QStringLiteral("The bound address is already in use"));
}

void ServiceStatusTest::addressOfAnotherMachine()
{
    AccessPolicy policy;
    policy.listenAddress = QHostAddress(QStringLiteral("192.0.2.1"));
    start(policy);
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 1, patienceMs);
    QCOMPARE(status().state, ServiceStatus::ClosedBySettings);
    QCOMPARE(status().strReason, QStringLiteral("The address is not available"));
    QCOMPARE(status().strAddress, QStringLiteral("192.0.2.1"));
}

void ServiceStatusTest::clientsInTheirOrder()
{
    QVERIFY(serve());
    SignClient page;
    QVERIFY(page.connectFrom(QStringLiteral("https://a.example"), m_service->port()));
    QTRY_COMPARE_WITH_TIMEOUT(status().clients.size(), 2, patienceMs);
    const auto addressOf = [](SignClient &client) {
        return QStringLiteral("::ffff:127.0.0.1 %1").arg(client.socket().localPort());
    };
    QCOMPARE(status().clients[0].strOrigin, QString());
    QCOMPARE(status().clients[0].strAddress, addressOf(m_client));
    QCOMPARE(status().clients[1].strOrigin, QStringLiteral("https://a.example"));
    QCOMPARE(status().clients[1].strAddress, addressOf(page));
    QVERIFY(m_client.close());
    QTRY_COMPARE_WITH_TIMEOUT(status().clients.size(), 1, patienceMs);
    QCOMPARE(status().clients[0].strOrigin, QStringLiteral("https://a.example"));
}

void ServiceStatusTest::manyClientsAreToldTogether()
{
    QVERIFY(serve());
    m_told.clear();
    std::vector<SignClient> crowd(50);
    for (SignClient &client : crowd)
        client.socket().open(QUrl(QStringLiteral("ws://127.0.0.1:%1/").arg(m_service->port())));
    QTRY_COMPARE_WITH_TIMEOUT(status().clients.size(), 51, patienceMs);
    QVERIFY2(m_told.size() < 25, qPrintable(QString::number(m_told.size())));
}

void ServiceStatusTest::padThatOpens()
{
    QVERIFY(serve());
    expect("MVAlder_InitialDevice(2, null, 0, 0, 400, 300)", number(1));
    QVERIFY(initialise());
    QTRY_COMPARE_WITH_TIMEOUT(status().pad.strModel, QStringLiteral("Alder"), patienceMs);
    QCOMPARE(status().pad.strLibrary,
             QDir(QStringLiteral(SDK_VARIANTS_DIR "/complete/libmvsignpadsdk.so")).canonicalPath());
    QCOMPARE(status().pad.strLibraryError, QString());
    QCOMPARE(status().pad.missingFunctions, QStringList());
    QCOMPARE(status().clients.size(), 1);
    expect("MVAlder_UnInitialDevice(2)", number(0));
    m_client.command(QStringLiteral("UninitialDevice"));
    QTRY_COMPARE_WITH_TIMEOUT(status().pad.strModel, QString(), patienceMs);
    QCOMPARE(status().pad.strLibrary, QString());
}

void ServiceStatusTest::padThatDoesNotOpen()
{
    QVERIFY(serve());
    expect("MVAlder_InitialDevice(2, null, 0, 0, 400, 300)", number(0));
    QVERIFY(!initialise());
    QTRY_VERIFY_WITH_TIMEOUT(!status().pad.strLibrary.isEmpty(), patienceMs);
    QCOMPARE(status().pad.strModel, QString());
    expect("MVAlder_UnInitialDevice(2)", number(0));
}

void ServiceStatusTest::padWithoutAFunction()
{
    useLibrary(QStringLiteral("without-AboutBox"));
    QVERIFY(serve());
    expect("MVAlder_InitialDevice(2, null, 0, 0, 400, 300)", number(1));
    QVERIFY(initialise());
    expect("MVAlder_UnInitialDevice(2)", number(0));
    QTRY_COMPARE_WITH_TIMEOUT(status().pad.missingFunctions, QStringList{QStringLiteral("MVAlder_AboutBox")},
                              patienceMs);
    QCOMPARE(status().pad.strModel, QStringLiteral("Alder"));
    QVERIFY(status().pad.strLibrary.endsWith(QLatin1String("/without-AboutBox/libmvsignpadsdk.so")));
}

void ServiceStatusTest::padWithoutALibrary()
{
    QVERIFY(QDir::setCurrent(m_home.path()));
    QVERIFY(serve());
    QVERIFY(!initialise());
    QTRY_VERIFY_WITH_TIMEOUT(status().pad.strLibraryError.contains(QLatin1String("cannot open shared object file")),
                             patienceMs);
    QCOMPARE(status().pad.strLibrary, QString());
    QCOMPARE(status().pad.strModel, QString());
}

QTEST_GUILESS_MAIN(ServiceStatusTest)

#include "tst_servicestatus.moc"
