// The doctor against a machine that is sound, and against each thing that can be wrong with one. Every line that it
// says then is read.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/SignClient.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>
#include <QTcpServer>
#include <QTest>

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Report {
    int status = -1;
    QStringList lines;

    /// The line about a subject, without the subject: "ok   ..." or "BAD  ...".
    QString about(const char *subject) const
    {
        const QString colon = QString::fromUtf8(subject) + QStringLiteral(": ");
        for (const QString &line : lines) {
            if (line.mid(5).startsWith(colon))
                return line.left(5) + line.mid(5 + colon.size());
        }
        return {};
    }
    QStringList bad() const { return lines.filter(QRegularExpression(QStringLiteral("^BAD"))); }
};

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
           && file.write(content) == content.size();
}

} // namespace

class DoctorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void soundMachine();
    void chinese();
    void programDoesNotRun();
    void programOfAnotherSession();
    void secondCopy();
    void mistakenForACopy();
    void noGuardTool();
    void noTray();
    void statusNotifierTray();
    void noIcon();
    void noBus();
    void hangingBus();
    void autostart_data();
    void autostart();
    void settingsFiles_data();
    void settingsFiles();
    void accessSettings_data();
    void accessSettings();
    void answersOfTheUser();
    void addressOfTheSettings();
    void requiredOrigin();
    void serviceStopped();
    void portTaken();
    void portChanged();
    void serviceHangs();
    void noName();
    void browserPolicy();
    void library_data();
    void library();
    void pads_data();
    void pads();
    void noFont();
    void onATerminal_data();
    void onATerminal();

private:
    QString file(const QString &name) const { return m_folder->filePath(name); }
    QString program() const { return file(QStringLiteral("mvsignpadsdk_wssvr")); }
    QString library_() const { return file(QStringLiteral("libmvsignpadsdk.so")); }
    QString config(const char *name) const
    {
        return m_desktop->home() + QStringLiteral("/.config/mvsignpadsdk/") + QLatin1String(name)
               + QStringLiteral(".conf");
    }
    bool start();
    bool openPad();
    Report examine(const QStringList &wrapper = {}, const QMap<QString, QString> &variables = {});
    /// Lays a folder of the test's over one of the machine, until the end of the test.
    bool cover(const char *folder, const QMap<QString, QByteArray> &files);

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<TrayProgram> m_program;
    std::unique_ptr<SignClient> m_client;
    QStringList m_covered;
    quint16 m_port = 0;
};

void DoctorTest::initTestCase()
{
    QVERIFY2(geteuid() == 0, "the test covers folders of the machine, in mounts of its own");
}

void DoctorTest::init()
{
    m_port = freePort();
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
    m_folder.reset(new QTemporaryDir);
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_PROGRAM), program()));
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_PROGRAM ".ico"), program() + QStringLiteral(".ico")));
    QVERIFY(QFile::copy(QStringLiteral(MVSIGNPAD_VIRTUAL_SDK), library_()));
    QVERIFY(m_desktop->writeSettings(
        {QStringLiteral("StartWebService=true"), QStringLiteral("WebSocketPort=%1").arg(m_port)}));
    m_program.reset(new TrayProgram(*m_desktop, program()));
    m_client.reset(new SignClient);
}

void DoctorTest::cleanup()
{
    m_client.reset();
    m_program.reset();
    m_desktop.reset();
    m_folder.reset();
    for (const QString &folder : qAsConst(m_covered))
        QCOMPARE(QProcess::execute(QStringLiteral("umount"), {folder}), 0);
    m_covered.clear();
}

bool DoctorTest::start()
{
    return m_program->start() && TrayProgram::waitForListening(m_port);
}

bool DoctorTest::openPad()
{
    return m_client->connectTo(m_port)
           && m_client->command(QStringLiteral("InitialDevice?id=2&width=800&height=480"))
                  == QStringLiteral(R"({"API":"InitialDevice","Result":"1"})");
}

