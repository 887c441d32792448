// The diagnostic log: one switch, two files under /tmp (one for the main thread, one for all others), off by default.
//
// Log sites use MV_LOG on the main thread and MV_LOG_INSIDE_THREAD on every other: both test the switch first and
// evaluate nothing else while it is off.
#pragma once

#include <atomic>
#include <cstdint>

/// The switch, read at every log site: what is set takes effect at the next one. False at first, unless built with
/// MVSIGNPAD_DIAGNOSTIC_LOG. Any thread.
extern std::atomic<bool> g_bEnableLog;

/// Bytes that one of the two files grows to before it makes room: it is then kept as NAME.1, in place of an older one.
constexpr long nLargestLog = 8L * 1024 * 1024;

/// The one formatting buffer of every log site of every thread. Not locked: lines of two threads may mix.
extern char g_cKeyBuf[256];

/// Milliseconds of the monotonic clock, truncated. Any thread.
std::uint64_t GetTickCount();

/// Appends "[tag]:message, tail" to the main thread's log file, which only the user can read; does nothing when the
/// file cannot be opened or is not the user's own.
void MyDebug(const char *tag, const char *message, const char *tail);
/// The same for wide texts, converted to the current locale, each cut at 255 bytes.
void MyDebug(const wchar_t *tag, const wchar_t *message, const wchar_t *tail);
/// Like the narrow MyDebug, to the log file of all other threads.
void MyDebug_InsideThread(const char *tag, const char *message, const char *tail);

using LogSink = void (*)(const char *tag, const char *message, const char *tail);

/// Formats "<tick>-message" into g_cKeyBuf, cut at 255 bytes, and hands it to the sink.
void WriteLogLine(LogSink sink, const char *tag, const char *format, ...) __attribute__((format(printf, 3, 4)));

#define MV_LOG(tag, ...) MV_LOG_TO(MyDebug, tag, __VA_ARGS__)
#define MV_LOG_INSIDE_THREAD(tag, ...) MV_LOG_TO(MyDebug_InsideThread, tag, __VA_ARGS__)
#define MV_LOG_TO(sink, tag, ...)                                                                                      \
    do {                                                                                                               \
        if (g_bEnableLog.load(std::memory_order_relaxed))                                                              \
            WriteLogLine(sink, tag, __VA_ARGS__);                                                                      \
    } while (false)
