// A call that Qt 5.9 has, but which its later headers make to a function that came with Qt 5.15.
#include <QThread>

extern "C" bool WaitForThread(QThread *thread)
{
    return thread->wait();
}
