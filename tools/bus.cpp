// SPDX-License-Identifier: Apache-2.0
#include "bus.hpp"

#include "cli/terminal_text.hpp"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <set>

/*
 * The library's calls on the bus pass through this program: a function of
 * libsystemd that the program defines itself is the program's for all
 * libraries. So it knows which object failed and why, without asking again and
 * without a list of what the library asks for. This needs libsystemd as a
 * shared library; the library itself may be linked statically.
 */
namespace morvath::tools
{
namespace
{

using Message = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;

constexpr std::string_view mapper = "xyz.openbmc_project.ObjectMapper";
constexpr auto notFound = "xyz.openbmc_project.Common.Error.ResourceNotFound";
// What libsystemd calls errors of this machine that no service told.
constexpr auto localErrors = "System.Error.";
constexpr auto absences = {
    SD_BUS_ERROR_SERVICE_UNKNOWN,  SD_BUS_ERROR_NAME_HAS_NO_OWNER,
    SD_BUS_ERROR_UNKNOWN_OBJECT,   SD_BUS_ERROR_UNKNOWN_INTERFACE,
    SD_BUS_ERROR_UNKNOWN_PROPERTY,
};

// A service that was silent for so many objects is not asked for others.
constexpr std::size_t silencesOfAService = 2;

/** What the library's calls came to. */
struct Traffic
{
    std::optional<CallFailure> failure;
    /** By service, the paths that it was silent for. */
    std::map<std::string, std::set<std::string>> silent;
    /** The answer to the first question to the mapper. */
    Message listing;
    bool isListing = true;
    std::optional<std::size_t> only;
    /** The properties of the one object, and of those below it. */
    std::set<std::string, std::less<>> properties;
};

Traffic& traffic()
{
    static Traffic all;
    return all;
}

std::string reasonFor(sd_bus* bus, int result, const sd_bus_error& error)
{
    uint64_t limit = 0;
    if (result == -ETIMEDOUT &&
        sd_bus_get_method_call_timeout(bus, &limit) >= 0)
    {
        return "timed out after " + textOf(Microseconds(limit));
    }
    if (sd_bus_error_has_name(&error, SD_BUS_ERROR_NO_REPLY))
    {
        return "ended without an answer";
    }
    if (!error.name || std::string_view(error.name).starts_with(localErrors))
    {
        return std::strerror(-result);
    }
    const auto message = orNone(error.message);
    return error.name + (message.empty() ? "" : ": " + message);
}

bool isAbsence(const std::string& service, const sd_bus_error& error)
{
    if (service == mapper)
    {
        return sd_bus_error_has_name(&error, notFound);
    }
    return std::ranges::any_of(absences, [&error](const char* name) {
        return sd_bus_error_has_name(&error, name);
    });
}

/** Whether it was silent already, so that waiting again leads nowhere. */
bool isKnownSilent(const Object& object)
{
    const auto& silent = traffic().silent;
    const auto found = silent.find(object.service);
    return found != silent.end() &&
           (found->second.size() >= silencesOfAService ||
            found->second.contains(object.path));
}

constexpr auto entries = "{sa{sas}}";

/** The listing of all objects, to be read from its first one on. */
sd_bus_message* rewoundListing()
{
    auto* listing = traffic().listing.get();
    if (listing && sd_bus_message_rewind(listing, true) >= 0 &&
        sd_bus_message_enter_container(listing, 'a', entries) > 0)
    {
        return listing;
    }
    return nullptr;
}

/** The listing with one of its objects only; null when that fails. */
sd_bus_message* listingOf(sd_bus* bus, std::size_t place)
{
    auto* listing = rewoundListing();
    for (; listing && place > 0; --place)
    {
        sd_bus_message_skip(listing, entries);
    }
    sd_bus_message* reply = nullptr;
    if (!listing ||
        sd_bus_message_new(bus, &reply, SD_BUS_MESSAGE_METHOD_RETURN) < 0)
    {
        return nullptr;
    }
    Message owned(reply);
    const auto isMade =
        sd_bus_message_open_container(reply, 'a', entries) >= 0 &&
        sd_bus_message_copy(reply, listing, false) > 0 &&
        sd_bus_message_close_container(reply) >= 0 &&
        sd_bus_message_seal(reply, 1, 0) >= 0 &&
        sd_bus_message_rewind(reply, true) >= 0;
    return isMade ? owned.release() : nullptr;
}

/** Before the library reads the reply itself. */
void keepProperties(sd_bus_message* reply)
{
    const char* name = nullptr;
    if (sd_bus_message_enter_container(reply, 'a', "{sv}") > 0)
    {
        while (sd_bus_message_enter_container(reply, 'e', "sv") > 0 &&
               sd_bus_message_read_basic(reply, 's', &name) > 0)
        {
            traffic().properties.insert(name);
            sd_bus_message_skip(reply, "v");
            sd_bus_message_exit_container(reply);
        }
    }
    sd_bus_message_rewind(reply, true);
}

} // namespace

void beginReading(std::string_view what)
{
    traffic().failure.reset();
    traffic().listing.reset();
    traffic().isListing = true;
    cli::showProgress(what);
}

const std::optional<CallFailure>& lastFailure() { return traffic().failure; }

void forgetSilences() { traffic().silent.clear(); }

std::vector<Object> listedObjects()
{
    std::vector<Object> objects;
    auto* listing = rewoundListing();
    const char* path = nullptr;
    const char* service = nullptr;
    while (listing &&
           sd_bus_message_enter_container(listing, 'e', "sa{sas}") > 0 &&
           sd_bus_message_read_basic(listing, 's', &path) > 0 &&
           sd_bus_message_enter_container(listing, 'a', "{sas}") > 0)
    {
        service = nullptr;
        while (sd_bus_message_enter_container(listing, 'e', "sas") > 0)
        {
            const char* owner = nullptr;
            sd_bus_message_read_basic(listing, 's', &owner);
            service = service ? service : owner;
            sd_bus_message_skip(listing, "as");
            sd_bus_message_exit_container(listing);
        }
        sd_bus_message_exit_container(listing);
        sd_bus_message_exit_container(listing);
        objects.push_back({path, orNone(service)});
    }
    return objects;
}

OnlyObject::OnlyObject(std::size_t place)
{
    traffic().failure.reset();
    traffic().properties.clear();
    traffic().only = place;
    traffic().isListing = true;
}

OnlyObject::~OnlyObject() { traffic().only.reset(); }

bool hasProperty(std::string_view name)
{
    return traffic().properties.contains(name);
}

} // namespace morvath::tools

