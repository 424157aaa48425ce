// SPDX-License-Identifier: Apache-2.0
#include "watch.hpp"

#include "report.hpp"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace morvath::tools
{
namespace
{

constexpr auto stopSignals = {SIGINT, SIGTERM};

/** Holds back a stop for as long as it exists. */
class StopHeldBack
{
  public:
    StopHeldBack()
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (const auto signal : stopSignals)
        {
            sigaddset(&signals, signal);
        }
        sigprocmask(SIG_BLOCK, &signals, &before);
    }
    StopHeldBack(const StopHeldBack&) = delete;
    StopHeldBack& operator=(const StopHeldBack&) = delete;
    ~StopHeldBack()
    {
        sigprocmask(SIG_SETMASK, &before, nullptr);
    }

  private:
    sigset_t before;
};

/**
 * At once, even while a service is silent: outside of printWhole() nothing is
 * half-printed.
 */
void stop(int)
{
    _exit(EXIT_SUCCESS);
}

} // namespace

void watch(std::chrono::duration<double> pause,
           const std::function<void()>& round)
{
    for (const auto signal : stopSignals)
    {
        std::signal(signal, stop);
    }
    round();
    while (!std::ferror(stdout))
    {
        std::this_thread::sleep_for(pause);
        round();
    }
}

void printWhole(const std::string& text)
{
    const StopHeldBack whole;
    print(text);
    std::fflush(stdout);
}

} // namespace morvath::tools
