// SPDX-License-Identifier: Apache-2.0
#include "raid/raid_library.hpp"

namespace morvath::tests::disks
{

constexpr auto service = "com.example.Inventory";
constexpr auto disk = "xyz.openbmc_project.Inventory.Item.Disk";

Json plainDisk()
{
    return {{"Name", text("D")},
            {"DiskTemp", property("y", 1)},
            {"Capacity", property("t", 1000204886016)},
            {"CapableSpeedGbs", property("u", 6)},
            {"Present", property("b", true)}};
}

const std::string plainLine =
    "0|D|null|null|null|null|null|null|null|6GB/s|1|931|1|0|0";

Machine oneDisk(const Json& changes = Json::object())
{
    return Machine().owns("/a/disk", service,
                          {{disk, changed(plainDisk(), changes)}});
}

Lines disksOf(const Machine& machine, const Json& section)
{
    const RaidLibrary library(section);
    sim::Platform platform(machine.scenario());
    return linesOf<getHddTableInfo>();
}

TEST(Disks, BehindAController)
{
    const struct
    {
        const char* what;
        const char* drive;
        std::string line;
    } cases[]{
        {"nothing known", R"({})",
         "0|||||Unknown|Unknown|UnKnown|0|UnknownGB/s|0|0|1|0|0"},
        {"white space anywhere",
         R"({"vendor": "AB CD", "model": "X\t\n\u000b\f\rY", "serial": " s "})",
         "0|ABCD-XY- s |ABCD|XY| s |Unknown|Unknown|UnKnown|0|UnknownGB/s|0|0|"
         "1|0|0"},
        {"areas filled wholly",
         R"({"vendor": "12345678", "model": "1234567890abcdef",
             "serial": "123456789 123456789 123456789 123456789 12345678",
             "text80": "12345678"})",
         "0|12345678-1234567890abcdef-123456789 123456789 123456789 123456789 "
         "1234567812345678|12345678|1234567890abcdef|"
         "123456789 123456789 123456789 123456789 1234567812345678|"
         "Unknown|Unknown|UnKnown|0|UnknownGB/s|0|0|1|0|0"},
        {"a NUL ends a text, and the name with it",
         R"({"vendor": "V", "model": "M", "serial": "S",
             "raw": {"10": "0041", "17": "00"}})",
         "0|V|V|M|S|Unknown|Unknown|UnKnown|0|UnknownGB/s|0|0|1|0|0"},
        {"greatest numbers",
         R"({"usage": 255, "temperature": 255, "blocks": 18446744073709551615,
             "block_size": 1})",
         "0|||||Unknown|Unknown|UnKnown|255|UnknownGB/s|255|4294967295|1|0|"
         "0"},
        {"modulo 2^64", R"({"blocks": 9223373136366403584, "block_size": 4})",
         "0|||||Unknown|Unknown|UnKnown|0|UnknownGB/s|0|4096|1|0|0"},
    };
    for (const auto& one : cases)
    {
        auto drive = Json::parse(one.drive);
        drive["device_id"] = 1;
        const Json section{
            {"controllers", {{{"raid_id", 1}, {"physical", {drive}}}}}};
        EXPECT_EQ(disksOf(Machine(), section), (Lines{"0", one.line}))
            << one.what;
    }
}

TEST(Disks, OnTheBus)
{
    const struct
    {
        const char* what;
        Json changes;
        Lines expected;
    } cases[]{
        {"plain", Json::object(), {"0", plainLine}},
        {"no speed in its text",
         {{"CapableSpeedGbs", text("")}},
         {"0", "0|D|null|null|null|null|null|null|null|GB/s|1|931|1|0|0"}},
        {"greatest capacity",
         {{"Capacity", text("18446744073709551615")},
          {"Present", property("b", false)},
          {"DiskTemp", property("i", -5)}},
         {"0", "0|D|null|null|null|null|null|null|null|6GB/s|-5|4294967295|0|"
               "0|0"}},
        {"no capacity", {{"Capacity", nullptr}}, {nullText}},
        {"no speed", {{"CapableSpeedGbs", nullptr}}, {nullText}},
        {"no number", {{"DiskTemp", text("warm")}}, {"invalid argument: stoi"}},
        {"a great number",
         {{"Capacity", text("18446744073709551616")}},
         {"out of range: stoull"}},
    };
    for (const auto& one : cases)
    {
        EXPECT_EQ(disksOf(oneDisk(one.changes), noManager), one.expected)
            << one.what;
    }
    EXPECT_EQ(disksOf(Machine(), noManager), Lines{"0"});
}

TEST(Disks, BehindControllersAreAllThereOrNone)
{
    const std::string unknown =
        "0|||||Unknown|Unknown|UnKnown|0|UnknownGB/s|0|0|1|0|0";
    auto section = twoControllers();
    // A controller without drives does not end the walk.
    auto& controllers = section["controllers"];
    controllers.insert(controllers.begin(), Json{{"raid_id", 1}});
    EXPECT_EQ(disksOf(oneDisk(), section),
              (Lines{"0", plainLine, unknown, unknown, unknown, unknown}));
    EXPECT_EQ(
        disksOf(oneDisk(), withFault(section, "getPhyDevInfoById", 3, -1)),
        (Lines{"0", plainLine}));
}

TEST(Disks, LeaveTheCountAloneWhenTheyFail)
{
    const RaidLibrary library(twoControllers());
    {
        sim::Platform platform(Machine().withoutMapper().scenario());
        EXPECT_EQ(outputsOf<getHddTableInfo>(77), "-1 untouched 77");
        EXPECT_TRUE(library.calls().empty());
    }
    // The caller releases the array; it could not tell what is in it.
    const auto bad = changed(plainDisk(), {{"DiskTemp", text("")}});
    sim::Platform platform(
        oneDisk().owns("/b", service, {{disk, bad}}).scenario());
    EXPECT_EQ(outputsOf<getHddTableInfo>(77),
              "invalid argument: stoi array 77");
}

} // namespace morvath::tests::disks
