#include "tools/doctor/Machine.h"

#include "service/AccessSettings.h"
#include "tools/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <pwd.h>
#include <unistd.h>

namespace {

Process ProcessOf(int nId)
{
    const QString folder = QStringLiteral("/proc/%1").arg(nId);
    Process process;
    process.nId = nId;
    process.nUser = QFileInfo(folder).ownerId();
    process.executable = LinkText(folder + QStringLiteral("/exe"));
    QFile file(folder + QStringLiteral("/cmdline"));
    if (file.open(QIODevice::ReadOnly))
        process.commandLine = QString::fromLocal8Bit(file.readAll().replace('\0', ' ')).trimmed();
    // Of another user's process only the command line can be seen.
    const QString path =
        process.executable.isEmpty() ? process.commandLine.section(QLatin1Char(' '), 0, 0) : process.executable;
    process.bProgram = QFileInfo(path).fileName().section(QLatin1Char(' '), 0, 0) == QLatin1String(programName);
    return process;
}

QVector<Process> AllProcesses()
{
    QVector<Process> processes;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &entry : entries) {
        bool bNumber = false;
        const int nId = entry.toInt(&bNumber);
        if (bNumber)
            processes.append(ProcessOf(nId));
    }
    return processes;
}

QString FolderOf(const Machine &machine)
{
    const QString told = machine.Told("Program").toString();
    if (!told.isEmpty())
        return QFileInfo(told).path();
    const Process *const pProgram = machine.Program();
    return pProgram && !pProgram->executable.isEmpty() ? QFileInfo(pProgram->executable).path()
                                                       : QStringLiteral("/opt/mvsignpad");
}

} // namespace

QString LinkText(const QString &path)
{
    char text[4096];
    const ssize_t nLength = readlink(QFile::encodeName(path).constData(), text, sizeof text);
    return nLength > 0 ? QFile::decodeName(QByteArray(text, static_cast<int>(nLength))) : QString();
}

QString Process::Name() const
{
    const passwd *const pUser = getpwuid(nUser); // NOLINT(concurrency-mt-unsafe): there is one thread
    const QString user = pUser ? QString::fromLocal8Bit(pUser->pw_name) : QString::number(nUser);
    return Text::tr("process %1 of user %2").arg(nId).arg(user);
}

Machine::Machine()
    : told(bus.HasBus() ? bus.Properties() : QVariantMap()), processes(AllProcesses()), access(ReadAccessPolicy())
{
    settings.Load(0);
    folder = FolderOf(*this);
}

const Process *Machine::Program() const
{
    const Process *pFound = nullptr;
    for (const Process &process : processes) {
        if (process.nId == Told("ProcessId").toInt())
            return &process;
        if (process.bProgram && (!pFound || process.nUser == geteuid()))
            pFound = &process;
    }
    return pFound;
}
