// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// Does a job with one client, once or TIMES times: what valgrind is run on.
namespace
{

using namespace morvath::bench;

template <typename Named>
const Named* find(std::span<const Named> all, std::string_view name)
{
    const auto found = std::ranges::find(all, name, &Named::name);
    return found == all.end() ? nullptr : &*found;
}

const Client* findClient(const char* job, const char* client)
{
    const auto* found = find(std::span<const Job>(jobs), job);
    return found ? find(found->clients, client) : nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    const auto* client = argc >= 3 ? findClient(argv[1], argv[2]) : nullptr;
    if (!client || argc > 4)
    {
        std::fprintf(stderr, "usage: %s JOB CLIENT [TIMES]\n", argv[0]);
        return 2;
    }
    for (int times = argc == 4 ? std::atoi(argv[3]) : 1; times > 1; --times)
    {
        checksum(client->read());
    }
    auto rows = client->read();
    const auto count = rows.size();
    std::printf("%zu %" PRIx64 "\n", count, checksum(std::move(rows)));
    return 0;
}
