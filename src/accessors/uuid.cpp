// SPDX-License-Identifier: Apache-2.0
#include "base/c_memory.hpp"
#include "base/codes.hpp"
#include "morvath.h"

#include <systemd/sd-id128.h>

#include <array>
#include <string>

using namespace morvath;

namespace
{

// Must never change: the identifier of every device in the field hangs on it.
constexpr sd_id128_t application = SD_ID128_ARRAY(
    3c, 9a, 51, f2, 7b, 0e, 4d, 68, 9e, 27, b1, 4f, 0a, 6c, 5d, 83);

/** Where the dashes stand in the finished text. */
constexpr std::array<std::size_t, 4> dashes{8, 13, 18, 23};

std::string uuidText(sd_id128_t identifier)
{
    char digits[SD_ID128_STRING_MAX]{};
    std::string text = sd_id128_to_string(identifier, digits);
    for (const auto position : dashes)
    {
        text.insert(position, 1, '-');
    }
    return text;
}

} // namespace

int32_t getBMCDeviceUUID(char** uuid)
{
    sd_id128_t identifier;
    std::string text;
    // Without a machine identifier the text stays empty and the code is still
    // 0, on purpose.
    if (sd_id128_get_machine_app_specific(application, &identifier) >= 0)
    {
        text = uuidText(identifier);
    }
    *uuid = newText(text).release();
    return success;
}