using namespace morvath::tools;

int sd_bus_call(sd_bus* bus, sd_bus_message* call, uint64_t timeout,
                sd_bus_error* error, sd_bus_message** reply)
{
    static auto* const next = original<decltype(sd_bus_call)>("sd_bus_call");
    auto& all = traffic();
    const Object object{orNone(sd_bus_message_get_path(call)),
                        orNone(sd_bus_message_get_destination(call))};
    const auto member = orNone(sd_bus_message_get_member(call));
    const auto isListing = all.isListing && member == "GetSubTree";
    sd_bus_error own{};
    auto& told = error ? *error : own;
    if (isListing && all.only)
    {
        all.isListing = false;
        *reply = listingOf(bus, *all.only);
        return *reply ? 1 : sd_bus_error_set_errno(&told, -ENOMEM);
    }
    const int result = isKnownSilent(object)
                           ? sd_bus_error_set_const(&told, SD_BUS_ERROR_TIMEOUT,
                                                    "It was silent before")
                           : next(bus, call, timeout, &told, reply);
    if (result == -ETIMEDOUT)
    {
        all.silent[object.service].insert(object.path);
    }
    if (result < 0)
    {
        all.failure = {object, reasonFor(bus, result, told),
                       isAbsence(object.service, told)};
    }
    else if (isListing)
    {
        all.listing.reset(sd_bus_message_ref(*reply));
        all.isListing = false;
    }
    else if (all.only && member == "GetAll")
    {
        keepProperties(*reply);
    }
    sd_bus_error_free(&own);
    return result;
}
