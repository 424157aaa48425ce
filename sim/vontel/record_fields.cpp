// SPDX-License-Identifier: Apache-2.0
#include "sim/vontel/record_fields.hpp"

#include "raid/vontel.hpp"
#include "sim/vontel/field_values.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace morvath::sim
{

namespace
{

constexpr int hexadecimal = 16;

template <std::unsigned_integral Number>
constexpr RecordField number(std::string_view key, std::size_t offset)
{
    return {key, offset, sizeof(Number), writeField<Number>, readField<Number>};
}

/** A text that ends where the next field begins, at the latest. */
constexpr RecordField text(std::string_view key, std::size_t offset,
                           std::size_t next)
{
    return {key, offset, next - offset, writeText, readText};
}

namespace controller = raid_info;

constexpr std::array controllerTable{
    number<std::uint32_t>("raid_id", controller::raidId),
    text("name", controller::name, controller::idText1),
    text("text84", controller::idText1, controller::idText2),
    text("text132", controller::idText2, controller::idText3),
    text("text164", controller::idText3, controller::vendorId),
    number<std::uint16_t>("pci_vendor", controller::vendorId),
    number<std::uint16_t>("pci_device", controller::deviceId),
    number<std::uint16_t>("pci_subvendor", controller::subVendorId),
    number<std::uint16_t>("pci_subdevice", controller::subDeviceId),
    number<std::uint16_t>("word332", controller::wordProperty),
    number<std::uint8_t>("byte335", controller::byteProperty),
};

namespace drive = physical_drive;

constexpr std::array physicalDriveTable{
    number<std::uint16_t>("device_id", drive::deviceId),
    number<std::uint8_t>("media_type", drive::mediaType),
    number<std::uint8_t>("state", drive::state),
    RecordField{"vendor", drive::vendor, drive::vendorLength, writePadded,
                readPadded},
    RecordField{"model", drive::model, drive::modelLength, writePadded,
                readPadded},
    text("serial", drive::serial, drive::driveText),
    text("text80", drive::driveText, drive::interfaceType),
    number<std::uint8_t>("interface_type", drive::interfaceType),
    number<std::uint8_t>("link_speed", drive::linkSpeed),
    number<std::uint64_t>("blocks", drive::blocks),
    number<std::uint32_t>("block_size", drive::blockSize),
    number<std::uint8_t>("temperature", drive::temperature),
    number<std::uint8_t>("usage", drive::usage),
};

static_assert(logical_drive::members == logical_drive::memberCount + 1);

constexpr std::array logicalDriveTable{
    number<std::uint8_t>("raid_level", logical_drive::raidLevel),
    RecordField{"members", logical_drive::memberCount,
                sizeof(vontel::LogicalDevInfo_T) - logical_drive::memberCount,
                writeMembers, readMembers},
};

std::size_t offsetOf(const std::string& key, const JsonCursor& place,
                     std::size_t recordSize)
{
    std::size_t offset = 0;
    const char* end = key.data() + key.size();
    const auto read = std::from_chars(key.data(), end, offset);
    if (read.ec != std::errc() || read.ptr != end || offset >= recordSize)
    {
        place.fail("must be at an offset from 0 to " +
                   std::to_string(recordSize - 1));
    }
    return offset;
}

void writeRaw(const std::string& key, const JsonCursor& value, Bytes record)
{
    Bytes rest = record.subspan(offsetOf(key, value, record.size()));
    const std::string& digits = value.text();
    if (digits.size() % 2 != 0 || digits.size() / 2 > rest.size())
    {
        value.fail("must have two digits for each byte, up to the end of the "
                   "record");
    }
    for (std::size_t place = 0; place < digits.size(); place += 2)
    {
        const char* end = digits.data() + place + 2;
        const auto read = std::from_chars(digits.data() + place, end,
                                          rest[place / 2], hexadecimal);
        if (read.ptr != end)
        {
            value.fail("must consist of hexadecimal digits");
        }
    }
}

/** Each run of bytes that differ, by its offset. */
Json differences(Bytes record, Bytes described)
{
    constexpr std::string_view digits = "0123456789abcdef";
    Json raw = Json::object();
    std::string* run = nullptr;
    for (std::size_t place = 0; place < record.size(); place++)
    {
        if (record[place] == described[place])
        {
            run = nullptr;
            continue;
        }
        if (run == nullptr)
        {
            Json& text = raw[std::to_string(place)] = "";
            run = &text.get_ref<std::string&>();
        }
        *run += digits[record[place] / hexadecimal];
        *run += digits[record[place] % hexadecimal];
    }
    return raw;
}

} // namespace

const RecordFields controllerFields = controllerTable;
const RecordFields physicalDriveFields = physicalDriveTable;
const RecordFields logicalDriveFields = logicalDriveTable;

void fillRecord(const JsonCursor& description, RecordFields fields,
                Bytes record, std::vector<std::string_view> otherKeys)
{
    std::vector<std::string_view>& keys = otherKeys;
    keys.push_back("raw");
    std::ranges::transform(fields, std::back_inserter(keys), &RecordField::key);
    description.allowOnly(keys);
    for (const RecordField& field : fields)
    {
        if (const auto value = description.find(field.key))
        {
            field.write(*value, record.subspan(field.offset, field.length));
        }
    }
    if (const auto raw = description.find("raw"))
    {
        raw->forEachMember(
            [&](const std::string& key, const JsonCursor& value) {
                writeRaw(key, value, record);
            });
    }
}

Json describeRecord(Bytes record, RecordFields fields, Bytes blank, Json known)
{
    Json description = std::move(known);
    for (const RecordField& field : fields)
    {
        const auto valueIn = [&](Bytes bytes) {
            return field.read(bytes.subspan(field.offset, field.length));
        };
        Json value = valueIn(record);
        if (!description.contains(field.key) && value != valueIn(blank) &&
            isText(value))
        {
            description[std::string(field.key)] = std::move(value);
        }
    }
    fillRecord({description, "a record"}, fields, blank, {});
    if (Json raw = differences(record, blank); !raw.empty())
    {
        description["raw"] = std::move(raw);
    }
    return description;
}

} // namespace morvath::sim
