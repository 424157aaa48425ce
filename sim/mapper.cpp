// SPDX-License-Identifier: Apache-2.0
#include "sim/mapper.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <iterator>
#include <optional>

namespace morvath::sim
{
namespace
{

constexpr auto mapperInterface = mapperService;
constexpr auto subTreeReply = "a{sa{sas}}";

BusError notFound()
{
    return {"xyz.openbmc_project.Common.Error.ResourceNotFound",
            "The resource is not found."};
}

bool hasOneOf(const Mapper::InterfaceNames& interfaces,
              const Mapper::Wanted& wanted)
{
    return wanted.empty() ||
           std::ranges::any_of(wanted, [&](const std::string& name) {
               return std::ranges::binary_search(interfaces, name);
           });
}

bool hasOneOf(const Mapper::Owners& owners, const Mapper::Wanted& wanted)
{
    return std::ranges::any_of(owners, [&](const auto& owner) {
        return hasOneOf(owner.second, wanted);
    });
}

std::string_view withoutSlash(std::string_view path)
{
    return path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
}

// What follows appends to a reply, which is thrown away after a failure.

void open(sd_bus_message* message, char type, const char* contents)
{
    check(sd_bus_message_open_container(message, type, contents),
          "sd_bus_message_open_container");
}

void close(sd_bus_message* message)
{
    check(sd_bus_message_close_container(message),
          "sd_bus_message_close_container");
}

void appendText(sd_bus_message* message, const std::string& text)
{
    check(sd_bus_message_append_basic(message, 's', text.c_str()),
          "sd_bus_message_append_basic");
}

void appendOwners(sd_bus_message* reply, const Mapper::Owners& owners,
                  const Mapper::Wanted& wanted)
{
    open(reply, 'a', "{sas}");
    for (const auto& [service, interfaces] : owners)
    {
        if (hasOneOf(interfaces, wanted))
        {
            open(reply, 'e', "sas");
            appendText(reply, service);
            open(reply, 'a', "s");
            for (const auto& interface : interfaces)
            {
                appendText(reply, interface);
            }
            close(reply);
            close(reply);
        }
    }
    close(reply);
}

void appendTree(sd_bus_message* reply, const Mapper::Entries& entries,
                const Mapper::Wanted& wanted)
{
    open(reply, 'a', "{sa{sas}}");
    for (const auto* entry : entries)
    {
        open(reply, 'e', "sa{sas}");
        appendText(reply, entry->first);
        appendOwners(reply, entry->second, wanted);
        close(reply);
    }
    close(reply);
}

void appendPaths(sd_bus_message* reply, const Mapper::Entries& entries,
                 const Mapper::Wanted&)
{
    open(reply, 'a', "s");
    for (const auto* entry : entries)
    {
        appendText(reply, entry->first);
    }
    close(reply);
}

/** Reads the arguments of a call, which sd-bus has checked, one by one. */
class Arguments
{
  public:
    explicit Arguments(sd_bus_message* call) : call(call) {}

    std::string text() { return basic<const char*>('s'); }

    std::string path() { return basic<const char*>('o'); }

    int32_t number() { return basic<int32_t>('i'); }

    Mapper::Wanted texts()
    {
        Mapper::Wanted list;
        check(sd_bus_message_enter_container(call, 'a', "s"),
              "sd_bus_message_enter_container");
        while (check(sd_bus_message_at_end(call, false),
                     "sd_bus_message_at_end") == 0)
        {
            list.push_back(text());
        }
        check(sd_bus_message_exit_container(call),
              "sd_bus_message_exit_container");
        return list;
    }

  private:
    template <typename Value>
    Value basic(char type)
    {
        Value value{};
        check(sd_bus_message_read_basic(call, type, &value),
              "sd_bus_message_read_basic");
        return value;
    }

