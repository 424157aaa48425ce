// SPDX-License-Identifier: Apache-2.0
#include "simulation/section.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <set>
#include <span>

namespace vontel::simulation
{
namespace
{

using Json = nlohmann::ordered_json;
using Bytes = std::span<unsigned char>;

/** A key of a section and the bytes of the record that it describes. */
struct Field
{
    enum Kind
    {
        number,
        text,
        /** With blanks behind it. */
        padded,
        /** How many there are, and then an entry for each. */
        members,
    };

    std::string_view key;
    Kind kind;
    std::size_t offset;
    std::size_t length;
};

struct RecordKind
{
    std::string_view idKey;
    uint64_t mostId;
    std::span<const Field> fields;
    /** What a description may have besides. */
    std::vector<std::string_view> otherKeys{};
};

constexpr Field controllerFields[]{
    {"raid_id", Field::number, raid_info::raidId, 4},
    {"name", Field::text, raid_info::name, 80},
    {"text84", Field::text, raid_info::idText1, 48},
    {"text132", Field::text, raid_info::idText2, 32},
    {"text164", Field::text, raid_info::idText3, 160},
    {"pci_vendor", Field::number, raid_info::vendorId, 2},
    {"pci_device", Field::number, raid_info::deviceId, 2},
    {"pci_subvendor", Field::number, raid_info::subVendorId, 2},
    {"pci_subdevice", Field::number, raid_info::subDeviceId, 2},
    {"word332", Field::number, raid_info::wordProperty, 2},
    {"byte335", Field::number, raid_info::byteProperty, 1},
};

constexpr Field physicalFields[]{
    {"device_id", Field::number, physical_drive::deviceId, 2},
    {"media_type", Field::number, physical_drive::mediaType, 1},
    {"state", Field::number, physical_drive::state, 1},
    {"vendor", Field::padded, physical_drive::vendor,
     physical_drive::vendorLength},
    {"model", Field::padded, physical_drive::model,
     physical_drive::modelLength},
    {"serial", Field::text, physical_drive::serial, 48},
    {"text80", Field::text, physical_drive::driveText, 8},
    {"interface_type", Field::number, physical_drive::interfaceType, 1},
    {"link_speed", Field::number, physical_drive::linkSpeed, 1},
    {"blocks", Field::number, physical_drive::blocks, 8},
    {"block_size", Field::number, physical_drive::blockSize, 4},
    {"temperature", Field::number, physical_drive::temperature, 1},
    {"usage", Field::number, physical_drive::usage, 1},
};

constexpr auto mostMembers = UINT8_MAX;
static_assert(logical_drive::members == logical_drive::memberCount + 1);

constexpr Field logicalFields[]{
    {"raid_level", Field::number, logical_drive::raidLevel, 1},
    {"members", Field::members, logical_drive::memberCount,
     1 + mostMembers* logical_drive::memberSize},
};

const RecordKind controllerKind{
    "raid_id",
    UINT32_MAX,
    controllerFields,
    {"supported_raid_levels", "physical", "logical"}};
const RecordKind physicalKind{"device_id", UINT16_MAX, physicalFields};
const RecordKind logicalKind{"id", UINT16_MAX, logicalFields};

constexpr std::array<std::string_view, 4> identifierKeys{
    "vendor", "device", "subvendor", "subdevice"};

constexpr std::array<std::string_view, 8> operationsWithResult{
    "checkRaidMgrExist", "getRaidIdList",     "getRaidInfoById",
    "getPhyDevIdList",   "getPhyDevInfoById", "getLogDevIdList",
    "getLogDevInfoById", "getRaidConf"};

/** A value that is not what it has to be. */
struct WrongValue : std::runtime_error
{
    WrongValue(const Json& value, const std::string& message) :
        std::runtime_error(message),
        value(&value)
    {}

