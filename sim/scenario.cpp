// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include "sim/behaviours.hpp"
#include "sim/text_file.hpp"
#include "simulation/section.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace morvath::sim
{
namespace
{

struct BuiltIn
{
    std::string_view name;
    std::string_view (*text)();
};

constexpr std::array builtIns{BuiltIn{"default", defaultScenario},
                              BuiltIn{"busy", busyScenario}};

void checkName(const JsonCursor& place, const std::string& name,
               int (*isValid)(const char*), const char* kind)
{
    if (name.find('\0') != name.npos || isValid(name.c_str()) <= 0)
    {
        place.fail("\"" + name + "\" is not " + kind);
    }
}

bool flagAt(const JsonCursor& json, std::string_view key, bool otherwise)
{
    const auto flag = json.find(key);
    return flag ? flag->flag() : otherwise;
}

/** Reads the objects of one document. */
class ObjectReader
{
  public:
    explicit ObjectReader(SharedJson document) : document(std::move(document))
    {}

    Object object(const JsonCursor& json) const
    {
        json.allowOnly({"path", "services"});
        const auto path = json.member("path");
        checkPath(path, path.text());
        Object object{path.text(), {}};
        std::unordered_set<std::string> names;
        const auto services = json.member("services");
        services.forEachElement([&](const JsonCursor& element) {
            object.owners.push_back(owner(element));
            if (!names.insert(object.owners.back().service).second)
            {
                element.fail("the service stands here twice");
            }
        });
        if (object.owners.empty())
        {
            services.fail("an object needs a service");
        }
        return object;
    }

  private:
    Owner owner(const JsonCursor& json) const
    {
        json.allowOnly({"name", "interfaces"});
        const auto name = json.member("name");
        const auto& text = name.text();
        if (text.starts_with(':') || text == "org.freedesktop.DBus")
        {
            name.fail("\"" + text + "\" is not a name to ask the bus for");
        }
        checkServiceName(name, text);
        Owner owner{text, {}};
        json.member("interfaces")
            .forEachMember([&](const std::string& key, const JsonCursor& one) {
                owner.interfaces.push_back(interface(key, one));
            });
        return owner;
    }

    Interface interface(const std::string& name, const JsonCursor& json) const
    {
        if (std::ranges::find(standardInterfaces, name) !=
            standardInterfaces.end())
        {
            json.fail("every object has the standard interfaces by itself");
        }
        checkInterfaceName(json, name);
        Interface interface {
            name, {}
        };
        json.forEachMember([&](const std::string& key, const JsonCursor& one) {
            interface.properties.push_back(property(key, one));
        });
        return interface;
    }

    Property property(const std::string& name, const JsonCursor& json) const
    {
        json.allowOnly({"type", "value", "readOnly", "hidden", "enum"});
        checkMemberName(json, name);
        check.typed(json);
        return {name,
                json.member("type").text(),
                SharedJson(document, &json.member("value").json()),
                flagAt(json, "readOnly", false),
                flagAt(json, "hidden", false),
                enumeration(json)};
    }

    std::vector<std::string> enumeration(const JsonCursor& json) const
    {
        std::vector<std::string> texts;
        const auto list = json.find("enum");
        if (!list)
        {
            return texts;
        }
        if (json.member("type").text() != "s")
        {
            list->fail("only a property of type s has an enumeration");
        }
        list->forEachElement([&](const JsonCursor& text) {
            check.text(text);
            texts.push_back(text.text());
        });
        if (texts.empty())
        {
            list->fail("must not be empty");
        }
        return texts;
    }

    SharedJson document;
    ValueCheck check;
};

void checkRemoval(const JsonCursor& entry, bool isKnown)
{
    entry.allowOnly({"path", "remove"});
    readSwitch(entry.member("remove"));
    if (!isKnown)
    {
        entry.fail("there is no such object to remove");
    }
}

/** Puts the objects of a document over those that it extends. */
void readObjects(const JsonCursor& json, const SharedJson& document,
                 std::vector<Object>& objects)
{
    const ObjectReader reader(document);
    std::unordered_map<std::string, std::size_t> places;
    for (std::size_t place = 0; place < objects.size(); ++place)
    {
        places.emplace(objects[place].path, place);
    }
    std::unordered_set<std::string> seen;
    std::unordered_set<std::string> removed;
    json.forEachElement([&](const JsonCursor& entry) {
        const auto& path = entry.member("path").text();
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
            objects[known->second] = reader.object(entry);
        }
        else
        {
            objects.push_back(reader.object(entry));
        }
    });
    // Last, because removing shifts the places.
    std::erase_if(objects, [&](const Object& object) {
        return removed.contains(object.path);
    });
}

std::set<std::string> readBehaviours(const JsonCursor& json)
{
    std::set<std::string> names;
    json.forEachElement([&](const JsonCursor& name) {
        if (!isBehaviour(name.text()))
        {
            name.fail("there is no behaviour \"" + name.text() + "\"");
        }
        names.insert(name.text());
    });
    return names;
}

/** The inherited section without its faults, or the document's own. */
SharedJson readRaid(const JsonCursor& root, const SharedJson& document,
                    const SharedJson& inherited)
{
    if (const auto own = root.find("raid"))
    {
        // Only checked here; the library reads it in the other process.
        checkRaid(own->json(), *own);
        return {document, &own->json()};
    }
    auto section = inherited ? *inherited : Json{{"manager_present", false}};
    section.erase("faults");
    return std::make_shared<const Json>(std::move(section));
}

const BuiltIn* builtIn(std::string_view name)
{
    const auto* found = std::ranges::find(builtIns, name, &BuiltIn::name);
    return found == builtIns.end() ? nullptr : found;
}

/** Reads a scenario and, first, the ones that it extends. */
class Reader
{
  public:
    Scenario text(std::string_view text, std::string_view sourceName,
                  const std::filesystem::path& folder)
    {
        const auto document =
            std::make_shared<const Json>(parseJson(text, sourceName));
        const JsonCursor root(*document, sourceName);
        root.allowOnly({"format", "description", "extends", "mapper",
                        "behaviours", "objects", "faults", "changes", "raid"});
        const auto format = root.member("format");
        if (format.json() != 1)
        {
            format.fail("must be 1, the only format there is");
        }
        const auto extended = root.find("extends");
        auto scenario = extended ? base(*extended, folder) : Scenario{};
        readOwn(root, document, scenario);
        return scenario;
    }

    Scenario file(const std::filesystem::path& file)
    {
        return text(readTextFile(file), file.string(), file.parent_path());
    }

  private:
    Scenario base(const JsonCursor& name, const std::filesystem::path& folder)
    {
        if (const auto* known = builtIn(name.text()))
        {
            return text(known->text(), known->name, {});
        }
        // Only a circle gets this far.
        constexpr int mostBases = 32;
        if (++bases > mostBases)
        {
            name.fail("the scenarios extend each other in a circle");
        }
        const auto path = folder / name.text();
        if (!std::filesystem::is_regular_file(path))
        {
            name.fail("there is no file " + path.string());
        }
        return file(path);
    }

    // Faults and the mapper are not inherited: a variant of a machine says
    // itself what is wrong with it.
    static void readOwn(const JsonCursor& root, const SharedJson& document,
                        Scenario& scenario)
    {
        const auto description = root.find("description");
        scenario.description = description ? description->text() : "";
        scenario.hasMapper = flagAt(root, "mapper", true);
        if (const auto behaviours = root.find("behaviours"))
        {
            scenario.behaviours = readBehaviours(*behaviours);
        }
        if (const auto objects = root.find("objects"))
        {
            readObjects(*objects, document, scenario.objects);
        }
        scenario.raid = readRaid(root, document, scenario.raid);
        if (scenario.hasMapper && scenario.services().contains(mapperService))
        {
            root.fail("the object mapper's name is taken by a service");
        }
        if (const auto changes = root.find("changes"))
        {
            scenario.changes = readChanges(*changes, document, scenario);
        }
        scenario.faults.clear();
        if (const auto faults = root.find("faults"))
        {
            scenario.faults = readFaults(*faults, document);
            checkFaults(*faults, scenario);
        }
    }

    int bases = 0;
};

} // namespace

