// SPDX-License-Identifier: Apache-2.0
#include "sim/mapper.hpp"

#include "sim/associations.hpp"

#include <string>
#include <utility>

namespace morvath::sim
{

constexpr std::string_view mapperInterface = mapperService;
constexpr const char* associationInterface = "xyz.openbmc_project.Association";
constexpr std::string_view methods =
    R"( <interface name="xyz.openbmc_project.ObjectMapper">
  <method name="GetObject">
   <arg type="s" name="path" direction="in"/>
   <arg type="as" name="interfaces" direction="in"/>
   <arg type="a{sas}" name="services" direction="out"/>
  </method>
  <method name="GetSubTree">
   <arg type="s" name="subtree" direction="in"/>
   <arg type="i" name="depth" direction="in"/>
   <arg type="as" name="interfaces" direction="in"/>
   <arg type="a{sa{sas}}" name="objects" direction="out"/>
  </method>
  <method name="GetSubTreePaths">
   <arg type="s" name="subtree" direction="in"/>
   <arg type="i" name="depth" direction="in"/>
   <arg type="as" name="interfaces" direction="in"/>
   <arg type="as" name="paths" direction="out"/>
  </method>
 </interface>
)";

namespace
{

/** A failure leaves the message unfinished; it is thrown away then. */
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

void appendOwners(sd_bus_message* message, const MapperIndex::Owners& owners,
                  const std::vector<std::string_view>& wanted)
{
    open(message, 'a', "{sas}");
    for (const auto& [service, interfaces] : owners)
    {
        if (!hasOneOf(interfaces, wanted))
        {
            continue;
        }
        open(message, 'e', "sas");
        appendText(message, service);
        open(message, 'a', "s");
        for (const std::string& interface : interfaces)
        {
            appendText(message, interface);
        }
        close(message);
        close(message);
    }
    close(message);
}

BusError notFound()
{
    return {"xyz.openbmc_project.Common.Error.ResourceNotFound",
            "The resource is not found."};
}

std::vector<std::string_view> textList(const Value& list)
{
    std::vector<std::string_view> texts;
    for (const Value& text : list.members())
    {
        texts.push_back(*text.text());
    }
    return texts;
}

struct Query
{
    std::vector<const MapperIndex::Entry*> entries;
    std::vector<std::string_view> wanted;
};

/** The entries that both subtree methods answer with. */
Query subTree(const Request& request, const MapperIndex& index)
{
    request.expectArguments("sias");
    // The root is a text, not a path: one slash too many is forgiven, and what
    // no path could be is just not found.
    std::string_view root = request.text(0);
    if (root.size() > 1 && root.ends_with('/'))
    {
        root.remove_suffix(1);
    }
    if (root.empty())
    {
        root = "/";
    }
    if (root != "/" && !index.contains(root))
    {
        throw notFound();
    }
    const auto depth = std::get<std::int32_t>(request.arguments->at(1).data);
    Query query{index.below(root, depth), textList(request.arguments->at(2))};
    std::erase_if(query.entries, [&](const MapperIndex::Entry* entry) {
        return !hasOneOf(entry->second, query.wanted);
    });
    return query;
}

} // namespace

Mapper::Mapper(const Surroundings& surroundings) :
    Service(surroundings, mapperService, {})
{}

void Mapper::update(const std::vector<std::unique_ptr<Service>>& services)
{
    MapperIndex index;
    for (const auto& service : services)
    {
        if (service->isAlive())
        {
            index.add(service->name(), service->objects());
        }
    }
    Associations associations;
    for (const auto& service : services)
    {
        if (service->isAlive())
        {
            addAssociations(
                associations, service->objects(),
                [&](std::string_view path) { return index.contains(path); });
        }
    }
    ObjectTree own;
    own.add(mapperPath, {{std::string(mapperInterface), {}}});
    for (const auto& [path, endpoints] : associations)
    {
        Value::Members texts;
        for (const std::string& endpoint : endpoints)
        {
            texts.push_back({"s", endpoint});
        }
        own.add(path, {{associationInterface,
                        {{"endpoints", {"as", std::move(texts)}, true}}}});
    }
    // The mapper looks at itself as well; that makes it an owner of every
    // object that has associations below it.
    index.add(name(), own);
    objects() = std::move(own);
    index_ = std::move(index);
}

Message Mapper::callMethod(const Request& request)
{
    if (request.path != mapperPath || request.interface != mapperInterface)
    {
        return nullptr;
    }
    if (request.member == "GetObject")
    {
        return getObject(request);
    }
    if (request.member == "GetSubTree")
    {
        return getSubTree(request);
    }
    if (request.member == "GetSubTreePaths")
    {
        return getSubTreePaths(request);
    }
    return nullptr;
}

std::string_view Mapper::describeMethods(std::string_view path) const
{
    return path == mapperPath ? methods : std::string_view();
}

Message Mapper::getObject(const Request& request) const
{
    request.expectArguments("sas");
    const auto wanted = textList(request.arguments->at(1));
    const MapperIndex::Owners* owners = index_.find(request.text(0));
    if (owners == nullptr || !hasOneOf(*owners, wanted))
    {
        throw notFound();
    }
    Message reply = newReply(request.message);
    appendOwners(reply.get(), *owners, wanted);
    return reply;
}

Message Mapper::getSubTree(const Request& request) const
{
    const Query query = subTree(request, index_);
    Message reply = newReply(request.message);
    open(reply.get(), 'a', "{sa{sas}}");
    for (const MapperIndex::Entry* entry : query.entries)
    {
        open(reply.get(), 'e', "sa{sas}");
        appendText(reply.get(), entry->first);
        appendOwners(reply.get(), entry->second, query.wanted);
        close(reply.get());
    }
    close(reply.get());
    return reply;
}

Message Mapper::getSubTreePaths(const Request& request) const
{
    const Query query = subTree(request, index_);
    Message reply = newReply(request.message);
    open(reply.get(), 'a', "s");
    for (const MapperIndex::Entry* entry : query.entries)
    {
        appendText(reply.get(), entry->first);
    }
    close(reply.get());
    return reply;
}

} // namespace morvath::sim
