// SPDX-License-Identifier: Apache-2.0
#include "sim/vontel/field_values.hpp"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>

namespace morvath::sim
{

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

std::uint64_t readNumber(Bytes area)
{
    std::uint64_t number = 0;
    for (auto byte = area.rbegin(); byte != area.rend(); ++byte)
    {
        number = number << 8 | *byte;
    }
    return number;
}

void writeNumber(std::uint64_t number, Bytes area)
{
    for (unsigned char& byte : area)
    {
        byte = static_cast<unsigned char>(number);
        number >>= 8;
    }
}

Json readText(Bytes area)
{
    return std::string(area.begin(), std::ranges::find(area, 0));
}

Json readPadded(Bytes area)
{
    auto text = readText(area).get<std::string>();
    text.resize(text.find_last_not_of(' ') + 1);
    return text;
}

Json readMembers(Bytes area)
{
    Json members = Json::array();
    for (std::size_t member = 0; member < area[0]; member++)
    {
        const std::size_t entry = 1 + member * logical_drive::memberSize;
        members.push_back(
            readNumber(area.subspan(entry, sizeof(std::uint16_t))));
    }
    return members;
}

bool isText(const Json& value)
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

} // namespace morvath::sim
