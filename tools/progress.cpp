// SPDX-License-Identifier: Apache-2.0
#include "progress.hpp"

#include "cli/terminal_text.hpp"

#include <unistd.h>

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

namespace morvath::tools
{
namespace
{

using namespace std::chrono_literals;

constexpr auto patience = 500ms;
constexpr auto wipe = "\r\x1b[K";
constexpr std::size_t widest = 70;

/** A thread, as the reading itself is blocked in a call. */
class Progress
{
  public:
    void show(std::string_view what)
    {
        const std::lock_guard lock(mutex);
        text = "reading " + cli::visible(what, widest);
        if (!thread.joinable())
        {
            thread = std::jthread([this](std::stop_token stop) { run(stop); });
        }
        else if (isShown)
        {
            print();
        }
    }

    void end()
    {
        if (thread.joinable())
        {
            thread.request_stop();
            thread.join();
        }
        if (isShown)
        {
            std::fputs(wipe, stderr);
            isShown = false;
        }
    }

  private:
    void run(const std::stop_token& stop)
    {
        std::unique_lock lock(mutex);
        if (!condition.wait_for(lock, stop, patience, [] { return false; }) &&
            !stop.stop_requested())
        {
            isShown = true;
            print();
        }
    }

    void print() const { std::fprintf(stderr, "%s%s", wipe, text.c_str()); }

    std::mutex mutex;
    std::condition_variable_any condition;
    std::string text;
    bool isShown = false;
    std::jthread thread;
};

Progress progress;

} // namespace

void showProgress(std::string_view what)
{
    if (isatty(STDERR_FILENO))
    {
        progress.show(what);
    }
}

void endProgress() { progress.end(); }

} // namespace morvath::tools
