// What is understood in the access settings files; whatever is not closes the service.
#include "service/AccessSettings.h"
#include "tests/unit/support/PrivateHome.h"

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
    void reasonIsSaid_data();
    void reasonIsSaid();
    void wrongFileOfTheMachineClosesTheDoor();
    void fileThatCannotBeReadClosesTheDoor();
    void answersOfTheUserAreRead();
    void formerGroupClosesTheDoor_data();
    void formerGroupClosesTheDoor();
    void organizationHasNoSay();

private:
    /// Qt looks for the home only once in a process.
    static void useSettingsOf(const PrivateHome &home)
    {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, home.path(QStringLiteral(".config")));
        qputenv("XDG_CONFIG_DIRS", QFile::encodeName(home.path(QStringLiteral("etc"))));
    }

    static AccessPolicy policyOf(const QByteArray &content)
    {
        const PrivateHome home;
        useSettingsOf(home);
        home.writeConfig(QStringLiteral("MVSignPadSDK_Access"), content);
        return LoadAccessPolicy();
    }

    static void writeForTheMachine(const PrivateHome &home, const QString &name, const QByteArray &content)
    {
        const QString path = home.path(QStringLiteral("etc/") + name);
        QFile file(path);
        if (!QDir().mkpath(QFileInfo(path).path()) || !file.open(QIODevice::WriteOnly)
            || file.write(content) != content.size())
            qFatal("cannot write a settings file of the test");
    }
};

void AccessSettingsTest::nothingConfiguredServesAnybody_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("empty group") << QByteArray("[Access]\n");
    QTest::newRow("comments") << QByteArray("; ask admin@example.org, or \"root\n\n  ;[Access\n");
}

void AccessSettingsTest::nothingConfiguredServesAnybody()
{
    QFETCH(QByteArray, file);
    const AccessPolicy policy = policyOf(file);
    QVERIFY(policy.bServesAnybody);
    QVERIFY(!policy.listenAddress);
    QVERIFY(!policy.allowedOrigins);
    QVERIFY(!policy.unknownOrigins);
    QCOMPARE(policy.ForUnknownOrigins(), UnknownOrigins::Allow);
    QVERIFY(!policy.bRequireOrigin);
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
    QVERIFY(!policyOf("[Access]\nRequireOrigin=false\n").saveFolders);
    QCOMPARE(*policyOf("[Access]\nSaveFolders=/tmp, /home/u/a b\n").saveFolders,
             (QStringList{QStringLiteral("/tmp"), QStringLiteral("/home/u/a b")}));
    QVERIFY(policyOf("[Access]\nSaveFolders=\n").saveFolders->isEmpty());
    QVERIFY(policyOf("[Access]\nUnknownOrigins=allow\n").unknownOrigins == UnknownOrigins::Allow);
    QVERIFY(policyOf("[Access]\nUnknownOrigins=block\n").unknownOrigins == UnknownOrigins::Block);
    QVERIFY(policyOf("[Access]\nUnknownOrigins=ask\n").unknownOrigins == UnknownOrigins::Ask);
    QVERIFY(policyOf("[Access]\nAllowedOrigins=\n").ForUnknownOrigins() == UnknownOrigins::Block);
}

