// SPDX-License-Identifier: Apache-2.0
#include "base/required.hpp"

#include <stdexcept>

namespace morvath
{

void raiseMissing()
{
    throw std::logic_error("basic_string: construction from null is not valid");
}

} // namespace morvath
