// SPDX-License-Identifier: Apache-2.0
#include "sim/text_file.hpp"

#include "sim/json_cursor.hpp"

#include <fstream>
#include <iterator>

namespace morvath::sim
{

std::string readTextFile(const std::filesystem::path& file)
{
    // Also because a device or a pipe may never end.
    if (std::filesystem::exists(file) &&
        !std::filesystem::is_regular_file(file))
    {
        throw ScenarioError(file.string() + ": is not a regular file");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
    {
        throw ScenarioError(file.string() + ": cannot be read");
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace morvath::sim