void AccessSettingsTest::machineWideFileCounts()
{
    const PrivateHome home;
    useSettingsOf(home);
    writeForTheMachine(home, QStringLiteral("mvsignpadsdk/MVSignPadSDK_Access.conf"),
                       "[Access]\nListenAddress=127.0.0.1\nRequireOrigin=true\n");
    QCOMPARE(LoadAccessPolicy().listenAddress->toString(), QStringLiteral("127.0.0.1"));
    home.writeConfig(QStringLiteral("MVSignPadSDK_Access"), "[Access]\nListenAddress=::1\n");
    QCOMPARE(LoadAccessPolicy().listenAddress->toString(), QStringLiteral("::1"));
    QVERIFY(LoadAccessPolicy().bRequireOrigin);
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
    for (const char *wrong : {"tmp", "~/signatures", "/tmp, ../x", "/tmp,", "/a\\nb", "@ByteArray(/tmp)"})
        QTest::addRow("folders %s", wrong) << QByteArray("SaveFolders=") + wrong;
    for (const char *wrong : {"", "yes", "TRUE", "1", "true, false", "@Invalid()", "@ByteArray(true)"})
        QTest::addRow("flag %s", wrong) << QByteArray("RequireOrigin=") + wrong;
    for (const char *wrong : {"", "Ask", "true", "ask, block", "always", "@Invalid()", "@ByteArray(ask)"})
        QTest::addRow("unknown origins %s", wrong) << QByteArray("UnknownOrigins=") + wrong;
    for (const char *wrong : {"AllowedOrigin=https://a.example", "listenaddress=127.0.0.1", "x\\ListenAddress=::1",
                              "=::1", "\\=::1", "ListenAddress 127.0.0.1", "ListenAddress", "ListenAddress\\=::1",
                              "\"ListenAddress=::1\"", "[Acc\"ess]\nListenAddress=::1", "[Access\nListenAddress=::1"})
        QTest::addRow("line %s", wrong) << QByteArray(wrong);
    QTest::newRow("one right, one wrong") << QByteArray("ListenAddress=127.0.0.1\nRequireOrigin=maybe");
    QTest::newRow("another group") << QByteArray("[access]\nListenAddress=127.0.0.1");
    QTest::newRow("known key in another group") << QByteArray("[Settings]\nRequireOrigin=true");
    QTest::newRow("value that is not decoded") << QByteArray("RequireOrigin=@Variant(\\0\\0\\0\\x2)");
    QTest::newRow("value that is not decoded elsewhere") << QByteArray("[X]\nY=a, @DateTime(\\0\\0\\0\\x10)");
    QTest::newRow("rubbish") << QByteArray("\x7f"
                                           "ELF\0\1\2\n\xff\xfe rubbish\n[[\n",
                                           20);
}

void AccessSettingsTest::wrongValueClosesTheDoor()
{
    QFETCH(QByteArray, line);
    QVERIFY(!policyOf("; who is served\n\n[Access]\n" + line + '\n').bServesAnybody);
}

void AccessSettingsTest::reasonIsSaid_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *lines, const char *reason) {
        QTest::newRow(lines) << QByteArray(lines) << QString::fromLatin1(reason);
    };
    row("ListenAddress=x", "ListenAddress is not one IP address in full");
    row("AllowedOrigins=x", "AllowedOrigins is not a list of origins such as https://sign.example.org");
    row("RequireOrigin=x", "RequireOrigin is not true or false");
    row("UnknownOrigins=x", "UnknownOrigins is not allow, block or ask");
    row("SaveFolders=x", "SaveFolders is not a list of folders such as /tmp");
    row("AllowedOrigin=https://a.example", "a key is not known, or not in the group Access");
    row("RequireOrigin", "a line is no setting");
    row("RequireOrigin=@Variant(\\0\\0\\0\\x2)", "it cannot be read");
}

void AccessSettingsTest::reasonIsSaid()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, reason);
    const PrivateHome home;
    useSettingsOf(home);
    home.writeConfig(QStringLiteral("MVSignPadSDK_Access"), "[Access]\n" + lines + '\n');
    const QString file = home.configFile(QStringLiteral("MVSignPadSDK_Access"));
    QCOMPARE(LoadAccessPolicy().strClosedReason, file + QStringLiteral(": ") + reason);
}

void AccessSettingsTest::wrongFileOfTheMachineClosesTheDoor()
{
    const PrivateHome home;
    useSettingsOf(home);
    writeForTheMachine(home, QStringLiteral("mvsignpadsdk/MVSignPadSDK_Access.conf"), "[Access]\nListenAddress=lo\n");
    home.writeConfig(QStringLiteral("MVSignPadSDK_Access"), "[Access]\nListenAddress=127.0.0.1\n");
    QVERIFY(!LoadAccessPolicy().bServesAnybody);
}