    sd_bus_message* call;
};

using Append = void (*)(sd_bus_message* reply, const Mapper::Entries& entries,
                        const Mapper::Wanted& wanted);

void getObject(const Mapper& mapper, Arguments call, sd_bus_message* reply)
{
    const auto path = call.text();
    const auto wanted = call.texts();
    appendOwners(reply, mapper.object(path, wanted), wanted);
}

void getAncestors(const Mapper& mapper, Arguments call, sd_bus_message* reply)
{
    const auto path = call.text();
    const auto wanted = call.texts();
    appendTree(reply, mapper.ancestors(path, wanted), wanted);
}

template <Append append>
void getSubTree(const Mapper& mapper, Arguments call, sd_bus_message* reply)
{
    const auto root = call.text();
    const auto depth = call.number();
    const auto wanted = call.texts();
    append(reply, mapper.subTree(root, depth, wanted), wanted);
}

template <Append append>
void getAssociated(const Mapper& mapper, Arguments call, sd_bus_message* reply)
{
    const auto association = call.path();
    const auto root = call.path();
    const auto depth = call.number();
    const auto wanted = call.texts();
    append(reply,
           mapper.endpoints(association, mapper.subTree(root, depth, wanted)),
           wanted);
}

/** The association is that of all objects with a name below a path. */
template <Append append>
void getAssociatedById(const Mapper& mapper, Arguments call,
                       sd_bus_message* reply)
{
    const auto name = '/' + call.text();
    const auto root = call.text();
    const auto objectWanted = call.texts();
    const auto association = '/' + call.text();
    const auto wanted = call.texts();
    const auto all = mapper.subTree("/", 0, wanted);
    Mapper::Entries found;
    for (const auto* object : mapper.subTree(root, 0, objectWanted))
    {
        if (object->first.ends_with(name))
        {
            std::ranges::copy(
                mapper.endpoints(object->first + association, all),
                std::back_inserter(found));
        }
    }
    std::ranges::sort(found, {}, [](const auto* entry) -> const std::string& {
        return entry->first;
    });
    found.erase(std::unique(found.begin(), found.end()), found.end());
    append(reply, found, wanted);
}

using Method = void (*)(const Mapper& mapper, Arguments call,
                        sd_bus_message* reply);

/** What sd-bus calls for a method. */
template <Method method>
int answer(sd_bus_message* call, void* mapper, sd_bus_error* error) noexcept
{
    try
    {
        const auto reply = newReply(call);
        method(*static_cast<const Mapper*>(mapper), Arguments(call),
               reply.get());
        return sd_bus_send(nullptr, reply.get(), nullptr);
    }
    catch (const BusError& refusal)
    {
        return sd_bus_error_set(error, refusal.name().c_str(), refusal.what());
    }
    catch (const std::exception&)
    {
        return -ENOMEM;
    }
}

constexpr uint64_t everybody = SD_BUS_VTABLE_UNPRIVILEGED;

constexpr sd_bus_vtable table[]{
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD_WITH_NAMES(
        "GetObject", "sas", SD_BUS_PARAM(path) SD_BUS_PARAM(interfaces),
        "a{sas}", SD_BUS_PARAM(services), answer<getObject>, everybody),
    SD_BUS_METHOD_WITH_NAMES(
        "GetAncestors", "sas", SD_BUS_PARAM(path) SD_BUS_PARAM(interfaces),
        subTreeReply, SD_BUS_PARAM(objects), answer<getAncestors>, everybody),
    SD_BUS_METHOD_WITH_NAMES("GetSubTree", "sias",
                             SD_BUS_PARAM(subtree) SD_BUS_PARAM(depth)
                                 SD_BUS_PARAM(interfaces),
                             subTreeReply, SD_BUS_PARAM(objects),
                             answer<getSubTree<appendTree>>, everybody),
    SD_BUS_METHOD_WITH_NAMES(
        "GetSubTreePaths", "sias",
        SD_BUS_PARAM(subtree) SD_BUS_PARAM(depth) SD_BUS_PARAM(interfaces),
        "as", SD_BUS_PARAM(paths), answer<getSubTree<appendPaths>>, everybody),
    SD_BUS_METHOD_WITH_NAMES("GetAssociatedSubTree", "ooias",
                             SD_BUS_PARAM(association) SD_BUS_PARAM(subtree)
                                 SD_BUS_PARAM(depth) SD_BUS_PARAM(interfaces),
                             subTreeReply, SD_BUS_PARAM(objects),
                             answer<getAssociated<appendTree>>, everybody),
    SD_BUS_METHOD_WITH_NAMES("GetAssociatedSubTreePaths", "ooias",
                             SD_BUS_PARAM(association) SD_BUS_PARAM(subtree)
                                 SD_BUS_PARAM(depth) SD_BUS_PARAM(interfaces),
                             "as", SD_BUS_PARAM(paths),
                             answer<getAssociated<appendPaths>>, everybody),
    SD_BUS_METHOD_WITH_NAMES(
        "GetAssociatedSubTreeById", "ssassas",
        SD_BUS_PARAM(id) SD_BUS_PARAM(subtree) SD_BUS_PARAM(interfaces)
            SD_BUS_PARAM(association) SD_BUS_PARAM(endpoint_interfaces),
        subTreeReply, SD_BUS_PARAM(objects),
        answer<getAssociatedById<appendTree>>, everybody),
    SD_BUS_METHOD_WITH_NAMES(
        "GetAssociatedSubTreePathsById", "ssassas",
        SD_BUS_PARAM(id) SD_BUS_PARAM(subtree) SD_BUS_PARAM(interfaces)
            SD_BUS_PARAM(association) SD_BUS_PARAM(endpoint_interfaces),
        "as", SD_BUS_PARAM(paths), answer<getAssociatedById<appendPaths>>,
        everybody),
    SD_BUS_VTABLE_END,
};

/** What a service shows of an object, or of a mere parent node. */
Mapper::InterfaceNames namesOf(const std::vector<Interface>& interfaces)
{
    Mapper::InterfaceNames names(standardInterfaces.begin(),
                                 standardInterfaces.end());
    std::ranges::transform(interfaces, std::back_inserter(names),
                           &Interface::name);
    std::ranges::sort(names);
    return names;
}

/** The path of the node above; "/" is its own. */
std::string_view parentOf(std::string_view path)
{
    const auto slash = path.rfind('/');
    return path.substr(0, slash == 0 ? 1 : slash);
}

template <typename Action>
void forEachParent(std::string_view path, const Action& action)
{
    while (path != "/")
    {
        path = parentOf(path);
        action(std::string(path));
    }
}

} // namespace

Mapper::Mapper(Services& services) : Service(services, mapperService) {}

void Mapper::prepare()
{
    sd_bus_slot* slot = nullptr;
    check(sd_bus_add_object_vtable(connection(), &slot, mapperPath,
                                   mapperInterface, table, this),
          "sd_bus_add_object_vtable");
    methods.reset(slot);
}

void Mapper::update()
{
    entries.clear();
    for (const auto& service : services.all)
    {
        // The bus's own services are no part of the platform.
        if (service->isAlive() &&
            !service->name.starts_with("org.freedesktop."))
        {
            index(*service);
        }
    }
    const auto now = associations();
    publish(now);
    indexOwn(now);
}

void Mapper::index(const Service& service)
{
    for (const auto path : service.paths())
    {
        entries[std::string(path)][service.name] = namesOf(*service.find(path));
        forEachParent(path, [&](const std::string& parent) {
            entries[parent].emplace(service.name, namesOf({}));
        });
    }
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
        for (const auto view : service->isAlive()
                                   ? service->paths()
                                   : std::vector<std::string_view>())
        {
            const std::string path(view);
            for (const auto& [forward, backward, endpoint] :
                 associationsOf(*service->find(view)))
            {
                // One waits until its other end is there.
                if (entries.contains(endpoint))
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
    for (const auto& [path, endpoints] : published)
    {
        if (!associations.contains(path))
        {
            remove(path);
        }
    }
    for (const auto& [path, endpoints] : associations)
    {
        const Json value = endpoints;
        if (auto* own =
                Service::find({path, associationInterface, "endpoints"}))
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
    published = associations;
}

/**
 * The mapper looks at itself as well. What it finds on its own bus connection
 * has the standard interfaces; what comes with an association has not, and
 * the nodes above stay when the association goes.
 */
void Mapper::indexOwn(const Associations& associations)
{
    entries[mapperPath][name] = namesOf({{mapperInterface, {}}});
    forEachParent(mapperPath, [&](const std::string& parent) {
        entries[parent][name] = namesOf({});
    });
    entries["/"][name] = namesOf({{"org.freedesktop.DBus.ObjectManager", {}}});
    for (const auto& [path, endpoints] : associations)
    {
        entries[path][name] = {associationInterface};
        forEachParent(path, [&](const std::string& parent) {
            ownParents.insert(parent);
        });
    }
    for (const auto& parent : ownParents)
    {
        entries[parent].emplace(name, InterfaceNames{});
    }
}

const Mapper::Owners& Mapper::object(std::string_view path,
                                     const Wanted& wanted) const
{
    const auto found = entries.find(path);
    if (found == entries.end() || !hasOneOf(found->second, wanted))
    {
        throw notFound();
    }
    return found->second;
}

Mapper::Entries Mapper::subTree(std::string_view root, int32_t depth,
                                const Wanted& wanted) const
{
    // The root is a text, not a path: one slash too many is forgiven, and what
    // no path could be is just not found. Two of them alone are the root
    // object, below which nothing begins with two.
    const auto top = withoutSlash(root);
    if (!top.empty() && !entries.contains(top))
    {
        throw notFound();
    }
    // Every character of a path sorts after the slash, so a subtree is one
    // run of entries, and a name that only begins alike is no part of it.
    const auto prefix = std::string(top) + '/';
    Entries found;
    for (auto entry = entries.lower_bound(prefix);
         entry != entries.end() && entry->first.starts_with(prefix); ++entry)
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

Mapper::Entries Mapper::ancestors(std::string_view path,
                                  const Wanted& wanted) const
{
    const auto start = withoutSlash(path);
    if (!start.empty() && !entries.contains(start))
    {
        throw notFound();
    }
    Entries found;
    if (!start.empty())
    {
        forEachParent(start, [&](const std::string& parent) {
            const auto entry = entries.find(parent);
            if (entry != entries.end() && hasOneOf(entry->second, wanted))
            {
                found.push_back(&*entry);
            }
        });
    }
    std::ranges::reverse(found);
    return found;
}

Mapper::Entries Mapper::endpoints(const std::string& association,
                                  Entries entries) const
{
    const auto found = published.find(association);
    std::erase_if(entries, [&](const Index::value_type* entry) {
        return found == published.end() ||
               !found->second.contains(entry->first);
    });
    return entries;
}

} // namespace morvath::sim
