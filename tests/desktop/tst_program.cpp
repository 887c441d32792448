// The real program on a real XEmbed tray, driven by real WebSocket clients and real clicks.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/Replies.h"
#include "tests/unit/support/SignClient.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTcpSocket>
#include <QTest>

namespace {

const int startEntry = 0;
const char size[] = R"({"API":"GetSize","Result":"0"})";

} // namespace

class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
    void firstRunStartsNoService();
    void savedServiceStarts();
    void repliesGoToTheSenderOnly();
    void burstOfAThousandRequests();
    void binaryIsEchoed();
    void anyPathAndOriginAreServed();
    void abruptDisconnects();
    void startAndStopThroughTheMenu();
    void exitWithClients();
    void exitWritesTheSettings();
    void exitWithoutService();
    void portInUse();
    void secondCopy();
    void anotherProcessWithTheNameInItsCommandLine();
    void workingDirectoryIsTheProgramsOwn();
    void closingAnotherWindowEndsNothing();
    void withoutASessionBus();

private:
    /// Has the program write its log from its next start on.
    void switchLogOn();
    bool start(const QStringList &settings);
    bool startWithService() { return start({QStringLiteral("StartWebService=true")}); }
    /// A copy of the program and what it needs in a directory with an awkward name; the program's path in it.
    QString copyOfTheProgram(const QTemporaryDir &directory) const;

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    quint16 m_port = 0;
    bool m_writesLog = false;
};

void ProgramTest::initTestCase()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
}

void ProgramTest::init()
{
    QDir(m_desktop->home() + QStringLiteral("/.config/mvsignpadsdk")).removeRecursively();
    m_port = freePort();
    m_writesLog = false;
    m_program.reset(new TrayProgram(*m_desktop));
}

void ProgramTest::cleanup()
{
    m_program.reset();
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->iconArea().isEmpty(), patienceMs);
    QCOMPARE(QFile::exists(mainLog()) || QFile::exists(threadLog()), m_writesLog);
    removeLogs();
}

void ProgramTest::cleanupTestCase()
{
    m_desktop.reset();
}

void ProgramTest::switchLogOn()
{
    m_program->switchLogOn();
    m_writesLog = true;
}

bool ProgramTest::start(const QStringList &settings)
{
    return m_desktop->writeSettings(QStringList{QStringLiteral("WebSocketPort=%1").arg(m_port)} + settings)
           && m_program->start() && m_desktop->waitForIcon();
}

QString ProgramTest::copyOfTheProgram(const QTemporaryDir &directory) const
{
    const QFileInfo program(QStringLiteral(MVSIGNPAD_PROGRAM));
    const QString place = directory.filePath(QStringLiteral("sign pad 签"));
    const QString copy = place + QLatin1Char('/') + program.fileName();
    const bool done = QDir().mkpath(place) && QFile::copy(program.filePath(), copy)
                      && QFile::copy(program.filePath() + QStringLiteral(".ico"), copy + QStringLiteral(".ico"));
    return done ? copy : QString();
}

