// A pad library that does one thing: its Clear shows a window of its own for half a second.
#include <QApplication>
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
        auto *const window = new QWidget;
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->resize(200, 100);
        window->show();
        QTimer::singleShot(500, window, &QWidget::close);
    });
}
