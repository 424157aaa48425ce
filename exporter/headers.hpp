// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "exposition.hpp"

namespace morvath::exporter
{

// What a client asks for. A header that is missing is null.

/** By "Accept". */
Format acceptedFormat(const char* accept);

/** By "Accept-Encoding". */
bool acceptsGzip(const char* acceptEncoding);

/**
 * How long an answer may take, by "X-Prometheus-Scrape-Timeout-Seconds" and
 * less a margin for the way, or otherwise.
 */
Seconds acceptedWait(const char* timeout, Seconds otherwise);

} // namespace morvath::exporter
