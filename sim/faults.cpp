// SPDX-License-Identifier: Apache-2.0
#include "sim/faults.hpp"

#include "sim/scenario.hpp"

#include <algorithm>
#include <array>

namespace morvath::sim
{
namespace
{

struct NameKey
{
    std::string_view key;
    std::string Condition::*field;
    void (*check)(const JsonCursor& place, const std::string& name);
};

constexpr std::array nameKeys{
    NameKey{"service", &Condition::service, checkServiceName},
    NameKey{"path", &Condition::path, checkPath},
    NameKey{"interface", &Condition::interface, checkInterfaceName},
    NameKey{"member", &Condition::member, checkMemberName},
    NameKey{"property", &Condition::property, checkMemberName},
};

Condition readCondition(const JsonCursor& json)
{
    json.allowOnly(
        {"service", "path", "interface", "member", "property", "call"});
    Condition condition;
    for (const auto& [key, field, checkName] : nameKeys)
    {
        if (const auto name = json.find(key))
        {
            checkName(*name, name->text());
            condition.*field = name->text();
        }
    }
    if (const auto call = json.find("call"))
    {
        condition.call = call->number<uint32_t>();
        if (condition.call == 0)
        {
            call->fail("must be at least 1");
        }
    }
    return condition;
}

struct Reading
{
    Fault& fault;
    const JsonCursor& then;
    const JsonCursor& own;
    const SharedJson& document;
    const ValueCheck& check;
};

void readError(const Reading& in)
{
    checkInterfaceName(in.own, in.own.text());
    in.fault.errorName = in.own.text();
    if (const auto message = in.then.find("message"))
    {
        in.check.text(*message);
        in.fault.errorText = message->text();
    }
}

void readDelay(const Reading& in)
{
    in.fault.milliseconds = in.own.number<uint32_t>();
}

void readReply(const Reading& in)
{
    in.own.allowOnly({"type", "value"});
    const auto types = in.own.member("type");
    in.fault.replyTypes = types.text();
    if (!types.text().empty())
    {
        const auto value = in.own.member("value");
        in.check.values(types, value);
        in.fault.reply = SharedJson(in.document, &value.json());
    }
    else if (const auto value = in.own.find("value"))
    {
        value->fail("an empty reply has no value");
    }
}

void readTrue(const Reading& in) { readSwitch(in.own); }

struct EffectKey
{
    std::string_view key;
    Effect effect;
    void (*read)(const Reading& in);
};

constexpr std::array effectKeys{
    EffectKey{"error", Effect::error, readError},
    EffectKey{"delayMs", Effect::delay, readDelay},
    EffectKey{"reply", Effect::reply, readReply},
    EffectKey{"silent", Effect::silence, readTrue},
    EffectKey{"die", Effect::death, readTrue},
    EffectKey{"missing", Effect::missing, readTrue},
    EffectKey{"vanished", Effect::vanished, readTrue},
};

void readEffect(const JsonCursor& then, Fault& fault,
                const SharedJson& document, const ValueCheck& check)
{
    for (const auto& [key, effect, read] : effectKeys)
    {
        if (const auto own = then.find(key))
        {
            then.allowOnly({key, effect == Effect::error ? "message" : key});
            fault.then = effect;
            return read({fault, then, *own, document, check});
        }
    }
    then.fail("must be one of error, delayMs, reply, silent, die, missing, "
              "vanished");
}

void checkNeeds(const Fault& fault, const JsonCursor& when)
{
    const auto isMissing = fault.then == Effect::missing;
    if ((isMissing || fault.then == Effect::vanished) &&
        fault.when.path.empty())
    {
        when.fail("\"path\" is needed for this fault");
    }
    if (isMissing && fault.when.property.empty())
    {
        when.fail("\"property\" is needed for this fault");
    }
}

bool fits(std::string_view wanted, std::string_view actual)
{
    return wanted.empty() || wanted == actual;
}

/**
 * A fault may name the interface that is called or, for a properties call,
 * the interface whose properties it is about.
 */
bool fitsInterface(const Condition& when, std::string_view interface)
{
    return when.interface == propertiesInterface ||
           fits(when.interface, interface);
}

/** Whether GetAll would read what the condition asks for. */
bool isRead(const Condition& when, std::string_view requested,
            const std::vector<Interface>& interfaces)
{
    return std::ranges::any_of(interfaces, [&](const Interface& interface) {
        const auto isProperty = [&](const Property& property) {
            return !property.hidden && fits(when.property, property.name);
        };
        return fits(requested, interface.name) &&
               fitsInterface(when, interface.name) &&
               (when.property.empty() ||
                std::ranges::any_of(interface.properties, isProperty));
    });
}

bool fitsContents(const Condition& when, const CallKeys& call,
                  const std::vector<Interface>* interfaces)
{
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
        return interfaces && isRead(when, call.propertyInterface, *interfaces);
    }
    return fitsInterface(when, call.propertyInterface) &&
           fits(when.property, call.property);
}

bool fitsCall(const Condition& when, const CallKeys& call,
              const std::vector<Interface>* interfaces)
{
    return fits(when.service, call.service) && fits(when.path, call.path) &&
           fits(when.member, call.member) &&
           fitsContents(when, call, interfaces);
}

/** Whether there is something at a path that the condition names. */
bool isThere(const Condition& when, std::string_view service,
             std::string_view path, const std::vector<Interface>& interfaces)
{
    if (!fits(when.service, service) || !fits(when.path, path))
    {
        return false;
    }
    const auto isStandard =
        std::ranges::find(standardInterfaces, when.interface) !=
        standardInterfaces.end();
    const auto isMeant = [&](const Interface& interface) {
        return (isStandard || fits(when.interface, interface.name)) &&
               (when.property.empty() ||
                std::ranges::find(interface.properties, when.property,
                                  &Property::name) !=
                    interface.properties.end());
    };
    return (when.property.empty() && (isStandard || when.interface.empty())) ||
           std::ranges::any_of(interfaces, isMeant);
}

bool isParent(std::string_view path, std::string_view other)
{
    return path == "/" || (other.starts_with(path) &&
                           other.substr(path.size()).starts_with('/'));
}

bool isThereWithMapper(const Condition& when, const Scenario& scenario)
{
    const std::vector<Interface> own{{mapperService, {}}};
    const std::vector<Interface> association{
        {associationInterface, {{.name = "endpoints", .type = "as"}}}};
    auto found = isThere(when, mapperService, mapperPath, own) ||
                 (isParent(when.path, mapperPath) &&
                  isThere(when, mapperService, when.path, {}));
    const auto look = [&](const std::string& path) {
        found = found || isThere(when, mapperService, path, association) ||
                (isParent(when.path, path) &&
                 isThere(when, mapperService, when.path, {}));
    };
    for (const auto& object : scenario.objects)
    {
        for (const auto& owner : object.owners)
        {
            forEachAssociation(owner.interfaces,
                               [&](const auto& forward, const auto& backward,
                                   const auto& endpoint) {
                                   look(object.path + '/' + forward);
                                   look(endpoint + '/' + backward);
                               });
        }
    }
    return found;
}

/** Whether the machine has what the names of a condition say. */
bool isThere(const Condition& when, const Scenario& scenario)
{
    const auto isOfObject = [&](const Object& object) {
        return std::ranges::any_of(object.owners, [&](const Owner& owner) {
            return isThere(when, owner.service, object.path,
                           owner.interfaces) ||
                   (isParent(when.path, object.path) &&
                    isThere(when, owner.service, when.path, {}));
        });
    };
    return std::ranges::any_of(scenario.objects, isOfObject) ||
           (scenario.hasMapper && isThereWithMapper(when, scenario));
}

} // namespace

