// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace morvath::tests
{

using sim::Json;
using sim::Scenario;
using sim::ScenarioError;

namespace
{

std::string errorOf(const std::string& json)
{
    try
    {
        Scenario::parse(json, "file");
    }
    catch (const ScenarioError& error)
    {
        return error.what();
    }
    return "";
}

/** A text with another in place of its '@'. */
std::string in(const std::string& frame, const std::string& part)
{
    const auto place = frame.find('@');
    return frame.substr(0, place) + part + frame.substr(place + 1);
}

const std::string object = R"({"format": 1, "objects": [@]})";
const std::string property = in(object, R"({"path": "/a", "services": [
        {"name": "x.y", "interfaces": {"x.I": {"P": @}}}]})");
const std::string fault = R"({"format": 1, "faults": [@]})";
const std::string raid = R"({"format": 1, "raid": @})";
const std::string controller =
    in(raid, R"({"controllers": [{"raid_id": 1, @}]})");
const std::string configuration = in(raid, R"({"configuration": [@]})");
const std::string board = R"({"device": "0x0000", "subvendor": "0x0000",
    "subdevice": "0x0000", "vendor": @})";

std::string times(unsigned count, const std::string& text)
{
    std::string result;
    while (count-- > 0)
    {
        result += text;
    }
    return result;
}

/** A value inside so many variants. */
std::string variants(unsigned count)
{
    return times(count, R"({"type": "v", "value": )") +
           R"({"type": "y", "value": 1})" + times(count, "}");
}

std::string noCall(const std::string& key)
{
    return "file: /faults/0/when/" + key +
           ": no call can meet this: the machine has no such " + key;
}

/** A folder that goes with its contents. */
class Folder
{
  public:
    Folder()
    {
        std::string name =
            std::filesystem::temp_directory_path() / "scenarios-XXXXXX";
        path_ = mkdtemp(name.data());
    }

    ~Folder() { std::filesystem::remove_all(path_); }

    std::filesystem::path write(const std::string& name,
                                const std::string& text) const
    {
        std::ofstream(path_ / name) << text;
        return path_ / name;
    }

  private:
    std::filesystem::path path_;
};

} // namespace

