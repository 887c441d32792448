// What mvsignctl does besides requests, with the real program: its state, its log, the pad followed and saved.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/LogFiles.h"
#include "tests/unit/support/SignClient.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>
#include <QWebSocket>
#include <QWebSocketServer>

namespace {

struct Outcome {
    int status = -1;
    QString output;
    QString errors;
};

} // namespace

class SubcommandsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void status();
    void statusAsJson();
    void statusWhileStopped();
    void statusOfNothing();
    void log();
    void access();
    void accessWithoutTheProgram();
    void accessOfAnotherUser();
    void accessOfNoOrigin();
    void accessOfAFileThatIsNotUnderstood();
    void portOfTheSettings();
    void portThatIsNone();
    void save_data();
    void save();
    void saveNothing();
    void saveNowhere();
    void watchInAPipe();
    void watchOnATerminal();
    void watchEndsWithTheService();
    void pushes();
    void wrongUsage_data();
    void wrongUsage();
    void helpInChinese();
    void translationIsComplete();

private:
    QProcess &startClient(const QStringList &arguments, const QString &program = QStringLiteral(MVSIGNCTL));
    Outcome run(const QStringList &arguments);
    bool start();
    bool drawOnThePad();

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    std::unique_ptr<SignClient> m_client;
    std::unique_ptr<QProcess> m_process;
    QTemporaryDir m_folder;
    quint16 m_port = 0;
};

void SubcommandsTest::init()
{
    removeLogs();
    m_port = freePort();
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
    QVERIFY(m_desktop->writeSettings(
        {QStringLiteral("StartWebService=true"), QStringLiteral("WebSocketPort=%1").arg(m_port)}));
    m_program.reset(new TrayProgram(*m_desktop));
    m_client.reset(new SignClient);
}

void SubcommandsTest::cleanup()
{
    if (m_process) {
        m_process->kill();
        m_process->waitForFinished(patienceMs);
    }
    m_process.reset();
    m_client.reset();
    m_program.reset();
    m_desktop.reset();
    removeLogs();
}

QProcess &SubcommandsTest::startClient(const QStringList &arguments, const QString &program)
{
    m_process.reset(new QProcess);
    m_process->setProcessEnvironment(m_desktop->environment());
    m_process->setWorkingDirectory(m_folder.path());
    m_process->start(program, arguments);
    return *m_process;
}

Outcome SubcommandsTest::run(const QStringList &arguments)
{
    QProcess &client = startClient(arguments);
    Outcome outcome;
    if (QTest::qWaitFor([&client] { return client.state() == QProcess::NotRunning; }, patienceMs)
        && client.exitStatus() == QProcess::NormalExit)
        outcome.status = client.exitCode();
    outcome.output = QString::fromUtf8(client.readAllStandardOutput());
    outcome.errors = QString::fromUtf8(client.readAllStandardError());
    return outcome;
}

bool SubcommandsTest::start()
{
    QProcessEnvironment environment = m_desktop->environment();
    environment.insert(QStringLiteral("MVSIGNPAD_VIRTUAL_WINDOW"), QStringLiteral("0"));
    environment.insert(QStringLiteral("MVSIGNPAD_VIRTUAL_SPEED"), QStringLiteral("100"));
    m_program->process().setProcessEnvironment(environment);
    return m_program->start() && TrayProgram::waitForListening(m_port) && m_client->connectTo(m_port);
}

/// The virtual pad without a window signs by itself.
bool SubcommandsTest::drawOnThePad()
{
    const auto hasPoints = [this] { return m_client->command(QStringLiteral("GetPointer")).size() > 1000; };
    return m_client->command(QStringLiteral("InitialDevice?id=2&width=800&height=480"))
               == QLatin1String(R"({"API":"InitialDevice","Result":"1"})")
           && QTest::qWaitFor(hasPoints, patienceMs);
}

void SubcommandsTest::status()
{
    QVERIFY(start());
    Outcome outcome;
    QTRY_VERIFY_WITH_TIMEOUT((outcome = run({QStringLiteral("status")})).output.contains(QLatin1String("Client:")),
                             patienceMs);
    QCOMPARE(outcome.status, 0);
    QCOMPARE(outcome.errors, QString());
    QVERIFY2(outcome.output.contains(QStringLiteral("State:             listening\n")), qPrintable(outcome.output));
    QVERIFY(outcome.output.contains(QStringLiteral("Port:              %1\n").arg(m_port)));
    QVERIFY(outcome.output.contains(QStringLiteral("Version:           " MVSIGNPAD_VERSION "\n")));
}

