// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>

namespace morvath::tools
{

using Timeout = std::chrono::duration<double>;

/**
 * Makes sure that there is a bus, and limits how long the library waits for
 * each answer. Raises std::system_error without a bus.
 */
void useBus(std::optional<Timeout> timeout);

/** Whether the object mapper answers, whatever it knows. */
bool platformAnswers();

} // namespace morvath::tools
