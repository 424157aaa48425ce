// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include "sim/default_scenario.hpp"
#include "sim/object_reader.hpp"
#include "sim/text_file.hpp"
#include "sim/vontel/section.hpp"

#include <algorithm>
#include <map>
#include <utility>

namespace morvath::sim
{

constexpr std::string_view defaultName = "default";

/** Reads a scenario and, first, the ones that it extends. */
class ScenarioReader
{
  public:
    Scenario readText(std::string_view text, std::string_view sourceName,
                      const std::filesystem::path& folder)
    {
        const Json json = parseJson(text, sourceName);
        const JsonCursor root(json, sourceName);
        root.allowOnly({"format", "description", "extends", "mapper",
                        "behaviours", "objects", "faults", "raid"});
        const JsonCursor format = root.member("format");
        if (format.json() != 1)
        {
            format.fail("must be 1, the only format there is");
        }
        Scenario scenario;
        if (const auto base = root.find("extends"))
        {
            scenario = readBase(*base, folder);
        }
        readOwn(root, scenario);
        return scenario;
    }

    Scenario readFile(const std::filesystem::path& file)
    {
        return readText(readTextFile(file), file.string(), file.parent_path());
    }

  private:
    Scenario readBase(const JsonCursor& base,
                      const std::filesystem::path& folder)
    {
        if (base.text() == defaultName)
        {
            return Scenario::standard();
        }
        // Only a circle gets this far.
        constexpr int depthLimit = 32;
        if (++depth_ > depthLimit)
        {
            base.fail("the scenarios extend each other in a circle");
        }
        const std::filesystem::path file = folder / base.text();
        if (!std::filesystem::is_regular_file(file))
        {
            base.fail("there is no file " + file.string());
        }
        return readFile(file);
    }

    // Faults and the mapper are not inherited: a variant of a machine says
    // itself what is wrong with it.
    static void readOwn(const JsonCursor& root, Scenario& scenario)
    {
        const auto description = root.find("description");
        scenario.description_ = description ? description->text() : "";
        const auto mapper = root.find("mapper");
        scenario.hasMapper_ = mapper ? mapper->flag() : true;
        const auto faults = root.find("faults");
        scenario.faults_ =
            faults ? faultsFromJson(*faults) : std::vector<Fault>{};
        if (const auto behaviours = root.find("behaviours"))
        {
            scenario.behaviours_ = behavioursFromJson(*behaviours);
        }
        if (const auto objects = root.find("objects"))
        {
            readObjects(*objects, scenario.objects_);
        }
        readRaid(root, scenario.raid_);
        if (scenario.hasMapper_ && scenario.services().contains(mapperService))
        {
            root.fail("the object mapper's name is taken by a service");
        }
    }

    static std::set<Behaviour> behavioursFromJson(const JsonCursor& json)
    {
        std::set<Behaviour> behaviours;
        json.forEachElement([&](const JsonCursor& name) {
            const auto behaviour = behaviourOf(name.text());
            if (!behaviour)
            {
                name.fail("there is no behaviour \"" + name.text() + "\"");
            }
            behaviours.insert(*behaviour);
        });
        return behaviours;
    }

    static void readRaid(const JsonCursor& root, Json& section)
    {
        section.erase("faults");
        if (const auto own = root.find("raid"))
        {
            // Only checked here; the library reads it in the other process.
            raidSectionFromJson(*own);
            section = own->json();
        }
    }

    static void readObjects(const JsonCursor& json,
                            std::vector<Object>& objects)
    {
        std::map<std::string, std::size_t> places;
        for (std::size_t place = 0; place < objects.size(); place++)
        {
            places.emplace(objects[place].path, place);
        }
        std::set<std::string> seen;
        std::set<std::string> removed;
        json.forEachElement([&](const JsonCursor& entry) {
            const std::string path = entry.member("path").text();
            if (!seen.insert(path).second)
            {
                entry.fail("the object \"" + path + "\" stands here twice");
            }
            const auto known = places.find(path);
            if (entry.find("remove"))
            {
                checkRemoval(entry, known != places.end());
                removed.insert(path);
            }
            else if (known != places.end())
            {
                objects[known->second] = objectFromJson(entry);
            }
            else
            {
                objects.push_back(objectFromJson(entry));
            }
        });
        // Last, because removing shifts the places.
        std::erase_if(objects, [&](const Object& object) {
            return removed.contains(object.path);
        });
    }

    static void checkRemoval(const JsonCursor& entry, bool isKnown)
    {
        entry.allowOnly({"path", "remove"});
        if (!entry.member("remove").flag())
        {
            entry.member("remove").fail("must be true");
        }
        if (!isKnown)
        {
            entry.fail("there is no such object to remove");
        }
    }

    int depth_ = 0;
};

Scenario Scenario::parse(std::string_view json, std::string_view sourceName)
{
    const std::filesystem::path source(sourceName);
    return ScenarioReader().readText(json, sourceName, source.parent_path());
}

Scenario Scenario::load(const std::filesystem::path& file)
{
    return ScenarioReader().readFile(file);
}

Scenario Scenario::standard()
{
    return ScenarioReader().readText(defaultScenario(), defaultName, {});
}

std::set<std::string> Scenario::services() const
{
    std::set<std::string> names;
    for (const Object& object : objects_)
    {
        for (const Owner& owner : object.owners)
        {
            names.insert(owner.service);
        }
    }
    return names;
}

} // namespace morvath::sim
