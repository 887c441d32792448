#include "tools/Text.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Machine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <unistd.h>

namespace {

const int nPatienceMs = 20000;

QString LibraryOf(const Machine &machine)
{
    return machine.folder + QStringLiteral("/libmvsignpadsdk.so");
}

QByteArray Content(const QString &path, qint64 nMost)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(nMost).trimmed() : QByteArray();
}

/// What kind of machine an ELF file is for: word size, byte order and processor, as its head has them. Empty when it is
/// no such file.
QByteArray MachineOf(const QString &path)
{
    QFile file(path);
    const QByteArray head = file.open(QIODevice::ReadOnly) ? file.read(20) : QByteArray();
    return head.size() == 20 && head.startsWith("\177ELF") ? head.mid(4, 2) + head.mid(18, 2) : QByteArray();
}

/// A device on USB that could be a pad, and its file.
struct Device {
    QString name;
    QString file;
};

/// Devices for raw input, but for keyboards and mice.
QList<Device> RawInputDevices()
{
    QList<Device> devices;
    const QFileInfoList nodes =
        QDir(QStringLiteral("/sys/class/hidraw")).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QFileInfo &node : nodes) {
        const QString device = node.canonicalFilePath() + QStringLiteral("/device");
        const QByteArray facts = '\n' + Content(device + QStringLiteral("/uevent"), 4096);
        const QByteArray protocol =
            Content(QFileInfo(device).canonicalFilePath() + QStringLiteral("/../bInterfaceProtocol"), 8);
        if (!facts.contains("\nHID_ID=0003:") || protocol == "01" || protocol == "02")
            continue;
        const QByteArray name = facts.mid(facts.indexOf("\nHID_NAME=") + 10);
        devices.append({QString::fromUtf8(name.split('\n').constFirst()), QStringLiteral("/dev/") + node.fileName()});
    }
    return devices;
}

/// Devices with an interface of their maker's own.
QList<Device> MakersDevices()
{
    QList<Device> devices;
    const QDir bus(QStringLiteral("/sys/bus/usb/devices"));
    const QStringList interfaces = bus.entryList({QStringLiteral("*:*")}, QDir::Dirs);
    for (const QString &interface : interfaces) {
        const QString device = bus.filePath(interface.section(QLatin1Char(':'), 0, 0));
        if (Content(bus.filePath(interface) + QStringLiteral("/bInterfaceClass"), 8) != "ff")
            continue;
        const int nBus = Content(device + QStringLiteral("/busnum"), 8).toInt();
        const int nDevice = Content(device + QStringLiteral("/devnum"), 8).toInt();
        devices.append({QString::fromUtf8(Content(device + QStringLiteral("/product"), 256)),
                        QStringLiteral("/dev/bus/usb/%1/%2")
                            .arg(nBus, 3, 10, QLatin1Char('0'))
                            .arg(nDevice, 3, 10, QLatin1Char('0'))});
    }
    return devices;
}

} // namespace

Finding CheckLibrary(const Machine &machine)
{
    const QString path = LibraryOf(machine);
    const QFileInfo file(path);
    if (!file.isFile())
        return Bad(Text::tr("%1 is not there: copy the library of the pad's maker to it").arg(path));
    if (!file.isReadable())
        return Bad(Text::tr("%1 cannot be read: sudo chmod 644 %1").arg(path));
    return Ok(file.canonicalFilePath());
}

Finding CheckLibraryKind(const Machine &machine)
{
    const QByteArray kind = MachineOf(LibraryOf(machine));
    if (kind.isEmpty())
        return Bad(Text::tr("there is no library to look at"));
    return kind == MachineOf(QStringLiteral("/proc/self/exe"))
               ? Ok(Text::tr("the same as the program's"))
               : Bad(Text::tr("the library is built for another one: get the one for %1")
                         .arg(QSysInfo::currentCpuArchitecture()));
}

Finding CheckLibraryFunctions(const Machine &machine)
{
    if (!QFileInfo(LibraryOf(machine)).isFile())
        return Bad(Text::tr("there is no library to look at"));
    // In a process of its own: it runs what the library runs when it is loaded.
    QProcess examination;
    examination.start(QCoreApplication::applicationFilePath(), {QStringLiteral("library"), LibraryOf(machine)});
    if (!examination.waitForFinished(nPatienceMs) || examination.exitStatus() != QProcess::NormalExit)
        return Bad(Text::tr("the library crashes or hangs when it is loaded: get another one"));
    const QString errors = QString::fromUtf8(examination.readAllStandardError());
    if (!errors.isEmpty())
        return Bad(Text::tr("cannot be loaded, install what it needs: %1")
                       .arg(errors.section(QStringLiteral("mvsignctl: "), -1)));
    const QString functions = QString::fromUtf8(examination.readAllStandardOutput())
                                  .trimmed()
                                  .replace(QLatin1Char('\n'), QStringLiteral("; "));
    return examination.exitCode() == 0 ? Ok(functions)
                                       : Bad(Text::tr("no model is complete, get another library: %1").arg(functions));
}

Finding CheckPads(const Machine &machine)
{
    const QString open = machine.Told("Pad").toString();
    if (!open.isEmpty())
        return Ok(Text::tr("the program has opened the model %1").arg(open));
    const QList<Device> devices = RawInputDevices() + MakersDevices();
    if (devices.isEmpty())
        return Bad(Text::tr("nothing on USB could be one: plug it in; lsusb shows what the system sees"));
    for (const Device &device : devices) {
        if (access(QFile::encodeName(device.file).constData(), R_OK | W_OK) == 0)
            return Ok(Fill(Text::tr("%1 may be one, and the user may open %2"), {device.name, device.file}));
    }
    return Bad(Fill(
        Text::tr("%1 may be one, but the user may not open %2: install the rules that come with the maker's library, "
                 "and plug it in again"),
        {devices.constFirst().name, devices.constFirst().file}));
}

Finding CheckFont(const Machine &)
{
    QProcess list;
    list.start(QStringLiteral("fc-list"), {QStringLiteral(":lang=zh"), QStringLiteral("family")});
    if (!list.waitForFinished(nPatienceMs))
        return Bad(Text::tr("cannot be looked for: install fc-list (package fontconfig)"));
    const QString family = QString::fromUtf8(list.readAllStandardOutput()).section(QLatin1Char('\n'), 0, 0);
    return family.isEmpty() ? Bad(Text::tr("there is none: install one, such as fonts-noto-cjk")) : Ok(family);
}