TEST(Scenario, BadInputIsRefusedWithItsPlace)
{
    const std::string owner = R"({"name": "x.y", "interfaces": {}})";
    const std::string place = "file: /objects/0";
    const std::string valuePlace =
        place + "/services/0/interfaces/x.I/P/value: ";
    const std::vector<std::pair<std::string, std::string>> cases{
        {"{\n\"format\": 1,,}",
         "file: parse error at line 2, column 13: syntax error while parsing "
         "object key - unexpected ','; expected string literal"},
        {R"({"format": 1, "a": {"b~/": [0, {"c": 1, "c": 2}]}})",
         "file: /a/b~0~1/1/c: the key stands here twice"},
        {R"({"format": 2})",
         "file: /format: must be 1, the only format there is"},
        {R"({"format": 1, "fault": []})",
         "file: /fault: no key 'fault'; did you mean 'faults'?"},
        {std::string(200, '['), "file: /: the nesting is too deep"},
        {R"({"format": 1, "behaviours": ["host-power", "magic"]})",
         "file: /behaviours/1: there is no behaviour \"magic\""},
        {R"({"format": 1, "extends": "none.json"})",
         "file: /extends: there is no file none.json"},
        {in(object, R"({"path": "/a/", "services": []})"),
         place + "/path: \"/a/\" is not an object path"},
        {in(object, R"({"path": "/a", "services": []})"),
         place + "/services: an object needs a service"},
        {in(object, R"({"path": "/a", "remove": true})"),
         place + ": there is no such object to remove"},
        {in(object, R"({"path": "/a", "services": [)" + owner +
                        R"(]}, {"path": "/a", "services": [)" + owner + "]}"),
         "file: /objects/1: the object \"/a\" stands here twice"},
        {in(object, R"({"path": "/a", "services": [{"name": ":1.7",
                       "interfaces": {}}]})"),
         place + "/services/0/name: \":1.7\" is not a name to ask the bus "
                 "for"},
        {in(object, R"({"path": "/a", "services": [{"name":
                       "xyz.openbmc_project.ObjectMapper",
                       "interfaces": {}}]})"),
         "file: /: the object mapper's name is taken by a service"},
        {in(property, R"({"type": "a{vs}", "value": {}})"),
         place + "/services/0/interfaces/x.I/P/type: \"a{vs}\" is not one "
                 "complete D-Bus type"},
        {in(property, R"({"type": "t", "value": -1})"),
         valuePlace + "must be a whole number from 0 to "
                      "18446744073709551615 (type t)"},
        {in(property, R"({"type": "u", "value": 1.5})"),
         valuePlace + "must be a whole number from 0 to 4294967295 (type u)"},
        {in(property, R"({"type": "d", "value": "NaN"})"),
         valuePlace + R"(must be a number, "nan", "inf" or "-inf" (type d))"},
        {in(property, R"({"type": "s", "value": "a\u0000b"})"),
         valuePlace + "the bus does not carry this text as type s"},
        {in(property, R"json({"type": "(so)", "value": ["a"]})json"),
         valuePlace + "has too few values for so"},
        {in(property, R"json({"type": "a(so)", "value": [["a", "b"]]})json"),
         place +
             "/services/0/interfaces/x.I/P/value/0/1: the bus does not carry "
             "this text as type o"},
        {in(property, R"({"type": "s", "value": "\ufdd0"})"),
         valuePlace + "the bus does not carry this text as type s"},
        {in(property, variants(61)), ""},
        {in(property, variants(62)),
         place + "/services/0/interfaces/x.I/P" + times(62, "/value") +
             "/type: is nested too deep for the bus"},
        {in(fault, R"({"when": {"service": "x.S"}, "then": {"die": true}})"),
         noCall("service")},
        {in(fault, R"({"when": {"path": "/a/c"}, "then": {"silent": true}})"),
         noCall("path")},
        {in(fault, R"({"when": {"interface": "x.N"}, "then": {"die": true}})"),
         noCall("interface")},
        {in(fault, R"({"when": {"property": "P"}, "then": {"die": true}})"),
         noCall("property")},
        {in(fault, R"({"when": {"path": "/a"}, "then": {"missing": true}})"),
         "file: /faults/0/when: \"property\" is needed for this fault"},
        {in(fault, R"({"when": {}, "then": {"error": "plain"}})"),
         "file: /faults/0/then/error: \"plain\" is not an interface name"},
    };
    for (const auto& [json, message] : cases)
    {
        EXPECT_EQ(errorOf(json), message) << json;
    }
}

TEST(Scenario, ExtensionReplacesAddsAndRemoves)
{
    const Folder folder;
    folder.write("base.json", R"({"format": 1, "mapper": false,
        "behaviours": ["host-power"],
        "faults": [{"when": {}, "then": {"die": true}}], "objects": [
        {"path": "/a", "services": [{"name": "x.A", "interfaces": {}}]},
        {"path": "/b", "services": [{"name": "x.B", "interfaces": {}}]}]})");
    const Scenario scenario = Scenario::load(folder.write("own.json", R"(
        {"format": 1, "extends": "base.json", "objects": [
        {"path": "/c", "services": [{"name": "x.C", "interfaces": {}}]},
        {"path": "/b", "remove": true},
        {"path": "/a", "services": [{"name": "x.D", "interfaces": {}}]}]})"));
    ASSERT_EQ(scenario.objects.size(), 2U);
    EXPECT_EQ(scenario.objects[0].path, "/a");
    EXPECT_EQ(scenario.objects[0].owners[0].service, "x.D");
    EXPECT_EQ(scenario.objects[1].path, "/c");
    EXPECT_TRUE(scenario.faults.empty());
    EXPECT_TRUE(scenario.hasMapper);
    EXPECT_EQ(scenario.behaviours, std::set<std::string>{"host-power"});
    EXPECT_TRUE(Scenario::load(folder.write("none.json", R"({"format": 1,
            "extends": "base.json", "behaviours": []})"))
                    .behaviours.empty());
}

