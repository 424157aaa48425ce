// SPDX-License-Identifier: Apache-2.0
#include "sim/vontel/section.hpp"

#include "sim/vontel/record_fields.hpp"

#include <algorithm>
#include <charconv>
#include <set>

namespace morvath::sim
{

namespace
{

constexpr std::array<std::string_view, 8> operationsWithResult{
    "checkRaidMgrExist", "getRaidIdList",     "getRaidInfoById",
    "getPhyDevIdList",   "getPhyDevInfoById", "getLogDevIdList",
    "getLogDevInfoById", "getRaidConf"};

/** The members of a list, if there is one, each with an id of its own. */
template <typename Id, typename Action>
void forEachWithId(const JsonCursor& parent, std::string_view list,
                   std::string_view idKey, const Action& action)
{
    const auto elements = parent.find(list);
    if (!elements)
    {
        return;
    }
    std::set<Id> seen;
    elements->forEachElement([&](const JsonCursor& element) {
        const JsonCursor place = element.member(idKey);
        const Id id = place.number<Id>();
        if (!seen.insert(id).second)
        {
            place.fail("the id stands here twice");
        }
        action(id, element);
    });
}

void readDrives(const JsonCursor& json, RaidController& controller)
{
    using Id = std::uint16_t;
    forEachWithId<Id>(
        json, "physical", "device_id", [&](Id id, const JsonCursor& drive) {
            vontel::PhyDevInfo_T record = blankPhysicalDrive(controller.raidId);
            fillRecord(drive, physicalDriveFields, record.bytes, {});
            controller.physicalDrives.push_back({id, record});
        });
    forEachWithId<Id>(
        json, "logical", "id", [&](Id id, const JsonCursor& drive) {
            vontel::LogicalDevInfo_T record{};
            fillRecord(drive, logicalDriveFields, record.bytes, {"id"});
            controller.logicalDrives.push_back({id, record});
        });
}

RaidController controllerFromJson(std::uint32_t raidId, const JsonCursor& json)
{
    RaidController controller{};
    controller.raidId = raidId;
    fillRecord(json, controllerFields, controller.info.bytes,
               {"supported_raid_levels", "physical", "logical"});
    if (const auto levels = json.find("supported_raid_levels"))
    {
        controller.supportedLevels = levels->text();
    }
    readDrives(json, controller);
    return controller;
}

std::string identifierFromJson(const JsonCursor& json)
{
    const std::string& text = json.text();
    const auto isDigit = [](char character) {
        return std::string_view("0123456789abcdef").find(character) !=
               std::string_view::npos;
    };
    if (text.size() != sizeof("0x0000") - 1 || !text.starts_with("0x") ||
        !std::all_of(text.begin() + 2, text.end(), isDigit))
    {
        json.fail("must be 0x and four lower-case hexadecimal digits");
    }
    return text;
}

void readConfiguration(const JsonCursor& json, RaidSection& section)
{
    json.forEachElement([&](const JsonCursor& entry) {
        entry.allowOnly(
            {"vendor", "device", "subvendor", "subdevice", "outputs"});
        FourTexts identifiers;
        std::ranges::transform(identifierKeys, identifiers.begin(),
                               [&](std::string_view key) {
                                   return identifierFromJson(entry.member(key));
                               });
        std::vector<std::string> outputs;
        const JsonCursor list = entry.member("outputs");
        list.forEachElement([&](const JsonCursor& output) {
            outputs.push_back(output.text());
        });
        FourTexts four;
        if (outputs.size() != four.size())
        {
            list.fail("must have four texts");
        }
        std::ranges::move(outputs, four.begin());
        if (!section.configuration.emplace(identifiers, four).second)
        {
            entry.fail("the identifiers stand here twice");
        }
    });
}

std::uint8_t codeOf(const std::string& key, const JsonCursor& place)
{
    std::uint8_t code = 0;
    const char* end = key.data() + key.size();
    if (std::from_chars(key.data(), end, code).ptr != end ||
        std::to_string(code) != key)
    {
        place.fail("must be the text of a code from 0 to 255");
    }
    return code;
}

void readTexts(const JsonCursor& json, RaidTexts& texts)
{
    std::vector<std::string_view> keys(codeKeys.begin(), codeKeys.end());
    keys.push_back("unknown");
    json.allowOnly(keys);
    if (const auto unknown = json.find("unknown"))
    {
        texts.unknown = unknown->text();
    }
    for (std::size_t kind = 0; kind < codeKeys.size(); kind++)
    {
        if (const auto codes = json.find(codeKeys[kind]))
        {
            codes->forEachMember(
                [&](const std::string& key, const JsonCursor& text) {
                    texts.byCode[kind].emplace(codeOf(key, text), text.text());
                });
        }
    }
}

RaidFault faultFromJson(const JsonCursor& json)
{
    json.allowOnly({"operation", "call", "result"});
    const JsonCursor operation = json.member("operation");
    if (std::ranges::find(operationsWithResult, operation.text()) ==
        operationsWithResult.end())
    {
        operation.fail("\"" + operation.text() +
                       "\" is no operation with a result");
    }
    RaidFault fault{operation.text(), 0, json.member("result").number<int>()};
    if (const auto call = json.find("call"))
    {
        fault.call = call->number<unsigned>();
        if (fault.call == 0)
        {
            call->fail("must be at least 1");
        }
    }
    return fault;
}

} // namespace

vontel::PhyDevInfo_T blankPhysicalDrive(std::uint32_t raidId)
{
    vontel::PhyDevInfo_T record{};
    writeNumber(raidId, Bytes(record.bytes).first(sizeof(raidId)));
    return record;
}

RaidSection raidSectionFromJson(const JsonCursor& json)
{
    json.allowOnly(
        {"manager_present", "controllers", "configuration", "texts", "faults"});
    RaidSection section;
    if (const auto manager = json.find("manager_present"))
    {
        section.hasManager = manager->flag();
    }
    forEachWithId<std::uint32_t>(
        json, "controllers", "raid_id",
        [&](std::uint32_t raidId, const JsonCursor& controller) {
            section.controllers.push_back(
                controllerFromJson(raidId, controller));
        });
    if (const auto configuration = json.find("configuration"))
    {
        readConfiguration(*configuration, section);
    }
    if (const auto texts = json.find("texts"))
    {
        readTexts(*texts, section.texts);
    }
    if (const auto faults = json.find("faults"))
    {
        faults->forEachElement([&](const JsonCursor& fault) {
            section.faults.push_back(faultFromJson(fault));
        });
    }
    return section;
}

} // namespace morvath::sim
