// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>

namespace morvath::sim
{

/** All of a file. @throws ScenarioError when it cannot be read */
std::string readTextFile(const std::filesystem::path& file);

} // namespace morvath::sim
