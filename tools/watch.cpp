// SPDX-License-Identifier: Apache-2.0
#include "watch.hpp"

#include "bus.hpp"
#include "cli/terminal_text.hpp"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

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
    ~StopHeldBack() { sigprocmask(SIG_SETMASK, &before, nullptr); }

  private:
    sigset_t before;
};

/**
 * At once, even while a service is silent: outside of printWhole() nothing is
 * half-printed.
 */
void stop(int)
{
    if (isatty(STDOUT_FILENO) && write(STDOUT_FILENO, "\n", 1) < 0)
    {
        _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS);
}

} // namespace

void watch(cli::Seconds pause, const std::function<void()>& round)
{
    for (const auto signal : stopSignals)
    {
        std::signal(signal, stop);
    }
    while (!std::ferror(stdout))
    {
        try
        {
            round();
        }
        catch (const std::exception& error)
        {
            cli::complain("morvath", error.what());
        }
        waitOnBus(pause);
    }
}

void printWhole(const std::string& text)
{
    const StopHeldBack whole;
    print(text);
}

std::string repainted(std::vector<std::string> lines, const Look& look)
{
    if (look.height > 1 && lines.size() > look.height)
    {
        const auto more = lines.size() - look.height + 1;
        lines.resize(look.height - 1);
        lines.push_back("(" + std::to_string(more) +
                        " more; enlarge the window)");
    }
    std::string text = "\x1b[H";
    for (const auto& line : lines)
    {
        text += (&line == &lines.front() ? "" : "\n") + line + "\x1b[K";
    }
    return text + "\x1b[J";
}

} // namespace morvath::tools
