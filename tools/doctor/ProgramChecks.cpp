#include "base/SettingsFile.h"
#include "tools/Text.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Machine.h"
#include "tray/DesktopVariant.h"

#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QLibraryInfo>
#include <QStandardPaths>
#include <QSysInfo>

#include <unistd.h>

namespace {

/// Whether a panel has the older kind of tray, on X11. Xlib is looked for when it is needed: a tool for the command
/// line has no other use for it.
bool HasXEmbedTray()
{
    QLibrary xlib(QStringLiteral("X11"), 6);
    const auto open = reinterpret_cast<void *(*)(const char *)>(xlib.resolve("XOpenDisplay"));
    const auto atom = reinterpret_cast<unsigned long (*)(void *, const char *, int)>(xlib.resolve("XInternAtom"));
    const auto screen = reinterpret_cast<int (*)(void *)>(xlib.resolve("XDefaultScreen"));
    const auto owner = reinterpret_cast<unsigned long (*)(void *, unsigned long)>(xlib.resolve("XGetSelectionOwner"));
    const auto close = reinterpret_cast<int (*)(void *)>(xlib.resolve("XCloseDisplay"));
    void *const pDisplay = open && atom && screen && owner && close ? open(nullptr) : nullptr;
    if (!pDisplay)
        return false;
    const QByteArray selection = "_NET_SYSTEM_TRAY_S" + QByteArray::number(screen(pDisplay));
    const bool bOwned = owner(pDisplay, atom(pDisplay, selection.constData(), 0)) != 0;
    close(pDisplay);
    return bOwned;
}

/// The program that a desktop entry starts; empty when it starts none.
QString ProgramOfEntry(const QString &path)
{
    QFile file(path);
    QString program;
    if (!file.open(QIODevice::ReadOnly))
        return program;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.trimmed() == "Hidden=true")
            return {};
        if (line.startsWith("Exec="))
            program = QString::fromUtf8(line.mid(5)).trimmed().section(QLatin1Char(' '), 0, 0).remove(QLatin1Char('"'));
    }
    return program;
}

Finding CheckEntry(const QString &path)
{
    const QString program = ProgramOfEntry(path);
    if (program.isEmpty())
        return Bad(Text::tr("%1 starts nothing: remove it, and switch the launch on in the tray menu").arg(path));
    if (!QFileInfo(program).isExecutable())
        return Bad(Fill(Text::tr("%1 starts %2, which is not there: install the program, or remove the entry"),
                        {path, program}));
    return Ok(Text::tr("by %1").arg(path));
}

/// The entries of the other desktops in the user's folder.
QStringList ForeignEntries(int nVariant)
{
    QStringList foreign;
    for (int i = 1; i <= nDesktopVariants; ++i) {
        if (i != nVariant && QFile::exists(AutostartTarget(i)))
            foreign += AutostartTarget(i);
    }
    return foreign;
}

} // namespace

Finding CheckProgram(const Machine &machine)
{
    const Process *const pProgram = machine.Program();
    if (!pProgram)
        return Bad(Fill(Text::tr("does not run: start it from the application menu, or %1/%2"),
                        {machine.folder, QString::fromLatin1(programName)}));
    if (pProgram->nUser != geteuid())
        return Bad(Text::tr("only %1 runs, and serves that user: it must end before the program can start here")
                       .arg(pProgram->Name()));
    if (!machine.bus.HasBus())
        return Ok(
            Fill(Text::tr("%1, %2; there is no session bus to ask it more"), {pProgram->Name(), pProgram->executable}));
    if (machine.told.isEmpty())
        return Bad(Text::tr("%1 runs, but not in this session: end it and start it here").arg(pProgram->Name()));
    return Ok(Fill(Text::tr("%1, version %2, %3"),
                   {pProgram->Name(), machine.Told("Version").toString(), machine.Told("Program").toString()}));
}

Finding CheckGuard(const Machine &machine)
{
    if (QStandardPaths::findExecutable(QStringLiteral("pgrep")).isEmpty())
        return Bad(Text::tr("the program cannot look for them: install pgrep (package procps)"));
    const Process *const pProgram = machine.Program();
    QStringList others;
    for (const Process &process : machine.processes) {
        if (&process != pProgram && process.commandLine.contains(QLatin1String(programName)))
            others += process.Name() + QStringLiteral(" (") + process.commandLine.left(100) + QLatin1Char(')');
    }
    if (others.isEmpty())
        return Ok(Text::tr("none, and nothing that looks like one"));
    return Bad(Text::tr("end what keeps the program from starting: %1").arg(others.join(QStringLiteral("; "))));
}

Finding CheckTray(const Machine &machine)
{
    if (machine.bus.HasBus() && machine.bus.HasStatusNotifierHost())
        return Ok(Text::tr("a StatusNotifier host is on the session bus"));
    if (HasXEmbedTray())
        return Ok(Text::tr("a panel has an XEmbed tray"));
    return Bad(
        Text::tr("this desktop has none, and without it the program ends after half a minute: add the tray applet "
                 "to the panel"));
}

Finding CheckIcon(const Machine &machine)
{
    const QString path = machine.folder + QStringLiteral("/mvsignpadsdk_wssvr.ico");
    if (!QFileInfo(path).isReadable())
        return Bad(Text::tr("%1 is missing: install the package mvsignpad again").arg(path));
    const QString reader =
        QLibraryInfo::location(QLibraryInfo::PluginsPath) + QStringLiteral("/imageformats/libqico.so");
    if (!QFile::exists(reader))
        return Bad(Text::tr("Qt cannot read it without %1: install Qt's image formats").arg(reader));
    return Ok(path);
}

Finding CheckAutostart(const Machine &)
{
    const QString desktop = QSysInfo::productType();
    const int nVariant = DesktopVariantOf(desktop);
    const QStringList foreign = ForeignEntries(nVariant);
    if (!foreign.isEmpty())
        return Bad(
            Text::tr("the entry of another desktop lies here, remove it: %1").arg(foreign.join(QLatin1Char(' '))));
    const QString own = AutostartTarget(nVariant);
    if (QFile::exists(own))
        return CheckEntry(own);
    const QString forAll = QStringLiteral("/etc/xdg/autostart/") + QFileInfo(AutostartTarget(1)).fileName();
    if (QFile::exists(forAll))
        return CheckEntry(forAll);
    bool bChosen = false;
    SettingsReader(traySettingsName).Load(QStringLiteral("AutoLaunch"), bChosen);
    if (!bChosen)
        return Ok(Text::tr("not asked for"));
    return nVariant == 0 ? Bad(Fill(Text::tr("this desktop (%1) has no entry of its own: copy %2 to %3"),
                                    {desktop, AutostartSource(1), forAll}))
                         : Bad(Text::tr("was chosen, but %1 is not there: choose it again in the tray menu").arg(own));
}
