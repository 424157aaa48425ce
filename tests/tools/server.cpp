// SPDX-License-Identifier: Apache-2.0
#include "sim/process.hpp"
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace morvath::tests::server
{

/** What is printed about the server with its RAID controller, all of it. */
Json allOf(const std::string& command)
{
    const auto all =
        run("MORVATH_SIM", "run -- $MORVATH " + command + " --all --json");
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.errors, "");
    auto document = Json::parse(all.output);
    EXPECT_EQ(document["formatVersion"], 1);
    EXPECT_EQ(document["errors"], Json::array());
    return document;
}

/** What is expected, with a row of each table, or more. */
Json expected()
{
    std::ifstream file(std::getenv("SERVER"));
    return Json::parse(file);
}

TEST(Server, HasItsTables)
{
    const auto tables = allOf("show")["tables"];
    Json counts;
    for (const auto& [name, rows] : tables.items())
    {
        counts[name] = rows.size();
    }
    const auto known = expected();
    EXPECT_EQ(counts, known["counts"]);
    for (const auto& [place, row] : known["rows"].items())
    {
        EXPECT_EQ(tables[Json::json_pointer(place)], row) << place;
    }
}

TEST(Server, HasItsFacts)
{
    auto facts = allOf("get")["facts"];
    const auto listed = morvath("facts").output;
    EXPECT_EQ(std::ranges::count(listed, '\n'), std::ssize(facts));
    for (const auto& [name, value] : facts.items())
    {
        EXPECT_NE(listed.find(name + ' '), std::string::npos);
    }
    // Those are of the machine of the tests.
    for (const auto* name : {"bmc-uuid", "time", "time-zone"})
    {
        EXPECT_EQ(facts.erase(name), 1u);
    }
    EXPECT_EQ(facts, expected()["facts"]);
}

TEST(Server, TellsThatRaidCouldNotBeRead)
{
    struct
    {
        const char* what;
        const char* section;
        const char* error;
    } const cases[]{
        {"a controller cannot be read",
         R"({"controllers": [{"raid_id": 1}], "faults": [
             {"operation": "getRaidInfoById", "result": -5}]})",
         ": the RAID management library failed\n"},
        {"a mistake in what is to be served", R"({"controllers": 1})",
         ": /controllers: must be an array\n"},
    };
    for (const auto& one : cases)
    {
        const sim::MemoryFile section(one.section);
        const auto outcome =
            run("env MORVATH_SIM_RAID=" + section.path() + " MORVATH",
                "show raid-controllers");
        EXPECT_EQ(outcome.status, 1) << one.what;
        EXPECT_TRUE(outcome.errors.starts_with("morvath: raid-controllers: "));
        EXPECT_TRUE(outcome.errors.ends_with(one.error)) << outcome.errors;
    }
}

} // namespace morvath::tests::server
