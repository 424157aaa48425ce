// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include "sim/process.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace morvath::tests::scenarios
{

using sim::Json;
using sim::Scenario;

/** A scenario with a gap, and the place of that. */
struct Frame
{
    std::string before;
    std::string after;
    std::string place;
};

const Frame whole{"", "", "file: "};
const Frame document{R"({"format": 1, )", "}", "file: /"};
const Frame object{R"({"format": 1, "objects": [)", "]}", "file: /objects/0"};
const Frame property{
    R"({"format": 1, "objects": [{"path": "/a", "services": [
        {"name": "x.y", "interfaces": {"x.I": {"P": )",
    "}}}]}]}", "file: /objects/0/services/0/interfaces/x.I/P"};
const Frame fault{R"({"format": 1, "faults": [)", "]}", "file: /faults/0"};
const Frame change{
    R"({"format": 1, "objects": [{"path": "/a", "services": [
        {"name": "x.S", "interfaces": {"x.I": {
            "P": {"type": "i", "value": 0}}}}]}],
        "raid": {"controllers": [{"raid_id": 1}]}, "changes": [{"after": )",
    "}]}", "file: /changes/0"};
const Frame raid{R"({"format": 1, "raid": {)", "}}", "file: /raid/"};
const Frame controller{
    R"({"format": 1, "raid": {"controllers": [{"raid_id": 1, )", "}]}}",
    "file: /raid/controllers/0/"};

struct Mistake
{
    const Frame& frame;
    std::string part;
    /** Without the place of the frame; empty: there is none. */
    std::string message;
};

std::string times(unsigned count, const std::string& text)
{
    return count == 0 ? "" : text + times(count - 1, text);
}

/** A value inside so many variants. */
std::string variants(unsigned count)
{
    return times(count, R"({"type": "v", "value": )") +
           R"({"type": "y", "value": 1})" + times(count, "}");
}

TEST(Scenario, MistakesHaveTheirPlace)
{
    const std::string some =
        R"({"path": "/a", "services": [{"name": "x.y", "interfaces": {}}]})";
    const std::string none =
        ": no call can meet this: the machine has no such ";
    const auto members = [](std::size_t count) {
        return R"("logical": [{"id": 0, "members": )" +
               Json(std::vector<int>(count)).dump() + "}]";
    };
    const std::string board = R"({"vendor": "0x0000", "device": "0x0000",
        "subvendor": "0x0000", "subdevice": "0x0000",
        "outputs": ["", "", "", ""]})";
    const Mistake mistakes[]{
        {whole, "{\n\"format\": 1,,}",
         "/: parse error at line 2, column 13: syntax error while parsing "
         "object "
         "key - unexpected ','; expected string literal"},
        {whole, std::string(200, '['), "/: the nesting is too deep"},
        {document, R"("a": {"b~/": [0, {"c": 1, "c": 2}]})",
         "a/b~0~1/1/c: the key stands here twice"},
        {document, R"("fault": [])",
         "fault: no key 'fault'; did you mean 'faults'?"},
        {document, R"("behaviours": ["host-power", "magic"])",
         "behaviours/1: there is no behaviour \"magic\""},
        {document, R"("extends": "none.json")",
         "extends: there is no file none.json"},
        {document, R"("objects": [)" + some + ',' + some + ']',
         "objects/1: the object \"/a\" stands here twice"},
        {document, R"("objects": [{"path": "/a", "services": [{"interfaces": {},
                      "name": "xyz.openbmc_project.ObjectMapper"}]}])",
         ": the object mapper's name is taken by a service"},
        {object, R"({"path": "/a/", "services": []})",
         "/path: \"/a/\" is not an object path"},
        {object, R"({"path": "/a", "remove": true})",
         ": there is no such object to remove"},
        {object, R"({"path": "/a", "services": [{"name": ":1.7"}]})",
         "/services/0/name: \":1.7\" is not a name to ask the bus for"},
        {property, R"({"type": "a{vs}", "value": {}})",
         "/type: \"a{vs}\" is not one complete D-Bus type"},
        {property, R"({"type": "t", "value": -1})",
         "/value: must be a whole number from 0 to 18446744073709551615 "
         "(type t)"},
        {property, R"({"type": "u", "value": 1.5})",
         "/value: must be a whole number from 0 to 4294967295 (type u)"},
        {property, R"({"type": "d", "value": "NaN"})",
         R"(/value: must be a number, "nan", "inf" or "-inf" (type d))"},
        {property, R"({"type": "s", "value": "a\u0000b"})",
         "/value: the bus carries no text with a zero character"},
        {property, R"({"type": "s", "value": "\ufdd0"})",
         "/value: the bus does not carry this text as type s"},
        {property, R"json({"type": "(so)", "value": ["a"]})json",
         "/value: has too few values for so"},
        {property, R"json({"type": "a(so)", "value": [["a", "b"]]})json",
         "/value/0/1: the bus does not carry this text as type o"},
        {property, R"({"type": "a{yv}", "value": {"1": 1}})",
         "/value/1: must be a whole number from 0 to 255 (type y)"},
        {property, variants(61), ""},
        {property, variants(62),
         times(62, "/value") + "/type: is nested too deep for the bus"},
        {fault, R"({"when": {"service": "x.S"}, "then": {"die": true}})",
         "/when/service" + none + "service"},
        {fault, R"({"when": {"path": "/a/c"}, "then": {"die": true}})",
         "/when/path" + none + "path"},
        {fault, R"({"when": {"interface": "x.N"}, "then": {"die": true}})",
         "/when/interface" + none + "interface"},
        {fault, R"({"when": {"property": "P"}, "then": {"die": true}})",
         "/when/property" + none + "property"},
        {fault, R"({"when": {"path": "/"}, "then": {"missing": true}})",
         "/when: \"property\" is needed for this fault"},
        {fault, R"({"when": {}, "then": {"error": "plain"}})",
         "/then/error: \"plain\" is not an interface name"},
        {change, "-1", "/after: must be a number of seconds, at least 0.0"},
        {change, R"(1, "every": 0)",
         "/every: must be a number of seconds, at least 0.01"},
        {change, R"(1, "path": "/a")",
         ": must say one of set, add, remove, die, start, raid"},
        {change, R"(1, "path": "/b", "set": {})",
         "/path: there is no such object"},
        {change, R"(1, "path": "/a", "set": {"x.I": {"R": 1}})",
         "/set/x.I/R: there is no such property"},
        {change, R"(1, "path": "/a", "set": {"x.I": {"P": true}})",
         "/set/x.I/P: must be a whole number from -2147483648 to 2147483647 "
         "(type i)"},
        {change, R"(1, "service": "x.T", "die": true)",
         "/service: there is no such service"},
        {change, R"(1, "raid": {"/controllers/1/raid_id": 2})",
         "/raid/~1controllers~11~1raid_id: there is no such place in the RAID "
         "section"},
        {change, R"(1, "raid": {"/controllers/0/raid_id": -2})",
         "/raid/~1controllers~10~1raid_id/controllers/0/raid_id: must be a "
         "whole number from 0 to 4294967295"},
        {raid, R"("controller": [])",
         "controller: no key 'controller'; did you mean 'controllers'?"},
        {raid, R"("controllers": [{"raid_id": 2}, {"raid_id": 2}])",
         "controllers/1/raid_id: the id stands here twice"},
        {raid, R"("configuration": [)" + board + ',' + board + ']',
         "configuration/1: the identifiers stand here twice"},
        {raid, R"("texts": {"speed": {"256": ""}})",
         "texts/speed/256: must be the text of a code from 0 to 255"},
        {raid, R"("faults": [{"operation": "getDriveSpeed", "result": 1}])",
         "faults/0/operation: \"getDriveSpeed\" is not an operation with a "
         "result"},
        {controller, R"("name": ")" + std::string(81, 'n') + '"',
         "name: must have at most 80 bytes"},
        {controller, R"("physical": [{"device_id": 1,
            "blocks": 18446744073709551616}])",
         "physical/0/blocks: must be a whole number from 0 to "
         "18446744073709551615"},
        {controller, R"("raw": {"397": "000102"})",
         "raw/397: must be pairs of hexadecimal digits for bytes 0 to 398"},
        {controller, members(255), ""},
        {controller, members(256),
         "logical/0/members/255: is one member too many for a logical drive"},
    };
    for (const auto& [frame, part, message] : mistakes)
    {
        const auto json = frame.before + part + frame.after;
        std::string told;
        try
        {
            Scenario::parse(json, "file");
        }
        catch (const sim::ScenarioError& error)
        {
            told = error.what();
        }
        EXPECT_EQ(told, message.empty() ? "" : frame.place + message) << json;
    }
}

