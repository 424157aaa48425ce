// SPDX-License-Identifier: Apache-2.0
#include "sim/memory_file.hpp"

#include <sys/mman.h>

namespace morvath::sim
{

MemoryFile::MemoryFile(std::string_view contents) :
    file_(memfd_create("morvath-sim", MFD_CLOEXEC), "memfd_create")
{
    while (!contents.empty())
    {
        const ssize_t written =
            write(file_.get(), contents.data(), contents.size());
        if (written < 0)
        {
            throw std::system_error(errno, std::generic_category(), "write");
        }
        contents.remove_prefix(static_cast<std::size_t>(written));
    }
}

std::string MemoryFile::path() const
{
    // By our number and not as /proc/self: commands close what they inherit.
    return "/proc/" + std::to_string(getpid()) + "/fd/" +
           std::to_string(file_.get());
}

} // namespace morvath::sim
