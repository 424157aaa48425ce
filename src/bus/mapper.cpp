// SPDX-License-Identifier: Apache-2.0
#include "bus/mapper.hpp"

#include "bus/c_memory.hpp"
#include "bus/call.hpp"
#include "bus/process_bus.hpp"
#include "bus/reply_reader.hpp"
#include "morvath.h"

#include <cstring>
#include <iterator>
#include <string>
#include <utility>

namespace morvath
{
namespace
{

constexpr auto mapperService = "xyz.openbmc_project.ObjectMapper";
constexpr auto mapperPath = "/xyz/openbmc_project/object_mapper";
constexpr auto mapperInterface = "xyz.openbmc_project.ObjectMapper";
constexpr auto subTreeMember = "GetSubTree";
constexpr int32_t anyDepth = 0;

const char* readFirstOwner(ReplyReader& reader)
{
    const char* service = "";
    reader.enter('a', "{sas}");
    if (reader.enter('e', "sas"))
    {
        service = reader.text();
        reader.skip("as");
        reader.leave();
    }
    while (reader.enter('e', "sas"))
    {
        reader.skip("sas");
        reader.leave();
    }
    reader.leave();
    return service;
}

std::vector<MappedObject> readObjects(sdbusplus::message_t& reply)
{
    std::vector<MappedObject> objects;
    ReplyReader reader(reply);
    reader.enter('a', "{sa{sas}}");
    while (reader.enter('e', "sa{sas}"))
    {
        const char* path = reader.text();
        objects.push_back({path, readFirstOwner(reader)});
        reader.leave();
    }
    reader.leave();
    return objects;
}

} // namespace

sdbusplus::message_t newMapperCall(const char* member, const char* root,
                                   const char* interface)
{
    auto request = processBus.new_method_call(mapperService, mapperPath,
                                              mapperInterface, member);
    request.append(root, anyDepth, std::vector<std::string>{interface});
    return request;
}

bool MappedObject::isOwnedBy(const char* prefix) const
{
    return std::strncmp(prefix, service, std::strlen(prefix)) == 0;
}

const char* ObjectList::firstOwnedBy(const char* prefix) const
{
    for (const auto& object : objects)
    {
        if (object.isOwnedBy(prefix))
        {
            return object.path;
        }
    }
    return nullptr;
}

int32_t ObjectList::query(const char* root, const char* interface)
{
    auto request = newMapperCall(subTreeMember, root, interface);
    return statusOf([&] {
        auto answer = processBus.call(request);
        objects = readObjects(answer);
        reply = std::move(answer);
    });
}

} // namespace morvath

using namespace morvath;

int32_t getSubTree(const char* root, const char* interface, SubTree* result)
{
    auto request = newMapperCall(subTreeMember, root, interface);
    return statusOf([&] {
        SubTree added;
        processBus.call(request).read(added);
        result->insert(result->end(), std::move_iterator(added.begin()),
                       std::move_iterator(added.end()));
    });
}

int32_t getDbusInterface(const char* prefix, const char* root,
                         const char* interface, char*** paths, uint32_t* count)
{
    ObjectList objects;
    if (const auto code = objects.query(root, interface))
    {
        return code;
    }

    std::vector<const char*> kept;
    for (const auto& object : objects)
    {
        if (object.isOwnedBy(prefix))
        {
            kept.push_back(object.path);
        }
    }

    TextArray copies(kept.size());
    for (std::size_t index = 0; index < kept.size(); ++index)
    {
        copies.set(index, copyText(kept[index]));
    }
    *paths = copies.release();
    // Added to and never reset: callers set it to 0 first.
    *count += static_cast<uint32_t>(kept.size());
    return success;
}
