// SPDX-License-Identifier: Apache-2.0
#include "sim/scenario.hpp"

#include "sim/process.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace morvath::tests::scenarios
{

using sim::Json;
using sim::Scenario;

// Below a document with a gap, "...", is what is put there, and after an arrow
// what is told; a star is the place that stands beside the document. A line
// that begins with a blank goes on with the one before.
constexpr auto mistakes = R"json(# ... => /
{"format": 1,,}
 => *: parse error at line 1, column 14: syntax error while parsing object key -
 unexpected ','; expected string literal
# {"format": 1, ...} => /
"a": {"b~/": [0, {"c": 1, "c": 2}]} => *a/b~0~1/1/c: duplicate key
"fault": [] => *fault: no key 'fault'; did you mean 'faults'?
"behaviours": ["host-power", "magic"] => *behaviours/1: there is no behaviour "magic"
"extends": "none.json" => *extends: there is no file none.json
"objects": [{"path": "/a", "services": [{"name": "x.y", "interfaces": {}}]}, {"path":
 "/a"}] => *objects/1: duplicate object "/a"
"objects": [{"path": "/a", "services": [{"interfaces": {}, "name":
 "xyz.openbmc_project.ObjectMapper"}]}]
 => *: the object mapper's name is taken by a service
# {"format": 1, "objects": [...]} => /objects/0
{"path": "/a/", "services": []} => */path: "/a/" is not an object path
{"path": "/a", "services": []} => */services: an object needs a service
{"path": "/a", "remove": true} => *: there is no such object to remove
{"path": "/a", "services": [{"name": ":1.7"}]}
 => */services/0/name: ":1.7" is not a name to ask the bus for
{"path": "/a", "services": [{"name": "x.y", "interfaces": {}}, {"name": "x.y",
 "interfaces": {}}]} => */services/1: duplicate service
{"path": "/a", "services": [{"name": "x.y", "interfaces":
 {"org.freedesktop.DBus.Peer": {}}}]}
 => */services/0/interfaces/org.freedesktop.DBus.Peer: every object has the standard
 interfaces by itself
# {"format": 1, "objects": [{"path": "/a", "services": [{"name": "x.y", "interfaces":
 {"x.I": {"P": ...}}}]}]} => /objects/0/services/0/interfaces/x.I/P
{"type": "a{vs}", "value": {}} => */type: "a{vs}" is not one complete D-Bus type
{"type": "t", "value": -1}
 => */value: must be a whole number from 0 to 18446744073709551615 (type t)
{"type": "u", "value": 1.5}
 => */value: must be a whole number from 0 to 4294967295 (type u)
{"type": "d", "value": "NaN"}
 => */value: must be a number, "nan", "inf" or "-inf" (type d)
{"type": "s", "value": "a\u0000b"}
 => */value: the bus carries no text with a zero character
{"type": "s", "value": "\ufdd0"} => */value: the bus does not carry this text as type s
{"type": "(so)", "value": ["a"]} => */value: has too few values for so
{"type": "a(so)", "value": [["a", "b"]]}
 => */value/0/1: the bus does not carry this text as type o
{"type": "a{yv}", "value": {"1": 1}}
 => */value/1: must be a whole number from 0 to 255 (type y)
{"type": "s", "value": "", "enum": []} => */enum: must not be empty
{"type": "i", "value": 1, "enum": ["1"]}
 => */enum: only a property of type s has an enumeration
# {"format": 1, "faults": [...]} => /faults/0
{"when": {"service": "x.S"}, "then": {"die": true}}
 => */when/service: no call can meet this: the machine has no such service
{"when": {"path": "/a/c"}, "then": {"die": true}}
 => */when/path: no call can meet this: the machine has no such path
{"when": {"interface": "x.N"}, "then": {"die": true}}
 => */when/interface: no call can meet this: the machine has no such interface
{"when": {"property": "P"}, "then": {"die": true}}
 => */when/property: no call can meet this: the machine has no such property
{"when": {}, "then": {"vanished": true}} => */when: "path" is needed for this fault
{"when": {"path": "/"}, "then": {"missing": true}}
 => */when: "property" is needed for this fault
{"when": {}, "then": {"error": "plain"}}
 => */then/error: "plain" is not an interface name
# {"format": 1, "objects": [{"path": "/a", "services": [{"name": "x.S", "interfaces":
 {"x.I": {"P": {"type": "i", "value": 0}}}}]}], "raid":
 {"controllers": [{"raid_id": 1}]}, "changes": [{"after": ...}]} => /changes/0
-1 => */after: must be a number of seconds, at least 0.0
1, "every": 0 => */every: must be a number of seconds, at least 0.01
1, "path": "/a" => *: must say one of set, add, remove, die, start, raid
1, "path": "/b", "set": {} => */path: there is no such object
1, "path": "/a", "set": {"x.I": {"R": 1}} => */set/x.I/R: there is no such property
1, "path": "/a", "set": {"x.I": {"P": true}}
 => */set/x.I/P: must be a whole number from -2147483648 to 2147483647 (type i)
