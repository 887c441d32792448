// A session manager that asks the real program to save itself is told to restart nothing.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"

#include <QFile>
#include <QHash>
#include <QTest>

#include <X11/ICE/ICElib.h>
#include <X11/ICE/ICEutil.h>
#include <X11/SM/SMlib.h>

#include <poll.h>
#include <unistd.h>

#include <cstdlib>

namespace {

/// What the session manager has learned from its one client.
struct Session {
    bool bRegistered = false;
    bool bSaved = false;
    int nRestartStyle = -1; // -1 while the client has named none
    SmsConn client = nullptr;
};

Status registerClient(SmsConn client, SmPointer session, char *previousId)
{
    std::free(previousId);
    SmsRegisterClientReply(client, SmsGenerateClientID(client));
    static_cast<Session *>(session)->bRegistered = true;
    return 1;
}

void setProperties(SmsConn, SmPointer session, int nCount, SmProp **properties)
{
    for (int i = 0; i < nCount; ++i) {
        if (qstrcmp(properties[i]->name, SmRestartStyleHint) == 0 && properties[i]->num_vals == 1)
            static_cast<Session *>(session)->nRestartStyle = *static_cast<uchar *>(properties[i]->vals[0].value);
        SmFreeProperty(properties[i]);
    }
    std::free(properties);
}

void saveYourselfDone(SmsConn, SmPointer session, int)
{
    static_cast<Session *>(session)->bSaved = true;
}

void interactRequest(SmsConn, SmPointer, int) {}
void interactDone(SmsConn, SmPointer, int) {}
void saveYourselfRequest(SmsConn, SmPointer, int, int, int, int, int) {}
void saveYourselfPhase2Request(SmsConn, SmPointer) {}
void getProperties(SmsConn, SmPointer) {}

void closeConnection(SmsConn, SmPointer, int nCount, char **reasons)
{
    SmFreeReasons(nCount, reasons);
}

void deleteProperties(SmsConn, SmPointer, int nCount, char **names)
{
    for (int i = 0; i < nCount; ++i)
        std::free(names[i]);
    std::free(names);
}

Status newClient(SmsConn client, SmPointer session, unsigned long *mask, SmsCallbacks *callbacks, char **)
{
    static_cast<Session *>(session)->client = client;
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask
            | SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask
            | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask
            | SmsGetPropertiesProcMask;
    callbacks->register_client = {registerClient, session};
    callbacks->interact_request = {interactRequest, session};
    callbacks->interact_done = {interactDone, session};
    callbacks->save_yourself_request = {saveYourselfRequest, session};
    callbacks->save_yourself_phase2_request = {saveYourselfPhase2Request, session};
    callbacks->save_yourself_done = {saveYourselfDone, session};
    callbacks->close_connection = {closeConnection, session};
    callbacks->set_properties = {setProperties, session};
    callbacks->delete_properties = {deleteProperties, session};
    callbacks->get_properties = {getProperties, session};
    return 1;
}

Bool letEverybodyIn(char *)
{
    return True;
}

bool isReadable(int descriptor)
{
    pollfd look{descriptor, POLLIN, 0};
    return poll(&look, 1, 0) > 0;
}

} // namespace

class SessionRestartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void restartsNothing_data();
    void restartsNothing();

private:
    /// Does what has come in from clients.
    void serve();

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    Session m_session;
    int m_nListeners = 0;
    IceListenObj *m_listeners = nullptr;
    IceConn m_connection = nullptr;
    QString m_address;
};

void SessionRestartTest::initTestCase()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
    char error[256] = "";
    QVERIFY2(SmsInitialize("SessionRestartTest", "1", newClient, &m_session, letEverybodyIn, sizeof error, error),
             error);
    QVERIFY2(IceListenForConnections(&m_nListeners, &m_listeners, sizeof error, error), error);
    for (int i = 0; i < m_nListeners; ++i)
        IceSetHostBasedAuthProc(m_listeners[i], letEverybodyIn);
    char *const addresses = IceComposeNetworkIdList(m_nListeners, m_listeners);
    m_address = QString::fromLocal8Bit(addresses);
    std::free(addresses);
}

void SessionRestartTest::init()
{
    m_session = {};
    m_connection = nullptr;
    m_program.reset(new TrayProgram(*m_desktop));
    QProcessEnvironment environment = m_desktop->environment();
    environment.insert(QStringLiteral("SESSION_MANAGER"), m_address);
    m_program->process().setProcessEnvironment(environment);
}

void SessionRestartTest::cleanup()
{
    m_program.reset();
    if (m_connection) {
        IceSetShutdownNegotiation(m_connection, False);
        IceCloseConnection(m_connection);
    }
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->iconArea().isEmpty(), patienceMs);
}

void SessionRestartTest::cleanupTestCase()
{
    IceFreeListenObjs(m_nListeners, m_listeners);
    m_desktop.reset();
}

void SessionRestartTest::serve()
{
    for (int i = 0; i < m_nListeners && !m_connection; ++i) {
        IceAcceptStatus status = IceAcceptFailure;
        if (isReadable(IceGetListenConnectionNumber(m_listeners[i])))
            m_connection = IceAcceptConnection(m_listeners[i], &status);
    }
    while (m_connection && isReadable(IceConnectionNumber(m_connection))
           && IceProcessMessages(m_connection, nullptr, nullptr) == IceProcessMessagesSuccess) {
    }
}

void SessionRestartTest::restartsNothing_data()
{
    QTest::addColumn<int>("what");
    QTest::newRow("the state of the session") << SmSaveLocal;
    QTest::newRow("the user's data") << SmSaveGlobal;
}

void SessionRestartTest::restartsNothing()
{
    QFETCH(int, what);
    QVERIFY(m_program->start());
    const auto registered = [this] {
        serve();
        return m_session.bRegistered;
    };
    QVERIFY(QTest::qWaitFor(registered, patienceMs));
    SmsSaveYourself(m_session.client, what, False, SmInteractStyleNone, False);
    const auto saved = [this] {
        serve();
        return m_session.bSaved;
    };
    QVERIFY(QTest::qWaitFor(saved, patienceMs));
    QCOMPARE(m_session.nRestartStyle, SmRestartNever);
    QVERIFY(m_program->isRunning());
}

QTEST_GUILESS_MAIN(SessionRestartTest)

#include "tst_sessionrestart.moc"
