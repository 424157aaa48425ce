// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <string_view>

// Does the job once with one client: what valgrind is run on.
int main(int argc, char** argv)
{
    using namespace morvath::bench;
    const std::string_view name = argc == 2 ? argv[1] : "";
    const auto client = std::ranges::find(clients, name, &Client::name);
    if (client == clients.end())
    {
        std::fprintf(stderr, "usage: %s CLIENT\n", argv[0]);
        return 2;
    }
    auto rows = client->read();
    const auto count = rows.size();
    std::printf("%zu %" PRIx64 "\n", count, checksum(std::move(rows)));
    return 0;
}
