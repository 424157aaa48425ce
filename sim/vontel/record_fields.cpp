// SPDX-License-Identifier: Apache-2.0
#include "sim/vontel/record_fields.hpp"

#include "raid/vontel.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace morvath::sim
{

namespace
{

constexpr int hexadecimal = 16;

template <std::unsigned_integral Number>
void writeField(const JsonCursor& value, Bytes area)
{
    writeNumber(value.number<Number>(), area);
}

void writeText(const JsonCursor& value, Bytes area)
{
    const std::string& text = value.text();
    if (text.size() > area.size())
    {
        value.fail("must have at most " + std::to_string(area.size()) +
                   " bytes");
    }
    std::copy(text.begin(), text.end(), area.begin());
}

void writePadded(const JsonCursor& value, Bytes area)
{
    std::fill(area.begin(), area.end(), ' ');
    writeText(value, area);
}

/** The number of members and then an entry for each. */
void writeMembers(const JsonCursor& value, Bytes area)
{
    constexpr std::size_t most = std::numeric_limits<std::uint8_t>::max();
    std::size_t count = 0;
    value.forEachElement([&](const JsonCursor& member) {
        if (count == most)
        {
            member.fail("is one member too many for a logical drive");
        }
        const std::size_t entry = 1 + count++ * logical_drive::memberSize;
        writeField<std::uint16_t>(member,
                                  area.subspan(entry, sizeof(std::uint16_t)));
    });
    writeNumber(count, area.first(1));
}

template <std::unsigned_integral Number>
constexpr RecordField number(std::string_view key, std::size_t offset)
{
    return {key, offset, sizeof(Number), writeField<Number>};
}

/** A text that ends where the next field begins, at the latest. */
constexpr RecordField text(std::string_view key, std::size_t offset,
                           std::size_t next)
{
    return {key, offset, next - offset, writeText};
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
    RecordField{"vendor", drive::vendor, drive::vendorLength, writePadded},
    RecordField{"model", drive::model, drive::modelLength, writePadded},
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
                writeMembers},
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

} // namespace

const RecordFields controllerFields = controllerTable;
const RecordFields physicalDriveFields = physicalDriveTable;
const RecordFields logicalDriveFields = logicalDriveTable;

void writeNumber(std::uint64_t number, Bytes area)
{
    for (unsigned char& byte : area)
    {
        byte = static_cast<unsigned char>(number);
        number >>= 8;
    }
}

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

} // namespace morvath::sim
