// SPDX-License-Identifier: Apache-2.0
#include "simulation/section.hpp"

#include "vontel.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <set>

namespace vontel::simulation
{
namespace
{

using Bytes = std::span<unsigned char>;
using ConstBytes = std::span<const unsigned char>;

/** A key of a description and the bytes of the record that it describes. */
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
        /** Of nothing in the record. */
        outside,
    };

    std::string_view key;
    Kind kind;
    std::size_t offset;
    std::size_t length;
};

constexpr std::size_t mostMembers = UINT8_MAX;
static_assert(logical_drive::members == logical_drive::memberCount + 1);

struct RecordKind
{
    std::size_t size;
    /** The first one is the id. */
    std::vector<Field> fields;
};

/** By the key of their list. */
const std::map<std::string_view, RecordKind> recordKinds{
    {"controllers",
     {sizeof(RAIDInfo_T),
      {{"raid_id", Field::number, raid_info::raidId, 4},
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
       {"supported_raid_levels", Field::outside, 0, 0},
       {"physical", Field::outside, 0, 0},
       {"logical", Field::outside, 0, 0}}}},
    {"physical",
     {sizeof(PhyDevInfo_T),
      {{"device_id", Field::number, physical_drive::deviceId, 2},
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
       {"usage", Field::number, physical_drive::usage, 1}}}},
    {"logical",
     {sizeof(LogicalDevInfo_T),
      {{"id", Field::outside, 0, 2},
       {"raid_level", Field::number, logical_drive::raidLevel, 1},
       {"members", Field::members, logical_drive::memberCount,
        1 + mostMembers* logical_drive::memberSize}}}}};

constexpr std::array<std::string_view, 8> operationsWithResult{
    "checkRaidMgrExist", "getRaidIdList",     "getRaidInfoById",
    "getPhyDevIdList",   "getPhyDevInfoById", "getLogDevIdList",
    "getLogDevInfoById", "getRaidConf"};

