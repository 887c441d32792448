// The service as the program runs it, without the tray: "ServiceHost PORT", until standard input ends.

#include "base/RuntimeSettings.h"
#include "bench/Work.h"
#include "service/PushCallbacks.h"
#include "service/WebSocketThread.h"

#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <unistd.h>

/// Called by the scripted pad on the service thread, out of a command.
extern "C" __attribute__((visibility("default"))) void BenchPush(int kind)
{
    static PictureText picture(200 * 1024);
    if (kind == 0)
        QTimer::singleShot(1, [] { WebSocketServiceSignPadEventCallback(1); }); // when the reply has gone
    else
        WebSocketServiceSignBase64DataCallback(picture.Next());
}

int main(int argc, char *argv[])
{
    ApplyRuntimeSettings();
    qputenv("QT_QPA_PLATFORM", QByteArray("offscreen")); // for the text in WPS pictures
    QGuiApplication application(argc, argv);
    WebSocketThread thread(nullptr, application.arguments().value(1).toInt());
    thread.start();
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &QCoreApplication::quit);
    const int nStatus = QGuiApplication::exec();
    thread.quit();
    thread.wait();
    return nStatus;
}
