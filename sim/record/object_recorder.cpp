// SPDX-License-Identifier: Apache-2.0
#include "sim/record/object_recorder.hpp"

#include "sim/record/owner_recorder.hpp"
#include "sim/scenario.hpp"

namespace morvath::sim
{

namespace
{

/** Without an interface of its own, something below it may be its reason. */
bool isParent(const MappedObjects& objects, const Source& source)
{
    const std::string prefix = source.path == "/" ? "/" : source.path + "/";
    for (auto below = objects.upper_bound(prefix);
         below != objects.end() && below->first.starts_with(prefix); ++below)
    {
        if (below->second.contains(source.service))
        {
            return true;
        }
    }
    return false;
}

bool isRecorded(const std::string& service, const std::set<std::string>& wanted)
{
    // What the mapper publishes itself follows from the other objects.
    return service != mapperService &&
           (wanted.empty() || wanted.contains(service));
}

} // namespace

Json ObjectRecorder::record(const MappedObjects& objects,
                            const std::set<std::string>& wanted)
{
    Json recorded = Json::array();
    std::set<std::string> missing = wanted;
    for (const auto& [path, owners] : objects)
    {
        Json services = Json::array();
        for (const auto& [service, interfaces] : owners)
        {
            missing.erase(service);
            const Source source{path, service};
            if (!isRecorded(service, wanted))
            {
                continue;
            }
            const auto owner = recordOwner(source, interfaces, objects);
            if (owner)
            {
                services.push_back({{"name", service}, {"interfaces", *owner}});
            }
        }
        if (!services.empty())
        {
            recorded.push_back({{"path", path}, {"services", services}});
        }
    }
    for (const std::string& service : missing)
    {
        omissions_.tell(service, "the object mapper does not know the service");
    }
    return recorded;
}

std::optional<Json>
ObjectRecorder::recordOwner(const Source& source,
                            const std::vector<std::string>& interfaces,
                            const MappedObjects& objects)
{
    if (lostServices_.contains(source.service))
    {
        return std::nullopt;
    }
    try
    {
        return OwnerRecorder(reader_, omissions_, source).record(interfaces);
    }
    catch (const ServiceLost& loss)
    {
        lostServices_.insert(source.service);
        omissions_.tell(source.service + ", from object " + source.path + " on",
                        loss.what());
    }
    catch (const ObjectGone& loss)
    {
        if (hasOwnInterfaces(interfaces) || !isParent(objects, source))
        {
            omissions_.tell(source.path + ": " + source.service, loss.what());
        }
    }
    catch (const BusError& error)
    {
        omissions_.tell(source.path + ": " + source.service, error.what());
    }
    return std::nullopt;
}

} // namespace morvath::sim
