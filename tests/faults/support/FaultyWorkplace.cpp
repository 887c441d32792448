#include "tests/faults/support/FaultyWorkplace.h"

#include "tests/unit/support/FreePort.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <algorithm>

FaultyWorkplace::FaultyWorkplace(const QString &library) : m_port(freePort())
{
    const QString program = QStringLiteral(MVSIGNPAD_PROGRAM);
    const QString copy = file(QFileInfo(program).fileName());
    m_program = std::make_unique<TrayProgram>(m_desktop, copy);
    m_usable = m_desktop.isUsable() && m_desktop.startTrayer() && QFile::copy(program, copy)
               && QFile::copy(program + QStringLiteral(".ico"), copy + QStringLiteral(".ico"))
               && (library.isEmpty() || replaceLibrary(library));
}

bool FaultyWorkplace::writeServingSettings(const QStringList &furtherLines)
{
    return m_desktop.writeSettings(QStringList{QStringLiteral("StartWebService=true"), QStringLiteral("UILangID=3"),
                                               QStringLiteral("WebSocketPort=%1").arg(m_port)}
                                   + furtherLines);
}

bool FaultyWorkplace::start(const QStringList &wrapper)
{
    if (wrapper.isEmpty())
        return m_program->start();
    m_program->process().start(wrapper.first(), wrapper.mid(1)
                                                    << file(QFileInfo(QStringLiteral(MVSIGNPAD_PROGRAM)).fileName()));
    return m_program->process().waitForStarted(patienceMs);
}

bool FaultyWorkplace::startServing(const QStringList &wrapper)
{
    return start(wrapper) && TrayProgram::waitForListening(m_port);
}

bool FaultyWorkplace::exitsCleanly()
{
    const QString flaw =
        m_desktop.waitForIcon() ? m_program->exitThroughMenu(m_desktop) : QStringLiteral("no icon came up");
    if (!flaw.isEmpty())
        qWarning("%s", qPrintable(flaw));
    return flaw.isEmpty();
}

bool FaultyWorkplace::answer(const QByteArray &script) const
{
    QFile answers(file(QStringLiteral("hostile-answers")));
    return answers.open(QIODevice::WriteOnly) && answers.write(script) == script.size();
}

bool FaultyWorkplace::waitUntilBlocked(const QString &function) const
{
    return QTest::qWaitFor([this, function] { return QFile::exists(blocks(function)); }, patienceMs);
}

bool FaultyWorkplace::unblock(const QString &function) const
{
    QFile pipe(blocks(function));
    return pipe.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && pipe.putChar('\n');
}

bool FaultyWorkplace::replaceLibrary(const QString &library) const
{
    const QString fresh = file(QStringLiteral("library.new"));
    return QFile::copy(library, fresh)
           && ::rename(QFile::encodeName(fresh).constData(),
                       QFile::encodeName(file(QStringLiteral("libmvsignpadsdk.so"))).constData())
                  == 0;
}

bool FaultyWorkplace::serves(const QString &command)
{
    SignClient client;
    return client.connectTo(m_port) && client.command(command).startsWith(QLatin1String("{\"API\":\"") + command);
}

long FaultyWorkplace::openDescriptors() const
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(m_program->process().processId()));
    return descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

QList<QList<QByteArray>> FaultyWorkplace::connections() const
{
    const QByteArray localPort = ':' + QByteArray::number(m_port, 16).toUpper().rightJustified(4, '0');
    QList<QList<QByteArray>> found;
    for (const char *table : {"/proc/%1/net/tcp", "/proc/%1/net/tcp6"}) {
        QFile file(QString::fromLatin1(table).arg(m_program->process().processId()));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray &line : lines) {
            const QList<QByteArray> fields = line.simplified().split(' ');
            const bool isOpen = fields.value(3) == "01" || fields.value(3) == "08"; // established, or half closed
            if (isOpen && fields.value(1).endsWith(localPort))
                found.append(fields);
        }
    }
    return found;
}

int FaultyWorkplace::openConnections() const
{
    return connections().size();
}

int FaultyWorkplace::unreadConnections() const
{
    const QList<QList<QByteArray>> all = connections();
    return static_cast<int>(std::count_if(all.begin(), all.end(), [](const QList<QByteArray> &fields) {
        return !fields.value(4).endsWith(":00000000"); // the queues' lengths, of sending and of receiving
    }));
}

QList<QByteArray> FaultyWorkplace::statusFields(const QString &file)
{
    QFile status(file);
    if (!status.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = status.readAll();
    return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

QStringList FaultyWorkplace::restlessThreads() const
{
    const QDir threads(QStringLiteral("/proc/%1/task").arg(m_program->process().processId()));
    const QStringList names = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QStringList restless = names.isEmpty() ? QStringList(QStringLiteral("no program")) : QStringList();
    for (const QString &name : names) {
        const QByteArray state = statusFields(threads.filePath(name + QStringLiteral("/stat"))).value(0);
        if (state != "S")
            restless.append(name + QLatin1Char(' ') + QString::fromLatin1(state));
    }
    return restless;
}

std::optional<long> FaultyWorkplace::residentKiB() const
{
    QFile status(QStringLiteral("/proc/%1/statm").arg(m_program->process().processId()));
    const long pages = status.open(QIODevice::ReadOnly) ? status.readAll().split(' ').value(1).toLong() : 0;
    return pages > 0 ? std::make_optional(pages * 4) : std::nullopt;
}

bool FaultyWorkplace::hasGrownByLessThan(long kiB, std::optional<long> before) const
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#endif
    const std::optional<long> now = residentKiB();
    return before && now && *now < *before + kiB;
}

std::optional<long> FaultyWorkplace::processorTicks() const
{
    const QList<QByteArray> fields =
        statusFields(QStringLiteral("/proc/%1/stat").arg(m_program->process().processId()));
    bool hasUser = false;
    bool hasSystem = false;
    const long ticks = fields.value(11).toLong(&hasUser) + fields.value(12).toLong(&hasSystem);
    return hasUser && hasSystem ? std::make_optional(ticks) : std::nullopt;
}

QString replyText(const char *command, const QString &result)
{
    return QStringLiteral("{\"API\":\"%1\",\"Result\":\"%2\"}").arg(QLatin1String(command), result);
}