Report DoctorTest::examine(const QStringList &wrapper, const QMap<QString, QString> &variables)
{
    QProcessEnvironment environment = m_desktop->environment();
    for (auto variable = variables.begin(); variable != variables.end(); ++variable)
        environment.insert(variable.key(), variable.value());
    QStringList command = wrapper + QStringList{QStringLiteral(MVSIGNCTL), QStringLiteral("doctor")};
    QProcess doctor;
    doctor.setProcessEnvironment(environment);
    doctor.start(command.takeFirst(), command);
    Report report;
    if (QTest::qWaitFor([&doctor] { return doctor.state() == QProcess::NotRunning; }, patienceMs)
        && doctor.exitStatus() == QProcess::NormalExit)
        report.status = doctor.exitCode();
    report.lines = QString::fromUtf8(doctor.readAllStandardOutput()).split(QLatin1Char('\n'));
    report.lines.removeAll(QString());
    return report;
}

bool DoctorTest::cover(const char *folder, const QMap<QString, QByteArray> &files)
{
    const QString path = QString::fromLatin1(folder);
    if (!QDir().mkpath(path)
        || QProcess::execute(QStringLiteral("mount"),
                             {QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("tmpfs"), path})
               != 0)
        return false;
    m_covered.prepend(path);
    bool written = true;
    for (auto content = files.begin(); content != files.end(); ++content)
        written = written && writeFile(path + QLatin1Char('/') + content.key(), content.value());
    return written;
}

void DoctorTest::soundMachine()
{
    QVERIFY(start());
    QVERIFY(openPad());
    Report report;
    QTRY_VERIFY2_WITH_TIMEOUT((report = examine()).status == 0, qPrintable(report.lines.join(QLatin1Char('\n'))),
                              patienceMs);
    QCOMPARE(report.lines.size(), 17);
    QCOMPARE(report.bad(), QStringList());
    QFile document(QStringLiteral(MVSIGNPAD_SOURCE_DIR "/docs/install.md"));
    QVERIFY(document.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(document.readAll());
    for (const QString &line : qAsConst(report.lines)) {
        const QString subject = line.mid(5).section(QStringLiteral(": "), 0, 0);
        QVERIFY2(text.contains(QLatin1Char('`') + subject + QLatin1Char('`')), qPrintable(subject));
    }
    QVERIFY(report.about("program").contains(QStringLiteral("version " MVSIGNPAD_VERSION)));
    QVERIFY(report.about("program").contains(QString::number(m_program->process().processId())));
    QCOMPARE(report.about("other copies"), QStringLiteral("ok   none, and nothing that looks like one"));
    QCOMPARE(report.about("tray"), QStringLiteral("ok   a panel has an XEmbed tray"));
    QCOMPARE(report.about("icon"), QStringLiteral("ok   ") + program() + QStringLiteral(".ico"));
    QCOMPARE(report.about("launch at log-in"), QStringLiteral("ok   not asked for"));
    QCOMPARE(report.about("settings files"), QStringLiteral("ok   ") + m_desktop->settingsFile());
    QCOMPARE(report.about("access settings"),
             QStringLiteral(
                 "ok   served are: every machine that reaches the port; every page; every program; files anywhere"));
    QCOMPARE(report.about("port"), QStringLiteral("ok   the program listens at %1").arg(m_port));
    QCOMPARE(report.about("answer over IPv4"), QStringLiteral("ok   the service answers at 127.0.0.1"));
    QVERIFY(report.about("library's functions").startsWith(QStringLiteral("ok   Alder: complete; Birch: complete;")));
    QCOMPARE(report.about("pad"), QStringLiteral("ok   the program has opened the model Alder"));
}

void DoctorTest::chinese()
{
    const Report report = examine({}, {{QStringLiteral("LC_ALL"), QStringLiteral("zh_CN.UTF-8")}});
    QCOMPARE(report.status, 1);
    QCOMPARE(report.about("登录时启动"), QStringLiteral("ok   未选择"));
    QCOMPARE(report.lines.size(), 17);
}

void DoctorTest::programDoesNotRun()
{
    const Report report = examine();
    QCOMPARE(report.status, 1);
    QCOMPARE(report.about("program"), QStringLiteral("BAD  does not run: start it from the application menu, or "
                                                     "/opt/mvsignpad/mvsignpadsdk_wssvr"));
    QCOMPARE(
        report.about("port"),
        QStringLiteral("BAD  nobody listens at %1: start the program, and the service in its tray menu").arg(m_port));
    QVERIFY(report.about("answer over IPv4").startsWith(QStringLiteral("BAD  no connection to ws://127.0.0.1:")));
}

void DoctorTest::programOfAnotherSession()
{
    const DesktopSession other;
    QVERIFY(other.isUsable());
    QVERIFY(start());
    const Report report = examine({}, {{QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), other.busAddress()}});
    QCOMPARE(report.status, 1);
    QVERIFY2(
        report.about("program").endsWith(QStringLiteral("runs, but not in this session: end it and start it here")),
        qPrintable(report.about("program")));
}

