// Settings files that are damaged or cannot be written, and a program that is killed at any moment.
#include "tests/faults/support/FaultyWorkplace.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <csignal>

namespace {

bool runs(const QString &program, const QStringList &arguments)
{
    return QProcess::execute(program, arguments) == 0;
}

QString wpsSettings(int number)
{
    return QStringLiteral("UpdateWPSSettings?id=2&dt=1&af=0&pw=%1&name=%1").arg(number);
}

} // namespace

class SettingsFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void damagedFileIsSurvived_data();
    void damagedFileIsSurvived();
    void fileOfFiftyMegabytesIsRead();
    void fileThatCannotBeWrittenIsSurvived_data();
    void fileThatCannotBeWrittenIsSurvived();
    void fullDiskLeavesTheOldFile();
    void fullDiskForPicturesIsReported();
    void killedProgramLeavesAWholeFile_data();
    void killedProgramLeavesAWholeFile();
    void everyNameSurvivesARestart_data();
    void everyNameSurvivesARestart();
    void organisationsFileDecidesNothing();

private:
    QString folder() const { return m_place->desktop().home() + QStringLiteral("/.config/mvsignpadsdk"); }
    QString wpsFile() const { return folder() + QStringLiteral("/MVeSign_WPS.conf"); }
    bool write(const QString &path, const QByteArray &content) const;
    QByteArray read(const QString &path) const;
    bool mount(const QStringList &arguments);
    void useTheService(quint16 port);

    std::unique_ptr<FaultyWorkplace> m_place;
    QStringList m_mounts;
};

void SettingsFaultsTest::init()
{
    m_place = std::make_unique<FaultyWorkplace>();
    QVERIFY(m_place->isUsable());
}

void SettingsFaultsTest::cleanup()
{
    m_place->program().process().kill();
    m_place->program().waitForEnd();
    while (!m_mounts.isEmpty())
        runs(QStringLiteral("umount"), {m_mounts.takeLast()});
    m_place.reset();
}

bool SettingsFaultsTest::write(const QString &path, const QByteArray &content) const
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray SettingsFaultsTest::read(const QString &path) const
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The last argument is where.
bool SettingsFaultsTest::mount(const QStringList &arguments)
{
    m_mounts += arguments.last();
    return runs(QStringLiteral("mount"), arguments);
}

/// Settings can be given and read back, and the menu stops and starts the service, whatever becomes of the files.
void SettingsFaultsTest::useTheService(quint16 port)
{
    SignClient client;
    QVERIFY(client.connectTo(port));
    QCOMPARE(client.command(wpsSettings(7)), replyText("UpdateWPSSettings", QStringLiteral("0")));
    QCOMPARE(
        client.command(QStringLiteral("GetWPSSettings?id=2")),
        QStringLiteral("{\"API\":\"GetWPSSettings\",\"Result\":\"{\\\"CurrentPenWidth\\\":\\\"7\\\","
                       "\\\"EnableAutoFit\\\":\\\"0\\\",\\\"EnableDateTime\\\":\\\"1\\\",\\\"Name\\\":\\\"7\\\"}\"}"));
    QVERIFY(m_place->toggleService());
    QVERIFY(TrayProgram::waitForSilence(port));
    QVERIFY(m_place->toggleService());
    QVERIFY(TrayProgram::waitForListening(port));
    QVERIFY(m_place->exitsCleanly());
}

