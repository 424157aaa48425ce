// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <benchmark/benchmark.h>

namespace
{

using namespace morvath::bench;

void readTable(benchmark::State& state, const Client& client)
{
    static const auto expected = checksum(readWithRawSdBus());
    std::size_t objects = 0;
    for (auto _ : state)
    {
        auto rows = client.read();
        objects += rows.size();
        if (checksum(std::move(rows)) != expected)
        {
            state.SkipWithError("other texts than the floor's");
            break;
        }
    }
    state.SetItemsProcessed(static_cast<int64_t>(objects));
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (const auto& client : clients)
    {
        benchmark::RegisterBenchmark(client.name, readTable, client);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
