// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <benchmark/benchmark.h>

#include <string>

namespace
{

using namespace morvath::bench;

void doJob(benchmark::State& state, const Client& client, uint64_t expected)
{
    for (auto _ : state)
    {
        if (checksum(client.read()) != expected)
        {
            state.SkipWithError("other texts than the floor's");
            break;
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (const auto& [job, clients] : jobs)
    {
        const auto expected = checksum(clients.front().read());
        for (const auto& client : clients)
        {
            const auto name = std::string(job) + '/' + client.name;
            benchmark::RegisterBenchmark(name.c_str(), doJob, client, expected);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