void SubcommandsTest::statusAsJson()
{
    QVERIFY(start());
    QJsonObject state;
    const auto read = [&] {
        state =
            QJsonDocument::fromJson(run({QStringLiteral("status"), QStringLiteral("--json")}).output.toUtf8()).object();
        return state.value(QLatin1String("ClientCount")).toInt();
    };
    QTRY_COMPARE_WITH_TIMEOUT(read(), 1, patienceMs);
    QCOMPARE(state.size(), 15);
    QCOMPARE(state.value(QLatin1String("State")).toString(), QStringLiteral("listening"));
    QCOMPARE(state.value(QLatin1String("Log")), QJsonValue(false));
    const QJsonArray clients = state.value(QLatin1String("Clients")).toArray();
    QCOMPARE(clients.size(), 1);
    QCOMPARE(clients.at(0).toObject().value(QLatin1String("Origin")), QJsonValue(QString()));
    QVERIFY(clients.at(0)
                .toObject()
                .value(QLatin1String("Address"))
                .toString()
                .endsWith(QString::number(m_client->socket().localPort())));
}

void SubcommandsTest::statusWhileStopped()
{
    QVERIFY(m_desktop->writeSettings({QStringLiteral("StartWebService=false")}));
    QVERIFY(m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    const Outcome outcome = run({QStringLiteral("status")});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.output.contains(QStringLiteral("Reason:            switched off in the menu\n")));
}

void SubcommandsTest::statusOfNothing()
{
    const Outcome outcome = run({QStringLiteral("status")});
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.errors, QStringLiteral("mvsignctl: the program does not run in this session\n"));
}

void SubcommandsTest::log()
{
    QCOMPARE(run({QStringLiteral("log"), QStringLiteral("on")}).status, 2);
    QVERIFY(start());
    const Outcome on = run({QStringLiteral("log"), QStringLiteral("on")});
    QCOMPARE(on.status, 0);
    QCOMPARE(on.output + on.errors, QString());
    QVERIFY(!m_client->command(QStringLiteral("Clear")).isEmpty());
    QVERIFY(maskedLines(threadLog())
                .contains(logLine("WebSocketService::ProcessMVSignSDKWebSocketAPICommand()", "Rx Cmd: CLEAR")));
    QCOMPARE(run({QStringLiteral("log"), QStringLiteral("off")}).status, 0);
    const int lines = loggedLines(threadLog()).size();
    QVERIFY(!m_client->command(QStringLiteral("Clear")).isEmpty());
    QCOMPARE(loggedLines(threadLog()).size(), lines);
}

void SubcommandsTest::access()
{
    QVERIFY(start());
    const auto page = QStringLiteral("https://page.example");
    SignClient client;
    QVERIFY(client.connectFrom(page, m_port));
    const Outcome blocked = run({QStringLiteral("access"), QStringLiteral("block"), page});
    QCOMPARE(blocked.status, 0);
    QCOMPARE(blocked.output + blocked.errors, QString());
    QVERIFY(client.waitForDisconnect());
    QCOMPARE(client.socket().closeCode(), QWebSocketProtocol::CloseCodePolicyViolated);
    QVERIFY(m_client->isConnected());
    QVERIFY(!client.connectFrom(page, m_port));
    QCOMPARE(run({QStringLiteral("access"), QStringLiteral("list")}).output,
             QStringLiteral("blocked: https://page.example\npages of other origins: served\n"));
    QCOMPARE(run({QStringLiteral("access"), QStringLiteral("forget"), page}).status, 0);
    QTRY_VERIFY_WITH_TIMEOUT(client.connectFrom(page, m_port), patienceMs);
}

void SubcommandsTest::accessWithoutTheProgram()
{
    const auto good = QStringLiteral("https://good.example");
    QCOMPARE(run({QStringLiteral("access"), QStringLiteral("allow"), good}).status, 0);
    QCOMPARE(run({QStringLiteral("access"), QStringLiteral("block"), QStringLiteral("null")}).status, 0);
    QCOMPARE(run({QStringLiteral("access"), QStringLiteral("list")}).output,
             QStringLiteral("allowed where the user is asked, which is not so: https://good.example\n"
                            "blocked: null\npages of other origins: served\n"));
    QFile settings(QFileInfo(m_desktop->settingsFile()).path() + QStringLiteral("/MVSignPadSDK_Access.conf"));
    QVERIFY(settings.open(QIODevice::WriteOnly));
    settings.write("[Access]\nUnknownOrigins=ask\nAllowedOrigins=https://listed.example\n");
    settings.close();
    QCOMPARE(run({QStringLiteral("access"), QStringLiteral("list")}).output,
             QStringLiteral("allowed by the settings: https://listed.example\nallowed: https://good.example\n"
                            "blocked: null\npages of other origins: the user is asked\n"));
}

