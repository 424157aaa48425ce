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

void demandFound(bool isFound)
{
    if (!isFound)
    {
        throw BusError("xyz.openbmc_project.Common.Error.ResourceNotFound",
                       "The resource is not found.");
    }
}

const std::string& textOf(const Json& argument)
{
    return argument.get_ref<const std::string&>();
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

void openContainer(sd_bus_message* reply, char container, const char* types)
{
    check(sd_bus_message_open_container(reply, container, types));
}

void closeContainer(sd_bus_message* reply)
{
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
    openContainer(reply, 'a', "{sas}");
    for (const auto& [service, interfaces] : owners)
    {
        if (hasOneOf(*interfaces, wanted))
        {
            openContainer(reply, 'e', "sas");
            appendText(reply, service);
            openContainer(reply, 'a', "s");
            for (const auto& interface : *interfaces)
            {
                appendText(reply, interface);
            }
            closeContainer(reply);
            closeContainer(reply);
        }
    }
    closeContainer(reply);
}

} // namespace

void Mapper::prepare()
{
    constexpr auto owners = "a{sas}";
    constexpr auto tree = "a{sa{sas}}";
    constexpr auto paths = "as";
    constexpr auto method = [](const char* name, const char* arguments,
                               const char* names, const char* result) {
        return sd_bus_vtable SD_BUS_METHOD_WITH_NAMES(
            name, arguments, names, result, , onCall,
            SD_BUS_VTABLE_UNPRIVILEGED);
    };
    static constexpr sd_bus_vtable table[]{
        SD_BUS_VTABLE_START(0),
        method("GetObject", "sas", "path\0interfaces\0services\0", owners),
        method("GetAncestors", "sas", "path\0interfaces\0objects\0", tree),
        method("GetSubTree", "sias", "subtree\0depth\0interfaces\0objects\0",
               tree),
        method("GetSubTreePaths", "sias", "subtree\0depth\0interfaces\0paths\0",
               paths),
        method("GetAssociatedSubTree", "ooias",
               "association\0subtree\0depth\0interfaces\0objects\0", tree),
        method("GetAssociatedSubTreePaths", "ooias",
               "association\0subtree\0depth\0interfaces\0paths\0", paths),
        method("GetAssociatedSubTreeById", "ssassas",
               "id\0subtree\0interfaces\0association\0"
               "endpoint_interfaces\0objects\0",
               tree),
        method("GetAssociatedSubTreePathsById", "ssassas",
               "id\0subtree\0interfaces\0association\0"
               "endpoint_interfaces\0paths\0",
               paths),
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
    const auto& first = textOf(arguments[0]);
    const auto wanted = arguments.back().get<Names>();
    if (method == "GetObject")
    {
        const auto found = index.find(first);
        demandFound(found != index.end() && hasOneOf(found->second, wanted));
        return appendOwners(reply, found->second, wanted);
    }
    const auto isPaths = method.find("Paths") != method.npos;
    const auto isAssociated = method.starts_with("GetAssociated");
    const auto isById = method.ends_with("ById");
    const auto ends = isById ? endpointsById(arguments) : endpoints(first);
    const auto append = [&](const Index::value_type& object) {
        if (!hasOneOf(object.second, wanted) ||
            (isAssociated && !ends.contains(object.first)))
        {
            return;
        }
        if (isPaths)
        {
            return appendText(reply, object.first);
        }
        openContainer(reply, 'e', "sa{sas}");
        appendText(reply, object.first);
        appendOwners(reply, object.second, wanted);
        closeContainer(reply);
    };
    openContainer(reply, 'a', isPaths ? "s" : "{sa{sas}}");
    if (method == "GetAncestors")
    {
        forEachParent(known(first), [&](std::string_view parent) {
            // The index has all parents of what it has.
            append(*index.find(parent));
        });
    }
    else if (isById)
    {
        forEachBelow("/", 0, append);
    }
    else
    {
        forEachBelow(textOf(arguments[isAssociated]),
                     arguments[1 + isAssociated], append);
    }
    closeContainer(reply);
}

/**
 * The root is a text, not a path: one slash too many is forgiven, and what no
 * path could be is just not found. Two of them alone are the root object, below
 * which nothing begins with two.
 */
std::string_view Mapper::known(std::string_view path) const
{
    const auto top = path.substr(0, path.size() - path.ends_with('/'));
    demandFound(top.empty() || index.contains(top));
    return top;
}

/** @param[in] depth  how many segments below; 0 and less: all */
void Mapper::forEachBelow(std::string_view root, int32_t depth,
                          const auto& action) const
{
    // Every character of a path sorts after the slash, so a subtree is one
    // run of entries, and a name that only begins alike is not in it.
    const auto prefix = std::string(known(root)) + '/';
    for (auto object = index.lower_bound(prefix);
         object != index.end() && object->first.starts_with(prefix); ++object)
    {
        const auto rest = std::string_view(object->first).substr(prefix.size());
        if (depth <= 0 || std::ranges::count(rest, '/') < depth)
        {
            action(*object);
        }
    }
}

Mapper::Paths Mapper::endpoints(const std::string& association) const
{
    const auto found = associations.find(association);
    return found == associations.end() ? Paths() : found->second;
}

/** Those of all objects with a name below a path. */
Mapper::Paths Mapper::endpointsById(const Json& arguments) const
{
    Paths ends;
    const auto wanted = arguments[2].get<Names>();
    forEachBelow(textOf(arguments[1]), 0, [&](const auto& object) {
        if (object.first.ends_with('/' + textOf(arguments[0])) &&
            hasOneOf(object.second, wanted))
        {
            ends.merge(endpoints(object.first + '/' + textOf(arguments[3])));
        }
    });
    return ends;
}

void Mapper::update()
{
    index.clear();
    std::vector<std::pair<std::string, Association>> defined;
    for (const auto& service : services.all)
    {
        if (!service->isAlive())
        {
            continue;
        }
        for (const auto& [path, object] : service->objects())
        {
            for (const auto& one : associationsOf(object.interfaces))
            {
                defined.emplace_back(path, one);
            }
            // The bus's own services are not part of the platform.
            if (!service->name.starts_with("org.freedesktop."))
            {
                list(path, *service, object.interfaces);
            }
        }
    }
    for (auto& [path, ends] : associations)
    {
        ends.clear();
    }
    for (const auto& [path, one] : defined)
    {
        // One waits until its other end is there.
        if (index.contains(one.endpoint))
        {
            associate(path, one.forward, one.endpoint);
            associate(one.endpoint, one.backward, path);
        }
    }
    // The mapper looks at itself as well.
    list(mapperPath, *this, {{mapperInterface, {}}});
    index["/"][name] = shown({{"org.freedesktop.DBus.ObjectManager", {}}});
    for (const auto& [path, ends] : associations)
    {
        publish(path, ends);
    }
}

/** What a service shows of an object; of none, a mere parent node. */
const Mapper::Names* Mapper::shown(const std::vector<Interface>& interfaces)
{
    Names all(standardInterfaces.begin(), standardInterfaces.end());
    for (const auto& interface : interfaces)
    {
        all.push_back(interface.name);
    }
    std::ranges::sort(all);
    return share(std::move(all));
}

void Mapper::list(const std::string& path, const Service& service,
                  const std::vector<Interface>& interfaces)
{
    index[path][service.name] = shown(interfaces);
    listAbove(path, service, standard);
}

void Mapper::listAbove(std::string_view path, const Service& service,
                       const Names* interfaces)
{
    forEachParent(path, [&](std::string_view parent) {
        index[std::string(parent)].emplace(service.name, interfaces);
    });
}

/** The names are free text, also empty for a one-way association. */
void Mapper::associate(const std::string& path, const std::string& name,
                       const std::string& endpoint)
{
    const auto object = path + '/' + name;
    if (sd_bus_object_path_is_valid(object.c_str()) > 0)
    {
        associations[object].insert(endpoint);
    }
}

/**
 * Other than what the mapper finds on its own bus connection, what comes with
 * an association has no standard interfaces, and the nodes above stay when the
 * association goes.
 */
void Mapper::publish(const std::string& path, const Paths& ends)
{
    listAbove(path, *this, share({}));
    if (ends.empty())
    {
        return remove(path);
    }
    index[path][name] = share({associationInterface});
    const Json value = ends;
    if (auto* own = find({path, associationInterface, "endpoints"}))
    {
        return change(path, associationInterface, *own, value);
    }
    add(path, {{associationInterface,
                {{.name = "endpoints",
                  .type = "as",
                  .value = std::make_shared<const Json>(value),
                  .readOnly = true}}}});
}

} // namespace morvath::sim