TEST(Scenario, ExtensionReplacesAddsAndRemoves)
{
    sim::MemoryFile base(R"({"format": 1, "mapper": false,
        "behaviours": ["host-power"], "raid": {"controllers": []},
        "faults": [{"when": {}, "then": {"die": true}}], "objects": [
        {"path": "/a", "services": [{"name": "x.A", "interfaces": {}}]},
        {"path": "/b", "services": [{"name": "x.B", "interfaces": {}}]}]})");
    const auto extended = [&](const std::string& rest) {
        return R"({"format": 1, "extends": ")" + base.path() + '"' + rest + '}';
    };
    const auto own = Scenario::parse(extended(R"(, "objects": [
        {"path": "/c", "services": [{"name": "x.C", "interfaces": {}}]},
        {"path": "/b", "remove": true},
        {"path": "/a", "services": [{"name": "x.D", "interfaces": {}}]}])"),
                                     "own");
    ASSERT_EQ(own.objects.size(), 2U);
    EXPECT_EQ(own.objects[0].path, "/a");
    EXPECT_EQ(own.objects[0].owners[0].service, "x.D");
    EXPECT_EQ(own.objects[1].path, "/c");
    EXPECT_TRUE(own.faults.empty());
    EXPECT_TRUE(own.hasMapper);
    EXPECT_EQ(own.behaviours, std::set<std::string>{"host-power"});
    EXPECT_EQ(*own.raid, Json({{"controllers", Json::array()}}));
    const auto bare =
        Scenario::parse(extended(R"(, "behaviours": [], "raid": {})"), "bare");
    EXPECT_TRUE(bare.behaviours.empty());
    EXPECT_EQ(*bare.raid, Json::object());
    base.replace(extended(""));
    EXPECT_THROW(Scenario::load(base.path()), sim::ScenarioError);
}

} // namespace morvath::tests::scenarios
