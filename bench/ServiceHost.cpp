// The service as the program runs it, without the tray: "ServiceHost PORT", until standard input ends.

#include "app/RuntimeSettings.h"
#include "bench/Work.h"
#include "service/WebSocketService.h"
#include "service/WebSocketThread.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <unistd.h>

/// Called by the scripted pad on the service thread, out of a command.
extern "C" __attribute__((visibility("default"))) void BenchPush(int kind)
{
    static PictureText picture(200 * 1024);
    if (kind == 0)
        WebSocketServiceSignPadEventCallback(1);
    else
        WebSocketServiceSignBase64DataCallback(picture.Next().data());
}

int main(int argc, char *argv[])
{
    ApplyRuntimeSettings();
    QCoreApplication application(argc, argv);
    WebSocketThread thread(nullptr, application.arguments().value(1).toInt());
    thread.start();
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &QCoreApplication::quit);
    const int nStatus = QCoreApplication::exec();
    thread.quit();
    thread.wait();
    return nStatus;
}
