// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/c_memory.hpp"
#include "bus/reply_reader.hpp"

namespace morvath
{

/** The text of a table cell; empty for what is not rendered. */
CText renderPropertyValue(const BasicValue& value);

} // namespace morvath
