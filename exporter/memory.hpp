// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace morvath::exporter
{

/**
 * Gives back what only the loading of the libraries and the work done so far
 * needed of their code, half of the memory. It comes back from the file.
 */
void releaseCode();

} // namespace morvath::exporter
