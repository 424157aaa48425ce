// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/descriptor.hpp"

#include <fcntl.h>

namespace morvath::sim
{

struct Pipe
{
    Descriptor readEnd;
    Descriptor writeEnd;

    Pipe()
    {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) < 0)
        {
            throw std::system_error(errno, std::generic_category(), "pipe2");
        }
        readEnd = {ends[0], "pipe2"};
        writeEnd = {ends[1], "pipe2"};
    }
};

} // namespace morvath::sim