/// Another user's process reaches the port, as every program does, but neither the answers nor the program's object.
void SubcommandsTest::accessOfAnotherUser()
{
    const QStringList asAnother{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                                QStringLiteral("--clear-groups")};
    const auto setpriv = QStringLiteral("setpriv");
    if (QProcess::execute(setpriv, asAnother + QStringList(QStringLiteral("true"))) != 0)
        QSKIP("only root can take another user's part");
    const auto runAsAnother = [&](const QStringList &words) {
        QProcess &process = startClient(asAnother + words, setpriv);
        return QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, patienceMs)
                       && process.exitStatus() == QProcess::NormalExit
                   ? process.exitCode()
                   : -1;
    };
    QVERIFY(start());
    QCOMPARE(run({QStringLiteral("access"), QStringLiteral("block"), QStringLiteral("https://page.example")}).status,
             0);
    const QFileInfo answers(QFileInfo(m_desktop->settingsFile()).path() + QStringLiteral("/MVSignPadSDK_Origins.conf"));
    for (QString folder = answers.path(); folder != QLatin1String("/tmp"); folder = QFileInfo(folder).path())
        QVERIFY(QFile::setPermissions(folder, QFile::permissions(folder) | QFile::ReadOther | QFile::ExeOther));
    const QString port = QString::number(m_port);
    QCOMPARE(runAsAnother({QStringLiteral(MVSIGNCTL), QStringLiteral("--port"), port, QStringLiteral("GetSize")}), 0);
    QFile open(answers.path() + QStringLiteral("/open")); // in a folder that is
    QVERIFY(open.open(QIODevice::WriteOnly) && open.setPermissions(QFile::ReadOwner | QFile::ReadOther));
    QCOMPARE(runAsAnother({QStringLiteral("cat"), open.fileName()}), 0);
    QCOMPARE(runAsAnother({QStringLiteral("cat"), answers.filePath()}), 1);
    QCOMPARE(runAsAnother({QStringLiteral(MVSIGNCTL), QStringLiteral("access"), QStringLiteral("forget"),
                           QStringLiteral("https://page.example")}),
             2);
    QCOMPARE(runAsAnother({QStringLiteral(MVSIGNCTL), QStringLiteral("log"), QStringLiteral("on")}), 2);
    QVERIFY(run({QStringLiteral("status")}).output.contains(QStringLiteral("Log:               false\n")));
    QVERIFY(!SignClient().connectFrom(QStringLiteral("https://page.example"), m_port));
}

void SubcommandsTest::accessOfNoOrigin()
{
    const Outcome shared = run({QStringLiteral("access"), QStringLiteral("allow"), QStringLiteral("null")});
    QCOMPARE(shared.status, 2);
    QCOMPARE(shared.errors,
             QStringLiteral("mvsignctl: null stands for many pages, which cannot be allowed together\n"));
    QVERIFY(!QFile::exists(QFileInfo(m_desktop->settingsFile()).path() + QStringLiteral("/MVSignPadSDK_Origins.conf")));
}

void SubcommandsTest::accessOfAFileThatIsNotUnderstood()
{
    QFile answers(QFileInfo(m_desktop->settingsFile()).path() + QStringLiteral("/MVSignPadSDK_Origins.conf"));
    QVERIFY(answers.open(QIODevice::WriteOnly));
    answers.write("[Origins]\nBlocked=*\n");
    answers.close();
    for (const QStringList &words : {QStringList{QStringLiteral("list")},
                                     QStringList{QStringLiteral("block"), QStringLiteral("https://page.example")}}) {
        const Outcome outcome = run(QStringList{QStringLiteral("access")} + words);
        QCOMPARE(outcome.status, 2);
        QVERIFY2(outcome.errors.contains(answers.fileName()), qPrintable(outcome.errors));
    }
}