    const Json* value;
};

void demand(bool isRight, const Json& value, const std::string& message)
{
    if (!isRight)
    {
        throw WrongValue(value, message);
    }
}

const std::string& textOf(const Json& value)
{
    demand(value.is_string(), value, "must be a text");
    return value.get_ref<const std::string&>();
}

uint64_t numberOf(const Json& value, uint64_t most)
{
    demand(value.is_number_unsigned() && value.get<uint64_t>() <= most, value,
           "must be a whole number from 0 to " + std::to_string(most));
    return value.get<uint64_t>();
}

const Json& listOf(const Json& value)
{
    demand(value.is_array(), value, "must be an array");
    return value;
}

const Json& objectOf(const Json& value)
{
    demand(value.is_object(), value, "must be an object");
    return value;
}

const Json& required(const Json& object, std::string_view key)
{
    const auto found = objectOf(object).find(key);
    demand(found != object.end(), object,
           '"' + std::string(key) + "\" is missing");
    return *found;
}

/** The member of an object, or an empty list. */
const Json& listAt(const Json& object, std::string_view key)
{
    static const Json none = Json::array();
    const auto found = object.find(key);
    return found == object.end() ? none : listOf(*found);
}

/** The member of an object, or an empty object. */
const Json& objectAt(const Json& object, std::string_view key)
{
    static const Json none = Json::object();
    const auto found = object.find(key);
    return found == object.end() ? none : objectOf(*found);
}

void allowOnly(const Json& object, const std::vector<std::string_view>& keys)
{
    for (const auto& [key, value] : objectOf(object).items())
    {
        demand(std::ranges::count(keys, key) > 0, value,
               "the key is unknown here");
    }
}

/** Little-endian, as wide as the area. */
void storeNumber(uint64_t number, Bytes area)
{
    for (auto& byte : area)
    {
        byte = static_cast<unsigned char>(number);
        number >>= 8;
    }
}

uint64_t loadNumber(Bytes area)
{
    uint64_t number = 0;
    for (auto byte = area.rbegin(); byte != area.rend(); ++byte)
    {
        number = number << 8 | *byte;
    }
    return number;
}

void storeNumber(const Json& value, Bytes area)
{
    storeNumber(numberOf(value, UINT64_MAX >> (64 - 8 * area.size())), area);
}

Bytes memberIn(Bytes area, std::size_t index)
{
    return area.subspan(1 + index * logical_drive::memberSize,
                        sizeof(uint16_t));
}

void store(const Field& field, const Json& value, Bytes record)
{
    const auto area = record.subspan(field.offset, field.length);
    if (field.kind == Field::number)
    {
        storeNumber(value, area);
    }
    else if (field.kind == Field::members)
    {
        area[0] = static_cast<unsigned char>(listOf(value).size());
        for (std::size_t index = 0; index < value.size(); ++index)
        {
            demand(index < mostMembers, value[index],
                   "is one member too many for a logical drive");
            storeNumber(value[index], memberIn(area, index));
        }
    }
    else
    {
        const auto& text = textOf(value);
        demand(text.size() <= area.size(), value,
               "must have at most " + std::to_string(area.size()) + " bytes");
        std::ranges::fill(area, field.kind == Field::padded ? ' ' : 0);
        std::ranges::copy(text, area.begin());
    }
}

Json load(const Field& field, Bytes record)
{
    const auto area = record.subspan(field.offset, field.length);
    if (field.kind == Field::number)
    {
        return loadNumber(area);
    }
    if (field.kind == Field::members)
    {
        auto members = Json::array();
        for (std::size_t index = 0; index < area[0]; ++index)
        {
            members.push_back(loadNumber(memberIn(area, index)));
        }
        return members;
    }
    std::string text(area.begin(), std::ranges::find(area, 0));
    if (field.kind == Field::padded)
    {
        text.resize(text.find_last_not_of(' ') + 1);
    }
    return text;
}

/** Bytes in hexadecimal, put anywhere. */
void storeRaw(const std::string& key, const Json& value, Bytes record)
{
    auto offset = record.size();
    const auto* end = key.data() + key.size();
    const auto isNumber = std::from_chars(key.data(), end, offset).ptr == end;
    const auto& digits = textOf(value);
    demand(isNumber && offset < record.size() && digits.size() % 2 == 0 &&
               digits.size() / 2 <= record.size() - offset &&
               digits.find_first_not_of("0123456789abcdefABCDEF") ==
                   digits.npos,
           value,
           "must be pairs of hexadecimal digits for bytes 0 to " +
               std::to_string(record.size() - 1));
    for (std::size_t place = 0; place < digits.size(); place += 2)
    {
        std::from_chars(&digits[place], &digits[place] + 2, record[offset++],
                        16);
    }
}

/** Each run of bytes that differ, by its offset. */
Json differences(Bytes record, Bytes described)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::map<std::size_t, std::string> runs;
    for (std::size_t place = 0, start = 0; place < record.size(); ++place)
    {
        if (record[place] == described[place])
        {
            start = place + 1;
            continue;
        }
        runs[start] += {digits[record[place] / 16], digits[record[place] % 16]};
    }
    Json raw;
    for (const auto& [start, bytes] : runs)
    {
        raw[std::to_string(start)] = bytes;
    }
    return raw;
}

/** Bytes without a key stay as they are; "raw" goes over all that have one. */
void fill(const Json& description, const RecordKind& kind, Bytes record)
{
    auto keys = kind.otherKeys;
    keys.insert(keys.end(), {kind.idKey, "raw"});
    std::ranges::transform(kind.fields, std::back_inserter(keys), &Field::key);
    allowOnly(description, keys);
    for (const auto& field : kind.fields)
    {
        const auto value = description.find(field.key);
        if (value != description.end())
        {
            store(field, *value, record);
        }
    }
    for (const auto& [offset, bytes] : objectAt(description, "raw").items())
    {
        storeRaw(offset, bytes, record);
    }
}

/** What fills a blank record so; nothing that changes nothing. */
template <typename Item>
Json describe(Item item, const RecordKind& kind, decltype(Item::record) blank)
{
    Json description{{kind.idKey, item.id}};
    for (const auto& field : kind.fields)
    {
        auto value = load(field, item.record.bytes);
        if (field.key != kind.idKey && value != load(field, blank.bytes) &&
            (!value.is_string() || isUtf8(value)))
        {
            description[std::string(field.key)] = std::move(value);
        }
    }
    fill(description, kind, blank.bytes);
    if (auto raw = differences(item.record.bytes, blank.bytes); !raw.empty())
    {
        description["raw"] = std::move(raw);
    }
    return description;
}

/** The elements of a list, each with an id of its own. */
template <typename Item>
void readItems(const Json& list, const RecordKind& kind,
               decltype(Item::record) blank, std::vector<Item>& items)
{
    std::set<uint64_t> seen;
    for (const auto& element : listOf(list))
    {
        const auto& place = required(element, kind.idKey);
        const auto id = static_cast<uint32_t>(numberOf(place, kind.mostId));
        demand(seen.insert(id).second, place, "the id stands here twice");
        items.push_back({id, blank});
        fill(element, kind, items.back().record.bytes);
    }
}

void readControllers(const Json& list, std::vector<Controller>& controllers)
{
    readItems(list, controllerKind, {}, controllers);
    for (std::size_t index = 0; index < list.size(); ++index)
    {
        auto& controller = controllers[index];
        const auto& json = list[index];
        const auto levels = json.find("supported_raid_levels");
        controller.levels = levels == json.end() ? "" : textOf(*levels);
        readItems(listAt(json, "physical"), physicalKind,
                  blankDrive(controller.id), controller.physical);
        readItems(listAt(json, "logical"), logicalKind, {}, controller.logical);
    }
}

const std::string& identifierOf(const Json& value)
{
    const auto& text = textOf(value);
    demand(text.size() == sizeof("0x0000") - 1 && text.starts_with("0x") &&
               text.find_first_not_of("0123456789abcdef", 2) == text.npos,
           value, "must be 0x and four lower-case hexadecimal digits");
    return text;
}

void readConfiguration(const Json& list, std::vector<Configuration>& entries)
{
    for (const auto& json : listOf(list))
    {
        Configuration entry;
        allowOnly(json,
                  {"vendor", "device", "subvendor", "subdevice", "outputs"});
        std::ranges::transform(identifierKeys, entry.identifiers.begin(),
                               [&](std::string_view key) {
                                   return identifierOf(required(json, key));
                               });
        const auto& texts = required(json, "outputs");
        demand(texts.is_array() && texts.size() == entry.outputs.size(), texts,
               "must have four texts");
        std::ranges::transform(texts, entry.outputs.begin(), textOf);
        demand(std::ranges::count(entries, entry.identifiers,
                                  &Configuration::identifiers) == 0,
               json, "the identifiers stand here twice");
        entries.push_back(std::move(entry));
    }
}

void readTexts(const Json& json, Section& section)
{
    std::vector<std::string_view> keys(codeKinds.begin(), codeKinds.end());
    keys.push_back("unknown");
    allowOnly(json, keys);
    const auto unknown = json.find("unknown");
    section.unknown =
        unknown == json.end() ? section.unknown : textOf(*unknown);
    for (std::size_t kind = 0; kind < codeKinds.size(); ++kind)
    {
        for (const auto& [key, text] : objectAt(json, codeKinds[kind]).items())
        {
            uint8_t code = 0;
            std::from_chars(key.data(), key.data() + key.size(), code);
            demand(std::to_string(code) == key, text,
                   "must be the text of a code from 0 to 255");
            section.texts[{kind, code}] = textOf(text);
        }
    }
}

Fault readFault(const Json& json)
{
    Fault fault{textOf(required(json, "operation"))};
    allowOnly(json, {"operation", "result", "call"});
    demand(std::ranges::count(operationsWithResult, fault.operation) > 0,
           json["operation"],
           '"' + fault.operation + "\" is not an operation with a result");
    const auto& result = required(json, "result");
    demand(result.is_number_integer() && result == result.get<int>(), result,
           "must be a whole number of 32 bits");
    fault.result = result;
    if (const auto call = json.find("call"); call != json.end())
    {
        fault.call = static_cast<uint32_t>(numberOf(*call, UINT32_MAX));
        demand(fault.call != 0, *call, "must be at least 1");
    }
    return fault;
}

void readSection(const Json& json, Section& section)
{
    allowOnly(json, {"manager_present", "controllers", "configuration", "texts",
                     "faults"});
    if (const auto flag = json.find("manager_present"); flag != json.end())
    {
        demand(flag->is_boolean(), *flag, "must be true or false");
        section.hasManager = *flag;
    }
    readControllers(listAt(json, "controllers"), section.controllers);
    readConfiguration(listAt(json, "configuration"), section.configuration);
    readTexts(objectAt(json, "texts"), section);
    std::ranges::transform(listAt(json, "faults"),
                           std::back_inserter(section.faults), readFault);
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

PhyDevInfo_T blankDrive(uint32_t raidId)
{
    PhyDevInfo_T record{};
    storeNumber(raidId, Bytes(record.bytes).first(sizeof(raidId)));
    return record;
}

Section read(const Json& json)
{
    try
    {
        Section section;
        readSection(json, section);
        return section;
    }
    catch (const WrongValue& wrong)
    {
        std::string place;
        findPlace(*wrong.value, json, place);
        throw Mistake(place, wrong.what());
    }
}

Section parse(const std::string& text, const std::string& name)
{
    try
    {
        return read(Json::parse(text));
    }
    catch (const Mistake& mistake)
    {
        throw std::runtime_error(name + ": " + mistake.place + ": " +
                                 mistake.what());
    }
    catch (const Json::exception& error)
    {
        throw std::runtime_error(name + ": " + error.what());
    }
}

Json write(const Section& section)
{
    Json json{{"controllers", Json::array()}};
    for (const auto& controller : section.controllers)
    {
        auto described = describe(controller, controllerKind, {});
        if (!controller.levels.empty())
        {
            described["supported_raid_levels"] = controller.levels;
        }
        for (const auto& drive : controller.physical)
        {
            described["physical"].push_back(
                describe(drive, physicalKind, blankDrive(controller.id)));
        }
        for (const auto& drive : controller.logical)
        {
            described["logical"].push_back(describe(drive, logicalKind, {}));
        }
        json["controllers"].push_back(std::move(described));
    }
    for (const auto& [identifiers, outputs] : section.configuration)
    {
        auto& entry = json["configuration"].emplace_back();
        for (std::size_t index = 0; index < identifiers.size(); ++index)
        {
            entry[std::string(identifierKeys[index])] = identifiers[index];
        }
        entry["outputs"] = outputs;
    }
    auto& texts = json["texts"];
    for (const auto& [code, text] : section.texts)
    {
        texts[std::string(codeKinds[code.first])][std::to_string(code.second)] =
            text;
    }
    texts["unknown"] = section.unknown;
    return json;
}

bool isUtf8(const std::string& text)
{
    try
    {
        Json(text).dump();
        return true;
    }
    catch (const Json::exception&)
    {
        return false;
    }
}

} // namespace vontel::simulation
