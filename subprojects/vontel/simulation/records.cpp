// SPDX-License-Identifier: Apache-2.0
#include "simulation/records.hpp"

#include <algorithm>
#include <charconv>
#include <limits>

namespace vontel::simulation
{

namespace
{

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

constexpr std::string_view otherControllerKeys[]{"supported_raid_levels",
                                                 "physical", "logical"};

constexpr Field physicalDriveFields[]{
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

constexpr auto mostMembers = std::numeric_limits<uint8_t>::max();
static_assert(logical_drive::members == logical_drive::memberCount + 1);

constexpr Field logicalDriveFields[]{
    {"raid_level", Field::number, logical_drive::raidLevel, 1},
    {"members", Field::members, logical_drive::memberCount,
     1 + mostMembers* logical_drive::memberSize},
};

constexpr std::string_view otherLogicalDriveKeys[]{"id"};

/** Little-endian, as wide as the area. */
void writeNumber(uint64_t number, Bytes area)
{
    for (auto& byte : area)
    {
        byte = static_cast<unsigned char>(number);
        number >>= 8;
    }
}

uint64_t readNumber(Bytes area)
{
    uint64_t number = 0;
    for (auto byte = area.rbegin(); byte != area.rend(); ++byte)
    {
        number = number << 8 | *byte;
    }
    return number;
}

uint64_t mostIn(std::size_t length)
{
    return std::numeric_limits<uint64_t>::max() >> (64 - 8 * length);
}

Bytes memberIn(Bytes area, std::size_t index)
{
    return area.subspan(1 + index * logical_drive::memberSize,
                        sizeof(uint16_t));
}

void write(const Field& field, const Json& value, Bytes record)
{
    const auto area = record.subspan(field.offset, field.length);
    if (field.kind == Field::number)
    {
        writeNumber(numberOf(value, mostIn(area.size())), area);
        return;
    }
    if (field.kind == Field::members)
    {
        if (!value.is_array())
        {
            throw WrongValue(value, "must be an array");
        }
        if (value.size() > mostMembers)
        {
            throw WrongValue(value[mostMembers],
                             "is one member too many for a logical drive");
        }
        area[0] = static_cast<unsigned char>(value.size());
        for (std::size_t index = 0; index < value.size(); ++index)
        {
            const auto member = memberIn(area, index);
            writeNumber(numberOf(value[index], mostIn(member.size())), member);
        }
        return;
    }
    const auto& text = textOf(value);
    if (text.size() > area.size())
    {
        throw WrongValue(value, "must have at most " +
                                    std::to_string(area.size()) + " bytes");
    }
    if (field.kind == Field::padded)
    {
        std::ranges::fill(area, ' ');
    }
    std::ranges::copy(text, area.begin());
}

Json read(const Field& field, Bytes record)
{
    const auto area = record.subspan(field.offset, field.length);
    if (field.kind == Field::number)
    {
        return readNumber(area);
    }
    if (field.kind == Field::members)
    {
        auto members = Json::array();
        for (std::size_t index = 0; index < area[0]; ++index)
        {
            members.push_back(readNumber(memberIn(area, index)));
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

void writeRaw(const std::string& key, const Json& value, Bytes record)
{
    std::size_t offset = 0;
    const auto* end = key.data() + key.size();
    const auto number = std::from_chars(key.data(), end, offset);
    if (number.ec != std::errc() || number.ptr != end ||
        offset >= record.size())
    {
        throw WrongValue(value, "must be at an offset from 0 to " +
                                    std::to_string(record.size() - 1));
    }
    const auto rest = record.subspan(offset);
    const auto& digits = textOf(value);
    if (digits.size() % 2 != 0 || digits.size() / 2 > rest.size())
    {
        throw WrongValue(value, "must have two digits for each byte, up to "
                                "the end of the record");
    }
    for (std::size_t place = 0; place < digits.size(); place += 2)
    {
        const auto* next = digits.data() + place + 2;
        if (std::from_chars(next - 2, next, rest[place / 2], 16).ptr != next)
        {
            throw WrongValue(value, "must consist of hexadecimal digits");
        }
    }
}

/** Each run of bytes that differ, by its offset. */
Json differences(Bytes record, Bytes described)
{
    constexpr std::string_view digits = "0123456789abcdef";
    auto raw = Json::object();
    for (std::size_t place = 0, start = 0; place < record.size(); ++place)
    {
        if (record[place] == described[place])
        {
            start = place + 1;
            continue;
        }
        auto& run = raw[std::to_string(start)];
        run = run.is_null() ? "" : run;
        run.get_ref<std::string&>() +=
            {digits[record[place] / 16], digits[record[place] % 16]};
    }
    return raw;
}

} // namespace

const RecordKind controllers{controllerFields, otherControllerKeys};
const RecordKind physicalDrives{physicalDriveFields, {}};
const RecordKind logicalDrives{logicalDriveFields, otherLogicalDriveKeys};

PhyDevInfo_T blankDrive(uint32_t raidId)
{
    PhyDevInfo_T record{};
    writeNumber(raidId, Bytes(record.bytes).first(sizeof(raidId)));
    return record;
}

void fill(const Json& description, const RecordKind& kind, Bytes record)
{
    if (!description.is_object())
    {
        throw WrongValue(description, "must be an object");
    }
    const Json* raw = nullptr;
    for (const auto& [key, value] : description.items())
    {
        const auto field = std::ranges::find(kind.fields, key, &Field::key);
        if (field != kind.fields.end())
        {
            write(*field, value, record);
        }
        else if (key == "raw" && value.is_object())
        {
            raw = &value;
        }
        else if (std::ranges::find(kind.otherKeys, key) == kind.otherKeys.end())
        {
            throw WrongValue(value, key == "raw" ? "must be an object"
                                                 : "the key is unknown here");
        }
    }
    if (raw)
    {
        for (const auto& [key, value] : raw->items())
        {
            writeRaw(key, value, record);
        }
    }
}

Json describe(Bytes record, const RecordKind& kind, Bytes blank,
              Json description)
{
    for (const auto& field : kind.fields)
    {
        auto value = read(field, record);
        if (!description.contains(field.key) && value != read(field, blank) &&
            isUtf8(value))
        {
            description[std::string(field.key)] = std::move(value);
        }
    }
    fill(description, kind, blank);
    if (auto raw = differences(record, blank); !raw.empty())
    {
        description["raw"] = std::move(raw);
    }
    return description;
}

const std::string& textOf(const Json& value)
{
    if (!value.is_string())
    {
        throw WrongValue(value, "must be a text");
    }
    return value.get_ref<const std::string&>();
}

uint64_t numberOf(const Json& value, uint64_t most)
{
    if (!value.is_number_unsigned() || value.get<uint64_t>() > most)
    {
        throw WrongValue(value, "must be a whole number from 0 to " +
                                    std::to_string(most));
    }
    return value.get<uint64_t>();
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
