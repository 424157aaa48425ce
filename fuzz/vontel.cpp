// SPDX-License-Identifier: Apache-2.0
#include "vontel.hpp"

#include "fuzz/peer.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

namespace morvath::fuzz
{
namespace
{

constexpr std::size_t fewIds = 5;
constexpr std::size_t manyIds = 30;

/** Mostly success, as little else is called after a failure. */
int result()
{
    const auto code = static_cast<int8_t>(answers().byte());
    return code > -100 ? 0 : code;
}

/** As many bytes as the record has, no more, whatever the input has left. */
template <typename Record>
int fill(Record* record)
{
    std::array<uint8_t, UINT8_MAX> pattern{};
    const auto length = std::max<std::size_t>(1, answers().byte());
    std::generate_n(pattern.begin(), length, [] { return answers().byte(); });
    for (std::size_t index = 0; index < sizeof(record->bytes); ++index)
    {
        record->bytes[index] = pattern[index % length];
    }
    return result();
}

template <typename Id>
int list(std::vector<Id>& ids)
{
    const auto few = answers().below(fewIds + 1);
    // Of exactly this size, so that a look beyond the end is noticed.
    std::vector<Id> listed(few == fewIds ? manyIds : few);
    std::ranges::generate(listed, [] { return answers().number<Id>(); });
    ids = std::move(listed);
    return result();
}

} // namespace
} // namespace morvath::fuzz

namespace vontel
{

using namespace morvath::fuzz;

int checkRaidMgrExist() { return result() == 0; }

int getRaidIdList(uint8_t, std::vector<uint32_t>& raidIds)
{
    return list(raidIds);
}

int getRaidInfoById(uint8_t, uint32_t, RAIDInfo_T* info) { return fill(info); }

int getPhyDevIdList(uint8_t, uint32_t, std::vector<uint16_t>& deviceIds)
{
    return list(deviceIds);
}

int getPhyDevInfoById(uint8_t, uint32_t, uint16_t, PhyDevInfo_T* info)
{
    return fill(info);
}

int getLogDevIdList(uint8_t, uint32_t, std::vector<uint16_t>& logicalIds)
{
    return list(logicalIds);
}

int getLogDevInfoById(uint8_t, uint32_t, uint16_t, LogicalDevInfo_T* info)
{
    return fill(info);
}

int getRaidConf(std::string, std::string, std::string, std::string,
                std::string& first, std::string& second, std::string& third,
                std::string& fourth)
{
    first = answers().text();
    second = answers().text();
    third = answers().text();
    fourth = answers().text();
    return result();
}

std::string getSupportRaidLevels(uint8_t, uint32_t) { return answers().text(); }

std::string getRaidLevelStr(uint8_t) { return answers().text(); }

std::string getPhyDevStateStr(uint8_t) { return answers().text(); }

std::string getDriveMediaType(uint8_t) { return answers().text(); }

std::string getDriveInterfaceType(uint8_t) { return answers().text(); }

std::string getDriveSpeed(uint8_t) { return answers().text(); }

} // namespace vontel
