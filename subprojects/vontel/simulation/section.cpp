// SPDX-License-Identifier: Apache-2.0
#include "simulation/section.hpp"

#include "vontel.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <numeric>
#include <set>

namespace vontel::simulation
{
namespace
{

using Bytes = std::span<unsigned char>;
using ConstBytes = std::span<const unsigned char>;

constexpr std::size_t mostMembers = UINT8_MAX;
static_assert(logical_drive::members == logical_drive::memberCount + 1);

uint64_t numberOf(const Json& value, std::size_t width)
{
    return asWhole(value, 0, UINT64_MAX >> (64 - 8 * width));
}

/** Little-endian, as wide as the area. */
void storeNumber(const Json& value, Bytes area)
{
    auto number = numberOf(value, area.size());
    for (auto& byte : area)
    {
        byte = static_cast<unsigned char>(number);
        number >>= 8;
    }
}

Json loadNumber(ConstBytes area)
{
    return std::accumulate(
        area.rbegin(), area.rend(), uint64_t{},
        [](auto number, auto byte) { return number << 8 | byte; });
}

/** The id of a drive among the members that an area has. */
auto memberIn(auto area, std::size_t index)
{
    return area.subspan(1 + index * logical_drive::memberSize,
                        sizeof(uint16_t));
}

/** How many there are, and then an entry for each. */
void storeMembers(const Json& ids, Bytes area)
{
    area[0] = static_cast<unsigned char>(asList(ids).size());
    for (std::size_t index = 0; index < ids.size(); ++index)
    {
        demand(index < mostMembers, ids[index],
               "is one member too many for a logical drive");
        storeNumber(ids[index], memberIn(area, index));
    }
}

Json loadMembers(ConstBytes area)
{
    auto ids = Json::array();
    for (std::size_t index = 0; index < area[0]; ++index)
    {
        ids.push_back(loadNumber(memberIn(area, index)));
    }
    return ids;
}

template <char filler>
void storeText(const Json& value, Bytes area)
{
    const auto& text = asText(value);
    demand(text.size() <= area.size(), value,
           "must have at most " + std::to_string(area.size()) + " bytes");
    std::ranges::fill(area, filler);
    std::ranges::copy(text, area.begin());
}

template <char filler>
Json loadText(ConstBytes area)
{
    std::string text(area.begin(), std::ranges::find(area, 0));
    text.resize(text.find_last_not_of(filler) + 1);
    return text;
}

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

/** How values stand in an area of a record. */
struct Form
{
    void (*store)(const Json& value, Bytes area) = nullptr;
    Json (*load)(ConstBytes area) = nullptr;
};

namespace form
{
constexpr Form number{storeNumber, loadNumber};
constexpr Form text{storeText<'\0'>, loadText<'\0'>};
constexpr Form padded{storeText<' '>, loadText<' '>};
constexpr Form members{storeMembers, loadMembers};
constexpr Form raw{storeRaw};
/** In none. */
constexpr Form outside;
} // namespace form

/** A key of a description and the bytes of the record that it describes. */
struct Field
{
    std::string_view key;
    Form form;
    std::size_t offset;
    std::size_t length;
};

/**
 * By the key of the list. The first one is the id; the last one is the whole
 * record, and goes over all the others.
 */
const std::map<std::string_view, std::vector<Field>> recordKinds{
    {"controllers",
     {{"raid_id", form::number, raid_info::raidId, 4},
      {"name", form::text, raid_info::name, 80},
      {"text84", form::text, raid_info::idText1, 48},
      {"text132", form::text, raid_info::idText2, 32},
      {"text164", form::text, raid_info::idText3, 160},
      {"pci_vendor", form::number, raid_info::vendorId, 2},
      {"pci_device", form::number, raid_info::deviceId, 2},
      {"pci_subvendor", form::number, raid_info::subVendorId, 2},
      {"pci_subdevice", form::number, raid_info::subDeviceId, 2},
      {"word332", form::number, raid_info::wordProperty, 2},
      {"byte335", form::number, raid_info::byteProperty, 1},
      {levelsKey, form::outside, 0, 0},
      {"physical", form::outside, 0, 0},
      {"logical", form::outside, 0, 0},
      {"raw", form::raw, 0, sizeof(RAIDInfo_T)}}},
    {"physical",
     {{"device_id", form::number, physical_drive::deviceId, 2},
      {"media_type", form::number, physical_drive::mediaType, 1},
      {"state", form::number, physical_drive::state, 1},
      {"vendor", form::padded, physical_drive::vendor,
       physical_drive::vendorLength},
      {"model", form::padded, physical_drive::model,
       physical_drive::modelLength},
      {"serial", form::text, physical_drive::serial, 48},
      {"text80", form::text, physical_drive::driveText, 8},
      {"interface_type", form::number, physical_drive::interfaceType, 1},
      {"link_speed", form::number, physical_drive::linkSpeed, 1},
      {"blocks", form::number, physical_drive::blocks, 8},
      {"block_size", form::number, physical_drive::blockSize, 4},
      {"temperature", form::number, physical_drive::temperature, 1},
      {"usage", form::number, physical_drive::usage, 1},
      {"raw", form::raw, 0, sizeof(PhyDevInfo_T)}}},
    {"logical",
     {{"id", form::outside, 0, 2},
      {"raid_level", form::number, logical_drive::raidLevel, 1},
      {"members", form::members, logical_drive::memberCount,
       1 + mostMembers* logical_drive::memberSize},
      {"raw", form::raw, 0, sizeof(LogicalDevInfo_T)}}}};

constexpr std::array<std::string_view, 8> operationsWithResult{
    "checkRaidMgrExist", "getRaidIdList",     "getRaidInfoById",
    "getPhyDevIdList",   "getPhyDevInfoById", "getLogDevIdList",
    "getLogDevInfoById", "getRaidConf"};

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

/** Bytes without a key stay zero. */
Record recordOf(const std::string& list, uint32_t raidId,
                const Json& description)
{
    const auto& fields = recordKinds.at(list);
    std::vector<std::string_view> keys;
    std::ranges::transform(fields, std::back_inserter(keys), &Field::key);
    allowOnly(description, keys);
    Record record(fields.back().length);
    const Bytes bytes(record);
    if (list == "physical")
    {
        storeNumber(raidId,
                    bytes.subspan(physical_drive::raidId, sizeof(raidId)));
    }
    for (const auto& [key, form, offset, length] : fields)
    {
        const auto* value = findMember(description, key);
        if (value && form.store)
        {
            form.store(*value, bytes.subspan(offset, length));
        }
    }
    return record;
}

/** Reads a list whose elements have ids of their own, and those in them. */
void readList(const Json& parent, const std::string& list, uint32_t raidId,
              Section& section)
{
    const auto& idField = recordKinds.at(list).front();
    auto& items = section.lists[{list, raidId}];
    std::set<uint32_t> seen;
    for (const auto& json : listAt(parent, list))
    {
        const auto& place = member(json, idField.key);
        const auto id = static_cast<uint32_t>(numberOf(place, idField.length));
        demand(seen.insert(id).second, place, "duplicate id");
        items.push_back({id, recordOf(list, raidId, json)});
        if (list == "controllers")
        {
            const auto* levels = findMember(json, levelsKey);
            section.texts[{levelsKey, id}] = levels ? asText(*levels) : "";
            readList(json, "physical", id, section);
            readList(json, "logical", id, section);
        }
    }
}

void readConfiguration(const Json& list, Section& section)
{
    for (const auto& entry : list)
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
        demand(isNew, entry, "duplicate identifiers");
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
    for (const auto& json : list)
    {
        allowOnly(json, {"operation", "result", "call"});
        const auto& operation = member(json, "operation");
        demand(std::ranges::count(operationsWithResult, asText(operation)) > 0,
               operation,
               '"' + asText(operation) +
                   "\" is not an operation with a result");
        const auto result =
            asWhole(member(json, "result"), INT32_MIN, INT32_MAX);
        const auto* call = findMember(json, "call");
        section.faults.push_back({asText(operation), static_cast<int>(result),
                                  call ? asWhole(*call, 1, UINT32_MAX) : 0});
    }
}

} // namespace

Section read(const Json& json)
{
    allowOnly(json, {"manager_present", "controllers", "configuration", "texts",
                     "faults"});
    Section section{.hasManager = flagAt(json, "manager_present", true)};
    readList(json, "controllers", 0, section);
    readConfiguration(listAt(json, "configuration"), section);
    withMember(json, "texts",
               [&](const Json& texts) { readTexts(texts, section); });
    readFaults(listAt(json, "faults"), section);
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
    const auto& fields = recordKinds.at(list);
    Json description{{fields.front().key, id}};
    for (const auto& [key, form, offset, length] : std::span(fields).subspan(1))
    {
        const auto area = record.subspan(offset, length);
        auto value = form.load ? form.load(area) : nullptr;
        // What is zero or empty needs no key.
        if (value != Json(value.type()) && isUtf8(value))
        {
            description[std::string(key)] = std::move(value);
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
