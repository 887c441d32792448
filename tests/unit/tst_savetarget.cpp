// Where the library may write when only some folders are open to it: every way out of them leads nowhere.

#include "device/SaveTarget.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

namespace {

/// As the library does it.
bool Write(const QString &strPath, const QByteArray &content = "ink")
{
    QFile file(strPath);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray ContentOf(const QString &strPath)
{
    QFile file(strPath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

QStringList EntriesOf(const QString &strFolder)
{
    return QDir(strFolder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class tst_SaveTarget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void withoutAListThePathIsHandedOn();
    void writesBelowAFolder_data();
    void writesBelowAFolder();
    void leadsNowhere_data();
    void leadsNowhere();
    void replacesALinkOfTheFilesName();
    void keepsToTheFolderThatItHasLookedAt();
    void leavesNothingOfAFileThatIsNotFinished();
    void failsWhenTheLibraryHasWrittenNothing();
    void failsWhenAFolderHasTheFilesName();
    void replacesAnOlderFile();

private:
    QString Path(const QString &strName) const { return m_root->filePath(strName); }
    QStringList Open() const { return {Path(QStringLiteral("open"))}; }
    QStringList EntriesOfOpen() const { return EntriesOf(Path(QStringLiteral("open"))); }

    std::unique_ptr<QTemporaryDir> m_root;
    QString m_strWorkingDirectory = QDir::currentPath();
};

void tst_SaveTarget::init()
{
    m_root = std::make_unique<QTemporaryDir>();
    QVERIFY(m_root->isValid());
    for (const char *szFolder : {"open/inner", "open-too", "outside"})
        QVERIFY(QDir(m_root->path()).mkpath(QLatin1String(szFolder)));
    QVERIFY(Write(Path(QStringLiteral("outside/victim")), "precious"));
    QVERIFY(QFile::link(Path(QStringLiteral("outside")), Path(QStringLiteral("open/way-out"))));
    QVERIFY(QFile::link(Path(QStringLiteral("open/inner")), Path(QStringLiteral("outside/way-in"))));
    QVERIFY(QDir::setCurrent(m_root->path()));
}

void tst_SaveTarget::cleanup()
{
    QDir::setCurrent(m_strWorkingDirectory);
}

void tst_SaveTarget::withoutAListThePathIsHandedOn()
{
    const QString strPath = Path(QStringLiteral("outside/../outside/new"));
    SaveTarget target(strPath, std::nullopt);
    QCOMPARE(target.PathForLibrary(), strPath);
    QVERIFY(target.Finish());
}

void tst_SaveTarget::writesBelowAFolder_data()
{
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("written");

    QTest::newRow("in it") << "open/a.png"
                           << "open/a.png";
    QTest::newRow("below it") << "open/inner/a.png"
                              << "open/inner/a.png";
    QTest::newRow("out and in again") << "outside/../open/a.png"
                                      << "open/a.png";
    QTest::newRow("through a link that leads in") << "outside/way-in/a.png"
                                                  << "open/inner/a.png";
    QTest::newRow("slashes doubled") << "open//inner//a.png"
                                     << "open/inner/a.png";
    QTest::newRow("hidden") << "open/.a"
                            << "open/.a";
}

void tst_SaveTarget::writesBelowAFolder()
{
    QFETCH(QString, asked);
    QFETCH(QString, written);
    for (const QString &strPath : {Path(asked), asked}) {
        {
            SaveTarget target(strPath, Open());
            QVERIFY(Write(target.PathForLibrary()));
            QVERIFY(target.Finish());
        }
        QCOMPARE(ContentOf(Path(written)), QByteArray("ink"));
        QVERIFY(QFile::remove(Path(written)));
        QCOMPARE(EntriesOfOpen(), QStringList({QStringLiteral("inner"), QStringLiteral("way-out")}));
        QCOMPARE(EntriesOf(Path(QStringLiteral("open/inner"))), QStringList());
    }
}

void tst_SaveTarget::leadsNowhere_data()
{
    QTest::addColumn<QString>("asked");

    QTest::newRow("outside") << "outside/victim";
    QTest::newRow("out by ..") << "open/../outside/victim";
    QTest::newRow("out by .. of a link") << "open/way-out/../outside/victim";
    QTest::newRow("out by a link") << "open/way-out/victim";
    QTest::newRow("a folder whose name begins alike") << "open-too/a.png";
    QTest::newRow("the folder's own parent") << "a.png";
    QTest::newRow("no such folder") << "open/nothing/a.png";
    QTest::newRow("a file for a folder") << "outside/victim/a.png";
    QTest::newRow("no name") << "open/";
    QTest::newRow(".") << "open/.";
    QTest::newRow("..") << "open/..";
    QTest::newRow("empty") << "";
    QTest::newRow("a NUL in it") << QStringLiteral("open/a") + QChar() + QStringLiteral("b");
    QTest::newRow("too long a name") << QStringLiteral("open/") + QString(300, QLatin1Char('a'));
}

void tst_SaveTarget::leadsNowhere()
{
    QFETCH(QString, asked);
    {
        SaveTarget target(asked, Open());
        QVERIFY(!Write(target.PathForLibrary()));
        QVERIFY(!target.Finish());
    }
    SaveTarget closed(QStringLiteral("open/a.png"), QStringList());
    QVERIFY(!Write(closed.PathForLibrary()));
    QCOMPARE(EntriesOfOpen(), QStringList({QStringLiteral("inner"), QStringLiteral("way-out")}));
    QCOMPARE(EntriesOf(Path(QStringLiteral("outside"))),
             QStringList({QStringLiteral("victim"), QStringLiteral("way-in")}));
    QCOMPARE(ContentOf(Path(QStringLiteral("outside/victim"))), QByteArray("precious"));
}

void tst_SaveTarget::replacesALinkOfTheFilesName()
{
    QVERIFY(QFile::link(Path(QStringLiteral("outside/victim")), Path(QStringLiteral("open/a.png"))));
    SaveTarget target(Path(QStringLiteral("open/a.png")), Open());
    QVERIFY(Write(target.PathForLibrary()));
    QVERIFY(target.Finish());
    QCOMPARE(ContentOf(Path(QStringLiteral("outside/victim"))), QByteArray("precious"));
    QVERIFY(!QFileInfo(Path(QStringLiteral("open/a.png"))).isSymLink());
    QCOMPARE(ContentOf(Path(QStringLiteral("open/a.png"))), QByteArray("ink"));
}

void tst_SaveTarget::keepsToTheFolderThatItHasLookedAt()
{
    SaveTarget target(Path(QStringLiteral("open/inner/victim")), Open());
    QVERIFY(QFile::rename(Path(QStringLiteral("open/inner")), Path(QStringLiteral("open/moved"))));
    QVERIFY(QFile::link(Path(QStringLiteral("outside")), Path(QStringLiteral("open/inner"))));
    QVERIFY(Write(target.PathForLibrary()));
    QVERIFY(QFile::link(Path(QStringLiteral("outside/victim")), Path(QStringLiteral("open/moved/victim"))));
    QVERIFY(target.Finish());
    QCOMPARE(ContentOf(Path(QStringLiteral("outside/victim"))), QByteArray("precious"));
    QCOMPARE(ContentOf(Path(QStringLiteral("open/moved/victim"))), QByteArray("ink"));
}

void tst_SaveTarget::leavesNothingOfAFileThatIsNotFinished()
{
    {
        SaveTarget target(Path(QStringLiteral("open/inner/a.png")), Open());
        QVERIFY(Write(target.PathForLibrary()));
        QVERIFY(!EntriesOf(Path(QStringLiteral("open/inner"))).isEmpty());
    }
    QCOMPARE(EntriesOf(Path(QStringLiteral("open/inner"))), QStringList());
}

void tst_SaveTarget::failsWhenTheLibraryHasWrittenNothing()
{
    SaveTarget target(Path(QStringLiteral("open/a.png")), Open());
    QVERIFY(!target.Finish());
}

void tst_SaveTarget::failsWhenAFolderHasTheFilesName()
{
    SaveTarget target(Path(QStringLiteral("open/inner")), Open());
    QVERIFY(Write(target.PathForLibrary()));
    QVERIFY(!target.Finish());
}

void tst_SaveTarget::replacesAnOlderFile()
{
    QVERIFY(Write(Path(QStringLiteral("open/a.png")), "an older and longer one"));
    SaveTarget target(Path(QStringLiteral("open/a.png")), Open());
    QVERIFY(Write(target.PathForLibrary()));
    QVERIFY(target.Finish());
    QCOMPARE(ContentOf(Path(QStringLiteral("open/a.png"))), QByteArray("ink"));
}

QTEST_GUILESS_MAIN(tst_SaveTarget)
#include "tst_savetarget.moc"
