// SPDX-License-Identifier: Apache-2.0
#include "sim/record/raid_texts.hpp"

#include "sim/vontel/field_values.hpp"
#include "sim/vontel/section.hpp"

#include <algorithm>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace morvath::sim
{

constexpr unsigned codeCount = 256;

namespace
{

std::string identifierAt(std::size_t offset, const vontel::RAIDInfo_T& info)
{
    std::array<char, sizeof("0x0000")> text{};
    std::snprintf(text.data(), text.size(), "0x%02x%02x",
                  info.bytes[offset + 1], info.bytes[offset]);
    return text.data();
}

/** What is said of most codes is said of those that are unknown. */
std::string mostFrequent(const std::vector<std::string>& texts)
{
    std::map<std::string, unsigned> counts;
    for (const std::string& text : texts)
    {
        counts[text]++;
    }
    return std::ranges::max_element(
               counts, {}, [](const auto& count) { return count.second; })
        ->first;
}

} // namespace

const std::string& checkedText(const std::string& text)
{
    if (!isText(text))
    {
        throw std::runtime_error("a text is not UTF-8");
    }
    return text;
}

void addConfiguration(Json& configuration, const VontelLibrary& library,
                      const vontel::RAIDInfo_T& info)
{
    const FourTexts ids{identifierAt(raid_info::vendorId, info),
                        identifierAt(raid_info::deviceId, info),
                        identifierAt(raid_info::subVendorId, info),
                        identifierAt(raid_info::subDeviceId, info)};
    FourTexts outputs;
    if (library.getRaidConf(ids[0], ids[1], ids[2], ids[3], outputs[0],
                            outputs[1], outputs[2], outputs[3]) == 0)
    {
        return;
    }
    Json entry = Json::object();
    for (std::size_t key = 0; key < ids.size(); key++)
    {
        entry[std::string(identifierKeys[key])] = ids[key];
    }
    for (const std::string& output : outputs)
    {
        entry["outputs"].push_back(checkedText(output));
    }
    // Two controllers of one kind share an entry.
    if (std::ranges::find(configuration, entry) == configuration.end())
    {
        configuration.push_back(std::move(entry));
    }
}

Json recordTexts(const VontelLibrary& library)
{
    std::vector<std::string> texts;
    for (const auto& textOf : library.codeTexts)
    {
        for (unsigned code = 0; code < codeCount; code++)
        {
            texts.push_back(
                checkedText(textOf(static_cast<std::uint8_t>(code))));
        }
    }
    const std::string unknown = mostFrequent(texts);
    Json json = Json::object();
    for (std::size_t place = 0; place < texts.size(); place++)
    {
        if (texts[place] != unknown)
        {
            const auto key = codeKeys[place / codeCount];
            json[std::string(key)][std::to_string(place % codeCount)] =
                texts[place];
        }
    }
    json["unknown"] = unknown;
    return json;
}

} // namespace morvath::sim