TEST(Scenario, ExtendingInACircleIsRefused)
{
    const Folder folder;
    folder.write("one.json", R"({"format": 1, "extends": "two.json"})");
    const auto two =
        folder.write("two.json", R"({"format": 1, "extends": "one.json"})");
    EXPECT_THROW(Scenario::load(two), ScenarioError);
}

TEST(RaidSection, BadInputIsRefusedWithItsPlace)
{
    const auto members = [](std::size_t count) {
        return R"("logical": [{"id": 0, "members": )" +
               Json(std::vector<int>(count)).dump() + "}]";
    };
    const auto usual = in(board, R"("0x0000", "outputs": ["", "", "", ""])");
    const std::string place = "file: /raid/controllers/0/";
    const std::string drive = place + "physical/0/";
    const std::vector<std::pair<std::string, std::string>> cases{
        {in(raid, R"({"manager": true})"),
         "file: /raid/manager: the key is unknown "
         "here"},
        {in(raid, R"({"controllers": [{}]})"),
         "file: /raid/controllers/0: \"raid_id\" is missing"},
        {in(raid, R"({"controllers": [{"raid_id": 2}, {"raid_id": 2}]})"),
         "file: /raid/controllers/1/raid_id: the id stands here twice"},
        {in(controller, R"("name": ")" + std::string(81, 'n') + '"'),
         place + "name: must have at most 80 bytes"},
        {in(controller, R"("pci_vendor": -1)"),
         place + "pci_vendor: must be a whole number from 0 to 65535"},
        {in(controller, R"("raw": {"99999999999999999999": ""})"),
         place + "raw/99999999999999999999: must be at an offset from 0 "
                 "to 398"},
        {in(controller, R"("raw": {"397": "000102"})"),
         place + "raw/397: must have two digits for each byte, up to the "
                 "end of the record"},
        {in(controller, R"("raw": {"0": "0g"})"),
         place + "raw/0: must consist of hexadecimal digits"},
        {in(controller, R"("physical": [{"device_id": 1,
            "blocks": 18446744073709551616}])"),
         drive + "blocks: must be a whole number from 0 to "
                 "18446744073709551615"},
        {in(controller, members(255)), ""},
        {in(controller, members(256)),
         place + "logical/0/members/255: is one member "
                 "too many for a logical drive"},
        {in(configuration, in(board, R"("0xABCD", "outputs": [])")),
         "file: /raid/configuration/0/vendor: must be 0x and four lower-case "
         "hexadecimal digits"},
        {in(configuration, in(board, R"("0x0000", "outputs": ["", ""])")),
         "file: /raid/configuration/0/outputs: must have four texts"},
        {in(configuration, usual + ',' + usual),
         "file: /raid/configuration/1: the identifiers stand here twice"},
        {in(raid, R"({"texts": {"speed": {"256": ""}}})"),
         "file: /raid/texts/speed/256: must be the text of a code from 0 to "
         "255"},
        {in(raid,
            R"({"faults": [{"operation": "getDriveSpeed", "result": 1}]})"),
         "file: /raid/faults/0/operation: \"getDriveSpeed\" is not an "
         "operation "
         "with a result"},
        {in(raid, R"({"faults": [{"operation": "getRaidConf"}]})"),
         "file: /raid/faults/0: \"result\" is missing"},
    };
    for (const auto& [section, message] : cases)
    {
        EXPECT_EQ(errorOf(section), message) << section;
    }
}

TEST(RaidSection, IsInheritedOrReplacedAsAWhole)
{
    const Json standard = *Scenario::standard().raid;
    EXPECT_EQ(standard["controllers"][0]["physical"].size(), 8U);
    const auto raidOf = [](const std::string& members) {
        return *Scenario::parse(R"({"format": 1)" + members + "}", "test").raid;
    };
    EXPECT_EQ(raidOf(""), Json({{"manager_present", false}}));
    EXPECT_EQ(raidOf(R"(, "extends": "default")"), standard);
    EXPECT_EQ(raidOf(R"(, "extends": "default", "raid": {})"), Json::object());
}

} // namespace morvath::tests
