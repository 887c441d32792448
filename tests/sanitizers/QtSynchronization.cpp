/// Tells ThreadSanitizer of the order that Qt keeps between threads. Qt is not compiled with the sanitizer, which
/// therefore sees neither its mutexes nor its event queues nor the end of its threads, and takes what they order for
/// races. The calls that the program makes to them come by here; Qt's own do not.

#include <QEvent>
#include <QMetaObject>
#include <QMutex>
#include <QObject>
#include <QThread>

#include <dlfcn.h>
#include <sanitizer/tsan_interface.h>

namespace {

/// Qt's function of that name, which the one in this file stands in front of.
template <class Function>
Function behind(const char *symbol)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

} // namespace

void QMutex::lock()
{
    static const auto qtLock = behind<void (*)(QMutex *)>("_ZN6QMutex4lockEv");
    qtLock(this);
    __tsan_acquire(this);
}

void QMutex::unlock()
{
    static const auto qtUnlock = behind<void (*)(QMutex *)>("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    qtUnlock(this);
}

/// Whatever was done before a call was queued, by name or as a function, is done before the receiver runs it.
bool QMetaObject::invokeMethod(QObject *receiver, const char *member, Qt::ConnectionType type,
                               QGenericReturnArgument result, QGenericArgument a0, QGenericArgument a1,
                               QGenericArgument a2, QGenericArgument a3, QGenericArgument a4, QGenericArgument a5,
                               QGenericArgument a6, QGenericArgument a7, QGenericArgument a8, QGenericArgument a9)
{
    using Invoke = bool (*)(QObject *, const char *, Qt::ConnectionType, QGenericReturnArgument, QGenericArgument,
                            QGenericArgument, QGenericArgument, QGenericArgument, QGenericArgument, QGenericArgument,
                            QGenericArgument, QGenericArgument, QGenericArgument, QGenericArgument);
    static const auto qtInvoke = behind<Invoke>(
        "_ZN11QMetaObject12invokeMethodEP7QObjectPKcN2Qt14ConnectionTypeE22QGenericReturnArgument16QGenericArgument"
        "S7_S7_S7_S7_S7_S7_S7_S7_S7_");
    __tsan_release(receiver);
    return qtInvoke(receiver, member, type, result, a0, a1, a2, a3, a4, a5, a6, a7, a8, a9);
}

bool QMetaObject::invokeMethodImpl(QObject *receiver, QtPrivate::QSlotObjectBase *slot, Qt::ConnectionType type,
                                   void *result)
{
    using Invoke = bool (*)(QObject *, QtPrivate::QSlotObjectBase *, Qt::ConnectionType, void *);
    static const auto qtInvoke = behind<Invoke>(
        "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv");
    __tsan_release(receiver);
    return qtInvoke(receiver, slot, type, result);
}

bool QObject::event(QEvent *event)
{
    static const auto qtEvent = behind<bool (*)(QObject *, QEvent *)>("_ZN7QObject5eventEP6QEvent");
    __tsan_acquire(this);
    return qtEvent(this, event);
}

/// The last that a thread does to an object which it gives away, before it ends.
void QObject::moveToThread(QThread *thread)
{
    static const auto qtMove = behind<void (*)(QObject *, QThread *)>("_ZN7QObject12moveToThreadEP7QThread");
    qtMove(this, thread);
    __tsan_release(QThread::currentThread());
}

bool QThread::wait(QDeadlineTimer deadline)
{
    static const auto qtWait = behind<bool (*)(QThread *, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool ended = qtWait(this, deadline);
    __tsan_acquire(this);
    return ended;
}
