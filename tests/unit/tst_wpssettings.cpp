// The signature settings of the three WPS applications: defaults, file, reading and replacing them by requests.
#include "service/WpsSettings.h"
#include "tests/unit/support/PrivateHome.h"
#include "tests/unit/support/Replies.h"
#include "tests/unit/support/RunningService.h"
#include "tests/unit/support/SignClient.h"
#include "tests/unit/support/WarningTrap.h"

#include <QDir>
#include <QFile>
#include <QTest>

namespace {

QString fileName()
{
    return QStringLiteral("MVeSign_WPS");
}

const char updated[] = R"({"API":"UpdateWPSSettings","Result":"0"})";
const char invalid[] = R"({"API":"Invalid API request","Result":"-1"})";

} // namespace

class WpsSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void freshAccount();
    void startWritesNothing();
    void updateIsReadBack_data();
    void updateIsReadBack();
    void updateWritesAllTwelveKeys();
    void updatesAddUp();
    void rejectedUpdateChangesNothing_data();
    void rejectedUpdateChangesNothing();
    void fileIsLoaded_data();
    void fileIsLoaded();
    void otherGroupsDoNotCount();
    void namesSurviveARestart_data();
    void namesSurviveARestart();
    void anyNameSurvives();
    void clientsSeeEachOthersChanges();
    void fileIsReadOnceAndLeftAlone();
    void saveThatFailsIsNotReported();
    void traySettingsAreAnotherFile();

private:
    bool start();
    bool restart();
    QString ask(const QString &command) { return m_client->command(command); }

    PrivateHome m_home; ///< one for all: the place of the settings is looked up once per process
    std::unique_ptr<WarningTrap> m_warnings;
    std::unique_ptr<RunningService> m_service;
    std::unique_ptr<SignClient> m_client;
};

void WpsSettingsTest::init()
{
    m_home.removeConfig();
    m_warnings.reset(new WarningTrap);
}

void WpsSettingsTest::cleanup()
{
    m_service.reset();
    m_client.reset();
    QCOMPARE(m_warnings->taken(), QStringList());
    m_warnings.reset();
}

bool WpsSettingsTest::start()
{
    m_service.reset(new RunningService);
    m_client.reset(new SignClient);
    return m_service->waitUntilListening() && m_client->connectTo(m_service->port());
}

bool WpsSettingsTest::restart()
{
    m_service.reset();
    return start();
}

void WpsSettingsTest::freshAccount()
{
    QVERIFY(start());
    for (const char *id : {"1", "2", "3", "0", "-1", "7", "x", ""})
        QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=") + QLatin1String(id)),
                 settingsReply("3", "0", "0", QString()));
}

void WpsSettingsTest::startWritesNothing()
{
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("3", "0", "0", QString()));
    m_service.reset();
    QVERIFY(!QFile::exists(m_home.configFile(fileName())));
}