void SettingsFaultsTest::damagedFileIsSurvived_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("empty") << QByteArray("");
    QByteArray rubbish("[Settings]\nStartWebServ", 23);
    for (int i = 0; i < 100000; ++i)
        rubbish += static_cast<char>(i * 7919 >> 3);
    QTest::newRow("binary rubbish") << rubbish;
    QTest::newRow("wrong kinds") << QByteArray("[Settings]\nWebSocketPort=@Size(1 2)\nUILangID=@Invalid()\n"
                                               "AutoLaunch=@ByteArray(\\0)\nStartWebService=@Rect(1 2 3 4)\n");

    // A list of 2^28 values, which are not there.
    const QByteArray list("Variant(\\0\\0\\0\\t\\x10\\0\\0\\0)\n");
    const auto huge = [&list](const char *name, const QByteArray &beginning) {
        QTest::newRow(name) << "[Settings]\n" + beginning + list;
    };
    huge("huge list", "X=@");
    huge("huge list as a date", QByteArray("X=@DateTime(\\0\\0\\0\\t\\x10\\0\\0\\0)\nY="));
    huge("huge list under a key of the program", "WebSocketPort=@");
    huge("huge list within a list", "X=a, \"@");
    huge("huge list with hexadecimal escape", "X=\\x10040");
    huge("huge list with octal escape", "X=\\100");
    huge("huge list with unknown escape", "X=@\\z");
    huge("huge list on a broken line", "X=\\\r\n@\\\n");
    huge("huge list with long escape", "X=\\x00000040");
    huge("huge list in pieces", "X=\"@\" \"\"");
    huge("huge list behind nothing", "X=\"\"@");
    huge("huge list behind a text over two lines", "X=\"\nY=\"a, @");
    huge("huge list behind a comment with a quotation mark", ";\"\nX=a,@");
    huge("huge list behind a null character", QByteArray("Y=\0\nX=@", 8));
    huge("huge list in another group", "Y=1\n[Other]\nX=@");
    QByteArray nested("[Settings]\nX=@Variant(");
    for (int i = 0; i < 500000; ++i)
        nested += "\\0\\0\\0\\t\\0\\0\\0\\0\\x1";
    QTest::newRow("lists half a million deep") << nested + ")\n";
}

void SettingsFaultsTest::damagedFileIsSurvived()
{
    QFETCH(QByteArray, content);
    if (!content.isNull()) {
        QVERIFY(write(m_place->desktop().settingsFile(), content));
        QVERIFY(write(wpsFile(), content));
    }
    QVERIFY(m_place->start());
    QVERIFY(m_place->desktop().waitForIcon());
    if (content.contains("Size")) { // a port of this kind reads as 0, which is any free one
        QVERIFY(m_place->toggleService());
        QVERIFY(m_place->exitsCleanly());
        return;
    }
    QVERIFY(m_place->toggleService());
    QVERIFY(TrayProgram::waitForListening(8089));
    useTheService(8089);
    if (QTest::currentTestFailed())
        return;
    QVERIFY(m_place->desktop().settingsLines().contains(QLatin1String("StartWebService=true")));
}

void SettingsFaultsTest::fileOfFiftyMegabytesIsRead()
{
    QByteArray filler("[Filler]\n");
    for (int i = 0; filler.size() < 50 * 1024 * 1024; ++i)
        filler += "key" + QByteArray::number(i) + '=' + QByteArray(1000, 'x') + '\n';
    QVERIFY(m_place->writeServingSettings(QString::fromLatin1(filler).split(QLatin1Char('\n'))));
    QVERIFY(write(wpsFile(), filler));
    QVERIFY(m_place->startServing());
    useTheService(m_place->port());
    if (QTest::currentTestFailed())
        return;
    QVERIFY(read(m_place->desktop().settingsFile()).size() > 50 * 1024 * 1024);
}

void SettingsFaultsTest::fileThatCannotBeWrittenIsSurvived_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("read-only file") << QStringLiteral("/.config/mvsignpadsdk/MVSignPadSDK_WSSvr.conf");
    QTest::newRow("read-only folder") << QStringLiteral("/.config/mvsignpadsdk");
    QTest::newRow("read-only home") << QString();
    QTest::newRow("a directory in the place of the WPS file") << QStringLiteral("directory");
}

