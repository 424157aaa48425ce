// SPDX-License-Identifier: Apache-2.0
#include "sim/changes.hpp"

#include "sim/scenario.hpp"
#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace morvath::sim
{
namespace
{

// Shorter steps would keep the platform from answering.
constexpr double shortestPeriod = 0.01;

Seconds readSeconds(const Json& json, double least)
{
    demand(json.is_number() && json.get<double>() >= least, json,
           "must be a number of seconds, at least " + Json(least).dump());
    return Seconds(json.get<double>());
}

void checkPath(const Json& path, const Scenario& machine)
{
    demand(std::ranges::find(machine.objects, asText(path), &Object::path) !=
               machine.objects.end(),
           path, "there is no such object");
}

/** The type of a property of any object that is ever at the path. */
const std::string* typeOf(const Scenario& machine, const std::string& path,
                          const std::string& interface, const std::string& name)
{
    for (const auto& object : machine.objects)
    {
        for (const auto& owner : object.owners)
        {
            const auto* found =
                object.path == path
                    ? findProperty(owner.interfaces, interface, name)
                    : nullptr;
            if (found)
            {
                return &found->type;
            }
        }
    }
    return nullptr;
}

void checkSet(const Json& change, const Json& set, Scenario& machine)
{
    checkPath(member(change, "path"), machine);
    for (const auto& [interface, properties] : asObject(set).items())
    {
        for (const auto& [name, value] : asObject(properties).items())
        {
            const auto* type = typeOf(machine, change["path"], interface, name);
            demand(type, value, "there is no such property");
            checkValue(*type, value);
        }
    }
}

void checkAddition(const Json&, const Json& object, Scenario& machine)
{
    machine.objects.push_back(readObject(object, nullptr));
}

void checkRemoval(const Json& change, const Json& remove, Scenario& machine)
{
    checkTrue(remove);
    checkPath(member(change, "path"), machine);
}

void checkService(const Json& change, const Json& flag, Scenario& machine)
{
    checkTrue(flag);
    const auto& name = member(change, "service");
    demand(machine.services().contains(asText(name)), name,
           "there is no such service");
}

SharedJson withParts(Json section, const Json& parts)
{
    for (const auto& [pointer, part] : asObject(parts).items())
    {
        try
        {
            section.at(Json::json_pointer(pointer)) = part;
        }
        catch (const Json::exception&)
        {
            throw Mistake(part, "there is no such place in the RAID section");
        }
        checkRaid(section, part);
    }
    return std::make_shared<const Json>(std::move(section));
}

void checkParts(const Json&, const Json& parts, Scenario& machine)
{
    machine.raid = withParts(*machine.raid, parts);
}

struct ChangeKind
{
    std::string_view key;
    /** What says where it happens. */
    std::string_view subject;
    /** Checks it for a machine that has, and gets, all that comes before. */
    void (*check)(const Json& change, const Json& own, Scenario& machine);
};

constexpr std::array changeKinds{
    ChangeKind{"set", "path", checkSet},
    ChangeKind{"add", "add", checkAddition},
    ChangeKind{"remove", "path", checkRemoval},
    ChangeKind{"die", "service", checkService},
    ChangeKind{"start", "service", checkService},
    ChangeKind{"raid", "raid", checkParts},
};

void checkChange(const Json& change, Scenario& machine)
{
    for (const auto& [key, subject, check] : changeKinds)
    {
        if (const auto* own = findMember(change, key))
        {
            allowOnly(change, {"after", "every", key, subject});
            return check(change, *own, machine);
        }
    }
    throw Mistake(change, "must say one of set, add, remove, die, start, raid");
}

} // namespace

std::vector<Change> readChanges(const Json& list, const SharedJson& document,
                                const Scenario& scenario)
{
    auto machine = scenario;
    std::vector<Change> changes;
    for (const auto& one : asList(list))
    {
        Change change{.after = readSeconds(member(one, "after"), 0),
                      .what = {document, &one}};
        if (const auto* every = findMember(one, "every"))
        {
            change.every = readSeconds(*every, shortestPeriod);
        }
        checkChange(one, machine);
        changes.push_back(std::move(change));
    }
    return changes;
}

Schedule::Schedule(const Scenario& scenario, Services& services,
                   std::function<void(const Json&)> raidChanged) :
    pending(scenario.changes),
    services(services),
    raid(scenario.raid),
    raidChanged(std::move(raidChanged))
{}

Seconds Schedule::next() const
{
    return std::ranges::min(pending, {}, &Change::after).after;
}

void Schedule::advance(Seconds time, bool skips)
{
    while (!pending.empty() && next() <= time)
    {
        // Of several, the first in the document.
        const auto due = std::ranges::min_element(pending, {}, &Change::after);
        const auto what = due->what;
        if (due->every > Seconds::zero())
        {
            const auto late = skips ? (time - due->after) / due->every : 0;
            due->after += due->every * (1 + std::floor(late));
        }
        else
        {
            pending.erase(due);
        }
        make(what);
    }
}

void Schedule::make(const SharedJson& change)
{
    const auto& what = *change;
    if (const auto* set = findMember(what, "set"))
    {
        const std::string path = what["path"];
        for (const auto& [interface, properties] : set->items())
        {
            for (const auto& [name, value] : properties.items())
            {
                services.change({path, interface, name}, value);
            }
        }
    }
    else if (const auto* object = findMember(what, "add"))
    {
        services.add(readObject(*object, change));
    }
    else if (what.contains("remove"))
    {
        services.remove(what["path"]);
    }
    else if (const auto* parts = findMember(what, "raid"))
    {
        raid = withParts(*raid, *parts);
        raidChanged(*raid);
    }
    else if (auto* service = services.named(asText(what["service"])))
    {
        if (what.contains("die") && service->isAlive())
        {
            service->die();
        }
        else if (what.contains("start") && !service->isAlive())
        {
            service->start();
            services.objectsChanged();
        }
    }
}

} // namespace morvath::sim