void ProgramTest::firstRunStartsNoService()
{
    switchLogOn();
    QVERIFY(m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    QCOMPARE(TrayProgram::startsOfAService(), 0);
    QVERIFY(!QFile::exists(m_desktop->settingsFile()));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QStringList lines;
    for (const char *line : {"AutoLaunch=false", "StartWebService=false", "StartWebServiceWithSSL=false", "UILangID=2",
                             "WebSocketPort=8089", "WebSocketSecurePort=8090", "[Settings]"})
        lines.append(QLatin1String(line));
    QCOMPARE(m_desktop->settingsLines(), lines);
}

void ProgramTest::savedServiceStarts()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(client.command(QStringLiteral("GetWPSSettings?id=2")), settingsReply("3", "0", "0", QString()));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::repliesGoToTheSenderOnly()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient first;
    SignClient second;
    QVERIFY(first.connectTo(m_port) && second.connectTo(m_port));
    QCOMPARE(first.command(QStringLiteral("PadID")), QStringLiteral(R"({"API":"PadID","Result":""})"));
    QCOMPARE(second.command(QStringLiteral("Reset")), QStringLiteral(R"({"API":"Invalid API request","Result":"-1"})"));
    QCOMPARE(first.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(first.messages().size(), 2);
    QCOMPARE(second.messages().size(), 1);
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::burstOfAThousandRequests()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    SignClient neighbour;
    QVERIFY(client.connectTo(m_port) && neighbour.connectTo(m_port));
    const char *const names[] = {"PadID",   "PenID",      "VersionID",    "GetAboutInfo",
                                 "GetInks", "WPSGetInks", "GetOpaqueInks"};
    for (int i = 0; i < 1000; ++i) {
        client.sendCommand(QLatin1String(names[i * i % 7]));
        neighbour.sendCommand(QLatin1String(names[(i + 3) % 7]));
    }
    QVERIFY(client.waitForMessages(1000) && neighbour.waitForMessages(1000));
    QCOMPARE(client.messages().size(), 1000);
    QCOMPARE(neighbour.messages().size(), 1000);
    const QString reply = QStringLiteral("{\"API\":\"%1\",\"Result\":\"\"}");
    for (int i = 0; i < 1000; ++i) {
        QCOMPARE(client.messages().at(i), reply.arg(QLatin1String(names[i * i % 7])));
        QCOMPARE(neighbour.messages().at(i), reply.arg(QLatin1String(names[(i + 3) % 7])));
    }
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::binaryIsEchoed()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QCOMPARE(client.binaryRequest("abc"), QByteArray("abc"));
    const QByteArray bytes = QByteArray("\0\xff\x80z", 4).repeated(500000);
    QCOMPARE(client.binaryRequest(bytes), bytes);
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::anyPathAndOriginAreServed()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient page;
    QVERIFY(page.connectFrom(QStringLiteral("https://bank.example"), m_port));
    QCOMPARE(page.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    SignClient other;
    QVERIFY(other.connectTo(m_port, QStringLiteral("/any/where?x=1"), QStringLiteral("127.1.2.3")));
    QCOMPARE(other.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::abruptDisconnects()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient stayer;
    QVERIFY(stayer.connectTo(m_port));
    for (int i = 0; i < 30; ++i) {
        SignClient client;
        QVERIFY(client.connectTo(m_port));
        for (int n = 0; n < 20; ++n)
            client.sendCommand(QStringLiteral("GetPointer"));
        client.socket().flush();
        client.abort();
    }
    QCOMPARE(stayer.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::startAndStopThroughTheMenu()
{
    switchLogOn();
    QVERIFY(start({}));
    for (int round = 0; round < 2; ++round) {
        QCOMPARE(TrayProgram::startsOfAService(), round);
        QVERIFY(m_desktop->chooseMenuEntry(startEntry));
        QVERIFY(TrayProgram::waitForListening(m_port));
        QCOMPARE(TrayProgram::startsOfAService(), round + 1);
        QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("StartWebService=true")),
                                 patienceMs);
        SignClient client;
        QVERIFY(client.connectTo(m_port));
        QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));

        QVERIFY(m_desktop->chooseMenuEntry(startEntry));
        QVERIFY(client.waitForDisconnect());
        QVERIFY(TrayProgram::waitForSilence(m_port));
        QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("StartWebService=false")),
                                 patienceMs);
    }
    QVERIFY(m_program->isRunning());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::exitWithClients()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    std::vector<std::unique_ptr<SignClient>> clients;
    for (int i = 0; i < 10; ++i) {
        clients.emplace_back(new SignClient);
        QVERIFY(clients.back()->connectTo(m_port));
        // A pad as well, where a library for it lies beside the program.
        QVERIFY(!clients.back()->command(QStringLiteral("InitialDevice?id=2&width=400&height=300")).isNull());
    }
    for (const auto &client : clients)
        QCOMPARE(client->command(QStringLiteral("GetWPSSettings?id=3")), settingsReply("3", "0", "0", QString()));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    for (const auto &client : clients)
        QVERIFY(client->waitForDisconnect());
}