void WpsSettingsTest::updateIsReadBack_data()
{
    QTest::addColumn<QString>("update");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("reply");
    const auto row = [](const char *name, const char *update, const char *id, const QString &reply) {
        QTest::newRow(name) << QString::fromUtf8(update) << QString::fromLatin1(id) << reply;
    };
    row("writer", "id=1&dt=1&af=0&pw=5&name=Signer", "1", settingsReply("5", "0", "1", QStringLiteral("Signer")));
    row("spreadsheet", "id=2&dt=0&af=1&pw=1&name=Signer", "2", settingsReply("1", "1", "0", QStringLiteral("Signer")));
    row("presentation", "id=3&dt=1&af=0&pw=5&name=Signer2", "3",
        settingsReply("5", "0", "1", QStringLiteral("Signer2")));
    row("unknown id is the writer", "id=7&dt=1&af=1&pw=8&name=A", "1",
        settingsReply("8", "1", "1", QStringLiteral("A")));
    row("negative id is the writer", "id=-2&dt=1&af=1&pw=8&name=A", "1",
        settingsReply("8", "1", "1", QStringLiteral("A")));
    row("no id is the writer", "x=2&dt=1&af=1&pw=8&name=A", "1", settingsReply("8", "1", "1", QStringLiteral("A")));
    row("flag that is no number", "id=2&dt=yes&af=1&pw=4&name=A", "2",
        settingsReply("4", "1", "0", QStringLiteral("A")));
    row("flag true is no number", "id=2&dt=true&af=true&pw=4&name=A", "2",
        settingsReply("4", "0", "0", QStringLiteral("A")));
    row("any number sets a flag", "id=2&dt=-1&af=99&pw=4&name=A", "2",
        settingsReply("4", "1", "1", QStringLiteral("A")));
    row("width zero", "id=2&dt=0&af=0&pw=0&name=A", "2", settingsReply("0", "0", "0", QStringLiteral("A")));
    row("width negative", "id=2&dt=0&af=0&pw=-5&name=A", "2", settingsReply("-5", "0", "0", QStringLiteral("A")));
    row("width large", "id=2&dt=0&af=0&pw=1000&name=A", "2", settingsReply("1000", "0", "0", QStringLiteral("A")));
    row("width no number", "id=2&dt=0&af=0&pw=wide&name=A", "2", settingsReply("0", "0", "0", QStringLiteral("A")));
    row("width out of range", "id=2&dt=0&af=0&pw=9999999999&name=A", "2",
        settingsReply("0", "0", "0", QStringLiteral("A")));
    row("misspelt keys", "id=2&DT=1&AF=1&PW=4&Name=A", "2", settingsReply("0", "0", "0", QString()));
    row("other order", "name=A&pw=6&af=1&dt=1&id=3", "3", settingsReply("6", "1", "1", QStringLiteral("A")));
    row("empty name", "id=2&dt=1&af=1&pw=4&name=", "2", settingsReply("4", "1", "1", QString()));
    row("name without equals sign", "id=2&dt=1&af=1&pw=4&name", "2", settingsReply("4", "1", "1", QString()));
    row("name is raw", "id=2&dt=1&af=1&pw=4&name=A%20+B", "2", settingsReply("4", "1", "1", QStringLiteral("A%20+B")));
    row("name keeps white space", "id=2&dt=1&af=1&pw=4&name= A B ", "2",
        settingsReply("4", "1", "1", QStringLiteral(" A B ")));
    row("name up to its equals sign", "id=2&dt=1&af=1&pw=4&name=A=B", "2",
        settingsReply("4", "1", "1", QStringLiteral("A")));
    row("Chinese name", "id=2&dt=1&af=1&pw=4&name=王小明", "2", settingsReply("4", "1", "1", QStringLiteral("王小明")));
    row("quotation mark and backslash", R"(id=2&dt=1&af=1&pw=4&name=A"B\C)", "2",
        settingsReply("4", "1", "1", QStringLiteral(R"(A\\\"B\\\\C)")));
}

void WpsSettingsTest::updateIsReadBack()
{
    QFETCH(QString, update);
    QFETCH(QString, id);
    QFETCH(QString, reply);
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?") + update), QString::fromLatin1(updated));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=") + id), reply);
    QVERIFY(restart());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=") + id), reply);
}

void WpsSettingsTest::updateWritesAllTwelveKeys()
{
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=3&dt=1&af=0&pw=5&name=Signer2")), QString::fromLatin1(updated));
    QStringList lines;
    for (const char *line :
         {"EnableAutoFit_ET=false", "EnableAutoFit_WPP=false", "EnableAutoFit_WPS=false", "EnableDateTime_ET=false",
          "EnableDateTime_WPP=true", "EnableDateTime_WPS=false", "Name_ET=", "Name_WPP=Signer2",
          "Name_WPS=", "PenWidth_ET=3", "PenWidth_WPP=5", "PenWidth_WPS=3", "[Settings]"})
        lines.append(QLatin1String(line));
    QCOMPARE(m_home.configLines(fileName()), lines);
}

