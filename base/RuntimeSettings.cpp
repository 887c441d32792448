#include "base/RuntimeSettings.h"

#include <QByteArray>
#include <QtGlobal>

#include <malloc.h>
#include <sys/resource.h>

namespace {

constexpr int nMiB = 1024 * 1024;

/// The usual soft limit would be used up by a thousand clients.
void RaiseDescriptorLimit()
{
    rlimit descriptors;
    if (::getrlimit(RLIMIT_NOFILE, &descriptors) != 0)
        return;
    descriptors.rlim_cur = descriptors.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &descriptors);
}

} // namespace

void ApplyRuntimeSettings()
{
    RaiseDescriptorLimit();
    // The event loops of all threads but the first do without GLib, which serves nothing there and makes a third of
    // the system calls of a message.
    qputenv("QT_NO_THREADED_GLIB", "1");
    // Nothing here is drawn by OpenGL: for the first menu Qt would load its drivers, which take memory for good.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    // NOLINTBEGIN(concurrency-mt-unsafe): no other thread is there yet
    // One heap for all threads: from others, what is free at the end does not go back to the system.
    mallopt(M_ARENA_MAX, 1);
    // The texts of a picture take megabytes, again and again. Their room stays in the heap for the next picture instead
    // of coming from the system, page by page and zeroed, for each of them; HeapTrimmer gives it back.
    mallopt(M_MMAP_THRESHOLD, 32 * nMiB);
    mallopt(M_TRIM_THRESHOLD, 64 * nMiB);
    // NOLINTEND(concurrency-mt-unsafe)
}
