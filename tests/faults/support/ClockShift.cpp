/// Preloaded into the program: its wall clock runs as many seconds beside the machine's as the file that
/// MVSIGNPAD_CLOCK_SHIFT_FILE names says at the moment. The machine's clock stays as it is.

#include <dlfcn.h>
#include <sys/time.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

long shiftSeconds()
{
    const char *const path = std::getenv("MVSIGNPAD_CLOCK_SHIFT_FILE");
    std::FILE *const file = path ? std::fopen(path, "r") : nullptr;
    if (!file)
        return 0;
    long seconds = 0;
    const bool isRead = std::fscanf(file, "%ld", &seconds) == 1;
    std::fclose(file);
    return isRead ? seconds : 0;
}

template <class Function>
Function next(const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

EXPORT int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const int result = next<decltype(&clock_gettime)>("clock_gettime")(clock, time);
    if (result == 0 && clock == CLOCK_REALTIME)
        time->tv_sec += shiftSeconds();
    return result;
}

EXPORT int gettimeofday(timeval *time, void *zone) noexcept
{
    const int result = next<int (*)(timeval *, void *)>("gettimeofday")(time, zone);
    if (result == 0)
        time->tv_sec += shiftSeconds();
    return result;
}

EXPORT time_t time(time_t *time) noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (time)
        *time = now.tv_sec;
    return now.tv_sec;
}