void WpsSettingsTest::updatesAddUp()
{
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=1&dt=1&af=0&pw=1&name=One")), QString::fromLatin1(updated));
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=2&dt=0&af=1&pw=2&name=Two")), QString::fromLatin1(updated));
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=3&dt=1&af=1&pw=3&name=Three")), QString::fromLatin1(updated));
    QVERIFY(restart());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("1", "0", "1", QStringLiteral("One")));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=2")), settingsReply("2", "1", "0", QStringLiteral("Two")));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=3")), settingsReply("3", "1", "1", QStringLiteral("Three")));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=7")), settingsReply("1", "0", "1", QStringLiteral("One")));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=x")), settingsReply("1", "0", "1", QStringLiteral("One")));
}

void WpsSettingsTest::rejectedUpdateChangesNothing_data()
{
    QTest::addColumn<QString>("request");
    for (const char *request :
         {"UpdateWPSSettings", "UpdateWPSSettings?", "UpdateWPSSettings?id=2&dt=1&af=1&pw=4",
          "UpdateWPSSettings?id=2&dt=1&af=1&pw=4&name=A&x=1", "UpdateWPSSettings?id=2&dt=1&af=1&pw=4&pw=5",
          "UpdateWPSSettings?id=2&dt=1&af=1&pw=4&name=A&", "GetWPSSettings", "GetWPSSettings?id=2&dt=1",
          "updateWPSSettings?id=2&dt=1&af=1&pw=4&name=A"})
        QTest::newRow(request) << QString::fromLatin1(request);
}

void WpsSettingsTest::rejectedUpdateChangesNothing()
{
    QFETCH(QString, request);
    QVERIFY(start());
    QCOMPARE(ask(request), QString::fromLatin1(invalid));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=2")), settingsReply("3", "0", "0", QString()));
    QVERIFY(!QFile::exists(m_home.configFile(fileName())));
}

void WpsSettingsTest::fileIsLoaded_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("writer");
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("slides");
    const QString plain = settingsReply("3", "0", "0", QString());
    QTest::newRow("no keys") << QByteArray("[Settings]\n") << plain << plain << plain;
    QTest::newRow("empty file") << QByteArray() << plain << plain << plain;
    QTest::newRow("rubbish") << QByteArray("\x7f"
                                           "ELF\x02\x01\x01\0\0\0]]][[[\n=\n",
                                           20)
                             << plain << plain << plain;
    QTest::newRow("some keys") << QByteArray("[Settings]\nPenWidth_ET=12\nName_WPP=Signer\nEnableAutoFit_WPS=true\n")
                               << settingsReply("3", "1", "0", QString()) << settingsReply("12", "0", "0", QString())
                               << settingsReply("3", "0", "0", QStringLiteral("Signer"));
    QTest::newRow("no range check") << QByteArray("[Settings]\nPenWidth_WPS=0\nPenWidth_ET=1000\nPenWidth_WPP=-4\n")
                                    << settingsReply("0", "0", "0", QString())
                                    << settingsReply("1000", "0", "0", QString())
                                    << settingsReply("-4", "0", "0", QString());
    QTest::newRow("width no number") << QByteArray("[Settings]\nPenWidth_WPS=wide\nPenWidth_ET=\nPenWidth_WPP=1.5\n")
                                     << settingsReply("0", "0", "0", QString())
                                     << settingsReply("0", "0", "0", QString())
                                     << settingsReply("0", "0", "0", QString());
    QTest::newRow("flags as text") << QByteArray("[Settings]\nEnableDateTime_WPS=1\nEnableDateTime_ET=0\n"
                                                 "EnableDateTime_WPP=yes\nEnableAutoFit_WPS=FALSE\nEnableAutoFit_ET=\n")
                                   << settingsReply("3", "0", "1", QString()) << settingsReply("3", "0", "0", QString())
                                   << settingsReply("3", "0", "1", QString());
}

