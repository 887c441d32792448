// Which values of the settings group "Access" are understood; whatever is not closes the service.
#include "tests/unit/support/PrivateHome.h"
#include "tray/AccessSettings.h"
#include "tray/TraySettings.h"

#include <QDir>
#include <QSettings>
#include <QTest>

class AccessSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingConfiguredServesAnybody_data();
    void nothingConfiguredServesAnybody();
    void valuesAreTakenOver();
    void machineWideFileCounts();
    void wrongValueClosesTheDoor_data();
    void wrongValueClosesTheDoor();
    void unreadableFileKeepsTheDoorClosed_data();
    void unreadableFileKeepsTheDoorClosed();
    void unreadableFileOfTheMachineKeepsTheDoorClosed();

private:
    /// Qt looks for the home only once in a process.
    static void useSettingsOf(const PrivateHome &home)
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home.path(QStringLiteral(".config")));
        QSettings::setPath(QSettings::NativeFormat, QSettings::SystemScope, home.path(QStringLiteral("etc")));
    }

    static AccessPolicy policyOf(const QByteArray &file)
    {
        const PrivateHome home;
        useSettingsOf(home);
        home.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"), file);
        return LoadAccessPolicy();
    }
};

void AccessSettingsTest::nothingConfiguredServesAnybody_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("settings only") << QByteArray("[Settings]\nStartWebService=true\nWebSocketPort=8089\n");
    QTest::newRow("empty group") << QByteArray("[Access]\n[Settings]\nUILangID=3\n");
    QTest::newRow("the keys in another group") << QByteArray("[Settings]\nListenAddress=nonsense\n");
    QTest::newRow("value that is not decoded") << QByteArray("[Settings]\nUILangID=@Variant(\\0\\0\\0\\x2)\n");
    QTest::newRow("rubbish") << QByteArray("\x7f"
                                           "ELF\0\1\2\n\xff\xfe rubbish\n[[\n",
                                           20);
}

void AccessSettingsTest::nothingConfiguredServesAnybody()
{
    QFETCH(QByteArray, file);
    const AccessPolicy policy = policyOf(file);
    QVERIFY(policy.bServesAnybody);
    QVERIFY(!policy.listenAddress);
    QVERIFY(!policy.LooksAtOrigins());
    QVERIFY(policy.AllowsOrigin(QStringLiteral("https://anybody.example")));
    QVERIFY(policy.AllowsOrigin(QString()));
}

void AccessSettingsTest::valuesAreTakenOver()
{
    const AccessPolicy policy = policyOf("[Access]\nListenAddress=fe80::1%lo\nRequireOrigin=true\n"
                                         "AllowedOrigins=https://a.example, http://[::1]:8080, null, file://\n");
    QVERIFY(policy.bServesAnybody);
    QCOMPARE(policy.listenAddress->toString(), QStringLiteral("fe80::1%lo"));
    QVERIFY(policy.bRequireOrigin);
    QCOMPARE(*policy.allowedOrigins,
             (QStringList{QStringLiteral("https://a.example"), QStringLiteral("http://[::1]:8080"),
                          QStringLiteral("null"), QStringLiteral("file://")}));
    QCOMPARE(*policyOf("[Access]\nAllowedOrigins=https://a.example\n").allowedOrigins,
             QStringList{QStringLiteral("https://a.example")});
    QVERIFY(policyOf("[Access]\nAllowedOrigins=\n").allowedOrigins->isEmpty());
    QVERIFY(!policyOf("[Access]\nRequireOrigin=false\n").bRequireOrigin);
}