void DoctorTest::secondCopy()
{
    QVERIFY(start());
    QVERIFY(QFile::copy(QStringLiteral("/bin/sleep"), file(QStringLiteral("copy"))));
    QDir().mkpath(file(QStringLiteral("second")));
    const QString copy = file(QStringLiteral("second/mvsignpadsdk_wssvr"));
    QVERIFY(QFile::copy(QStringLiteral("/bin/sleep"), copy));
    QProcess second;
    second.start(copy, {QStringLiteral("1000")});
    QVERIFY(second.waitForStarted(patienceMs));
    const Report report = examine();
    QCOMPARE(report.status, 1);
    QVERIFY2(report.about("other copies")
                 .startsWith(QStringLiteral("BAD  end what keeps the program from starting: process %1 of user root (")
                                 .arg(second.processId())),
             qPrintable(report.about("other copies")));
    second.kill();
    QVERIFY(second.waitForFinished(patienceMs));
}

void DoctorTest::mistakenForACopy()
{
    QVERIFY(start());
    QProcess editor;
    editor.start(QStringLiteral("tail"), {QStringLiteral("-f"), QStringLiteral("/dev/null"), program()});
    QVERIFY(editor.waitForStarted(patienceMs));
    const Report report = examine();
    QCOMPARE(report.status, 1);
    QVERIFY2(report.about("other copies").contains(QStringLiteral("tail -f /dev/null ")),
             qPrintable(report.about("other copies")));
    editor.kill();
    QVERIFY(editor.waitForFinished(patienceMs));
}

void DoctorTest::noGuardTool()
{
    const Report report = examine({}, {{QStringLiteral("PATH"), QStringLiteral("/nonexistent")}});
    QCOMPARE(report.about("other copies"),
             QStringLiteral("BAD  the program cannot look for them: install pgrep (package procps)"));
}

void DoctorTest::noTray()
{
    m_desktop->endLastHelper();
    const Report report = examine();
    QVERIFY2(report.about("tray").startsWith(QStringLiteral("BAD  this desktop has none")),
             qPrintable(report.about("tray")));
}

void DoctorTest::statusNotifierTray()
{
    m_desktop->endLastHelper();
    QVERIFY(m_desktop->startStatusNotifierHost());
    QCOMPARE(examine().about("tray"), QStringLiteral("ok   a StatusNotifier host is on the session bus"));
}

void DoctorTest::noIcon()
{
    QVERIFY(start());
    QVERIFY(QFile::remove(program() + QStringLiteral(".ico")));
    QCOMPARE(examine().about("icon"), QStringLiteral("BAD  ") + program()
                                          + QStringLiteral(".ico is missing: install the package mvsignpad again"));
}

void DoctorTest::noBus()
{
    QVERIFY(start());
    const Report report =
        examine({}, {{QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=/nonexistent")}});
    QVERIFY2(report.about("program").endsWith(QStringLiteral("; there is no session bus to ask it more")),
             qPrintable(report.about("program")));
    QVERIFY(report.about("program").startsWith(QStringLiteral("ok ")));
}

void DoctorTest::hangingBus()
{
    QTemporaryDir folder;
    const QString socket = folder.filePath(QStringLiteral("bus"));
    QProcess silent;
    silent.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import socket,sys\ns=socket.socket(socket.AF_UNIX)\n"
                                 "s.bind(sys.argv[1])\ns.listen()\nprint(flush=True)\nsys.stdin.read()"),
                  socket});
    QVERIFY(QTest::qWaitFor([&silent] { return silent.canReadLine(); }, patienceMs));
    const Report report =
        examine({}, {{QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("unix:path=") + socket}});
    QCOMPARE(report.lines.size(), 17);
    silent.closeWriteChannel();
    QVERIFY(silent.waitForFinished(patienceMs));
}

