#include "app/RuntimeSettings.h"

#include <QByteArray>

#include <malloc.h>

void ApplyRuntimeSettings()
{
    // The event loops of all threads but the first do without GLib, which serves nothing there and makes a third of
    // the system calls of a message.
    qputenv("QT_NO_THREADED_GLIB", "1");
    // One heap for all threads: from others, what is free at the end does not go back to the system.
    mallopt(M_ARENA_MAX, 1); // NOLINT(concurrency-mt-unsafe): no other thread is there yet
}
