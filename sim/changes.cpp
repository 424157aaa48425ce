// SPDX-License-Identifier: Apache-2.0
#include "sim/changes.hpp"

#include "sim/scenario.hpp"
#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <utility>

namespace morvath::sim
{
namespace
{

using Pointer = Json::json_pointer;

// Shorter steps would keep the platform from answering.
constexpr double shortestPeriod = 0.01;

Seconds readSeconds(const JsonCursor& json, double least)
{
    if (!json.json().is_number() || json.json().get<double>() < least)
    {
        json.fail("must be a number of seconds, at least " +
                  Json(least).dump());
    }
    return Seconds(json.json().get<double>());
}

const Property* propertyOf(const Object& object, const std::string& interface,
                           const std::string& name)
{
    for (const auto& owner : object.owners)
    {
        for (const auto& one : owner.interfaces)
        {
            const auto found =
                std::ranges::find(one.properties, name, &Property::name);
            if (one.name == interface && found != one.properties.end())
            {
                return &*found;
            }
        }
    }
    return nullptr;
}

/** Checks changes against the objects that there are, now or later. */
class Checker
{
  public:
    Checker(const Scenario& scenario, const SharedJson& document) :
        objects(scenario.objects),
        raid(*scenario.raid),
        document(document)
    {}

    void check(const JsonCursor& json)
    {
        for (const auto& [key, subject, checkOne] : kinds)
        {
            if (const auto own = json.find(key))
            {
                json.allowOnly({"after", "every", key, subject});
                return (this->*checkOne)(json, *own);
            }
        }
        json.fail("must say one of set, add, remove, die, start, raid");
    }

  private:
    struct Kind
    {
        std::string_view key;
        std::string_view subject;
        void (Checker::*check)(const JsonCursor& json, const JsonCursor& own);
    };

    static const std::array<Kind, 6> kinds;

    std::vector<const Object*> at(const JsonCursor& json) const
    {
        const auto path = json.member("path");
        std::vector<const Object*> found;
        for (const auto& object : objects)
        {
            if (object.path == path.text())
            {
                found.push_back(&object);
            }
        }
        if (found.empty())
        {
            path.fail("there is no such object");
        }
        return found;
    }

    void set(const JsonCursor& json, const JsonCursor& own)
    {
        const auto found = at(json);
        const auto checkValue = [&](const std::string& interface,
                                    const std::string& name,
                                    const JsonCursor& value) {
            for (const auto* object : found)
            {
                if (const auto* property = propertyOf(*object, interface, name))
                {
                    return values.value(property->type, value);
                }
            }
            value.fail("there is no such property");
        };
        own.forEachMember(
            [&](const std::string& interface, const JsonCursor& properties) {
                properties.forEachMember(
                    [&](const std::string& name, const JsonCursor& value) {
                        checkValue(interface, name, value);
                    });
            });
    }

    void add(const JsonCursor&, const JsonCursor& own)
    {
        objects.push_back(readObject(own, document));
    }

    void remove(const JsonCursor& json, const JsonCursor& own)
    {
        readSwitch(own);
        at(json);
    }

    void service(const JsonCursor& json, const JsonCursor& own)
    {
        readSwitch(own);
        const auto name = json.member("service");
        const auto isOf = [&](const Object& object) {
            return std::ranges::find(object.owners, name.text(),
                                     &Owner::service) != object.owners.end();
        };
        if (std::ranges::none_of(objects, isOf))
        {
            name.fail("there is no such service");
        }
    }

    void section(const JsonCursor&, const JsonCursor& own)
    {
        own.forEachMember([&](const std::string& key, const JsonCursor& part) {
            try
            {
                raid.at(Pointer(key)) = part.json();
            }
            catch (const Json::exception&)
            {
                part.fail("there is no such place in the RAID section");
            }
            checkRaid(raid, part);
        });
    }

    std::vector<Object> objects;
    Json raid;
    const SharedJson& document;
    const ValueCheck values;
};

const std::array<Checker::Kind, 6> Checker::kinds{
    {{"set", "path", &Checker::set},
     {"add", "add", &Checker::add},
     {"remove", "path", &Checker::remove},
     {"die", "service", &Checker::service},
     {"start", "service", &Checker::service},
     {"raid", "raid", &Checker::section}}};

void set(Services& services, const std::string& path, const Json& interfaces)
{
    for (const auto& [interface, properties] : interfaces.items())
    {
        for (const auto& [name, value] : properties.items())
        {
            services.change({path, interface, name}, value);
        }
    }
}

} // namespace

std::vector<Change> readChanges(const JsonCursor& json,
                                const SharedJson& document,
                                const Scenario& scenario)
{
    Checker checker(scenario, document);
    std::vector<Change> changes;
    json.forEachElement([&](const JsonCursor& one) {
        Change change{.after = readSeconds(one.member("after"), 0),
                      .what = SharedJson(document, &one.json()),
                      .document = document};
        if (const auto every = one.find("every"))
        {
            change.every = readSeconds(*every, shortestPeriod);
        }
        checker.check(one);
        changes.push_back(std::move(change));
    });
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

void Schedule::advance(Seconds time)
{
    while (!pending.empty() && next() <= time)
    {
        // Of several, the first in the document.
        const auto due = std::ranges::min_element(pending, {}, &Change::after);
        const auto change = *due;
        if (change.every > Seconds::zero())
        {
            due->after += change.every;
        }
        else
        {
            pending.erase(due);
        }
        make(change);
    }
}

void Schedule::make(const Change& change)
{
    const auto& what = *change.what;
    if (what.contains("set"))
    {
        set(services, what["path"], what["set"]);
    }
    else if (what.contains("add"))
    {
        services.add(
            readObject(JsonCursor(what["add"], "change"), change.document));
    }
    else if (what.contains("remove"))
    {
        services.remove(what["path"]);
    }
    else if (what.contains("raid"))
    {
        changeRaid(what["raid"]);
    }
    else if (auto* service = services.named(what["service"].get<std::string>()))
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

void Schedule::changeRaid(const Json& parts)
{
    auto section = *raid;
    for (const auto& [key, part] : parts.items())
    {
        section.at(Pointer(key)) = part;
    }
    raid = std::make_shared<const Json>(std::move(section));
    raidChanged(*raid);
}

} // namespace morvath::sim