void DoctorTest::autostart_data()
{
    QTest::addColumn<QString>("product");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("line");
    const QByteArray entry("[Desktop Entry]\nExec=/bin/true --flag\n");
    QTest::newRow("there") << "kylin"
                           << "mvsignpaddriver-kylin.desktop" << entry << ""
                           << "ok   by HOME/.config/autostart/mvsignpaddriver-kylin.desktop";
    QTest::newRow("of another desktop") << "uos"
                                        << "mvsignpaddriver-kylin.desktop" << entry << ""
                                        << "BAD  the entry of another desktop lies here, remove it: "
                                           "HOME/.config/autostart/mvsignpaddriver-kylin.desktop";
    QTest::newRow("of a program that is gone")
        << "uos"
        << "com.morvane.mvsignpaddriver.desktop" << QByteArray("[Desktop Entry]\nExec=/nonexistent/program\n") << ""
        << "BAD  HOME/.config/autostart/com.morvane.mvsignpaddriver.desktop starts /nonexistent/program, which is not "
           "there: install the program, or remove the entry";
    QTest::newRow("switched off") << "uos"
                                  << "com.morvane.mvsignpaddriver.desktop" << entry + "Hidden=true\n"
                                  << ""
                                  << "BAD  HOME/.config/autostart/com.morvane.mvsignpaddriver.desktop starts nothing: "
                                     "remove it, and switch the launch on in the tray menu";
    QTest::newRow("chosen, and gone")
        << "nfsdesktop"
        << "" << QByteArray() << "AutoLaunch=true"
        << "BAD  was chosen, but HOME/.config/autostart/mvsignpaddriver-nfs.desktop is not "
           "there: choose it again in the tray menu";
    QTest::newRow("chosen on another desktop") << "debian"
                                               << "" << QByteArray() << "AutoLaunch=true"
                                               << "BAD  this desktop (debian) has no entry of its own: copy "
                                                  "/usr/share/applications/com.morvane.mvsignpaddriver.desktop to "
                                                  "/etc/xdg/autostart/com.morvane.mvsignpaddriver.desktop";
    QTest::newRow("not chosen") << "kylin"
                                << "" << QByteArray() << "AutoLaunch=false"
                                << "ok   not asked for";
}

void DoctorTest::autostart()
{
    QFETCH(QString, product);
    QFETCH(QString, entry);
    QFETCH(QByteArray, content);
    QFETCH(QString, setting);
    QFETCH(QString, line);
    const QString release = file(QStringLiteral("os-release"));
    QVERIFY(QDir().mkpath(file(QStringLiteral("applications"))));
    QVERIFY(writeFile(release, "NAME=\"Desktop\"\nID=" + product.toUtf8() + "\nVERSION_ID=20\n"));
    if (!entry.isEmpty())
        QVERIFY(writeFile(m_desktop->home() + QStringLiteral("/.config/autostart/") + entry, content));
    QVERIFY(m_desktop->writeSettings({setting}));
    const Report report =
        examine({QStringLiteral(MVSIGNPAD_AS_PRODUCT), release, file(QStringLiteral("applications"))});
    QCOMPARE(report.about("launch at log-in"), QString(line).replace(QStringLiteral("HOME"), m_desktop->home()));
}

