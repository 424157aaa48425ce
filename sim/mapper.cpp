// SPDX-License-Identifier: Apache-2.0
#include "sim/mapper.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace morvath::sim
{
namespace
{

constexpr auto mapperInterface = mapperService;

BusError notFound()
{
    return {"xyz.openbmc_project.Common.Error.ResourceNotFound",
            "The resource is not found."};
}

bool hasOneOf(const Mapper::Names& interfaces, const Mapper::Names& wanted)
{
    return wanted.empty() || std::ranges::any_of(wanted, [&](const auto& name) {
               return std::ranges::binary_search(interfaces, name);
           });
}

bool hasOneOf(const Mapper::Owners& owners, const Mapper::Names& wanted)
{
    return std::ranges::any_of(owners, [&](const auto& owner) {
        return hasOneOf(*owner.second, wanted);
    });
}

/** The paths of the nodes above, from the root down. */
template <typename Action>
void forEachParent(std::string_view path, const Action& action)
{
    constexpr std::size_t root = 1;
    for (std::size_t end = 0; end != path.npos && path.size() > root;
         end = path.find('/', end + 1))
    {
        action(path.substr(0, std::max(end, root)));
    }
}

// What follows appends to a reply, which is thrown away after a failure.

template <typename Contents>
void appendContainer(sd_bus_message* reply, char type, const char* types,
                     const Contents& contents)
{
    check(sd_bus_message_open_container(reply, type, types));
    contents();
    check(sd_bus_message_close_container(reply));
}

/** @param[in] text  ends with a zero */
void appendText(sd_bus_message* reply, std::string_view text)
{
    check(sd_bus_message_append_basic(reply, 's', text.data()));
}

void appendOwners(sd_bus_message* reply, const Mapper::Owners& owners,
                  const Mapper::Names& wanted)
{
    appendContainer(reply, 'a', "{sas}", [&] {
        for (const auto& owner : owners)
        {
            if (!hasOneOf(*owner.second, wanted))
            {
                continue;
            }
            appendContainer(reply, 'e', "sas", [&] {
                appendText(reply, owner.first);
                appendContainer(reply, 'a', "s", [&] {
                    for (const auto& interface : *owner.second)
                    {
                        appendText(reply, interface);
                    }
                });
            });
        }
    });
}

void appendTree(sd_bus_message* reply, const Mapper::Entries& entries,
                const Mapper::Names& wanted)
{
    appendContainer(reply, 'a', "{sa{sas}}", [&] {
        for (const auto* entry : entries)
        {
            appendContainer(reply, 'e', "sa{sas}", [&] {
                appendText(reply, entry->first);
                appendOwners(reply, entry->second, wanted);
            });
        }
    });
}

void appendPaths(sd_bus_message* reply, const Mapper::Entries& entries)
{
    appendContainer(reply, 'a', "s", [&] {
        for (const auto* entry : entries)
        {
            appendText(reply, entry->first);
        }
    });
}

} // namespace

Mapper::Mapper(Services& services) : Service(services, mapperService) {}

void Mapper::prepare()
{
    constexpr uint64_t everybody = SD_BUS_VTABLE_UNPRIVILEGED;
    static constexpr sd_bus_vtable table[]{
        SD_BUS_VTABLE_START(0),
        SD_BUS_METHOD_WITH_ARGS(
            "GetObject", SD_BUS_ARGS("s", path, "as", interfaces),
            SD_BUS_RESULT("a{sas}", services), onCall, everybody),
        SD_BUS_METHOD_WITH_ARGS(
            "GetAncestors", SD_BUS_ARGS("s", path, "as", interfaces),
            SD_BUS_RESULT("a{sa{sas}}", objects), onCall, everybody),
        SD_BUS_METHOD_WITH_ARGS(
            "GetSubTree",
            SD_BUS_ARGS("s", subtree, "i", depth, "as", interfaces),
            SD_BUS_RESULT("a{sa{sas}}", objects), onCall, everybody),
        SD_BUS_METHOD_WITH_ARGS(
            "GetSubTreePaths",
            SD_BUS_ARGS("s", subtree, "i", depth, "as", interfaces),
            SD_BUS_RESULT("as", paths), onCall, everybody),
        SD_BUS_METHOD_WITH_ARGS("GetAssociatedSubTree",
                                SD_BUS_ARGS("o", association, "o", subtree, "i",
                                            depth, "as", interfaces),
                                SD_BUS_RESULT("a{sa{sas}}", objects), onCall,
                                everybody),
        SD_BUS_METHOD_WITH_ARGS("GetAssociatedSubTreePaths",
                                SD_BUS_ARGS("o", association, "o", subtree, "i",
                                            depth, "as", interfaces),
                                SD_BUS_RESULT("as", paths), onCall, everybody),
        SD_BUS_METHOD_WITH_ARGS(
            "GetAssociatedSubTreeById",
            SD_BUS_ARGS("s", id, "s", subtree, "as", interfaces, "s",
                        association, "as", endpoint_interfaces),
            SD_BUS_RESULT("a{sa{sas}}", objects), onCall, everybody),
        SD_BUS_METHOD_WITH_ARGS("GetAssociatedSubTreePathsById",
                                SD_BUS_ARGS("s", id, "s", subtree, "as",
                                            interfaces, "s", association, "as",
                                            endpoint_interfaces),
                                SD_BUS_RESULT("as", paths), onCall, everybody),
        SD_BUS_VTABLE_END,
    };
    methods = addTable(mapperPath, mapperInterface, table, this);
}

int Mapper::onCall(sd_bus_message* call, void* self,
                   sd_bus_error* error) noexcept
{
    return answering(error, [&] {
        const auto reply = newReply(call);
        static_cast<const Mapper*>(self)->answer(
            reply.get(), sd_bus_message_get_member(call), readJsonList(call));
        return sd_bus_send(nullptr, reply.get(), nullptr);
    });
}

/** @param[in] arguments  of the types that sd-bus has checked */
void Mapper::answer(sd_bus_message* reply, std::string_view method,
                    const Json& arguments) const
{
    const std::string first = arguments.front();
    const auto wanted = arguments.back().get<Names>();
    if (method == "GetObject")
    {
        const auto found = index.find(first);
        if (found == index.end() || !hasOneOf(found->second, wanted))
        {
            throw notFound();
        }
        return appendOwners(reply, found->second, wanted);
    }
    Entries found;
    if (method == "GetAncestors")
    {
        found = above(first, wanted);
    }
    else if (method.starts_with("GetSubTree"))
    {
        found = below(first, arguments[1], wanted);
    }
    else
    {
        const auto isById = method.ends_with("ById");
        const auto ends = isById ? endpointsById(arguments) : endpoints(first);
        found = isById ? below("/", 0, wanted)
                       : below(arguments[1].get_ref<const std::string&>(),
                               arguments[2], wanted);
        std::erase_if(found, [&](const auto* entry) {
            return !ends.contains(entry->first);
        });
    }
    method.find("Paths") != method.npos ? appendPaths(reply, found)
                                        : appendTree(reply, found, wanted);
}

/**
 * The root is a text, not a path: one slash too many is forgiven, and what no
 * path could be is just not found. Two of them alone are the root object, below
 * which nothing begins with two.
 */
std::string_view Mapper::known(std::string_view path) const
{
    const auto top = path.substr(0, path.size() - path.ends_with('/'));
    if (!top.empty() && !index.contains(top))
    {
        throw notFound();
    }
    return top;
}

/** @param[in] depth  how many segments below; 0 and less: all */
Mapper::Entries Mapper::below(std::string_view root, int32_t depth,
                              const Names& wanted) const
{
    // Every character of a path sorts after the slash, so a subtree is one
    // run of entries, and a name that only begins alike is no part of it.
    const auto prefix = std::string(known(root)) + '/';
    Entries found;
    for (auto entry = index.lower_bound(prefix);
         entry != index.end() && entry->first.starts_with(prefix); ++entry)
    {
        const auto rest = std::string_view(entry->first).substr(prefix.size());
        if ((depth <= 0 || std::ranges::count(rest, '/') < depth) &&
            hasOneOf(entry->second, wanted))
        {
            found.push_back(&*entry);
        }
    }
    return found;
}

Mapper::Entries Mapper::above(std::string_view path, const Names& wanted) const
{
    Entries found;
    forEachParent(known(path), [&](std::string_view parent) {
        const auto entry = index.find(parent);
        if (entry != index.end() && hasOneOf(entry->second, wanted))
        {
            found.push_back(&*entry);
        }
    });
    return found;
}

std::set<std::string> Mapper::endpoints(const std::string& association) const
{
    const auto found = present.find(association);
    return found == present.end() ? std::set<std::string>() : found->second;
}

/** Those of all objects with a name below a path. */
std::set<std::string> Mapper::endpointsById(const Json& arguments) const
{
    const auto text = [&](std::size_t position) -> const std::string& {
        return arguments[position].get_ref<const std::string&>();
    };
    std::set<std::string> ends;
    for (const auto* object : below(text(1), 0, arguments[2].get<Names>()))
    {
        if (object->first.ends_with('/' + text(0)))
        {
            ends.merge(endpoints(object->first + '/' + text(3)));
        }
    }
    return ends;
}

void Mapper::update()
{
    index.clear();
    const auto* standard = interned({});
    for (const auto& service : services.all)
    {
        // The bus's own services are no part of the platform.
        if (!service->isAlive() ||
            service->name.starts_with("org.freedesktop."))
        {
            continue;
        }
        for (const auto& [path, object] : service->objects())
        {
            index[path][service->name] = interned(object.interfaces);
            forEachParent(path, [&](std::string_view parent) {
                index[std::string(parent)].emplace(service->name, standard);
            });
        }
    }
    publish(associations());
    indexOwn();
}

/** What a service shows of an object; of none, a mere parent node. */
const Mapper::Names* Mapper::interned(const std::vector<Interface>& interfaces)
{
    Names all(standardInterfaces.begin(), standardInterfaces.end());
    for (const auto& interface : interfaces)
    {
        all.push_back(interface.name);
    }
    std::ranges::sort(all);
    return &*names.insert(std::move(all)).first;
}

Mapper::Associations Mapper::associations() const
{
    Associations result;
    const auto add = [&](const std::string& path, const std::string& name,
                         const std::string& endpoint) {
        // The names are free text, also empty for a one-way association.
        const auto object = path + '/' + name;
        if (sd_bus_object_path_is_valid(object.c_str()) > 0)
        {
            result[object].insert(endpoint);
        }
    };
    for (const auto& service : services.all)
    {
        if (!service->isAlive())
        {
            continue;
        }
        for (const auto& [path, object] : service->objects())
        {
            for (const auto& [forward, backward, endpoint] :
                 associationsOf(object.interfaces))
            {
                // One waits until its other end is there.
                if (index.contains(endpoint))
                {
                    add(path, forward, endpoint);
                    add(endpoint, backward, path);
                }
            }
        }
    }
    return result;
}

void Mapper::publish(const Associations& associations)
{
    for (const auto& [path, ends] : std::exchange(present, associations))
    {
        if (!associations.contains(path))
        {
            remove(path);
        }
    }
    for (const auto& [path, ends] : associations)
    {
        const Json value = ends;
        if (auto* own = find({path, associationInterface, "endpoints"}))
        {
            change(path, associationInterface, *own, value);
            continue;
        }
        add(path, {{associationInterface,
                    {{.name = "endpoints",
                      .type = "as",
                      .value = std::make_shared<const Json>(value),
                      .readOnly = true}}}});
    }
}

/**
 * The mapper looks at itself as well. What it finds on its own bus connection
 * has the standard interfaces; what comes with an association has not, and
 * the nodes above stay when the association goes.
 */
void Mapper::indexOwn()
{
    index[mapperPath][name] = interned({{mapperInterface, {}}});
    forEachParent(mapperPath, [&](std::string_view parent) {
        index[std::string(parent)][name] = interned({});
    });
    index["/"][name] = interned({{"org.freedesktop.DBus.ObjectManager", {}}});
    for (const auto& [path, ends] : present)
    {
        index[path][name] = &*names.insert({associationInterface}).first;
        forEachParent(
            path, [&](std::string_view parent) { ownParents.emplace(parent); });
    }
    for (const auto& parent : ownParents)
    {
        index[parent].emplace(name, &*names.insert(Names()).first);
    }
}

} // namespace morvath::sim
