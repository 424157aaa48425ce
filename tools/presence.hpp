// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace morvath::tools
{

/** Where the platform publishes something. */
struct Source
{
    /** The beginning of the service's name. */
    const char* service;
    /** Empty: whatever object has the interface. */
    const char* path;
    const char* interface;
    const char* property;
};

/**
 * Whether the platform has it at all, which the codes of the library do not
 * tell from a failure. Raises std::exception when that cannot be found out.
 */
bool isPublished(const Source& source);

} // namespace morvath::tools
