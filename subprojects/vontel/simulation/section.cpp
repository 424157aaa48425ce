// SPDX-License-Identifier: Apache-2.0
#include "simulation/section.hpp"

#include "simulation/records.hpp"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>

namespace vontel::simulation
{

namespace
{

using Check = void (*)(const Json& value);

constexpr std::array<std::string_view, 8> operationsWithResult{
    "checkRaidMgrExist", "getRaidIdList",     "getRaidInfoById",
    "getPhyDevIdList",   "getPhyDevInfoById", "getLogDevIdList",
    "getLogDevInfoById", "getRaidConf"};

void demand(bool isRight, const Json& value, const std::string& message)
{
    if (!isRight)
    {
        throw WrongValue(value, message);
    }
}

void checkText(const Json& value) { textOf(value); }

void checkMembers(const Json& object,
                  const std::map<std::string_view, Check>& checks)
{
    demand(object.is_object(), object, "must be an object");
    for (const auto& [key, value] : object.items())
    {
        const auto check = checks.find(key);
        demand(check != checks.end(), value, "the key is unknown here");
        check->second(value);
    }
}

const Json& required(const Json& object, std::string_view key)
{
    demand(object.is_object(), object, "must be an object");
    const auto found = object.find(key);
    demand(found != object.end(), object,
           '"' + std::string(key) + "\" is missing");
    return *found;
}

/** The elements of a list, each with an id of its own. */
void checkIds(const Json& list, std::string_view idKey, uint32_t most,
              const auto& check)
{
    demand(list.is_array(), list, "must be an array");
    std::set<uint64_t> seen;
    for (const auto& element : list)
    {
        const auto& id = required(element, idKey);
        demand(seen.insert(numberOf(id, most)).second, id,
               "the id stands here twice");
        check(element);
    }
}

template <typename Record>
void checkRecord(const Json& description, const RecordKind& kind)
{
    Record record{};
    fill(description, kind, record.bytes);
}

void checkController(const Json& controller)
{
    checkRecord<RAIDInfo_T>(controller, controllers);
    for (const auto& [key, value] : controller.items())
    {
        if (key == "supported_raid_levels")
        {
            textOf(value);
        }
        else if (key == "physical")
        {
            checkIds(value, "device_id", UINT16_MAX, [](const Json& drive) {
                checkRecord<PhyDevInfo_T>(drive, physicalDrives);
            });
        }
        else if (key == "logical")
        {
            checkIds(value, "id", UINT16_MAX, [](const Json& drive) {
                checkRecord<LogicalDevInfo_T>(drive, logicalDrives);
            });
        }
    }
}

void checkIdentifier(const Json& value)
{
    const auto& text = textOf(value);
    demand(text.size() == sizeof("0x0000") - 1 && text.starts_with("0x") &&
               text.find_first_not_of("0123456789abcdef", 2) == text.npos,
           value, "must be 0x and four lower-case hexadecimal digits");
}

void checkOutputs(const Json& value)
{
    demand(value.is_array() && value.size() == 4, value,
           "must have four texts");
    std::ranges::for_each(value, checkText);
}

void checkConfiguration(const Json& list)
{
    demand(list.is_array(), list, "must be an array");
    std::set<std::vector<std::string>> seen;
    for (const auto& entry : list)
    {
        checkMembers(entry, {{"vendor", checkIdentifier},
                             {"device", checkIdentifier},
                             {"subvendor", checkIdentifier},
                             {"subdevice", checkIdentifier},
                             {"outputs", checkOutputs}});
        required(entry, "outputs");
        std::vector<std::string> identifiers;
        for (const auto key : identifierKeys)
        {
            identifiers.push_back(textOf(required(entry, key)));
        }
        demand(seen.insert(identifiers).second, entry,
               "the identifiers stand here twice");
    }
}

void checkCodes(const Json& codes)
{
    demand(codes.is_object(), codes, "must be an object");
    for (const auto& [key, text] : codes.items())
    {
        uint8_t code = 0;
        std::from_chars(key.data(), key.data() + key.size(), code);
        const auto isCode = std::to_string(code) == key;
        demand(isCode, text, "must be the text of a code from 0 to 255");
        textOf(text);
    }
}

void checkTexts(const Json& texts)
{
    std::map<std::string_view, Check> checks{{"unknown", checkText}};
    for (const auto key : codeKeys)
    {
        checks.emplace(key, checkCodes);
    }
    checkMembers(texts, checks);
}

void checkFault(const Json& fault)
{
    const auto& operation = textOf(required(fault, "operation"));
    demand(std::ranges::find(operationsWithResult, operation) !=
               operationsWithResult.end(),
           fault["operation"],
           '"' + operation + "\" is not an operation with a result");
    const auto& result = required(fault, "result");
    demand(result.is_number_integer() && result == result.get<int>(), result,
           "must be a whole number of 32 bits");
    const auto ignore = [](const Json&) {};
    checkMembers(fault, {{"operation", ignore},
                         {"result", ignore},
                         {"call", [](const Json& value) {
                              demand(numberOf(value, UINT32_MAX) > 0, value,
                                     "must be at least 1");
                          }}});
}

void checkSection(const Json& section)
{
    checkMembers(section,
                 {{"manager_present",
                   [](const Json& value) {
                       demand(value.is_boolean(), value,
                              "must be true or false");
                   }},
                  {"controllers",
                   [](const Json& list) {
                       checkIds(list, "raid_id", UINT32_MAX, checkController);
                   }},
                  {"configuration", checkConfiguration},
                  {"texts", checkTexts},
                  {"faults", [](const Json& list) {
                       demand(list.is_array(), list, "must be an array");
                       std::ranges::for_each(list, checkFault);
                   }}});
}

/** Where a value stands; it is looked for only when that is wanted. */
bool findPlace(const Json& wanted, const Json& inside, std::string& place)
{
    if (&wanted == &inside)
    {
        return true;
    }
    for (const auto& [key, child] : inside.items())
    {
        if ((&wanted == &child || child.is_structured()) &&
            findPlace(wanted, child, place))
        {
            place = (Json::json_pointer() / key).to_string() + place;
            return true;
        }
    }
    return false;
}

} // namespace

void check(const Json& section)
{
    try
    {
        checkSection(section);
    }
    catch (const WrongValue& wrong)
    {
        std::string place;
        findPlace(*wrong.value, section, place);
        throw Mistake(place, wrong.what());
    }
}

} // namespace vontel::simulation