1, "service": "x.T", "die": true => */service: there is no such service
1, "raid": {"/controllers/1/raid_id": 2}
 => */raid/~1controllers~11~1raid_id: there is no such place in the RAID section
1, "raid": {"/controllers/0/raid_id": -2}
 => */raid/~1controllers~10~1raid_id/controllers/0/raid_id: must be a whole number from
 0 to 4294967295
# {"format": 1, "raid": {...}} => /raid/
"controller": [] => *controller: no key 'controller'; did you mean 'controllers'?
"controllers": [{"raid_id": 2}, {"raid_id": 2}]
 => *controllers/1/raid_id: duplicate id
"configuration": [{"vendor": "0x0000", "device": "0x0000", "subvendor": "0x0000",
 "subdevice": "0x0000", "outputs": ["", "", "", ""]}, {"vendor": "0x0000", "device":
 "0x0000", "subvendor": "0x0000", "subdevice": "0x0000", "outputs": ["", "", "", ""]}]
 => *configuration/1: duplicate identifiers
"texts": {"speed": {"256": ""}}
 => *texts/speed/256: must be the text of a code from 0 to 255
"faults": [{"operation": "getDriveSpeed", "result": 1}]
 => *faults/0/operation: "getDriveSpeed" is not an operation with a result
# {"format": 1, "raid": {"controllers": [{"raid_id": 1, ...}]}} => /raid/controllers/0/
"text132": "123456789 123456789 123456789 123" => *text132: must have at most 32 bytes
"physical": [{"device_id": 1, "blocks": 18446744073709551616}]
 => *physical/0/blocks: must be a whole number from 0 to 18446744073709551615
"raw": {"397": "000102"}
 => *raw/397: must be pairs of hexadecimal digits for bytes 0 to 398
)json";

/** The mistake in a document; empty when there is none. */
std::string mistakeIn(const std::string& document)
{
    try
    {
        Scenario::parse(document, "file");
        return {};
    }
    catch (const sim::ScenarioError& error)
    {
        return error.what();
    }
}

/** Puts a text in place of a sign. */
std::string filled(std::string text, const std::string& sign,
                   const std::string& part)
{
    return text.replace(text.find(sign), sign.size(), part);
}

TEST(Scenario, MistakesHaveTheirPlace)
{
    std::istringstream lines(
        std::regex_replace(mistakes, std::regex("\n +"), " "));
    std::string document;
    std::string place;
    for (std::string line; std::getline(lines, line);)
    {
        const auto arrow = line.find(" => ");
        const auto part = line.substr(0, arrow);
        const auto rest = line.substr(arrow + 4);
        if (part.starts_with("# "))
        {
            document = part.substr(2);
            place = "file: " + rest;
            continue;
        }
        EXPECT_EQ(mistakeIn(filled(document, "...", part)),
                  filled(rest, "*", place));
    }
}

TEST(Scenario, LimitsAreThoseOfTheBusAndOfTheRecords)
{
    EXPECT_EQ(mistakeIn(std::string(200, '[')),
              "file: /: the nesting is too deep");
    const auto withMembers = [](std::size_t count) {
        return R"({"format": 1, "raid": {"controllers": [{"raid_id": 1,
            "logical": [{"id": 0, "members": )" +
               Json(std::vector<int>(count)).dump() + "}]}]}}";
    };
    EXPECT_EQ(mistakeIn(withMembers(255)), "");
    EXPECT_EQ(mistakeIn(withMembers(256)),
              "file: /raid/controllers/0/logical/0/members/255: is one member "
              "too many for a logical drive");
    const auto replying = [](const std::string& reply) {
        return R"({"format": 1, "faults": [{"when": {}, "then": {"reply": )" +
               reply + "}}]}";
    };
    std::string value = R"({"type": "y", "value": 1})";
    std::string place = "file: /faults/0/then/reply";
    for (int depth = 0; depth < 62; ++depth)
    {
        value = R"({"type": "v", "value": )" + value + '}';
        place += "/value";
    }
    EXPECT_EQ(mistakeIn(replying(value)), "");
    EXPECT_EQ(mistakeIn(replying(R"({"type": "v", "value": )" + value + '}')),
              place + "/value/type: is nested too deep for the bus");
}

TEST(Scenario, ExtensionReplacesAddsAndRemoves)
{
    sim::MemoryFile base(R"({"format": 1, "mapper": false,
        "behaviours": ["host-power"], "raid": {"controllers": [],
        "faults": [{"operation": "getRaidIdList", "result": 1}]},
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
    std::string objects;
    for (const auto& object : own.objects)
    {
        objects += object.path + ' ' + object.owners[0].service + ' ';
    }
    EXPECT_EQ(objects, "/a x.D /c x.C ");
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
