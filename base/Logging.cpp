#include "base/Logging.h"

#include <QByteArray>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#ifdef MVSIGNPAD_DIAGNOSTIC_LOG
std::atomic<bool> g_bEnableLog{true};
#else
std::atomic<bool> g_bEnableLog{false};
#endif

char g_cKeyBuf[256];

namespace {

/// Opens the user's own file for appending. -1 when there is something else of that name: in /tmp anybody can lay a
/// link or a file of theirs there first.
int OpenOwnFile(const char *path, struct stat &status)
{
    const int file = open(path, O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (file < 0)
        return -1;
    const bool bOwn = fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid()
                      && status.st_nlink == 1 && ((status.st_mode & 077) == 0 || fchmod(file, 0600) == 0);
    if (bOwn)
        return file;
    close(file);
    return -1;
}

void AppendToFile(const char *path, const char *tag, const char *message, const char *tail)
{
    struct stat status {
    };
    int file = OpenOwnFile(path, status);
    if (file >= 0 && status.st_size >= nLargestLog) {
        close(file);
        file = std::rename(path, (QByteArray(path) + ".1").constData()) == 0 ? OpenOwnFile(path, status) : -1;
    }
    if (file < 0)
        return;
    dprintf(file, "[%s]:%s, %s", tag, message, tail);
    close(file);
}

class NarrowText
{
public:
    explicit NarrowText(const wchar_t *text)
    {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): UTF-8, like every encoding of today, has no state to share
        const std::size_t length = std::wcstombs(m_text, text, sizeof m_text - 1);
        m_text[length == static_cast<std::size_t>(-1) ? 0 : length] = '\0';
    }
    const char *get() const { return m_text; }

private:
    char m_text[256];
};

} // namespace

std::uint64_t GetTickCount()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 + static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
}

void MyDebug(const char *tag, const char *message, const char *tail)
{
    AppendToFile("/tmp/mvsignpadsdk_wssvr.log", tag, message, tail);
}

void MyDebug(const wchar_t *tag, const wchar_t *message, const wchar_t *tail)
{
    MyDebug(NarrowText(tag).get(), NarrowText(message).get(), NarrowText(tail).get());
}

void MyDebug_InsideThread(const char *tag, const char *message, const char *tail)
{
    AppendToFile("/tmp/mvsignpadsdk_wssvr_inthread.log", tag, message, tail);
}

// NOLINTNEXTLINE(cert-dcl50-cpp): the compiler checks the arguments against the format
void WriteLogLine(LogSink sink, const char *tag, const char *format, ...)
{
    const int prefix = std::snprintf(g_cKeyBuf, sizeof g_cKeyBuf, "<%ld>-", static_cast<long>(GetTickCount()));
    va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start has just been called
    std::vsnprintf(g_cKeyBuf + prefix, sizeof g_cKeyBuf - static_cast<std::size_t>(prefix), format, arguments);
    va_end(arguments);
    sink(tag, g_cKeyBuf, "\n");
}
