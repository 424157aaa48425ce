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

struct ConditionKey
{
    std::string_view key;
    std::string Condition::*field;
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
 * A fault may name the interface that is called or, for a properties call,
 * the interface whose properties it is about.
 */
bool fitsInterface(const Condition& when, std::string_view name)
{
    return when.interface == propertiesInterface || fits(when.interface, name);
}

/**
 * Whether one of the interfaces, and a property of it, is what the condition
 * names.
 * @param[in] requested  only this interface; empty for all
 * @param[in] isGetAll   hidden properties are not meant
 */
bool concerns(const Condition& when, const std::vector<Interface>& interfaces,
              std::string_view requested, bool isGetAll)
{
    return std::ranges::any_of(interfaces, [&](const Interface& one) {
        const auto isProperty = [&](const Property& property) {
            return property.name == when.property &&
                   !(isGetAll && property.hidden);
        };
        return fits(requested, one.name) && fitsInterface(when, one.name) &&
               (when.property.empty() ||
                std::ranges::any_of(one.properties, isProperty));
    });
}

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
    if (when.property.empty() && fitsInterface(when, {}))
    {
        return true;
    }
    if (call.member == "GetAll")
    {
        return interfaces &&
               concerns(when, *interfaces, call.propertyInterface, true);
    }
    return fitsInterface(when, call.propertyInterface) &&
           fits(when.property, call.property);
}

/** Whether there is what a condition names at an object or a node above it. */
bool isThere(const Condition& when, std::string_view service,
             std::string_view path, const std::vector<Interface>& interfaces)
{
    const auto isBare = when.property.empty() &&
                        (when.interface.empty() || isStandard(when.interface));
    const auto isAbove = [&] {
        return when.path == "/" || path.starts_with(when.path + '/');
    };
    return fits(when.service, service) &&
           (fits(when.path, path) || (isBare && isAbove())) &&
           (isBare || concerns(when, interfaces, {}, false));
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
               isThere(when, mapperService, path, interfaces);
    };
    const auto isAtOwner = [&](const Object& object, const Owner& owner) {
        const auto isAtEnd = [&](const Association& one) {
            return isAtMapper(object.path + '/' + one.forward, association) ||
                   isAtMapper(one.endpoint + '/' + one.backward, association);
        };
        return isThere(when, owner.service, object.path, owner.interfaces) ||
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

void readReply(const Json& json, const SharedJson& document, Fault& fault)
{
    allowOnly(json, {"type", "value"});
    const auto& types = member(json, "type");
    fault.replyTypes = asText(types);
    if (fault.replyTypes.empty())
    {
        // Without a value, too.
        return allowOnly(json, {"type"});
    }
    fault.reply = {document, &member(json, "value")};
    checkValues(types, *fault.reply);
}

void readEffect(const Json& json, const SharedJson& document, Fault& fault)
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
    fault.then = effect;
    switch (effect)
    {
        case Effect::error:
            fault.errorName = asName(interfaceName, own);
            if (const auto* text = findMember(json, "message"))
            {
                checkValue("s", *text);
                fault.errorText = *text;
            }
            return;
        case Effect::delay:
            fault.milliseconds =
                static_cast<uint32_t>(asWhole(own, 0, UINT32_MAX));
            return;
        case Effect::reply: return readReply(own, document, fault);
        default: checkTrue(own);
    }
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
                    .when = readCondition(when, scenario)};
        readEffect(member(one, "then"), document, fault);
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
        return one->when.property == property &&
               fitsInterface(one->when, interface);
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