void ProgramTest::exitWritesTheSettings()
{
    QVERIFY(start({QStringLiteral("AutoLaunch=true"), QStringLiteral("StartWebService=true"),
                   QStringLiteral("StartWebServiceWithSSL=true"), QStringLiteral("WebSocketSecurePort=1234"),
                   QStringLiteral("UILangID=1")}));
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QStringList lines;
    for (const char *line : {"AutoLaunch=false", "StartWebService=true", "StartWebServiceWithSSL=false", "UILangID=1"})
        lines.append(QLatin1String(line));
    lines.append(QStringLiteral("WebSocketPort=%1").arg(m_port));
    lines.append(QStringLiteral("WebSocketSecurePort=1234"));
    lines.append(QStringLiteral("[Settings]"));
    QCOMPARE(m_desktop->settingsLines(), lines);

    // What was written is what the next run goes by.
    m_program.reset(new TrayProgram(*m_desktop));
    QVERIFY(m_program->start() && m_desktop->waitForIcon());
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::exitWithoutService()
{
    switchLogOn();
    QVERIFY(start({QStringLiteral("StartWebServiceWithSSL=true")}));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QCOMPARE(TrayProgram::startsOfAService(), 0);
    QVERIFY(m_desktop->settingsLines().contains(QLatin1String("StartWebService=false")));
    QVERIFY(m_desktop->settingsLines().contains(QLatin1String("StartWebServiceWithSSL=true")));
}

void ProgramTest::portInUse()
{
    std::unique_ptr<QTcpServer> holder(new QTcpServer);
    QVERIFY(holder->listen(QHostAddress::Any, m_port));
    switchLogOn();
    QVERIFY(startWithService());
    const QString tried = logLine("WebSocketThread::run()", "b4 call exec()...");
    QTRY_VERIFY_WITH_TIMEOUT(maskedLines(threadLog()).contains(tried), patienceMs);
    // Two servers at one port would share its clients.
    for (int client = 0; client < 16; ++client) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress(QHostAddress::LocalHost), m_port);
        QVERIFY(socket.waitForConnected(patienceMs));
        QVERIFY(holder->hasPendingConnections() || holder->waitForNewConnection(patienceMs));
        delete holder->nextPendingConnection();
    }
    QVERIFY(m_program->isRunning());

    // Stopped, and started again once the port is free.
    QVERIFY(m_desktop->chooseMenuEntry(startEntry));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("StartWebService=false")), patienceMs);
    holder.reset();
    QVERIFY(m_desktop->chooseMenuEntry(startEntry));
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::secondCopy()
{
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    const QList<qint64> windows = m_desktop->visibleWindows();
    const QDateTime written = QFileInfo(m_desktop->settingsFile()).lastModified();

    TrayProgram second(*m_desktop);
    QVERIFY(second.start());
    QVERIFY(second.waitForEnd());
    QCOMPARE(second.exitStatus(), 1);
    QCOMPARE(second.output(), QByteArray());

    QVERIFY(m_program->isRunning());
    QVERIFY(client.isConnected());
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(m_desktop->visibleWindows(), windows);
    QCOMPARE(QFileInfo(m_desktop->settingsFile()).lastModified(), written);
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());

    // With the first one gone the next may run.
    m_program.reset(new TrayProgram(*m_desktop));
    QVERIFY(startWithService());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::anotherProcessWithTheNameInItsCommandLine()
{
    const QString notes = QFileInfo(QStringLiteral(MVSIGNPAD_PROGRAM)).fileName() + QStringLiteral("-notes.txt");
    QProcess editor;
    editor.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), QStringLiteral("read end"), notes});
    QVERIFY(editor.waitForStarted());
    QVERIFY(m_program->start());
    QVERIFY(m_program->waitForEnd());
    QCOMPARE(m_program->exitStatus(), 1);
    QCOMPARE(m_program->output(), QByteArray());
    QVERIFY(!QFile::exists(m_desktop->settingsFile()));
    editor.closeWriteChannel();
    QVERIFY(editor.waitForFinished());
}

void ProgramTest::workingDirectoryIsTheProgramsOwn()
{
    const QTemporaryDir directory;
    const QString program = copyOfTheProgram(directory);
    QVERIFY(!program.isEmpty());
    m_program.reset(new TrayProgram(*m_desktop, program));
    m_program->process().setWorkingDirectory(QStringLiteral("/"));
    // The icon is opened relative to the program's directory: that it shows is the proof.
    QVERIFY(startWithService());
    const QString working = QFile::symLinkTarget(QStringLiteral("/proc/%1/cwd").arg(m_program->process().processId()));
    QCOMPARE(working, QFileInfo(program).path());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::closingAnotherWindowEndsNothing()
{
    // A library whose Clear shows a window and closes it the next time, as a software pad may do.
    const QTemporaryDir directory;
    const QString program = copyOfTheProgram(directory);
    QVERIFY(!program.isEmpty());
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_WINDOW_SDK),
                        QFileInfo(program).path() + QStringLiteral("/libmvsignpadsdk.so")));
    m_program.reset(new TrayProgram(*m_desktop, program));
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    SignClient client;
    QVERIFY(client.connectTo(m_port));
    QCOMPARE(client.command(QStringLiteral("InitialDevice?id=2&width=400&height=300")),
             QStringLiteral(R"({"API":"InitialDevice","Result":"1"})"));
    const int windows = m_desktop->visibleWindows().size();
    QCOMPARE(client.command(QStringLiteral("Clear")), QStringLiteral(R"({"API":"Clear","Result":"0"})"));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->visibleWindows().size() > windows, patienceMs);
    QCOMPARE(client.command(QStringLiteral("Clear")), QStringLiteral(R"({"API":"Clear","Result":"0"})"));
    QTRY_COMPARE_WITH_TIMEOUT(m_desktop->visibleWindows().size(), windows, patienceMs);
    // The menu comes up only after the main thread has gone on from there.
    const MenuPicture menu = m_desktop->openMenu();
    QVERIFY(menu.window != 0);
    QVERIFY(m_desktop->closeMenu(menu));
    QVERIFY(m_program->isRunning());
    QCOMPARE(client.command(QStringLiteral("GetSize")), QString::fromLatin1(size));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void ProgramTest::withoutASessionBus()
{
    QProcessEnvironment environment = m_desktop->environment();
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent/bus"));
    m_program->process().setProcessEnvironment(environment);
    QVERIFY(startWithService());
    QVERIFY(TrayProgram::waitForListening(m_port));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

QTEST_GUILESS_MAIN(ProgramTest)

#include "tst_program.moc"