void DoctorTest::settingsFiles_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("line");
    QTest::newRow("unknown key") << "MVSignPadSDK_WSSvr" << QByteArray("[Settings]\nWebSocketport=1\n")
                                 << "FILE has an unknown key, correct or remove it: Settings/WebSocketport";
    QTest::newRow("unknown group") << "MVSignPadSDK_WSSvr" << QByteArray("[Other]\nWebSocketPort=1\n")
                                   << "FILE has an unknown key, correct or remove it: Other/WebSocketPort";
    QTest::newRow("unknown key of WPS") << "MVeSign_WPS" << QByteArray("[Settings]\nPenWidth=3\n")
                                        << "FILE has an unknown key, correct or remove it: Settings/PenWidth";
    QTest::newRow("not decoded") << "MVeSign_WPS" << QByteArray("[Settings]\nName_WPS=@Variant(\\0\\0\\0\\n)\n")
                                 << "FILE cannot be read: check its owner and its rights, or remove it";
    QTest::newRow("no port") << "MVSignPadSDK_WSSvr" << QByteArray("[Settings]\nWebSocketPort=http\n")
                             << "WebSocketPort must be a port from 1 to 65535, not 0";
    QTest::newRow("too large a port") << "MVSignPadSDK_WSSvr" << QByteArray("[Settings]\nWebSocketPort=80890\n")
                                      << "WebSocketPort must be a port from 1 to 65535, not 80890";
}

void DoctorTest::settingsFiles()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, line);
    const QString path = config(name.toLatin1().constData());
    QVERIFY(writeFile(path, content));
    const Report report = examine();
    QCOMPARE(report.status, 1);
    QCOMPARE(report.about("settings files"), QStringLiteral("BAD  ") + line.replace(QStringLiteral("FILE"), path));
}

void DoctorTest::accessSettings_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("line");
    QTest::newRow("loopback") << QByteArray("[Access]\nListenAddress=127.0.0.1\n")
                              << "ok   served are: who reaches 127.0.0.1; every page; every program; files anywhere";
    QTest::newRow("pages") << QByteArray(
        "[Access]\nAllowedOrigins=https://a.example, https://b.example\nRequireOrigin=true\n")
                           << "ok   served are: every machine that reaches the port; the pages of https://a.example "
                              "https://b.example; programs that name an origin; files anywhere";
    QTest::newRow("no page")
        << QByteArray("[Access]\nAllowedOrigins=\n")
        << "ok   served are: every machine that reaches the port; no page; every program; files anywhere";
    QTest::newRow("ask") << QByteArray("[Access]\nUnknownOrigins=ask\n")
                         << "ok   served are: every machine that reaches the port; pages when the user allows it; "
                            "every program; files anywhere";
    QTest::newRow("some, and ask")
        << QByteArray("[Access]\nUnknownOrigins=ask\nAllowedOrigins=https://a.example\n")
        << "ok   served are: every machine that reaches the port; the pages of "
           "https://a.example, others when the user allows it; every program; files anywhere";
    QTest::newRow("block") << QByteArray("[Access]\nUnknownOrigins=block\n")
                           << "ok   served are: every machine that reaches the port; no page; every program; files "
                              "anywhere";
    QTest::newRow("wrong answer to the unknown")
        << QByteArray("[Access]\nUnknownOrigins=perhaps\n")
        << "BAD  correct what keeps the service closed: FILE: UnknownOrigins is not allow, block or ask";
    QTest::newRow("folders")
        << QByteArray("[Access]\nSaveFolders=/tmp, /srv\n")
        << "ok   served are: every machine that reaches the port; every page; every program; files "
           "below /tmp /srv";
    QTest::newRow("wrong value")
        << QByteArray("[Access]\nRequireOrigin=perhaps\n")
        << "BAD  correct what keeps the service closed: FILE: RequireOrigin is not true or false";
}

void DoctorTest::accessSettings()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, line);
    const QString path = config("MVSignPadSDK_Access");
    QVERIFY(writeFile(path, content));
    QCOMPARE(examine().about("access settings"), line.replace(QStringLiteral("FILE"), path));
}

