// SPDX-License-Identifier: Apache-2.0
#include "memory.hpp"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

namespace morvath::exporter
{

void releaseCode()
{
    dl_iterate_phdr(
        [](dl_phdr_info* object, size_t, void*) {
            const uintptr_t page = getpagesize();
            for (int i = 0; i < object->dlpi_phnum; ++i)
            {
                const auto& part = object->dlpi_phdr[i];
                if (part.p_type == PT_LOAD && !(part.p_flags & PF_W))
                {
                    const auto begin = object->dlpi_addr + part.p_vaddr;
                    const auto first = begin & ~(page - 1);
                    madvise(reinterpret_cast<void*>(first),
                            begin + part.p_memsz - first, MADV_DONTNEED);
                }
            }
            return 0;
        },
        nullptr);
}

} // namespace morvath::exporter
