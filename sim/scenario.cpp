// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include "cli/words.hpp"
#include "simulation/section.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace morvath::sim
{
namespace
{

using std::filesystem::path;

std::vector<std::string> readEnumeration(const Json& list,
                                         const std::string& type)
{
    demand(type == "s", list, "only a property of type s has an enumeration");
    checkValue("as", list);
    demand(!list.empty(), list, "must not be empty");
    return list;
}

Property readProperty(const std::string& name, const Json& json,
                      const SharedJson& document)
{
    allowOnly(json, {"type", "value", "readOnly", "hidden", "enum"});
    checkName(memberName, name, json);
    checkVariant(json);
    Property property{.name = name,
                      .type = member(json, "type"),
                      .value = {document, &member(json, "value")},
                      .readOnly = flagAt(json, "readOnly", false),
                      .hidden = flagAt(json, "hidden", false)};
    withMember(json, "enum", [&](const Json& texts) {
        property.enumeration = readEnumeration(texts, property.type);
    });
    return property;
}

Interface readInterface(const std::string& name, const Json& json,
                        const SharedJson& document)
{
    demand(!isStandard(name), json,
           "every object has the standard interfaces by itself");
    checkName(interfaceName, name, json);
    Interface read{name, {}};
    for (const auto& [key, property] : asObject(json).items())
    {
        read.properties.push_back(readProperty(key, property, document));
    }
    return read;
}

Owner readOwner(const Json& json, const SharedJson& document)
{
    allowOnly(json, {"name", "interfaces"});
    const auto& name = member(json, "name");
    demand(!asText(name).starts_with(':') && name != "org.freedesktop.DBus",
           name, '"' + asText(name) + "\" is not a name to ask the bus for");
    Owner owner{asName(serviceName, name), {}};
    for (const auto& [key, one] : asObject(member(json, "interfaces")).items())
    {
        owner.interfaces.push_back(readInterface(key, one, document));
    }
    return owner;
}

/** Puts the objects of a document over those that it extends. */
void readObjects(const Json& list, const SharedJson& document,
                 std::vector<Object>& objects)
{
    std::unordered_map<std::string, std::size_t> inherited;
    for (const auto& object : objects)
    {
        inherited.emplace(object.path, inherited.size());
    }
    std::unordered_set<std::string> seen;
    for (const auto& entry : asList(list))
    {
        const auto& path = asText(member(entry, "path"));
        demand(seen.insert(path).second, entry,
               "duplicate object \"" + path + '"');
        const auto known = inherited.find(path);
        const auto isKnown = known != inherited.end();
        auto& object =
            isKnown ? objects[known->second] : objects.emplace_back();
        if (const auto* removal = findMember(entry, "remove"))
        {
            allowOnly(entry, {"path", "remove"});
            checkTrue(*removal);
            demand(isKnown, entry, "there is no such object to remove");
            object.owners.clear();
            continue;
        }
        object = readObject(entry, document);
    }
    // Last, because removing shifts the others.
    std::erase_if(objects, [](const auto& one) { return one.owners.empty(); });
}

std::set<std::string> readBehaviours(const Json& list)
{
    std::set<std::string> names;
    for (const auto& name : asList(list))
    {
        demand(isBehaviour(asText(name)), name,
               "there is no behaviour \"" + asText(name) + '"');
        names.insert(name);
    }
    return names;
}

/** The inherited section without its faults, or the document's own. */
SharedJson readRaid(const SharedJson& document, const SharedJson& inherited)
{
    if (const auto* own = findMember(*document, "raid"))
    {
        // Only checked here; the library reads it in the other process.
        vontel::simulation::read(*own);
        return {document, own};
    }
    auto section = inherited ? *inherited : Json{{"manager_present", false}};
    section.erase("faults");
    return std::make_shared<const Json>(std::move(section));
}

// Faults and the mapper are not inherited: a variant of a machine says itself
// what is wrong with it.
void readOwn(const SharedJson& document, Scenario& scenario)
{
    const auto& root = *document;
    scenario.description.clear();
    withMember(root, "description", [&](const Json& description) {
        scenario.description = asText(description);
    });
    scenario.hasMapper = flagAt(root, "mapper", true);
    withMember(root, "behaviours", [&](const Json& list) {
        scenario.behaviours = readBehaviours(list);
    });
    withMember(root, "objects", [&](const Json& list) {
        readObjects(list, document, scenario.objects);
    });
    scenario.raid = readRaid(document, scenario.raid);
    demand(!scenario.hasMapper || !scenario.services().contains(mapperService),
           root, "the object mapper's name is taken by a service");
    withMember(root, "changes", [&](const Json& list) {
        scenario.changes = readChanges(list, document, scenario);
    });
    scenario.faults.clear();
    withMember(root, "faults", [&](const Json& list) {
        scenario.faults = readFaults(list, document, scenario);
    });
}

std::string readFile(const path& file)
{
    // Also because a device or a pipe may never end.
    if (exists(file) && !is_regular_file(file))
    {
        throw ScenarioError(file.string() + ": is not a regular file");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
    {
        throw ScenarioError(file.string() + ": cannot be read");
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

/** The text of a file or of a scenario that is built in. */
std::string textOf(const path& file)
{
    const auto known = builtInScenario(file.string());
    return known.empty() ? readFile(file) : std::string(known);
}

/** What is told of a mistake in a document. */
ScenarioError located(const Mistake& mistake, const Json& document,
                      const path& source)
{
    const auto place = placeOf(mistake, document);
    std::string message = mistake.what();
    if (!mistake.knownKeys.empty())
    {
        cli::Terms known;
        for (const auto& key : mistake.knownKeys)
        {
            known.push_back({key, {}});
        }
        message = cli::unknown("key", Json::json_pointer(place).back(), known);
    }
    return ScenarioError(source.string() + ": " +
                         (place.empty() ? "/" : place) + ": " + message);
}

Scenario readScenario(std::string_view text, const path& source,
                      int extensions);

Scenario readBase(const Json& name, const path& folder, int extensions)
{
    // Only a circle gets this far.
    constexpr int mostExtensions = 32;
    demand(extensions < mostExtensions, name,
           "the scenarios extend each other in a circle");
    const auto isBuiltIn = !builtInScenario(asText(name)).empty();
    const auto file = isBuiltIn ? path(asText(name)) : folder / asText(name);
    demand(isBuiltIn || std::filesystem::is_regular_file(file), name,
           "there is no file " + file.string());
    return readScenario(textOf(file), file, extensions + 1);
}

Scenario readScenario(std::string_view text, const path& source, int extensions)
{
    const auto document = std::make_shared<Json>();
    try
    {
        parse(text, *document);
        allowOnly(*document,
                  {"format", "description", "extends", "mapper", "behaviours",
                   "objects", "faults", "changes", "raid"});
        const auto& format = member(*document, "format");
        demand(format == 1, format, "must be 1, the only format there is");
        const auto* base = findMember(*document, "extends");
        auto scenario = base ? readBase(*base, source.parent_path(), extensions)
                             : Scenario{};
        readOwn(document, scenario);
        return scenario;
    }
    catch (const Mistake& mistake)
    {
        throw located(mistake, *document, source);
    }
}

} // namespace

Scenario Scenario::parse(std::string_view json, std::string_view sourceName)
{
    return readScenario(json, sourceName, 0);
}

Scenario Scenario::load(const path& file)
{
    return readScenario(textOf(file), file, 0);
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

Object readObject(const Json& json, const SharedJson& document)
{
    allowOnly(json, {"path", "services"});
    Object object{asName(pathName, member(json, "path")), {}};
    std::unordered_set<std::string> names;
    const auto& services = member(json, "services");
    for (const auto& one : asList(services))
    {
        object.owners.push_back(readOwner(one, document));
        demand(names.insert(object.owners.back().service).second, one,
               "duplicate service");
    }
    demand(!object.owners.empty(), services, "an object needs a service");
    return object;
}

void checkRaid(const Json& section, const Json& place)
{
    try
    {
        vontel::simulation::read(section);
    }
    catch (Mistake& mistake)
    {
        mistake.below = placeOf(mistake, section);
        mistake.value = &place;
        throw;
    }
}

std::vector<Association>
associationsOf(const std::vector<Interface>& interfaces)
{
    std::vector<Association> found;
    const auto* own =
        findProperty(interfaces, associationDefinitions, "Associations");
    if (own && own->type == "a(sss)")
    {
        for (const auto& one : *own->value)
        {
            found.push_back({one[0], one[1], one[2]});
        }
    }
    return found;
}

} // namespace morvath::sim
