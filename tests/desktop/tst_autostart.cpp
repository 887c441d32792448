// Launching at log-in, switched on and off through the real menu, on each of the desktop products.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/StatusNotifierItem.h"
#include "tests/desktop/TrayProgram.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

const int launchAtLogIn = 1; // its place among the menu's three entries, and with the separators:
const int launchAtLogInRow = 2;

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void addProducts()
{
    QTest::addColumn<QString>("product");
    QTest::addColumn<QString>("entry");
    QTest::newRow("uos") << QStringLiteral("uos") << QStringLiteral("com.morvane.mvsignpaddriver.desktop");
    QTest::newRow("kylin") << QStringLiteral("kylin") << QStringLiteral("mvsignpaddriver-kylin.desktop");
    QTest::newRow("neokylin") << QStringLiteral("neokylin") << QStringLiteral("mvsignpaddriver-neokylin.desktop");
    QTest::newRow("nfsdesktop") << QStringLiteral("nfsdesktop") << QStringLiteral("mvsignpaddriver-nfs.desktop");
}

} // namespace

class AutostartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void menuCopiesAndRemovesTheEntry_data() { addProducts(); }
    void menuCopiesAndRemovesTheEntry();
    void existingEntryIsKept_data() { addProducts(); }
    void existingEntryIsKept();
    void entryOnDiskDecides_data() { addProducts(); }
    void entryOnDiskDecides();
    void unknownProductCopiesNothing_data();
    void unknownProductCopiesNothing();
    void missingPackageCopiesNothing();
    void entryThatCannotBeRemovedStays();
    void folderThatCannotBeMade();

private:
    QString autostart(const QString &entry = QString()) const;
    QString applications() const { return m_product.filePath(QStringLiteral("applications")); }
    bool installEntries() const;
    bool startProgram(const QString &product);

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    QTemporaryDir m_product;
};

void AutostartTest::init()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(QDir().mkpath(applications()));
    QVERIFY(installEntries());
}

void AutostartTest::cleanup()
{
    m_program.reset();
    m_desktop.reset();
    QDir(applications()).removeRecursively();
}

QString AutostartTest::autostart(const QString &entry) const
{
    return m_desktop->home() + QStringLiteral("/.config/autostart")
           + (entry.isEmpty() ? QString() : QLatin1Char('/') + entry);
}

/// Four entries that differ from each other, as the packaged ones do only by their names.
bool AutostartTest::installEntries() const
{
    const char *const entries[] = {"com.morvane.mvsignpaddriver.desktop", "mvsignpaddriver-kylin.desktop",
                                   "mvsignpaddriver-neokylin.desktop", "mvsignpaddriver-nfs.desktop"};
    bool written = true;
    for (const char *entry : entries)
        written = written
                  && writeFile(applications() + QLatin1Char('/') + QLatin1String(entry),
                               QByteArray("[Desktop Entry]\nName=") + entry + '\n');
    return written;
}

bool AutostartTest::startProgram(const QString &product)
{
    const QString release = m_product.filePath(QStringLiteral("os-release"));
    if (!writeFile(release, "NAME=\"Desktop\"\nID=" + product.toUtf8() + "\nVERSION_ID=20\n"))
        return false;
    m_program.reset(new TrayProgram(*m_desktop));
    m_program->process().start(QStringLiteral(MVSIGNPAD_AS_PRODUCT),
                               {release, applications(), QStringLiteral(MVSIGNPAD_PROGRAM)});
    return m_desktop->waitForIcon();
}

