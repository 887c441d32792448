/// Drives the real program, on a desktop of its own and with the virtual pad, for a while: ten clients, the service
/// stopped and started through the menu every half minute, and a sample of what the program holds every second.
///
/// usage: soak MINUTES TABLE_FILE

#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/soak/Load.h"
#include "tests/soak/Samples.h"
#include "tests/unit/support/FreePort.h"

#include <QCoreApplication>
#include <QTest>

#include <cstdio>

namespace {

const int clientCount = 10;
const double restartEverySeconds = 30;

int fail(const char *why, TrayProgram &program)
{
    std::printf("FAILED: %s\n%s\n", why, program.output().constData());
    return 1;
}

bool startOn(DesktopSession &desktop, TrayProgram &program, quint16 port)
{
    return desktop.isUsable() && desktop.startTrayer()
           && desktop.writeSettings({QStringLiteral("StartWebService=true"), QStringLiteral("UILangID=3"),
                                     QStringLiteral("WebSocketPort=%1").arg(port)})
           && program.start() && desktop.waitForIcon() && TrayProgram::waitForListening(port);
}

/// Stops the service in the midst of its clients' requests and starts it again.
bool restartService(const DesktopSession &desktop, quint16 port)
{
    return desktop.chooseMenuEntry(0) && TrayProgram::waitForSilence(port) && desktop.chooseMenuEntry(0)
           && TrayProgram::waitForListening(port);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const double minutes = argc == 3 ? QString::fromLocal8Bit(argv[1]).toDouble() : 0;
    if (minutes <= 0) {
        std::fputs("usage: soak MINUTES TABLE_FILE\n", stderr);
        return 2;
    }
    qputenv("MVSIGNPAD_VIRTUAL_SPEED", "0"); // the whole signature at once
    qputenv("MVSIGNPAD_VIRTUAL_WINDOW", "0");
    DesktopSession desktop;
    TrayProgram program(desktop);
    const quint16 port = freePort();
    // The menu brings fonts into memory when it shows for the first time.
    if (!startOn(desktop, program, port) || !restartService(desktop, port))
        return fail("the program does not serve", program);

    LoadCounts counts;
    std::vector<std::unique_ptr<LoadClient>> clients;
    for (unsigned i = 0; i < clientCount; ++i)
        clients.push_back(std::make_unique<LoadClient>(port, i, counts));

    Samples samples(program.process().processId(), QFile::decodeName(argv[2]));
    long restarts = 0;
    QElapsedTimer clock;
    clock.start();
    const auto seconds = [&clock] { return static_cast<double>(clock.elapsed()) / 1000; };
    while (seconds() < minutes * 60) {
        if (seconds() > restartEverySeconds * static_cast<double>(restarts + 1)) {
            if (!restartService(desktop, port))
                return fail("the service does not restart", program);
            ++restarts;
            QTest::qWait(3000); // until all clients are back
        }
        QTest::qWait(1000);
        if (!program.isRunning() || !samples.take(seconds(), counts.requests))
            return fail("the program has ended", program);
    }
    clients.clear();
    const bool isSteady = samples.printVerdict();
    std::printf("%d clients, %ld connections, %ld requests, %ld initialisations, %ld restarts of the service, "
                "%ld wrong replies, %ld overdue\n",
                clientCount, counts.connections, counts.requests, counts.initialisations, restarts, counts.wrongReplies,
                counts.overdue);
    if (!desktop.chooseMenuEntry(2) || !program.waitForEnd() || program.exitStatus() != 0)
        return fail("the program does not end cleanly", program);
    if (!program.output().isEmpty())
        return fail("the program has complained", program);
    const bool hasWorked = counts.requests > 1000 && counts.wrongReplies == 0 && counts.overdue == 0;
    return isSteady && hasWorked ? 0 : 1;
}
