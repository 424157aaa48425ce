// SPDX-License-Identifier: Apache-2.0
#include "sim/text_file.hpp"

#include "sim/json_cursor.hpp"

#include <fstream>
#include <iterator>

namespace morvath::sim
{

std::string readTextFile(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream || std::filesystem::is_directory(file))
    {
        throw ScenarioError(file.string() + ": cannot be read");
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace morvath::sim
