// A pad library that does one thing: its Clear shows a window of its own, or closes the one that shows.
#include <QApplication>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED bool MVAlder_InitialDevice(int, void *, int, int, int, int)
{
    return true;
}

EXPORTED void MVAlder_Clear(int)
{
    // The caller is the service thread; windows belong to the main thread.
    QTimer::singleShot(0, qApp, [] {
        static QPointer<QWidget> window;
        if (window) {
            window->close();
            return;
        }
        window = new QWidget;
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->resize(200, 100);
        window->show();
    });
}