void DoctorTest::answersOfTheUser()
{
    QVERIFY(writeFile(config("MVSignPadSDK_Origins"),
                      "[Origins]\nAllowed=https://a.example\nBlocked=https://b.example, null\n"));
    QCOMPARE(examine().about("access settings"),
             QStringLiteral("ok   served are: every machine that reaches the port; every page, but none of "
                            "https://b.example null; every program; files anywhere"));
    QVERIFY(writeFile(config("MVSignPadSDK_Access"), "[Access]\nUnknownOrigins=ask\nRequireOrigin=true\n"));
    QCOMPARE(
        examine().about("access settings"),
        QStringLiteral("ok   served are: every machine that reaches the port; the pages of https://a.example, others "
                       "when the user allows it, but none of https://b.example null; programs that name an origin; "
                       "files anywhere"));
    QVERIFY(start());
    QCOMPARE(examine().about("answer over IPv4"), QStringLiteral("ok   the service answers at 127.0.0.1"));
    QVERIFY(writeFile(config("MVSignPadSDK_Origins"), "[Origins]\nBlocked=*\n"));
    QCOMPARE(
        examine().about("access settings"),
        QStringLiteral("BAD  correct what keeps the service closed: %1: it cannot be read, or something in it is not "
                       "understood")
            .arg(config("MVSignPadSDK_Origins")));
}

void DoctorTest::addressOfTheSettings()
{
    QVERIFY(writeFile(config("MVSignPadSDK_Access"), "[Access]\nListenAddress=127.0.0.1\n"));
    QVERIFY(start());
    const Report report = examine();
    QCOMPARE(report.about("answer over IPv4"), QStringLiteral("ok   the service answers at 127.0.0.1"));
    QVERIFY2(report.about("answer over IPv6").startsWith(QStringLiteral("ok   ")),
             qPrintable(report.about("answer over IPv6")));
}

void DoctorTest::requiredOrigin()
{
    QVERIFY(
        writeFile(config("MVSignPadSDK_Access"), "[Access]\nAllowedOrigins=https://a.example\nRequireOrigin=true\n"));
    QVERIFY(start());
    QCOMPARE(examine().about("answer over IPv4"), QStringLiteral("ok   the service answers at 127.0.0.1"));
}

void DoctorTest::serviceStopped()
{
    QVERIFY(m_desktop->writeSettings({QStringLiteral("WebSocketPort=%1").arg(m_port)}));
    QVERIFY(m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    const Report report = examine();
    QCOMPARE(report.status, 1);
    QCOMPARE(report.about("port"),
             QStringLiteral("BAD  nobody listens at %1: choose \"Start Service\" in the tray menu").arg(m_port));
}

void DoctorTest::portTaken()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any, m_port));
    QVERIFY(m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    const Report report = examine();
    QCOMPARE(report.status, 1);
    QVERIFY2(report.about("port").startsWith(
                 QStringLiteral("BAD  process %1 of user root (").arg(QCoreApplication::applicationPid())),
             qPrintable(report.about("port")));
    QVERIFY(report.about("port").endsWith(
        QStringLiteral(" holds %1: end it and start the service again, or set WebSocketPort").arg(m_port)));
    QVERIFY(report.about("answer over IPv4").startsWith(QStringLiteral("BAD  ")));
}

void DoctorTest::portChanged()
{
    QVERIFY(start());
    const quint16 another = freePort();
    QVERIFY(m_desktop->writeSettings({QStringLiteral("WebSocketPort=%1").arg(another)}));
    QTRY_COMPARE_WITH_TIMEOUT(
        examine().about("port"),
        QStringLiteral("BAD  the program listens at %1, the settings say %2: start the service again")
            .arg(m_port)
            .arg(another),
        patienceMs);
}

void DoctorTest::serviceHangs()
{
    QVERIFY(start());
    const auto pid = static_cast<pid_t>(m_program->process().processId());
    QCOMPARE(kill(pid, SIGSTOP), 0);
    const Report report = examine();
    QCOMPARE(kill(pid, SIGCONT), 0);
    QVERIFY2(report.about("answer over IPv4")
                 .startsWith(QStringLiteral("BAD  no answer from ws://127.0.0.1:%1 within 5 s").arg(m_port)),
             qPrintable(report.about("answer over IPv4")));
}

void DoctorTest::noName()
{
    const QString hosts = file(QStringLiteral("hosts"));
    QVERIFY(writeFile(hosts, "192.0.2.1 localhost\n"));
    QCOMPARE(
        QProcess::execute(QStringLiteral("mount"), {QStringLiteral("--bind"), hosts, QStringLiteral("/etc/hosts")}), 0);
    m_covered.prepend(QStringLiteral("/etc/hosts"));
    QCOMPARE(examine().about("name localhost"),
             QStringLiteral("BAD  does not lead to this machine: put \"127.0.0.1 localhost\" into /etc/hosts"));
}

