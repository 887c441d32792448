// Runs a command on a desktop with an XEmbed tray, and ends with its exit status.
#include "tests/desktop/DesktopSession.h"

#include <QCoreApplication>
#include <QFile>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    DesktopSession desktop;
    if (argc < 2 || !desktop.isUsable() || !desktop.startTrayer())
        qFatal("no command or no desktop for it");
    QProcess command;
    command.setProcessEnvironment(desktop.environment());
    command.setProcessChannelMode(QProcess::ForwardedChannels);
    QObject::connect(&command, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), &application,
                     [](int code, QProcess::ExitStatus status) {
                         QCoreApplication::exit(status == QProcess::NormalExit ? code : 128);
                     });
    command.start(QFile::decodeName(argv[1]), QCoreApplication::arguments().mid(2));
    if (!command.waitForStarted())
        qFatal("cannot start %s", argv[1]);
    return QCoreApplication::exec();
}
