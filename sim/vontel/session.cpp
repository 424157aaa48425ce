// SPDX-License-Identifier: Apache-2.0
#include "sim/vontel/session.hpp"

#include "sim/text_file.hpp"
#include "sim/vontel/control.hpp"

#include <algorithm>
#include <cstdlib>

namespace morvath::sim
{

constexpr auto sectionVariable = "MORVATH_SIM_RAID";

namespace
{

/** The library has no object to hold what it serves, hence the static one. */
std::optional<Session>& held()
{
    static std::optional<Session> session;
    return session;
}

RaidSection parseSection(const std::string& text, const std::string& name)
{
    const Json json = parseJson(text, name);
    return raidSectionFromJson({json, name});
}

RaidSection sectionOfEnvironment()
{
    const char* file = std::getenv(sectionVariable);
    if (file == nullptr || *file == '\0')
    {
        RaidSection none;
        none.hasManager = false;
        return none;
    }
    return parseSection(readTextFile(file), file);
}

} // namespace

Session& Session::current()
{
    std::optional<Session>& session = held();
    if (!session)
    {
        session.emplace(sectionOfEnvironment());
    }
    return *session;
}

std::optional<int> Session::count(const std::string& operation)
{
    const unsigned call = ++calls_[operation];
    const auto decides = [&](const RaidFault& fault) {
        return fault.operation == operation &&
               (fault.call == 0 || fault.call == call);
    };
    const auto fault = std::ranges::find_if(section_.faults, decides);
    return fault == section_.faults.end() ? std::nullopt
                                          : std::optional(fault->result);
}

const RaidController* Session::controller(std::uint32_t raidId) const
{
    const auto found = std::ranges::find(section_.controllers, raidId,
                                         &RaidController::raidId);
    return found == section_.controllers.end() ? nullptr : &*found;
}

const std::string& Session::text(CodeKind kind, std::uint8_t code) const
{
    const RaidTexts& texts = section_.texts;
    const auto& codes = texts.byCode[static_cast<std::size_t>(kind)];
    const auto found = codes.find(code);
    return found == codes.end() ? texts.unknown : found->second;
}

} // namespace morvath::sim

namespace vontel::simulation
{

using morvath::sim::Session;

void load(const std::string& section)
{
    morvath::sim::held().emplace(morvath::sim::parseSection(section, "RAID"));
}

void reset()
{
    morvath::sim::held().reset();
}

std::map<std::string, unsigned> calls()
{
    return Session::current().calls();
}

} // namespace vontel::simulation
