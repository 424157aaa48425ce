// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace morvath::tests
{

using sim::Json;
using sim::Scenario;
using sim::ScenarioError;

namespace
{

std::string errorOf(const std::string& section)
{
    try
    {
        Scenario::parse(R"({"format": 1, "raid": )" + section + "}", "file");
    }
    catch (const ScenarioError& error)
    {
        return error.what();
    }
    return "";
}

std::string withController(const std::string& members)
{
    return R"({"controllers": [{"raid_id": 1, )" + members + "}]}";
}

std::string withDrive(const std::string& members)
{
    return withController(R"("physical": [{"device_id": 1, )" + members + "}]");
}

std::string withMembers(std::size_t count)
{
    std::string list = "0";
    while (--count > 0)
    {
        list += ",0";
    }
    return withController(R"("logical": [{"id": 0, "members": [)" + list +
                          "]}]");
}

std::string withConfiguration(const std::string& vendor,
                              const std::string& outputs)
{
    const std::string entry = R"({"vendor": ")" + vendor +
                              R"(", "device": "0x0000", "subvendor": "0x0000",
                              "subdevice": "0x0000", "outputs": )" +
                              outputs + "}";
    return R"({"configuration": [)" + entry + "," + entry + "]}";
}

} // namespace

TEST(RaidSection, BadInputIsRefusedWithItsPlace)
{
    const std::string four = R"(["", "", "", ""])";
    const std::string controller = "file: /raid/controllers/0/";
    const std::string drive = controller + "physical/0/";
    const std::vector<std::pair<std::string, std::string>> cases{
        {R"({"manager": true})", "file: /raid/manager: the key is unknown "
                                 "here"},
        {R"({"controllers": [{}]})",
         "file: /raid/controllers/0: \"raid_id\" is missing"},
        {R"({"controllers": [{"raid_id": 2}, {"raid_id": 2}]})",
         "file: /raid/controllers/1/raid_id: the id stands here twice"},
        {withController(R"("name": ")" + std::string(81, 'n') + '"'),
         controller + "name: must have at most 80 bytes"},
        {withController(R"("pci_vendor": -1)"),
         controller + "pci_vendor: must be a whole number from 0 to 65535"},
        {withController(R"("raw": {"99999999999999999999": ""})"),
         controller + "raw/99999999999999999999: must be at an offset from 0 "
                      "to 398"},
        {withController(R"("raw": {"397": "000102"})"),
         controller + "raw/397: must have two digits for each byte, up to the "
                      "end of the record"},
        {withController(R"("raw": {"0": "0g"})"),
         controller + "raw/0: must consist of hexadecimal digits"},
        {withDrive(R"("blocks": 18446744073709551616)"),
         drive + "blocks: must be a whole number from 0 to "
                 "18446744073709551615"},
        {withMembers(255), ""},
        {withMembers(256), controller + "logical/0/members/255: is one member "
                                        "too many for a logical drive"},
        {withConfiguration("0xABCD", four),
         "file: /raid/configuration/0/vendor: must be 0x and four lower-case "
         "hexadecimal digits"},
        {withConfiguration("0x0000", R"(["", "", ""])"),
         "file: /raid/configuration/0/outputs: must have four texts"},
        {withConfiguration("0x0000", four),
         "file: /raid/configuration/1: the identifiers stand here twice"},
        {R"({"texts": {"speed": {"256": ""}}})",
         "file: /raid/texts/speed/256: must be the text of a code from 0 to "
         "255"},
        {R"({"faults": [{"operation": "getDriveSpeed", "result": 1}]})",
         "file: /raid/faults/0/operation: \"getDriveSpeed\" is no operation "
         "with a result"},
        {R"({"faults": [{"operation": "getRaidConf"}]})",
         "file: /raid/faults/0: \"result\" is missing"},
    };
    for (const auto& [section, message] : cases)
    {
        EXPECT_EQ(errorOf(section), message) << section;
    }
}

TEST(RaidSection, IsInheritedOrReplacedAsAWhole)
{
    const Json standard = Scenario::standard().raid();
    EXPECT_EQ(standard["controllers"][0]["physical"].size(), 8U);
    const auto raidOf = [](const std::string& members) {
        return Scenario::parse(R"({"format": 1)" + members + "}", "test")
            .raid();
    };
    EXPECT_EQ(raidOf(""), Json({{"manager_present", false}}));
    EXPECT_EQ(raidOf(R"(, "extends": "default")"), standard);
    EXPECT_EQ(raidOf(R"(, "extends": "default", "raid": {})"), Json::object());
}

} // namespace morvath::tests
