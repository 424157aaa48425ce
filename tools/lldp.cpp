// SPDX-License-Identifier: Apache-2.0
#include "lldp.hpp"

#include "command.hpp"
#include "options.hpp"

#include <morvath.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace morvath::tools
{
namespace
{

struct LldpOptions
{
    std::string adapter;
    std::string port;
    std::string state;
    std::optional<Timeout> timeout;
};

constexpr auto on = "on";
constexpr auto off = "off";

// The library ends the process for a path of more than 127 characters, of
// which 72 are not these names.
constexpr std::size_t longestNames = 55;

bool isPathCharacter(char character)
{
    return (character >= 'a' && character <= 'z') ||
           (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_';
}

std::string problemOfSegment(const std::string& name)
{
    return !name.empty() && std::ranges::all_of(name, isPathCharacter)
               ? std::string()
               : "\"" + name + "\" is no segment of an object path";
}

void requirePath(const LldpOptions& options)
{
    if (options.adapter.size() + options.port.size() > longestNames)
    {
        throw CLI::ValidationError("ADAPTER PORT",
                                   "the names are too long together");
    }
}

bool apply(const LldpOptions& options)
{
    useBus(options.timeout);
    return setLldp(options.adapter, options.port, options.state == on);
}

} // namespace

bool setLldp(const std::string& adapter, const std::string& port, bool on)
{
    if (setLldpEnalbed(adapter.c_str(), port.c_str(), on) != 0)
    {
        throw std::runtime_error("port " + port + " of " + adapter +
                                 ": the platform does not answer, does not "
                                 "have it, or refuses");
    }
    return true;
}

void addLldp(cli::Program& program, CLI::App& setCommand, Action& chosen)
{
    auto* command =
        setCommand.add_subcommand("lldp", "Switch LLDP of a network port");
    const auto options = std::make_shared<LldpOptions>();
    command->callback([&chosen, options] {
        requirePath(*options);
        chosen = [options] { return apply(*options); };
    });
    command
        ->add_option("ADAPTER", options->adapter,
                     "Last segment of the adapter's object path")
        ->required()
        ->check(problemOfSegment);
    command
        ->add_option("PORT", options->port,
                     "Last segment of the port's object path")
        ->required()
        ->check(problemOfSegment);
    program.offer(
        command->add_option("STATE", options->state, "The new state, on or off")
            ->required()
            ->check(CLI::IsMember({on, off})),
        {{on, ""}, {off, ""}});
    addTimeout(*command, options->timeout);
}

} // namespace morvath::tools
