// SPDX-License-Identifier: Apache-2.0
#include "base/codes.hpp"
#include "bus/rows.hpp"
#include "morvath.h"

#include <array>
#include <string_view>

using namespace morvath;

namespace
{

constexpr auto bmcPurpose =
    "xyz.openbmc_project.Software.Version.VersionPurpose.BMC";
constexpr auto hostPurpose =
    "xyz.openbmc_project.Software.Version.VersionPurpose.Host";

constexpr std::size_t purposeColumn = 0;
constexpr std::size_t versionColumn = 1;
constexpr std::array columns{"Purpose", "Version"};

constexpr TableQuery images{"/xyz/openbmc_project/software",
                            "xyz.openbmc_project.Software.Version", columns};

/** Of its first characters only, so longer purposes are the same. */
bool isFor(Row image, std::string_view purpose)
{
    const char* held = image[purposeColumn];
    return held && std::string_view(held).starts_with(purpose);
}

int32_t readVersion(const char* purpose, char** value)
{
    Rows rows;
    if (const auto code = rows.read(images))
    {
        return code;
    }
    // Of several images the last counts, on purpose.
    CText version;
    for (std::size_t index = 0; index < rows.size(); ++index)
    {
        auto image = rows[index];
        if (isFor(image, purpose) && image[versionColumn])
        {
            version = image.take(versionColumn);
        }
    }
    if (version)
    {
        *value = version.release();
    }
    return success;
}

} // namespace

int32_t getBMCFirmwareVersion(char** value)
{
    return readVersion(bmcPurpose, value);
}

int32_t getBiosFirmwareVersion(char** value)
{
    return readVersion(hostPurpose, value);
}
