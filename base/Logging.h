// The diagnostic log: one switch, two files under /tmp (one for the main thread, one for all others), off by default.
//
// Log sites use MV_LOG on the main thread and MV_LOG_INSIDE_THREAD on every other: both test the switch first and
// evaluate nothing else while it is off.
#pragma once

#include <cstdint>

/// The switch. False unless built with MVSIGNPAD_DIAGNOSTIC_LOG; read at every log site.
extern bool g_bEnableLog;

/// The one formatting buffer of every log site of every thread. Not locked: lines of two threads may mix.
extern char g_cKeyBuf[256];

/// Milliseconds of the monotonic clock, truncated. Any thread.
std::uint64_t GetTickCount();

/// Appends "[tag]:message, tail" to the main thread's log file; does nothing when the file cannot be opened.
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
        if (g_bEnableLog)                                                                                              \
            WriteLogLine(sink, tag, __VA_ARGS__);                                                                      \
    } while (false)
