// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace morvath::tests
{

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

/** A scenario whose only object has one property. */
std::string withProperty(const std::string& property)
{
    return R"({"format": 1, "objects": [{"path": "/a", "services": [
        {"name": "x.y", "interfaces": {"x.I": {"P": )" +
           property + "}}}]}]}";
}

std::string withObject(const std::string& object)
{
    return R"({"format": 1, "objects": [)" + object + "]}";
}

std::string withFault(const std::string& when, const std::string& then)
{
    return R"({"format": 1, "faults": [{"when": )" + when + R"(, "then": )" +
           then + "}]}";
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

    ~Folder()
    {
        std::filesystem::remove_all(path_);
    }

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
         "file: /fault: the key is unknown here"},
        {std::string(200, '['), "file: the nesting is too deep"},
        {R"({"format": 1, "behaviours": ["host-power", "magic"]})",
         "file: /behaviours/1: there is no behaviour \"magic\""},
        {R"({"format": 1, "extends": "none.json"})",
         "file: /extends: there is no file none.json"},
        {withObject(R"({"path": "/a/", "services": []})"),
         place + "/path: \"/a/\" is not an object path"},
        {withObject(R"({"path": "/a", "services": []})"),
         place + "/services: an object needs a service"},
        {withObject(R"({"path": "/a", "remove": true})"),
         place + ": there is no such object to remove"},
        {withObject(R"({"path": "/a", "services": [)" + owner +
                    R"(]}, {"path": "/a", "services": [)" + owner + "]}"),
         "file: /objects/1: the object \"/a\" stands here twice"},
        {withObject(R"({"path": "/a", "services": [{"name": ":1.7",
                       "interfaces": {}}]})"),
         place + "/services/0/name: \":1.7\" is not a name to ask the bus "
                 "for"},
        {withObject(R"({"path": "/a", "services": [{"name":
                       "xyz.openbmc_project.ObjectMapper",
                       "interfaces": {}}]})"),
         "file: /: the object mapper's name is taken by a service"},
        {withProperty(R"({"type": "a{vs}", "value": {}})"),
         place + "/services/0/interfaces/x.I/P/type: \"a{vs}\" is not one "
                 "complete D-Bus type"},
        {withProperty(R"({"type": "t", "value": -1})"),
         valuePlace + "must be a whole number from 0 to "
                      "18446744073709551615 (type t)"},
        {withProperty(R"({"type": "u", "value": 1.5})"),
         valuePlace + "must be a whole number from 0 to 4294967295 (type u)"},
        {withProperty(R"({"type": "d", "value": "NaN"})"),
         valuePlace + R"(must be a number, "nan", "inf" or "-inf" (type d))"},
        {withProperty(R"({"type": "s", "value": "a\u0000b"})"),
         valuePlace + "the bus carries no text with a zero character"},
        {withProperty(R"json({"type": "(so)", "value": ["a"]})json"),
         valuePlace + "has too few fields for (so)"},
        {withProperty(R"json({"type": "a(so)", "value": [["a", "b"]]})json"),
         place + "/services/0/interfaces/x.I/P/value/0/1: \"b\" is no object "
                 "path"},
        {withFault(R"({"path": "/a"})", R"({"missing": true})"),
         "file: /faults/0/when: \"property\" is needed for this fault"},
        {withFault("{}", R"({"error": "plain"})"),
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
    ASSERT_EQ(scenario.objects().size(), 2U);
    EXPECT_EQ(scenario.objects()[0].path, "/a");
    EXPECT_EQ(scenario.objects()[0].owners[0].service, "x.D");
    EXPECT_EQ(scenario.objects()[1].path, "/c");
    EXPECT_TRUE(scenario.faults().empty());
    EXPECT_TRUE(scenario.hasMapper());
    EXPECT_EQ(scenario.behaviours(), std::set{sim::Behaviour::hostPower});
    EXPECT_TRUE(Scenario::load(folder.write("none.json", R"({"format": 1,
            "extends": "base.json", "behaviours": []})"))
                    .behaviours()
                    .empty());
}

TEST(Scenario, ExtendingInACircleIsRefused)
{
    const Folder folder;
    folder.write("one.json", R"({"format": 1, "extends": "two.json"})");
    const auto two =
        folder.write("two.json", R"({"format": 1, "extends": "one.json"})");
    EXPECT_THROW(Scenario::load(two), ScenarioError);
}

} // namespace morvath::tests