void AutostartTest::menuCopiesAndRemovesTheEntry()
{
    QFETCH(QString, product);
    QFETCH(QString, entry);
    QVERIFY(m_desktop->startTrayer());
    QVERIFY(startProgram(product));

    QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=true")), patienceMs);
    QCOMPARE(QDir(autostart()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), QStringList(entry));
    QCOMPARE(readFile(autostart(entry)), "[Desktop Entry]\nName=" + entry.toUtf8() + '\n');

    QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=false")), patienceMs);
    QVERIFY(QDir(autostart()).exists());
    QVERIFY(QDir(autostart()).isEmpty());
    QVERIFY(QFile::exists(applications() + QLatin1Char('/') + entry));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void AutostartTest::existingEntryIsKept()
{
    QFETCH(QString, product);
    QFETCH(QString, entry);
    QVERIFY(QDir().mkpath(autostart()));
    QVERIFY(writeFile(autostart(entry), "[Desktop Entry]\nName=the administrator's own\n"));
    QVERIFY(m_desktop->startTrayer());
    QVERIFY(startProgram(product));

    QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=true")), patienceMs);
    QCOMPARE(readFile(autostart(entry)), QByteArray("[Desktop Entry]\nName=the administrator's own\n"));

    QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=false")), patienceMs);
    QVERIFY(!QFile::exists(autostart(entry)));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

/// What the settings say only tells that the user has once chosen; whether the entry is there counts.
void AutostartTest::entryOnDiskDecides()
{
    QFETCH(QString, product);
    QFETCH(QString, entry);
    struct {
        bool isEntryThere;
        QStringList settings;
        int toggleState;
    } const cases[] = {
        {true, {QStringLiteral("AutoLaunch=false")}, 1},
        {false, {QStringLiteral("AutoLaunch=true")}, 0},
        {true, {}, 0},
    };
    QVERIFY(m_desktop->startStatusNotifierHost());
    for (const auto &saved : cases) {
        QVERIFY(QDir().mkpath(autostart()));
        QFile::remove(autostart(entry));
        QVERIFY(!saved.isEntryThere || writeFile(autostart(entry), "[Desktop Entry]\n"));
        QVERIFY(m_desktop->writeSettings(saved.settings));
        QVERIFY(startProgram(product));
        const StatusNotifierItem item(m_desktop->busAddress());
        QTRY_COMPARE_WITH_TIMEOUT(item.menu().size(), 5, patienceMs);
        QCOMPARE(item.menu().at(launchAtLogInRow).toggleState, saved.toggleState);
        QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
        QTRY_VERIFY_WITH_TIMEOUT(m_desktop->iconArea().isEmpty(), patienceMs);
    }
}

void AutostartTest::unknownProductCopiesNothing_data()
{
    QTest::addColumn<QString>("product");
    QTest::newRow("another system") << QStringLiteral("debian");
    QTest::newRow("another case") << QStringLiteral("UOS");
    QTest::newRow("a longer name") << QStringLiteral("kylin2");
    QTest::newRow("quoted empty") << QStringLiteral("\"\"");
}

void AutostartTest::unknownProductCopiesNothing()
{
    QFETCH(QString, product);
    QVERIFY(m_desktop->startStatusNotifierHost());
    QVERIFY(startProgram(product));
    for (const char *line : {"AutoLaunch=true", "AutoLaunch=false", "AutoLaunch=true"}) {
        QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
        QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String(line)), patienceMs);
    }
    QVERIFY(QDir(autostart()).exists());
    QVERIFY(QDir(autostart()).isEmpty());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->iconArea().isEmpty(), patienceMs);

    QVERIFY(startProgram(product));
    const StatusNotifierItem item(m_desktop->busAddress());
    QTRY_COMPARE_WITH_TIMEOUT(item.menu().size(), 5, patienceMs);
    QCOMPARE(item.menu().at(launchAtLogInRow).toggleState, 0);
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

void AutostartTest::missingPackageCopiesNothing()
{
    QVERIFY(QFile::remove(applications() + QStringLiteral("/mvsignpaddriver-kylin.desktop")));
    QVERIFY(m_desktop->startTrayer());
    QVERIFY(startProgram(QStringLiteral("kylin")));
    QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=true")), patienceMs);
    QVERIFY(QDir(autostart()).isEmpty());
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QVERIFY(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=true")));
}

/// A folder in the entry's place stays with what lies in it, which is what the next start then shows.
void AutostartTest::entryThatCannotBeRemovedStays()
{
    const QString entry = autostart(QStringLiteral("mvsignpaddriver-kylin.desktop"));
    QVERIFY(QDir().mkpath(entry));
    QVERIFY(writeFile(entry + QStringLiteral("/notes"), "kept"));
    QVERIFY(m_desktop->writeSettings({QStringLiteral("AutoLaunch=true")}));
    QVERIFY(m_desktop->startStatusNotifierHost());
    QVERIFY(startProgram(QStringLiteral("kylin")));
    QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=false")), patienceMs);
    QCOMPARE(readFile(entry + QStringLiteral("/notes")), QByteArray("kept"));
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QVERIFY(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=false")));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->iconArea().isEmpty(), patienceMs);

    QVERIFY(startProgram(QStringLiteral("kylin")));
    const StatusNotifierItem item(m_desktop->busAddress());
    QTRY_COMPARE_WITH_TIMEOUT(item.menu().size(), 5, patienceMs);
    QCOMPARE(item.menu().at(launchAtLogInRow).toggleState, 1);
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

/// A file in the folder's place stays as it is; the choice is kept in the settings and comes to nothing.
void AutostartTest::folderThatCannotBeMade()
{
    QVERIFY(QDir().mkpath(QFileInfo(autostart()).path()));
    QVERIFY(writeFile(autostart(), "in the way"));
    QVERIFY(m_desktop->startStatusNotifierHost());
    QVERIFY(startProgram(QStringLiteral("kylin")));
    for (const char *line : {"AutoLaunch=true", "AutoLaunch=false", "AutoLaunch=true"}) {
        QVERIFY(m_desktop->chooseMenuEntry(launchAtLogIn));
        QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String(line)), patienceMs);
        QCOMPARE(readFile(autostart()), QByteArray("in the way"));
    }
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->iconArea().isEmpty(), patienceMs);

    QVERIFY(startProgram(QStringLiteral("kylin")));
    const StatusNotifierItem item(m_desktop->busAddress());
    QTRY_COMPARE_WITH_TIMEOUT(item.menu().size(), 5, patienceMs);
    QCOMPARE(item.menu().at(launchAtLogInRow).toggleState, 0);
    QCOMPARE(m_program->exitThroughMenu(*m_desktop), QString());
}

QTEST_GUILESS_MAIN(AutostartTest)

#include "tst_autostart.moc"