void AccessSettingsTest::machineWideFileCounts()
{
    const PrivateHome home;
    useSettingsOf(home);
    QDir(home.path()).mkpath(QStringLiteral("etc/mvsignpadsdk"));
    QFile file(home.path(QStringLiteral("etc/mvsignpadsdk/MVSignPadSDK_WSSvr.conf")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Access]\nListenAddress=127.0.0.1\n");
    file.close();
    QCOMPARE(LoadAccessPolicy().listenAddress->toString(), QStringLiteral("127.0.0.1"));
    home.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"), "[Access]\nListenAddress=::1\n");
    QCOMPARE(LoadAccessPolicy().listenAddress->toString(), QStringLiteral("::1"));
}

void AccessSettingsTest::wrongValueClosesTheDoor_data()
{
    QTest::addColumn<QByteArray>("line");
    for (const char *wrong : {"", "localhost", "0", "127.1", "256.0.0.1", "127.0.0.1, ::1", "*", "127.0.0.1:8089",
                              "127.0.0.1/8", "\" 127.0.0.1\"", "@ByteArray(127.0.0.1)", "@Invalid()"})
        QTest::addRow("address %s", wrong) << QByteArray("ListenAddress=") + wrong;
    for (const char *wrong : {"*", "sign.example.org", "https://sign.example.org/", "https://a b", "https://*/",
                              "https://sign.example.org, *", "https://sign.example.org,", "https://a@b", "https://",
                              "https://a\\nb", "@Size(1 2)", "@ByteArray(https://a)"})
        QTest::addRow("origin %s", wrong) << QByteArray("AllowedOrigins=") + wrong;
    for (const char *wrong : {"", "yes", "TRUE", "1", "true, false", "@Invalid()", "@ByteArray(true)"})
        QTest::addRow("flag %s", wrong) << QByteArray("RequireOrigin=") + wrong;
    for (const char *wrong : {"AllowedOrigin=https://a.example", "listenaddress=127.0.0.1", "x\\ListenAddress=::1",
                              "ListenAddress 127.0.0.1", "ListenAddress"})
        QTest::addRow("line %s", wrong) << QByteArray(wrong);
    QTest::newRow("one right, one wrong") << QByteArray("ListenAddress=127.0.0.1\nRequireOrigin=maybe");
}

void AccessSettingsTest::wrongValueClosesTheDoor()
{
    QFETCH(QByteArray, line);
    QVERIFY(!policyOf("[Settings]\nUILangID=3\n\n[Access]\n" + line + '\n').bServesAnybody);
}

void AccessSettingsTest::unreadableFileKeepsTheDoorClosed_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::newRow("group") << QByteArray("[Access]\nRequireOrigin=true\n");
    QTest::newRow("keys") << QByteArray("[General]\nAccess\\RequireOrigin=true\n");
    QTest::newRow("percent") << QByteArray("[%41ccess]\nRequireOrigin=true\n");
}

void AccessSettingsTest::unreadableFileKeepsTheDoorClosed()
{
    QFETCH(QByteArray, lines);
    const QByteArray content = "[Settings]\nUILangID=@Variant(\\0\\0\\0\\x2\\0\\0\\0\\x1)\n" + lines;
    const PrivateHome home;
    useSettingsOf(home);
    home.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"), content);
    QVERIFY(!LoadAccessPolicy().bServesAnybody);
    TraySettings().Save();
    QFile file(home.configFile(QStringLiteral("MVSignPadSDK_WSSvr")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void AccessSettingsTest::unreadableFileOfTheMachineKeepsTheDoorClosed()
{
    const PrivateHome home;
    useSettingsOf(home);
    QDir(home.path()).mkpath(QStringLiteral("etc"));
    QFile file(home.path(QStringLiteral("etc/mvsignpadsdk.conf")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Access]\nListenAddress=127.0.0.1\nX=@Variant(\\0\\0\\0\\t\\x10\\0\\0\\0)\n");
    file.close();
    home.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"), "[Settings]\nUILangID=3\n");
    QVERIFY(!LoadAccessPolicy().bServesAnybody);
    TraySettings().Save();
    QVERIFY(QFile(file.fileName()).exists());
}

QTEST_GUILESS_MAIN(AccessSettingsTest)

#include "tst_accesssettings.moc"