uint64_t numberOf(const Json& value, std::size_t width)
{
    return asWhole(value, 0, UINT64_MAX >> (64 - 8 * width));
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

uint64_t loadNumber(ConstBytes area)
{
    uint64_t number = 0;
    for (auto byte = area.rbegin(); byte != area.rend(); ++byte)
    {
        number = number << 8 | *byte;
    }
    return number;
}

/** The id of a drive among the members that an area has. */
auto memberIn(auto area, std::size_t index)
{
    return area.subspan(1 + index * logical_drive::memberSize,
                        sizeof(uint16_t));
}

void store(const Field& field, const Json& value, Bytes record)
{
    const auto area = record.subspan(field.offset, field.length);
    if (field.kind == Field::number)
    {
        storeNumber(numberOf(value, area.size()), area);
    }
    else if (field.kind == Field::members)
    {
        area[0] = static_cast<unsigned char>(asList(value).size());
        for (std::size_t index = 0; index < value.size(); ++index)
        {
            demand(index < mostMembers, value[index],
                   "is one member too many for a logical drive");
            const auto place = memberIn(area, index);
            storeNumber(numberOf(value[index], place.size()), place);
        }
    }
    else if (field.kind != Field::outside)
    {
        const auto& text = asText(value);
        demand(text.size() <= area.size(), value,
               "must have at most " + std::to_string(area.size()) + " bytes");
        std::ranges::fill(area, field.kind == Field::padded ? ' ' : 0);
        std::ranges::copy(text, area.begin());
    }
}

Json load(const Field& field, ConstBytes record)
{
    const auto area = record.subspan(field.offset, field.length);
    if (field.kind == Field::outside)
    {
        return {};
    }
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
void storeRaw(const Json& raw, Bytes record)
{
    for (const auto& [key, value] : asObject(raw).items())
    {
        auto offset = record.size();
        const auto* end = key.data() + key.size();
        const auto isNumber =
            std::from_chars(key.data(), end, offset).ptr == end;
        const auto& digits = asText(value);
        demand(isNumber && offset < record.size() && digits.size() % 2 == 0 &&
                   digits.size() / 2 <= record.size() - offset &&
                   digits.find_first_not_of("0123456789abcdefABCDEF") ==
                       digits.npos,
               value,
               "must be pairs of hexadecimal digits for bytes 0 to " +
                   std::to_string(record.size() - 1));
        for (std::size_t place = 0; place < digits.size(); place += 2)
        {
            std::from_chars(&digits[place], &digits[place] + 2,
                            record[offset++], 16);
        }
    }
}

/** Each run of bytes that differ, by its offset. */
Json differences(ConstBytes record, ConstBytes described)
{
    constexpr std::string_view digits = "0123456789abcdef";
    Json raw;
    std::string* run = nullptr;
    for (std::size_t place = 0; place < record.size(); ++place)
    {
        if (record[place] == described[place])
        {
            run = nullptr;
            continue;
        }
        if (!run)
        {
            auto& bytes = raw[std::to_string(place)] = "";
            run = &bytes.get_ref<std::string&>();
        }
        *run += {digits[record[place] / 16], digits[record[place] % 16]};
    }
    return raw;
}

/** Bytes without a key stay zero; "raw" goes over all that have one. */
Record recordOf(const std::string& list, uint32_t raidId,
                const Json& description)
{
    const auto& [size, fields] = recordKinds.at(list);
    std::vector<std::string_view> keys{"raw"};
    std::ranges::transform(fields, std::back_inserter(keys), &Field::key);
    allowOnly(description, keys);
    Record record(size);
    if (list == "physical")
    {
        storeNumber(raidId, Bytes(record).subspan(physical_drive::raidId,
                                                  sizeof(raidId)));
    }
    for (const auto& field : fields)
    {
        withMember(description, field.key,
                   [&](const Json& value) { store(field, value, record); });
    }
    withMember(description, "raw",
               [&](const Json& raw) { storeRaw(raw, record); });
    return record;
}

/** Reads a list whose elements have ids of their own, and those in them. */
void readList(const Json& parent, const std::string& list, uint32_t raidId,
              Section& section)
{
    const auto& idField = recordKinds.at(list).fields.front();
    auto& items = section.lists[{list, raidId}];
    std::set<uint32_t> seen;
    const auto readItem = [&](const Json& json) {
        const auto& place = member(json, idField.key);
        const auto id = static_cast<uint32_t>(numberOf(place, idField.length));
        demand(seen.insert(id).second, place, "the id stands here twice");
        items.push_back({id, recordOf(list, raidId, json)});
        if (list == "controllers")
        {
            auto& levels = section.raidLevels[id];
            withMember(json, "supported_raid_levels",
                       [&](const Json& text) { levels = asText(text); });
            readList(json, "physical", id, section);
            readList(json, "logical", id, section);
        }
    };
    withMember(parent, list, [&](const Json& elements) {
        std::ranges::for_each(asList(elements), readItem);
    });
}

void readConfiguration(const Json& list, Section& section)
{
    for (const auto& entry : asList(list))
    {
        allowOnly(entry,
                  {"vendor", "device", "subvendor", "subdevice", "outputs"});
        const auto [known, isNew] =
            section.configuration.try_emplace(identifiersOf(entry));
        auto& outputs = known->second;
        const auto& texts = member(entry, "outputs");
        demand(texts.is_array() && texts.size() == outputs.size(), texts,
               "must have four texts");
        std::ranges::transform(texts, outputs.begin(), asText);
        demand(isNew, entry, "the identifiers stand here twice");
    }
}

void readTexts(const Json& json, Section& section)
{
    allowOnly(json, {"raid_level", "drive_state", "media_type",
                     "interface_type", "speed", "unknown"});
    for (const auto& [kind, one] : json.items())
    {
        if (kind == "unknown")
        {
            section.unknown = asText(one);
            continue;
        }
        for (const auto& [key, text] : asObject(one).items())
        {
            uint8_t code = 0;
            std::from_chars(key.data(), key.data() + key.size(), code);
            demand(std::to_string(code) == key, text,
                   "must be the text of a code from 0 to 255");
            section.texts[{kind, code}] = asText(text);
        }
    }
}

void readFaults(const Json& list, Section& section)
{
    for (const auto& json : asList(list))
    {
        allowOnly(json, {"operation", "result", "call"});
        const auto& operation = member(json, "operation");
        demand(std::ranges::count(operationsWithResult, asText(operation)) > 0,
               operation,
               '"' + asText(operation) +
                   "\" is not an operation with a result");
        const auto result =
            asWhole(member(json, "result"), INT32_MIN, INT32_MAX);
        Fault fault{asText(operation), static_cast<int>(result)};
        withMember(json, "call", [&](const Json& call) {
            fault.call = static_cast<uint32_t>(asWhole(call, 1, UINT32_MAX));
        });
        section.faults.push_back(std::move(fault));
    }
}

} // namespace

Section read(const Json& json)
{
    allowOnly(json, {"manager_present", "controllers", "configuration", "texts",
                     "faults"});
    Section section{.hasManager = flagAt(json, "manager_present", true)};
    readList(json, "controllers", 0, section);
    const auto readPart = [&](std::string_view key, const auto& part) {
        withMember(json, key, [&](const Json& own) { part(own, section); });
    };
    readPart("configuration", readConfiguration);
    readPart("texts", readTexts);
    readPart("faults", readFaults);
    return section;
}

Section readText(const std::string& text, const std::string& name)
{
    Json json;
    try
    {
        parse(text, json);
        return read(json);
    }
    catch (const Mistake& mistake)
    {
        const auto place = placeOf(mistake, json);
        throw std::runtime_error(name + ": " + (place.empty() ? "/" : place) +
                                 ": " + mistake.what());
    }
}

Json describe(const std::string& list, uint32_t raidId, uint32_t id,
              ConstBytes record)
{
    const auto& fields = recordKinds.at(list).fields;
    Json description{{fields.front().key, id}};
    const auto blank = recordOf(list, raidId, Json::object());
    for (const auto& field : std::span(fields).subspan(1))
    {
        auto value = load(field, record);
        if (value != load(field, blank) && isUtf8(value))
        {
            description[std::string(field.key)] = std::move(value);
        }
    }
    auto raw = differences(record, recordOf(list, raidId, description));
    if (!raw.empty())
    {
        description["raw"] = std::move(raw);
    }
    return description;
}

FourTexts identifiersOf(const Json& entry)
{
    const auto read = [&](std::string_view key) {
        const auto& value = member(entry, key);
        const auto& text = asText(value);
        demand(text.size() == sizeof("0x0000") - 1 && text.starts_with("0x") &&
                   text.find_first_not_of("0123456789abcdef", 2) == text.npos,
               value, "must be 0x and four lower-case hexadecimal digits");
        return text;
    };
    return {read("vendor"), read("device"), read("subvendor"),
            read("subdevice")};
}

bool isUtf8(const Json& value)
{
    try
    {
        value.dump();
        return true;
    }
    catch (const Json::exception&)
    {
        return false;
    }
}

} // namespace vontel::simulation