void SubcommandsTest::portOfTheSettings()
{
    QVERIFY(start());
    const Outcome outcome = run({QStringLiteral("GetSize")});
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.output, QStringLiteral("0\n"));
    QCOMPARE(outcome.status, 0);
}

void SubcommandsTest::portThatIsNone()
{
    QVERIFY(m_desktop->writeSettings({QStringLiteral("WebSocketPort=http")}));
    const Outcome outcome = run({QStringLiteral("GetSize")});
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.errors, QStringLiteral("mvsignctl: not a port: 0 (see mvsignctl --help)\n"));
}

void SubcommandsTest::save_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("beginning");
    QTest::newRow("picture") << "drawing.png" << QByteArray("\x89PNG\r\n\x1a\n");
    QTest::newRow("ending in capitals") << "drawing.PNG" << QByteArray("\x89PNG\r\n\x1a\n");
    QTest::newRow("lines") << "a drawing.svg" << QByteArray("<");
    QTest::newRow("points") << "签名.json" << QByteArray("[{\"");
}

void SubcommandsTest::save()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, beginning);
    QVERIFY(start());
    QVERIFY(drawOnThePad());
    const Outcome outcome = run({QStringLiteral("save"), name});
    QCOMPARE(outcome.errors, QString());
    QCOMPARE(outcome.output, QString());
    QCOMPARE(outcome.status, 0);
    QFile file(m_folder.filePath(name));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    QVERIFY2(content.startsWith(beginning), content.left(20).constData());
    QVERIFY(content.size() > 500);
    QVERIFY(!name.endsWith(QLatin1String("json")) || QJsonDocument::fromJson(content).array().size() > 10);
}

void SubcommandsTest::saveNothing()
{
    QVERIFY(start());
    const Outcome outcome = run({QStringLiteral("save"), QStringLiteral("nothing.png")});
    QCOMPARE(outcome.status, 1);
    QCOMPARE(outcome.errors, QStringLiteral("mvsignctl: there is nothing on the pad, or no pad\n"));
    QVERIFY(!QFile::exists(m_folder.filePath(QStringLiteral("nothing.png"))));
}

void SubcommandsTest::saveNowhere()
{
    QVERIFY(start());
    QVERIFY(drawOnThePad());
    const Outcome outcome = run({QStringLiteral("save"), QStringLiteral("/nonexistent/drawing.png")});
    QCOMPARE(outcome.status, 1);
    QVERIFY(outcome.errors.startsWith(QStringLiteral("mvsignctl: cannot write /nonexistent/drawing.png: ")));
}

void SubcommandsTest::watchInAPipe()
{
    QVERIFY(start());
    QProcess &watch = startClient({QStringLiteral("watch")});
    QVERIFY(QTest::qWaitFor([&watch] { return watch.canReadLine(); }, patienceMs));
    QCOMPARE(watch.readLine(), QByteArray("{\"connected\":0,\"key\":-1,\"points\":0}\n"));
    QVERIFY(drawOnThePad());
    QJsonObject last;
    QVERIFY(QTest::qWaitFor(
        [&] {
            while (watch.canReadLine())
                last = QJsonDocument::fromJson(watch.readLine()).object();
            return last.value(QLatin1String("points")).toInt() > 10;
        },
        patienceMs));
    QCOMPARE(last.value(QLatin1String("connected")).toInt(), 1);
    QCOMPARE(watch.state(), QProcess::Running);
}

void SubcommandsTest::watchOnATerminal()
{
    QVERIFY(start());
    // script gives the program a terminal of its own.
    QProcess &watch =
        startClient({QStringLiteral("-qfec"), QStringLiteral(MVSIGNCTL " watch"), QStringLiteral("/dev/null")},
                    QStringLiteral("script"));
    QByteArray seen;
    QVERIFY(QTest::qWaitFor([&] { return (seen += watch.readAll()).contains("pushes: 0"); }, patienceMs));
    QCOMPARE(seen, QByteArray("\r\033[Kpad: none, points: 0, key: -, pushes: 0"));
}

void SubcommandsTest::watchEndsWithTheService()
{
    QVERIFY(start());
    QProcess &watch = startClient({QStringLiteral("watch")});
    QVERIFY(QTest::qWaitFor([&watch] { return watch.canReadLine(); }, patienceMs));
    QVERIFY(m_desktop->waitForIcon());
    QVERIFY(m_desktop->chooseMenuEntry(0));
    QVERIFY(QTest::qWaitFor([&watch] { return watch.state() == QProcess::NotRunning; }, patienceMs));
    QCOMPARE(watch.exitCode(), 2);
    QVERIFY(watch.readAllStandardError().startsWith("mvsignctl: no connection to "));
}

