// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>

namespace morvath::cli
{
namespace
{

constexpr timespec halfASecond{.tv_sec = 0, .tv_nsec = 500'000'000};
constexpr auto wipe = "\r\x1b[K";
constexpr std::size_t widest = 70;

std::mutex mutex;
std::string progress;
bool isAwaited = false;
bool isLate = false;
timer_t patience;

void printProgress() { std::fprintf(stderr, "%s%s", wipe, progress.c_str()); }

/** On a thread, as the reading itself is blocked in a call. */
void beLate(sigval)
{
    const std::lock_guard lock(mutex);
    if (isAwaited)
    {
        isLate = true;
        printProgress();
    }
}

} // namespace

void showProgress(std::string_view what)
{
    if (!isatty(STDERR_FILENO))
    {
        return;
    }
    const std::lock_guard lock(mutex);
    progress = "reading " + visible(what, widest);
    if (isLate)
    {
        printProgress();
    }
    else if (!isAwaited)
    {
        isAwaited = true;
        sigevent event{};
        event.sigev_notify = SIGEV_THREAD;
        event.sigev_notify_function = beLate;
        const itimerspec wait{.it_interval = {}, .it_value = halfASecond};
        timer_create(CLOCK_MONOTONIC, &event, &patience);
        timer_settime(patience, 0, &wait, nullptr);
    }
}

void endProgress()
{
    const std::lock_guard lock(mutex);
    if (isLate)
    {
        std::fputs(wipe, stderr);
    }
    if (isAwaited)
    {
        timer_delete(patience);
    }
    isAwaited = false;
    isLate = false;
}

} // namespace morvath::cli
