// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace morvath::exporter
{

/** Empty when there is no memory for it. */
std::string gzip(const std::string& text);

} // namespace morvath::exporter
