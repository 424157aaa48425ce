// SPDX-License-Identifier: Apache-2.0
#include "sim/fault.hpp"

#include "sim/names.hpp"
#include "sim/value_reader.hpp"

#include <array>

namespace morvath::sim
{

namespace
{

struct NameColumn
{
    std::string_view key;
    NameKind kind;
    std::string FaultCondition::*field;
};

constexpr std::array nameColumns{
    NameColumn{"service", NameKind::service, &FaultCondition::service},
    NameColumn{"path", NameKind::path, &FaultCondition::path},
    NameColumn{"interface", NameKind::interface, &FaultCondition::interface},
    NameColumn{"member", NameKind::member, &FaultCondition::member},
    NameColumn{"property", NameKind::member, &FaultCondition::property},
};

unsigned positiveFromJson(const JsonCursor& json)
{
    const Value number = valueFromJson("u", json);
    const auto count = std::get<std::uint32_t>(number.data);
    if (count == 0)
    {
        json.fail("must be at least 1");
    }
    return count;
}

FaultCondition conditionFromJson(const JsonCursor& json)
{
    json.allowOnly(
        {"service", "path", "interface", "member", "property", "call"});
    FaultCondition condition;
    for (const NameColumn& column : nameColumns)
    {
        if (const auto name = json.find(column.key))
        {
            condition.*column.field =
                checkedName(column.kind, name->text(), *name);
        }
    }
    if (const auto call = json.find("call"))
    {
        condition.call = positiveFromJson(*call);
    }
    return condition;
}

FaultEffect errorFromJson(const JsonCursor& then)
{
    const JsonCursor name = then.member("error");
    ErrorReply error{checkedName(NameKind::interface, name.text(), name), ""};
    if (const auto message = then.find("message"))
    {
        error.message = *valueFromJson("s", *message).text();
    }
    return error;
}

FaultEffect delayFromJson(const JsonCursor& then)
{
    const Value delay = valueFromJson("u", then.member("delayMs"));
    return Delay{
        std::chrono::milliseconds(std::get<std::uint32_t>(delay.data))};
}

FaultEffect replyFromJson(const JsonCursor& then)
{
    const JsonCursor reply = then.member("reply");
    reply.allowOnly({"type", "value"});
    if (!reply.member("type").text().empty())
    {
        return FixedReply{typedValueFromJson(reply)};
    }
    if (const auto value = reply.find("value"))
    {
        value->fail("an empty reply has no value");
    }
    return FixedReply{};
}

template <typename Effect>
FaultEffect plainEffect(const JsonCursor&)
{
    return Effect{};
}

struct EffectRow
{
    std::string_view key;
    FaultEffect (*read)(const JsonCursor& then);
    bool isSwitch;
};

constexpr std::array effectRows{
    EffectRow{"error", errorFromJson, false},
    EffectRow{"delayMs", delayFromJson, false},
    EffectRow{"reply", replyFromJson, false},
    EffectRow{"silent", plainEffect<Silence>, true},
    EffectRow{"die", plainEffect<Death>, true},
    EffectRow{"missing", plainEffect<MissingProperty>, true},
    EffectRow{"vanished", plainEffect<VanishedObject>, true},
};

FaultEffect effectFromJson(const JsonCursor& json)
{
    for (const EffectRow& row : effectRows)
    {
        const auto found = json.find(row.key);
        if (!found)
        {
            continue;
        }
        const bool mayExplain = row.key == "error";
        json.allowOnly({row.key, mayExplain ? "message" : row.key});
        if (row.isSwitch && !found->flag())
        {
            found->fail("must be true");
        }
        return row.read(json);
    }
    json.fail("must be one of error, delayMs, reply, silent, die, missing, "
              "vanished");
}

Fault faultFromJson(const JsonCursor& json)
{
    json.allowOnly({"when", "then"});
    const JsonCursor when = json.member("when");
    Fault fault{conditionFromJson(when), effectFromJson(json.member("then"))};
    const bool needsProperty =
        std::holds_alternative<MissingProperty>(fault.then);
    const bool needsPath =
        needsProperty || std::holds_alternative<VanishedObject>(fault.then);
    if (needsPath && fault.when.path.empty())
    {
        when.fail("\"path\" is needed for this fault");
    }
    if (needsProperty && fault.when.property.empty())
    {
        when.fail("\"property\" is needed for this fault");
    }
    return fault;
}

} // namespace

std::vector<Fault> faultsFromJson(const JsonCursor& json)
{
    std::vector<Fault> faults;
    json.forEachElement([&](const JsonCursor& fault) {
        faults.push_back(faultFromJson(fault));
    });
    return faults;
}

} // namespace morvath::sim