void checkFaults(const JsonCursor& json, const Scenario& scenario)
{
    auto fault = scenario.faults.begin();
    json.forEachElement([&](const JsonCursor& one) {
        const auto when = one.member("when");
        Condition names;
        for (const auto& [key, field, checkName] : nameKeys)
        {
            if (const auto name = when.find(key); name && key != "member")
            {
                names.*field = fault->when.*field;
                if (!isThere(names, scenario))
                {
                    name->fail("no call can meet this: the machine has no "
                               "such " +
                               std::string(key));
                }
            }
        }
        ++fault;
    });
}

std::vector<Fault> readFaults(const JsonCursor& json,
                              const SharedJson& document)
{
    const ValueCheck check;
    std::vector<Fault> faults;
    json.forEachElement([&](const JsonCursor& one) {
        one.allowOnly({"when", "then"});
        const auto when = one.member("when");
        Fault fault{.place = "/faults/" + std::to_string(faults.size()),
                    .when = readCondition(when)};
        readEffect(one.member("then"), fault, document, check);
        checkNeeds(fault, when);
        faults.push_back(std::move(fault));
    });
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

Faults::Faults(std::vector<Fault> faults)
{
    for (auto& fault : faults)
    {
        counted.push_back({std::move(fault)});
    }
}

Decision Faults::decide(const CallKeys& call,
                        const std::vector<Interface>* interfaces)
{
    Decision decision;
    for (auto& [fault, calls, used] : counted)
    {
        const auto& when = fault.when;
        const auto isAbsence = fault.then == Effect::missing;
        if (!fitsCall(when, call, interfaces))
        {
            // What is always missing is not in the introspection, either.
            const auto always = when.call == 0 && when.member.empty();
            if (isAbsence && always && call.interface != propertiesInterface &&
                when.path == call.path && fits(when.service, call.service))
            {
                decision.missing.push_back(&fault);
            }
            continue;
        }
        // Counted also when an earlier fault has decided already, so that the
        // order of the faults does not shift the numbers of the calls.
        ++calls;
        if (when.call != 0 && when.call != calls)
        {
            continue;
        }
        if (isAbsence)
        {
            decision.missing.push_back(&fault);
            used = true;
        }
        else if (!decision.fault)
        {
            decision.fault = &fault;
            used = true;
        }
    }
    return decision;
}

std::vector<std::string> Faults::unused() const
{
    std::vector<std::string> places;
    for (const auto& one : counted)
    {
        if (!one.used)
        {
            places.push_back(one.fault.place);
        }
    }
    return places;
}

} // namespace morvath::sim
