// SPDX-License-Identifier: Apache-2.0
#include "sim/faults.hpp"

#include "sim/scenario.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace morvath::sim
{
namespace
{

constexpr std::string_view getAll = "GetAll";

struct ConditionKey
{
    std::string_view key;
    decltype(&Condition::service) field;
    const NameKind& kind;
    /** Whether a machine has what it names. */
    bool isOfMachine = true;
};

constexpr std::array conditionKeys{
    ConditionKey{"service", &Condition::service, serviceName},
    ConditionKey{"path", &Condition::path, pathName},
    ConditionKey{"interface", &Condition::interface, interfaceName},
    ConditionKey{"property", &Condition::property, memberName},
    ConditionKey{"member", &Condition::member, memberName, false},
};

constexpr std::array<std::pair<std::string_view, Effect>, 7> effectKeys{
    {{"error", Effect::error},
     {"delayMs", Effect::delay},
     {"reply", Effect::reply},
     {"silent", Effect::silence},
     {"die", Effect::death},
     {"missing", Effect::missing},
     {"vanished", Effect::vanished}}};

bool fits(std::string_view wanted, std::string_view actual)
{
    return wanted.empty() || wanted == actual;
}

/**
 * Whether a condition is for a property; without a name for an interface. A
 * fault may name the interface that is called or, for a properties call, the
 * interface whose properties it is about.
 */
bool fitsProperty(const Condition& when, std::string_view interface,
                  std::string_view property)
{
    return (when.interface == propertiesInterface ||
            fits(when.interface, interface)) &&
           fits(when.property, property);
}

/** Whether it is for an interface, or a property of it, that can be read. */
bool concerns(const Condition& when, const std::vector<Interface>& interfaces,
              const CallKeys& call)
{
    return std::ranges::any_of(interfaces, [&](const Interface& one) {
        const auto isMeant = [&](const Property& property) {
            return fitsProperty(when, one.name, property.name) &&
                   !(property.hidden && call.member == getAll);
        };
        return fits(call.propertyInterface, one.name) &&
               (fitsProperty(when, one.name, {}) ||
                std::ranges::any_of(one.properties, isMeant));
    });
}

/** @param[in] interfaces  those of the object; null when there is none */
bool fitsCall(const Condition& when, const CallKeys& call,
              const std::vector<Interface>* interfaces)
{
    if (!fits(when.service, call.service) || !fits(when.path, call.path) ||
        !fits(when.member, call.member))
    {
        return false;
    }
    if (call.interface != propertiesInterface)
    {
        return when.property.empty() && fits(when.interface, call.interface);
    }
    const auto isOfAll = call.member == getAll || call.member.empty();
    return fitsProperty(when, {}, {}) ||
           (isOfAll
                ? interfaces && concerns(when, *interfaces, call)
                : fitsProperty(when, call.propertyInterface, call.property));
}

/** Whether a call of a service at an object, or at a node above, could fit. */
bool canFit(const Condition& when, std::string_view service,
            std::string_view path, const std::vector<Interface>& interfaces)
{
    const auto isAbove =
        path.starts_with(when.path + (when.path == "/" ? "" : "/"));
    return std::ranges::any_of(standardInterfaces, [&](auto interface) {
        return fitsCall(when, {service, path, interface}, &interfaces) ||
               (isAbove &&
                fitsCall(when, {service, when.path, interface}, nullptr));
    });
}

/** Whether the machine has what the names of a condition say. */
bool isThere(const Condition& when, const Scenario& scenario)
{
    static const std::vector<Interface> mapper{{mapperService, {}}};
    static const std::vector<Interface> association{
        {associationInterface, {{.name = "endpoints", .type = "as"}}}};
    const auto isAtMapper = [&](const std::string& path,
                                const auto& interfaces) {
        return scenario.hasMapper &&
               canFit(when, mapperService, path, interfaces);
    };
    const auto isAtOwner = [&](const Object& object, const Owner& owner) {
        const auto isAtEnd = [&](const Association& one) {
            return isAtMapper(object.path + '/' + one.forward, association) ||
                   isAtMapper(one.endpoint + '/' + one.backward, association);
        };
        return canFit(when, owner.service, object.path, owner.interfaces) ||
               std::ranges::any_of(associationsOf(owner.interfaces), isAtEnd);
    };
    return isAtMapper(mapperPath, mapper) ||
           std::ranges::any_of(scenario.objects, [&](const Object& object) {
               return std::ranges::any_of(object.owners, [&](const Owner& one) {
                   return isAtOwner(object, one);
               });
           });
}

Condition readCondition(const Json& json, const Scenario& scenario)
{
    allowOnly(json,
              {"service", "path", "interface", "member", "property", "call"});
    Condition condition;
    for (const auto& [key, field, kind, isOfMachine] : conditionKeys)
    {
        if (const auto* name = findMember(json, key))
        {
            condition.*field = asName(kind, *name);
            demand(!isOfMachine || isThere(condition, scenario), *name,
                   "no call can meet this: the machine has no such " +
                       std::string(key));
        }
    }
    if (const auto* call = findMember(json, "call"))
    {
        condition.call = static_cast<uint32_t>(asWhole(*call, 1, UINT32_MAX));
    }
    return condition;
}

void checkReply(const Json& reply)
{
    allowOnly(reply, {"type", "value"});
    const auto& types = member(reply, "type");
    // Without types also without a value.
    asText(types).empty() ? allowOnly(reply, {"type"})
                          : checkValues(types, member(reply, "value"));
}

Effect readEffect(const Json& json)
{
    const auto* found = std::ranges::find_if(effectKeys, [&](const auto& one) {
        return findMember(json, one.first) != nullptr;
    });
    demand(found != effectKeys.end(), json,
           "must be one of error, delayMs, reply, silent, die, missing, "
           "vanished");
    const auto& [key, effect] = *found;
    const auto& own = member(json, key);
    allowOnly(json, {key, effect == Effect::error ? "message" : key});
    switch (effect)
    {
        case Effect::error:
            asName(interfaceName, own);
            withMember(json, "message",
                       [](const Json& text) { checkValue("s", text); });
            break;
        case Effect::delay: asWhole(own, 0, UINT32_MAX); break;
        case Effect::reply: checkReply(own); break;
        default: checkTrue(own);
    }
    return effect;
}

} // namespace

std::vector<Fault> readFaults(const Json& list, const SharedJson& document,
                              const Scenario& scenario)
{
    std::vector<Fault> faults;
    for (const auto& one : asList(list))
    {
        allowOnly(one, {"when", "then"});
        const auto& when = member(one, "when");
        Fault fault{.place = "/faults/" + std::to_string(faults.size()),
                    .when = readCondition(when, scenario),
                    .then = readEffect(member(one, "then")),
                    .what = {document, &one["then"]}};
        const auto isMissing = fault.then == Effect::missing;
        if (isMissing || fault.then == Effect::vanished)
        {
            demand(!fault.when.path.empty(), when,
                   "\"path\" is needed for this fault");
            demand(!fault.when.property.empty() || !isMissing, when,
                   "\"property\" is needed for this fault");
        }
        faults.push_back(std::move(fault));
    }
    return faults;
}

bool Decision::isMissing(std::string_view interface,
                         std::string_view property) const
{
    return std::ranges::any_of(missing, [&](const Fault* one) {
        return fitsProperty(one->when, interface, property);
    });
}

Decision Faults::decide(const CallKeys& call,
                        const std::vector<Interface>* interfaces)
{
    Decision decision;
    for (auto& fault : all)
    {
        const auto& when = fault.when;
        auto isMet = fitsCall(when, call, interfaces);
        if (isMet)
        {
            // Also when an earlier fault has decided already, so that the
            // order of the faults does not shift the numbers of the calls.
            ++fault.calls;
            isMet = when.call == 0 || when.call == fault.calls;
        }
        // What is always missing is not in the introspection, either.
        const auto isNeverThere = when.call == 0 && when.member.empty() &&
                                  when.path == call.path &&
                                  fits(when.service, call.service) &&
                                  call.interface != propertiesInterface;
        const auto isAbsence = fault.then == Effect::missing;
        if (isAbsence && (isMet || isNeverThere))
        {
            decision.missing.push_back(&fault);
        }
        else if (!isAbsence && isMet && !decision.fault)
        {
            decision.fault = &fault;
        }
        fault.used =
            fault.used || (isMet && (isAbsence || decision.fault == &fault));
    }
    return decision;
}

void Faults::restart()
{
    for (auto& fault : all)
    {
        fault.calls = 0;
    }
}

std::vector<std::string> Faults::unused() const
{
    std::vector<std::string> places;
    for (const auto& fault : all)
    {
        if (!fault.used)
        {
            places.push_back(fault.place);
        }
    }
    return places;
}

} // namespace morvath::sim