void SettingsFaultsTest::fileThatCannotBeWrittenIsSurvived()
{
    QFETCH(QString, what);
    QVERIFY(m_place->writeServingSettings());
    const QByteArray before = read(m_place->desktop().settingsFile());
    const bool isDirectory = what == QLatin1String("directory");
    if (isDirectory) {
        QVERIFY(QDir().mkpath(wpsFile() + QStringLiteral("/inside")));
    } else {
        const QString path = m_place->desktop().home() + what;
        if (!mount({QStringLiteral("--bind"), path, path})
            || !mount({QStringLiteral("-o"), QStringLiteral("remount,bind,ro"), path}))
            QSKIP("this machine permits no mounts");
        m_mounts.removeLast();
    }
    QVERIFY(m_place->startServing());
    useTheService(m_place->port());
    if (QTest::currentTestFailed())
        return;
    if (!isDirectory)
        QCOMPARE(read(m_place->desktop().settingsFile()), before);
}

void SettingsFaultsTest::fullDiskLeavesTheOldFile()
{
    QVERIFY(QDir().mkpath(folder()));
    if (!mount({QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"), QStringLiteral("size=64k"),
                QStringLiteral("tmpfs"), folder()}))
        QSKIP("this machine permits no mounts");
    QVERIFY(m_place->writeServingSettings());
    QVERIFY(m_place->startServing());
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(client.command(wpsSettings(1)), replyText("UpdateWPSSettings", QStringLiteral("0")));
    const QByteArray tray = read(m_place->desktop().settingsFile());
    const QByteArray wps = read(wpsFile());
    QVERIFY(wps.contains("PenWidth_ET=1\n"));

    QVERIFY(!write(folder() + QStringLiteral("/filler"), QByteArray(64 * 1024, 'x')));
    useTheService(m_place->port());
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(read(m_place->desktop().settingsFile()), tray);
    QCOMPARE(read(wpsFile()), wps);
}

void SettingsFaultsTest::fullDiskForPicturesIsReported()
{
#ifdef MVSIGNPAD_VIRTUAL_SDK
    qputenv("MVSIGNPAD_VIRTUAL_SPEED", "0"); // the whole signature at once
    qputenv("MVSIGNPAD_VIRTUAL_WINDOW", "0");
    m_place = std::make_unique<FaultyWorkplace>(QStringLiteral(MVSIGNPAD_VIRTUAL_SDK));
    QVERIFY(m_place->isUsable());
    QVERIFY(m_place->writeServingSettings());
    const QString disk = m_place->desktop().home() + QStringLiteral("/disk");
    QVERIFY(QDir().mkpath(disk));
    if (!mount({QStringLiteral("-t"), QStringLiteral("tmpfs"), QStringLiteral("-o"), QStringLiteral("size=4k"),
                QStringLiteral("tmpfs"), disk}))
        QSKIP("this machine permits no mounts");
    QVERIFY(m_place->startServing());
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    client.command(QStringLiteral("InitialDevice?id=2&width=480&height=320"));
    QVERIFY(client.command(QStringLiteral("GetSize")) != replyText("GetSize", QStringLiteral("0")));
    const QString save = QStringLiteral("SaveDrawingImage?type=1&dpi=300&path=%1/picture.bmp").arg(disk);
    QCOMPARE(client.command(save), replyText("SaveDrawingImage", QStringLiteral("-5")));
    QVERIFY(m_place->exitsCleanly());
#else
    QSKIP("built without the virtual pad");
#endif
}

void SettingsFaultsTest::killedProgramLeavesAWholeFile_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGKILL") << SIGKILL;
}

void SettingsFaultsTest::killedProgramLeavesAWholeFile()
{
    QFETCH(int, signal);
    QVERIFY(m_place->writeServingSettings());
    int number = 0;
    int lastSeen = 0;
    for (int round = 0; round < 12; ++round) {
        QVERIFY(m_place->startServing());
        SignClient client;
        QVERIFY(client.connectTo(m_place->port()));
        // A lock that the killed program left behind does not keep the next one from writing.
        QCOMPARE(client.command(wpsSettings(++number)), replyText("UpdateWPSSettings", QStringLiteral("0")));
        QVERIFY(read(wpsFile()).contains("PenWidth_ET=" + QByteArray::number(number) + '\n'));
        for (int i = 0; i < 2000; ++i)
            client.sendCommand(wpsSettings(++number));
        QTest::qWait(QRandomGenerator::global()->bounded(60));
        QCOMPARE(::kill(static_cast<pid_t>(m_place->program().process().processId()), signal), 0);
        QVERIFY(m_place->program().waitForEnd());

        // Whole, and of one moment: both values of the same request.
        const QByteArray content = read(wpsFile());
        QCOMPARE(content.count('\n'), 13);
        QVERIFY(content.startsWith("[Settings]\n"));
        const int seen = content.mid(content.indexOf("PenWidth_ET=") + 12).split('\n').first().toInt();
        QVERIFY(seen > lastSeen && seen <= number);
        QVERIFY(content.contains("\nName_ET=" + QByteArray::number(seen) + '\n'));
        lastSeen = seen;
        QCOMPARE(m_place->desktop().settingsLines().size(), 4);
    }
}

