// SPDX-License-Identifier: Apache-2.0
#include "bus/mapper.hpp"

#include "base/c_memory.hpp"
#include "base/texts.hpp"
#include "bus/message.hpp"
#include "morvath.h"

#include <cstring>
#include <iterator>
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
    const char* first = nullptr;
    reader.enter('a', "{sas}");
    while (reader.enter('e', "sas"))
    {
        const char* service = reader.text();
        first = first ? first : service;
        reader.skip("as");
        reader.leave();
    }
    reader.leave();
    return first ? first : "";
}

std::vector<MappedObject> readObjects(ReplyReader reader)
{
    std::vector<MappedObject> objects;
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

SubTree readSubTree(ReplyReader reader)
{
    SubTree tree;
    reader.enter('a', "{sa{sas}}");
    while (reader.enter('e', "sa{sas}"))
    {
        auto& [path, owners] = tree.emplace_back();
        path = reader.text();
        reader.enter('a', "{sas}");
        while (reader.enter('e', "sas"))
        {
            auto& [service, interfaces] = owners.emplace_back();
            service = reader.text();
            reader.enter('a', "s");
            while (const char* interface = reader.text())
            {
                interfaces.emplace_back(interface);
            }
            reader.leave();
            reader.leave();
        }
        reader.leave();
        reader.leave();
    }
    reader.leave();
    return tree;
}

} // namespace

Request mapperCall(const char* member, const char* root, const char* interface)
{
    const char* const interfaces[]{required(interface), nullptr};
    required(root);
    Request request(mapperService, mapperPath, mapperInterface, member);
    request.append(root).append('i', &anyDepth).append(interfaces);
    return request;
}

int32_t ObjectList::query(const char* root, const char* interface)
{
    auto request = mapperCall(subTreeMember, root, interface);
    return statusOf([&] {
        auto answer = request.call();
        objects = readObjects(ReplyReader(answer));
        reply = std::move(answer);
    });
}

std::vector<const char*> ObjectList::ownedBy(const char* prefix) const
{
    std::vector<const char*> paths;
    const auto length = std::strlen(prefix);
    for (const auto& object : objects)
    {
        if (std::strncmp(prefix, object.service, length) == 0)
        {
            paths.push_back(object.path);
        }
    }
    return paths;
}

} // namespace morvath

using namespace morvath;

int32_t getSubTree(const char* root, const char* interface, SubTree* result)
{
    auto request = mapperCall(subTreeMember, root, interface);
    return statusOf([&] {
        auto reply = request.call();
        auto added = readSubTree(ReplyReader(reply));
        result->insert(result->end(), std::move_iterator(added.begin()),
                       std::move_iterator(added.end()));
    });
}

int32_t getDbusInterface(const char* prefix, const char* root,
                         const char* interface, char*** paths, uint32_t* count)
{
    required(prefix);
    ObjectList objects;
    if (const auto code = objects.query(root, interface))
    {
        return code;
    }
    const auto kept = objects.ownedBy(prefix);
    *paths = newTexts(kept);
    // Added to and never reset: callers set it to 0 first.
    *count += static_cast<uint32_t>(kept.size());
    return success;
}
