#include "command.hpp"

#include <cstdio>
#include <exception>

namespace
{

using namespace morvath::tools;

// The exit statuses of the program.
constexpr int complete = 0;
constexpr int incomplete = 1;
constexpr int misused = 2;

/** Text that did not reach its destination is no success. */
bool flushed()
{
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
    {
        return true;
    }
    std::perror("morvath: standard output");
    return false;
}

int run(int argc, char** argv)
{
    CLI::App app("Shows what a management controller knows of its platform.",
                 "morvath");
    app.set_version_flag("--version", "morvath " MORVATH_VERSION);
    app.require_subcommand(1);
    Action action;
    addShow(app, action);
    addSensors(app, action);
    addFacts(app, action);
    addGet(app, action);
    addSet(app, action);
    try
    {
        app.parse(argc, argv);
        const bool done = action();
        return flushed() && done ? complete : incomplete;
    }
    catch (const CLI::Success& request)
    {
        return app.exit(request);
    }
    catch (const CLI::ParseError& error)
    {
        std::fprintf(stderr, "morvath: %s\n", error.what());
        return misused;
    }
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return run(argc, argv);
    }
    catch (const std::exception& error)
    {
        std::fprintf(stderr, "morvath: %s\n", error.what());
        return incomplete;
    }
}