void AccessSettingsTest::fileThatCannotBeReadClosesTheDoor()
{
    const PrivateHome home;
    useSettingsOf(home);
    // A folder in its place cannot be read by anybody, root neither.
    QVERIFY(QDir().mkpath(home.configFile(QStringLiteral("MVSignPadSDK_Access"))));
    QVERIFY(!LoadAccessPolicy().bServesAnybody);
}

void AccessSettingsTest::answersOfTheUserAreRead()
{
    const PrivateHome home;
    useSettingsOf(home);
    home.writeConfig(QStringLiteral("MVSignPadSDK_Origins"), "[Origins]\nBlocked=https://a.example, null\n");
    QVERIFY(LoadAccessPolicy().bServesAnybody);
    QCOMPARE(LoadAccessPolicy().originAnswers.Blocked(),
             QStringList({QStringLiteral("https://a.example"), QStringLiteral("null")}));
    home.writeConfig(QStringLiteral("MVSignPadSDK_Origins"), "[Origins]\nBlockd=https://a.example\n");
    QVERIFY(!LoadAccessPolicy().bServesAnybody);
    QCOMPARE(LoadAccessPolicy().strClosedReason,
             home.configFile(QStringLiteral("MVSignPadSDK_Origins"))
                 + QStringLiteral(": it cannot be read, or something in it is not understood"));
}

void AccessSettingsTest::formerGroupClosesTheDoor_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isClosed");
    QTest::newRow("group") << QByteArray("[Settings]\nUILangID=3\n\n[Access]\nRequireOrigin=true\n") << true;
    QTest::newRow("keys") << QByteArray("[General]\nAccess\\RequireOrigin=true\n") << true;
    QTest::newRow("key without value") << QByteArray("[Access]\nRequireOrigin\n") << true;
    QTest::newRow("not decoded") << QByteArray("[Settings]\nX=@Variant(\\0)\n[Access]\nRequireOrigin=true\n") << true;
    QTest::newRow("no such group") << QByteArray("[Settings]\nUILangID=3\nRequireOrigin=true\n") << false;
    QTest::newRow("no such group, not decoded") << QByteArray("[Settings]\nX=@Variant(\\0)\n") << false;
    QTest::newRow("no file") << QByteArray() << false;
}

void AccessSettingsTest::formerGroupClosesTheDoor()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isClosed);
    const PrivateHome usersHome;
    useSettingsOf(usersHome);
    usersHome.writeConfig(QStringLiteral("MVSignPadSDK_WSSvr"), content);
    const QString reason = usersHome.configFile(QStringLiteral("MVSignPadSDK_WSSvr"))
                           + QStringLiteral(": the group Access belongs into MVSignPadSDK_Access.conf");
    QCOMPARE(LoadAccessPolicy().strClosedReason, isClosed ? reason : QString());
    QCOMPARE(!LoadAccessPolicy().bServesAnybody, isClosed);

    const PrivateHome home;
    useSettingsOf(home);
    writeForTheMachine(home, QStringLiteral("mvsignpadsdk/MVSignPadSDK_WSSvr.conf"), content);
    QCOMPARE(!LoadAccessPolicy().bServesAnybody, isClosed);
}

void AccessSettingsTest::organizationHasNoSay()
{
    const PrivateHome home;
    useSettingsOf(home);
    writeForTheMachine(home, QStringLiteral("mvsignpadsdk.conf"), "[Access]\nListenAddress=127.0.0.1\n");
    home.writeConfig(QStringLiteral("../mvsignpadsdk"), "[Access]\nRequireOrigin=true\nX=@DateTime(\\0)\n");
    const AccessPolicy policy = LoadAccessPolicy();
    QVERIFY(policy.bServesAnybody);
    QVERIFY(!policy.listenAddress);
    QVERIFY(!policy.bRequireOrigin);
}

QTEST_GUILESS_MAIN(AccessSettingsTest)

#include "tst_accesssettings.moc"