/// A service that pushes: the real pad's events do not reach the clients.
void SubcommandsTest::pushes()
{
    QWebSocketServer server(QStringLiteral("service"), QWebSocketServer::NonSecureMode);
    QVERIFY(server.listen(QHostAddress::Any, m_port));
    connect(&server, &QWebSocketServer::newConnection, this, [&server] {
        QWebSocket *const socket = server.nextPendingConnection();
        socket->setParent(&server);
        socket->sendTextMessage(QStringLiteral(R"({"API":"GetInks","Result":"picture"})"));
        connect(socket, &QWebSocket::textMessageReceived, socket, [socket](const QString &request) {
            socket->sendTextMessage(
                QStringLiteral(R"({"API":"%1","Result":"1"})").arg(request.section(QLatin1Char('/'), -1)));
        });
    });
    QProcess &watch = startClient({QStringLiteral("watch")});
    QByteArray seen;
    QVERIFY(QTest::qWaitFor([&] { return (seen += watch.readAll()).count('\n') == 2; }, patienceMs));
    QCOMPARE(seen,
             QByteArray("{\"push\":\"GetInks\",\"result\":\"picture\"}\n{\"connected\":1,\"key\":1,\"points\":1}\n"));
}

void SubcommandsTest::wrongUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const char *words :
         {"log", "log up", "log on off", "status please", "save", "save file.txt", "save a.png b.png", "doctor all",
          "access", "access list all", "access allow", "access open https://a.example", "access block a.example",
          "access block https://a.example/", "access forget", "access allow null x", "library", "GetSize --json",
          "doctor --json"})
        QTest::newRow(words) << QString::fromLatin1(words).split(QLatin1Char(' '));
}

void SubcommandsTest::wrongUsage()
{
    QFETCH(QStringList, arguments);
    const Outcome outcome = run(arguments);
    QCOMPARE(outcome.status, 2);
    QCOMPARE(outcome.output, QString());
    QVERIFY2(outcome.errors.startsWith(QLatin1String("mvsignctl: "))
                 && outcome.errors.contains(QLatin1String("--help")),
             qPrintable(outcome.errors));
}

/// Every line, those of Qt among them.
void SubcommandsTest::helpInChinese()
{
    QProcessEnvironment environment = m_desktop->environment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("zh_CN.UTF-8"));
    QProcess client;
    client.setProcessEnvironment(environment);
    client.start(QStringLiteral(MVSIGNCTL), {QStringLiteral("--help")});
    QVERIFY(client.waitForFinished(patienceMs));
    const QStringList lines = QString::fromUtf8(client.readAllStandardOutput()).split(QLatin1Char('\n'));
    QVERIFY(lines.size() > 15);
    QVERIFY2(lines.first().startsWith(QStringLiteral("用法：")), qPrintable(lines.first()));
    const QRegularExpression chinese(QStringLiteral("\\p{Han}"));
    for (const QString &line : lines)
        QVERIFY2(line.isEmpty() || chinese.match(line).hasMatch(), qPrintable(line));
}

/// Every text of the program has its Chinese, and there is none for a text that is gone.
void SubcommandsTest::translationIsComplete()
{
    const QString copy = m_folder.filePath(QStringLiteral("mvsignctl_zh_CN.ts"));
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_SOURCE_DIR "/tools/translations/mvsignctl_zh_CN.ts"), copy));
    QProcess lupdate;
    lupdate.start(QStringLiteral(MVSIGNPAD_LUPDATE), {QStringLiteral(MVSIGNPAD_SOURCE_DIR "/tools"),
                                                      QStringLiteral("-silent"), QStringLiteral("-ts"), copy});
    QVERIFY(lupdate.waitForFinished(patienceMs));
    QFile file(copy);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray texts = file.readAll();
    QVERIFY(texts.count("<source>") > 100);
    QCOMPARE(texts.count("type=\"unfinished\""), 0);
    QCOMPARE(texts.count("type=\"vanished\"") + texts.count("type=\"obsolete\""), 0);
}

QTEST_GUILESS_MAIN(SubcommandsTest)

#include "tst_subcommands.moc"