Scenario Scenario::parse(std::string_view json, std::string_view sourceName)
{
    const std::filesystem::path source(sourceName);
    return Reader().text(json, sourceName, source.parent_path());
}

Scenario Scenario::load(const std::filesystem::path& file)
{
    if (const auto* known = builtIn(file.string()))
    {
        return Reader().text(known->text(), known->name, {});
    }
    return Reader().file(file);
}

Scenario Scenario::standard() { return load("default"); }

Object readObject(const JsonCursor& json, const SharedJson& document)
{
    return ObjectReader(document).object(json);
}

void checkRaid(const Json& section, const JsonCursor& place)
{
    try
    {
        vontel::simulation::read(section);
    }
    catch (const vontel::simulation::Mistake& mistake)
    {
        place.failBelow(mistake.place, mistake.what());
    }
}

std::set<std::string> Scenario::services() const
{
    std::set<std::string> names;
    for (const auto& object : objects)
    {
        for (const auto& owner : object.owners)
        {
            names.insert(owner.service);
        }
    }
    return names;
}

void forEachAssociation(const std::vector<Interface>& interfaces,
                        const AssociationAction& action)
{
    for (const auto& interface : interfaces)
    {
        for (const auto& property : interface.properties)
        {
            if (interface.name == associationDefinitions &&
                property.name == "Associations" && property.type == "a(sss)")
            {
                for (const auto& one : *property.value)
                {
                    action(one[0].get_ref<const std::string&>(),
                           one[1].get_ref<const std::string&>(),
                           one[2].get_ref<const std::string&>());
                }
            }
        }
    }
}

std::string_view parentOf(std::string_view path)
{
    const auto slash = path.rfind('/');
    return path.substr(0, slash == 0 ? 1 : slash);
}

void checkServiceName(const JsonCursor& place, const std::string& name)
{
    checkName(place, name, sd_bus_service_name_is_valid, "a bus name");
}

void checkPath(const JsonCursor& place, const std::string& name)
{
    checkName(place, name, sd_bus_object_path_is_valid, "an object path");
}

void checkInterfaceName(const JsonCursor& place, const std::string& name)
{
    checkName(place, name, sd_bus_interface_name_is_valid, "an interface name");
}

void checkMemberName(const JsonCursor& place, const std::string& name)
{
    checkName(place, name, sd_bus_member_name_is_valid, "a member name");
}

void readSwitch(const JsonCursor& json)
{
    if (!json.flag())
    {
        json.fail("must be true");
    }
}

} // namespace morvath::sim