void WpsSettingsTest::fileIsLoaded()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, writer);
    QFETCH(QString, sheet);
    QFETCH(QString, slides);
    m_home.writeConfig(fileName(), content);
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), writer);
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=2")), sheet);
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=3")), slides);
}

void WpsSettingsTest::otherGroupsDoNotCount()
{
    m_home.writeConfig(fileName(), "PenWidth_WPS=5\n[Other]\nPenWidth_WPS=6\n[settings]\nPenWidth_WPS=7\n");
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("3", "0", "0", QString()));
}

void WpsSettingsTest::namesSurviveARestart_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("inReply");
    QTest::newRow("list separator") << QStringLiteral("Wang, Xiaoming") << QStringLiteral("Wang, Xiaoming");
    QTest::newRow("settings syntax") << QStringLiteral("@Invalid()") << QStringLiteral("@Invalid()");
    for (const char *name : {"@Variant(x)", "@@Variant(x)", "a@Variant(x)", "@DateTime(x)"})
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(name);
    QTest::newRow("semicolon and section") << QStringLiteral(";[Settings]") << QStringLiteral(";[Settings]");
    QTest::newRow("percent") << QStringLiteral("%U738B") << QStringLiteral("%U738B");
    QTest::newRow("line feed") << QStringLiteral("A\nB") << QStringLiteral(R"(A\\nB)");
    QTest::newRow("beyond the basic plane") << QStringLiteral("\U00020bb7野") << QStringLiteral("\U00020bb7野");
    QTest::newRow("long") << QString(5000, QLatin1Char('n')) << QString(5000, QLatin1Char('n'));
    // Names that look, somewhere or to somebody, like the values that are not decoded.
    for (const char *name : {"a,@Variant(b", " @Variant(b", "a, @DateTime(100%", ",@Variant(%", "a,@Variant(Access)",
                             "@", "@@", "@,@Variant(x)", "a@Variant(100%)", ";@Variant(Access"})
        QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(name);
    QTest::newRow("control character") << QStringLiteral("\x01@Variant(b)") << QStringLiteral(R"(\\u0001@Variant(b))");
    QTest::newRow("null character") << QString::fromLatin1("@Variant(\0b)", 12)
                                    << QStringLiteral(R"(@Variant(\\u0000b))");
    QTest::newRow("escaped at sign") << QStringLiteral(R"(\x40Variant(b))") << QStringLiteral(R"(\\\\x40Variant(b))");
    QTest::newRow("quotation marks") << QStringLiteral(R"("a",@Variant(%))")
                                     << QStringLiteral(R"(\\\"a\\\",@Variant(%))");
    QTest::newRow("last digits of an at sign") << QStringLiteral("乀@Variant(x)") << QStringLiteral("乀@Variant(x)");
}

void WpsSettingsTest::namesSurviveARestart()
{
    QFETCH(QString, name);
    QFETCH(QString, inReply);
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=1&dt=1&af=1&pw=9&name=A")), QString::fromLatin1(updated));
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=2&dt=0&af=0&pw=5&name=") + name), QString::fromLatin1(updated));
    QVERIFY(restart());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=2")), settingsReply("5", "0", "0", inReply));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("9", "1", "1", QStringLiteral("A")));
    // Nor does it keep anything from being saved from now on.
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=3&dt=1&af=0&pw=7&name=C")), QString::fromLatin1(updated));
    QVERIFY(restart());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=2")), settingsReply("5", "0", "0", inReply));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=3")), settingsReply("7", "0", "1", QStringLiteral("C")));
}