void DoctorTest::browserPolicy()
{
    QVERIFY(cover("/etc/chromium",
                  {{QStringLiteral("policies/managed/network.json"), R"({"LocalNetworkAccessBlockedForUrls": ["*"]})"},
                   {QStringLiteral("policies/managed/other.json"), "not JSON"}}));
    QCOMPARE(examine().about("browser policy"),
             QStringLiteral("BAD  keeps pages from this machine, except the pages that need it: "
                            "/etc/chromium/policies/managed/network.json (LocalNetworkAccessBlockedForUrls)"));
}

void DoctorTest::library_data()
{
    QTest::addColumn<QString>("replacement"); // "-": none
    QTest::addColumn<QString>("subject");
    QTest::addColumn<QString>("line");
    QTest::newRow("missing") << "-"
                             << "pad library"
                             << "BAD  FILE is not there: copy the library of the pad's maker to it";
    QTest::newRow("no library at all") << MVSIGNPAD_AS_PRODUCT << "library's machine"
                                       << "BAD  there is no library to look at";
    QTest::newRow("of another machine") << "foreign"
                                        << "library's machine"
                                        << QStringLiteral("BAD  the library is built for another one: get the one for ")
                                               + QSysInfo::currentCpuArchitecture();
    QTest::newRow("lacks what it needs") << MVSIGNPAD_NEEDY_SDK << "library's functions"
                                         << "BAD  cannot be loaded, install what it needs: ";
    QTest::newRow("lacks functions") << MVSIGNPAD_POOR_SDK << "library's functions"
                                     << "BAD  no model is complete, get another library: Alder: lacks ";
    QTest::newRow("crashes") << MVSIGNPAD_CRASHING_SDK << "library's functions"
                             << "BAD  the library crashes or hangs when it is loaded: get another one";
}

void DoctorTest::library()
{
    QFETCH(QString, replacement);
    QFETCH(QString, subject);
    QFETCH(QString, line);
    QVERIFY(start());
    QVERIFY(QFile::remove(library_()));
    if (replacement == QLatin1String("foreign")) {
        QFile original(QStringLiteral(MVSIGNPAD_VIRTUAL_SDK));
        QVERIFY(original.open(QIODevice::ReadOnly));
        QByteArray content = original.readAll();
        content[18] = content.at(18) == 62 ? 8 : 62; // the processor in the head of the file
        QVERIFY(writeFile(library_(), content));
    } else if (replacement != QLatin1String("-")) {
        QVERIFY(QFile::copy(replacement, library_()));
    }
    const Report report = examine();
    QCOMPARE(report.status, 1);
    const QString found = report.about(subject.toLatin1().constData());
    QVERIFY2(found.startsWith(line.replace(QStringLiteral("FILE"), library_())), qPrintable(found));
}

void DoctorTest::pads_data()
{
    QTest::addColumn<QByteArray>("uevent");
    QTest::addColumn<QByteArray>("protocol");
    QTest::addColumn<int>("rights");
    QTest::addColumn<QString>("line");
    const QByteArray usb("HID_ID=0003:00001234:00005678\nHID_NAME=A Signature Pad\n");
    const QString nothing =
        QStringLiteral("BAD  nothing on USB could be one: plug it in; lsusb shows what the system sees");
    QTest::newRow("none") << QByteArray() << QByteArray() << 0 << nothing;
    QTest::newRow("a keyboard") << usb << QByteArray("01\n") << 0666 << nothing;
    QTest::newRow("a mouse") << usb << QByteArray("02\n") << 0666 << nothing;
    QTest::newRow("not on USB") << QByteArray("HID_ID=0005:00001234:00005678\n") << QByteArray() << 0666 << nothing;
    QTest::newRow("may be opened") << usb << QByteArray("00\n") << 0666
                                   << "ok   A Signature Pad may be one, and the user may open /dev/hidraw9";
    QTest::newRow("may not be opened") << usb << QByteArray("00\n") << 0600
                                       << "BAD  A Signature Pad may be one, but the user may not open /dev/hidraw9: "
                                          "install the rules that come with the "
                                          "maker's library, and plug it in again";
}