void SettingsFaultsTest::everyNameSurvivesARestart_data()
{
    QTest::addColumn<QString>("name"); // each looks to a reader of such files like the beginning of a stored object
    QTest::newRow("in a list") << QStringLiteral("a,@Variant(b");
    QTest::newRow("behind a blank") << QStringLiteral(" @Variant(b");
    QTest::newRow("date with a percent sign") << QStringLiteral("a, @DateTime(100%");
    QTest::newRow("behind nothing") << QStringLiteral(",@Variant(%");
    QTest::newRow("with the word Access") << QStringLiteral("a,@Variant(Access)");
}

void SettingsFaultsTest::everyNameSurvivesARestart()
{
    QFETCH(QString, name);
    const auto settings = [](const QString &penWidth, const QString &signer) {
        return replyText("GetWPSSettings", QStringLiteral(R"({\"CurrentPenWidth\":\"%1\",\"EnableAutoFit\":\"0\",)"
                                                          R"(\"EnableDateTime\":\"1\",\"Name\":\"%2\"})")
                                               .arg(penWidth, signer));
    };
    const QString done = replyText("UpdateWPSSettings", QStringLiteral("0"));
    QVERIFY(m_place->writeServingSettings());
    QVERIFY(m_place->startServing());
    {
        SignClient client;
        QVERIFY(client.connectTo(m_place->port()));
        QCOMPARE(client.command(QStringLiteral("UpdateWPSSettings?id=1&dt=1&af=0&pw=9&name=") + name), done);
        QCOMPARE(client.command(wpsSettings(4)), done);
    }
    QVERIFY(m_place->exitsCleanly());

    QVERIFY(m_place->startServing());
    SignClient client;
    QVERIFY(client.connectTo(m_place->port()));
    QCOMPARE(client.command(QStringLiteral("GetWPSSettings?id=1")), settings(QStringLiteral("9"), name));
    QCOMPARE(client.command(QStringLiteral("GetWPSSettings?id=2")), settings(QStringLiteral("4"), QStringLiteral("4")));
    // Nor does such a file stand in the way of what comes later.
    QCOMPARE(client.command(wpsSettings(5)), done);
    QVERIFY(read(wpsFile()).contains("PenWidth_ET=5\n"));
    QVERIFY(m_place->exitsCleanly());
}

/// A file of the whole organisation, which Qt reads beneath the program's own.
void SettingsFaultsTest::organisationsFileDecidesNothing()
{
    QVERIFY(m_place->writeServingSettings());
    QVERIFY(write(m_place->desktop().home() + QStringLiteral("/.config/mvsignpadsdk.conf"),
                  "[Settings]\nX=@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0)\nStartWebService=false\n"));
    QVERIFY(m_place->startServing());
    QVERIFY(m_place->exitsCleanly());
    QVERIFY(m_place->desktop().settingsLines().contains(QLatin1String("StartWebService=true")));
    QVERIFY(m_place->desktop().settingsLines().contains(QLatin1String("UILangID=3")));
    QVERIFY(m_place->desktop().settingsLines().contains(QStringLiteral("WebSocketPort=%1").arg(m_place->port())));
}

QTEST_GUILESS_MAIN(SettingsFaultsTest)

#include "tst_settingsfaults.moc"