/// Texts of up to three of the pieces that mean something in a settings file.
void WpsSettingsTest::anyNameSurvives()
{
    const QStringList pieces{QString(),
                             QStringLiteral("@"),
                             QStringLiteral("@Variant("),
                             QStringLiteral(","),
                             QStringLiteral(" "),
                             QStringLiteral("\""),
                             QStringLiteral("\\"),
                             QStringLiteral(")"),
                             QStringLiteral(";"),
                             QStringLiteral("\n"),
                             QStringLiteral("="),
                             QStringLiteral("40"),
                             QStringLiteral("x"),
                             QChar(1),
                             QStringLiteral("乀"),
                             QChar(QChar::Null)};
    QStringList names{QString()};
    for (int length = 0; length < 3; ++length) {
        QStringList longer;
        for (const QString &name : qAsConst(names))
            for (const QString &piece : pieces)
                longer += name + piece;
        longer.removeDuplicates();
        names = longer;
    }
    while (names.size() % 3 != 0)
        names += QStringLiteral("A");
    for (int i = 0; i < names.size(); i += 3 * 11) { // every eleventh of them: each piece comes in each place
        _STRUCT_WPS_SETTINGS_INIDATA saved;
        saved.WPS.strName = names.at(i);
        saved.ET.strName = names.at(i + 1);
        saved.WPP.strName = names.at(i + 2);
        saved.UpdateWPSSettingsToConfigureFile();
        _STRUCT_WPS_SETTINGS_INIDATA loaded;
        loaded.LoadWPSSettingsFromConfigureFile();
        QCOMPARE(loaded.WPS.strName, saved.WPS.strName);
        QCOMPARE(loaded.ET.strName, saved.ET.strName);
        QCOMPARE(loaded.WPP.strName, saved.WPP.strName);
    }
}

void WpsSettingsTest::clientsSeeEachOthersChanges()
{
    QVERIFY(start());
    SignClient other;
    QVERIFY(other.connectTo(m_service->port()));
    QCOMPARE(other.command(QStringLiteral("UpdateWPSSettings?id=1&dt=1&af=1&pw=9&name=A")),
             QString::fromLatin1(updated));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("9", "1", "1", QStringLiteral("A")));
}

void WpsSettingsTest::fileIsReadOnceAndLeftAlone()
{
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=1&dt=1&af=1&pw=9&name=A")), QString::fromLatin1(updated));
    m_home.writeConfig(fileName(), "[Settings]\nPenWidth_WPS=77\n");
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("9", "1", "1", QStringLiteral("A")));
    m_service.reset();
    QCOMPARE(m_home.configLines(fileName()),
             (QStringList{QStringLiteral("PenWidth_WPS=77"), QStringLiteral("[Settings]")}));
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("77", "0", "0", QString()));
}

void WpsSettingsTest::saveThatFailsIsNotReported()
{
    // A file where the folder should be keeps everybody from writing there, root too.
    QVERIFY(QDir().mkpath(m_home.path(QStringLiteral(".config"))));
    QFile obstacle(m_home.path(QStringLiteral(".config/mvsignpadsdk")));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    obstacle.close();
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=1&dt=1&af=1&pw=9&name=A")), QString::fromLatin1(updated));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("9", "1", "1", QStringLiteral("A")));
    QCOMPARE(obstacle.size(), 0);
}

void WpsSettingsTest::traySettingsAreAnotherFile()
{
    m_home.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"), "[Settings]\nPenWidth_WPS=77\n");
    QVERIFY(start());
    QCOMPARE(ask(QStringLiteral("UpdateWPSSettings?id=2&dt=0&af=0&pw=3&name=")), QString::fromLatin1(updated));
    QCOMPARE(ask(QStringLiteral("GetWPSSettings?id=1")), settingsReply("3", "0", "0", QString()));
    QCOMPARE(m_home.configLines(QStringLiteral("MVSignPadSDK_WSSvr")),
             (QStringList{QStringLiteral("PenWidth_WPS=77"), QStringLiteral("[Settings]")}));
}

QTEST_GUILESS_MAIN(WpsSettingsTest)

#include "tst_wpssettings.moc"