/// As another user than root, who may open everything.
void DoctorTest::pads()
{
    QFETCH(QByteArray, uevent);
    QFETCH(QByteArray, protocol);
    QFETCH(int, rights);
    QFETCH(QString, line);
    const QStringList asAnother{QStringLiteral("setpriv"), QStringLiteral("--reuid=65534"),
                                QStringLiteral("--clear-groups")};
    if (QProcess::execute(asAnother.constFirst(), asAnother.mid(1) + QStringList(QStringLiteral("true"))) != 0)
        QSKIP("only root can take another user's part");
    QMap<QString, QByteArray> files;
    if (!uevent.isEmpty()) {
        files.insert(QStringLiteral("hidraw9/device/uevent"), uevent);
        files.insert(QStringLiteral("hidraw9/bInterfaceProtocol"), protocol);
    }
    QVERIFY(cover("/sys/class/hidraw", files));
    QVERIFY(cover("/dev", {{QStringLiteral("hidraw9"), QByteArray()}, {QStringLiteral("null"), QByteArray()}}));
    QCOMPARE(chmod("/dev/hidraw9", static_cast<mode_t>(rights)), 0);
    const Report report = examine(asAnother);
    QCOMPARE(report.about("pad"), line);
}

void DoctorTest::noFont()
{
    QVERIFY(writeFile(file(QStringLiteral("fonts.conf")), "<fontconfig><dir>/nonexistent</dir></fontconfig>\n"));
    QCOMPARE(
        examine({}, {{QStringLiteral("FONTCONFIG_FILE"), file(QStringLiteral("fonts.conf"))}}).about("Chinese font"),
        QStringLiteral("BAD  there is none: install one, such as fonts-noto-cjk"));
    QCOMPARE(examine({}, {{QStringLiteral("PATH"), QStringLiteral("/nonexistent")}}).about("Chinese font"),
             QStringLiteral("BAD  cannot be looked for: install fc-list (package fontconfig)"));
}

void DoctorTest::onATerminal_data()
{
    QTest::addColumn<bool>("isSound");
    QTest::addColumn<QString>("picture");
    QTest::newRow("sound") << true << "doctor-sound.png";
    QTest::newRow("broken") << false << "doctor-broken.png";
}

/// Leaves pictures of both, to be looked at.
void DoctorTest::onATerminal()
{
    QFETCH(bool, isSound);
    QFETCH(QString, picture);
    QVERIFY(isSound ? start() && openPad() : QFile::remove(library_()) && m_program->start());
    QVERIFY(m_desktop->waitForIcon());
    const QString done = file(QStringLiteral("done"));
    const QString command = QStringLiteral(MVSIGNCTL " doctor; echo status $?; touch %1; exec sleep 1000").arg(done);
    QVERIFY(m_desktop->startHelper(QStringLiteral("xterm"),
                                   {QStringLiteral("-geometry"), QStringLiteral("155x40+0+0"), QStringLiteral("-fa"),
                                    QStringLiteral("DejaVu Sans Mono"), QStringLiteral("-fs"), QStringLiteral("6"),
                                    QStringLiteral("-e"), QStringLiteral("sh"), QStringLiteral("-c"), command}));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(done), patienceMs);
    const auto writtenRows = [this] {
        const QImage screen = m_desktop->screenshot();
        int rows = 0;
        for (int y = 0; y < screen.height(); ++y) {
            bool isWritten = false;
            for (int x = 1; x < screen.width() / 2; ++x)
                isWritten = isWritten || screen.pixel(x, y) != screen.pixel(x - 1, y);
            rows += isWritten ? 1 : 0;
        }
        return rows;
    };
    QTRY_VERIFY_WITH_TIMEOUT(writtenRows() > 17 * 4, patienceMs); // of 17 lines, some rows of pixels each
    QVERIFY(m_desktop->keepScreenshot(picture));
}

QTEST_GUILESS_MAIN(DoctorTest)

#include "tst_doctor.moc"
