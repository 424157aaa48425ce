// SPDX-License-Identifier: Apache-2.0
#include "cli/program.hpp"

#include "cli/describe.hpp"
#include "cli/help.hpp"
#include "cli/suggest.hpp"

#include <cstdio>
#include <memory>
#include <utility>

namespace morvath::cli
{
namespace
{

constexpr int misused = 2;

} // namespace

Program::Program(About about) :
    about_(std::move(about)),
    app_(about_.summary, about_.name)
{
    app_.formatter(std::make_shared<Help>(choices_));
    app_.add_flag_callback("--describe",
                           [this] {
                               throw CLI::CallForVersion(
                                   describe(app_, about_, choices_), 0);
                           })
        ->group("");
    // Help has an empty line for a hidden group, unless another one follows.
    app_.set_help_flag();
    app_.set_help_flag("-h,--help", "Print this help and exit");
    app_.set_version_flag("--version", about_.name + ' ' + about_.version,
                          "Print the version and exit");
    app_.require_subcommand(1);
}

void Program::offer(const CLI::Option* option, Terms choices)
{
    choices_[option] = std::move(choices);
}

int Program::run(int argc, char** argv, const std::function<int()>& action)
{
    // Not earlier: commands would take it over.
    app_.footer(listOf("Exit status", about_.exitStatuses));
    try
    {
        app_.parse(argc, argv);
        return action();
    }
    catch (const CLI::Success& request)
    {
        return app_.exit(request);
    }
    catch (const CLI::ParseError& error)
    {
        std::fprintf(stderr, "%s: %s\n", about_.name.c_str(),
                     explain(app_, error).c_str());
        return misused;
    }
}

} // namespace morvath::cli
