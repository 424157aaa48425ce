// SPDX-License-Identifier: Apache-2.0
#include "sim/json_value.hpp"
#include "sim/process.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace morvath::tests::record
{

using sim::Json;

/** What a command does on the default server or on another one. */
Outcome inScenario(const std::string& scenario, const std::string& command)
{
    const sim::MemoryFile file(scenario);
    const auto option = scenario.empty() ? "" : "--scenario " + file.path();
    return run("MORVATH_SIM", "run " + option + " -- " + command);
}

Outcome recorded(const std::string& scenario, const std::string& options = "")
{
    return inScenario(scenario, "$MORVATH_SIM record " + options);
}

/** One object; in the order in which the interfaces are registered. */
std::string withInterfaces(const std::string& interfaces,
                           const std::string& fault = "")
{
    return R"({"format": 1, "objects": [{"path": "/a/b", "services": [
        {"name": "x.S", "interfaces": )" +
           interfaces + R"(}]}], "faults": [)" + fault + "]}";
}

std::string interfacesOf(const Outcome& recording)
{
    auto document = Json::parse(recording.output);
    return document["objects"][0]["services"][0]["interfaces"].dump();
}

TEST(Record, ReplaysAsTheOriginal)
{
    const auto first = recorded("");
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(first.errors, "");
    EXPECT_EQ(recorded(first.output).output, first.output);
    const std::string show = "$MORVATH show --all --wide";
    EXPECT_EQ(inScenario(first.output, show).output,
              inScenario("", show).output);

    const auto masked = recorded("", "--anonymize");
    EXPECT_EQ(masked.status, 0) << masked.errors;
    for (const auto* secret :
         {"VSN26A0417", "SF9600071A", "7d1f0c52", "AT-004512", "rack7",
          "5a:3c:9b", "5a3c9b", "10.20.30.", "_310_2e20", "0x4c1f", "fe80::"})
    {
        EXPECT_EQ(masked.output.find(secret), masked.output.npos) << secret;
    }
}

TEST(Record, KeepsEveryTypeAndTheOrder)
{
    const auto machine = Json::parse(R"json({"format": 1,
    "description": "Recorded from a running platform", "objects": [
    {"path": "/a/b", "services": [{"name": "x.S", "interfaces": {"x.Empty": {},
        "x.Z": {"Same": {"type": "s", "value": "first"}},
        "x.B": {
            "Byte": {"type": "y", "value": 255, "readOnly": true},
            "Long": {"type": "(xt)", "value": [-9223372036854775808,
                                               18446744073709551615]},
            "Small": {"type": "(nqiu)", "value": [-32768, 65535, -1, 4294967295]},
            "Doubles": {"type": "ad", "value": [0.1, -0.0, 5e-324, 1e300, 3.0,
                                                "nan", "inf", "-inf"]},
            "Text": {"type": "(bsog)", "value": [true, "\u00fc\\\n", "/", "a{sv}"]},
            "None": {"type": "a(sss)", "value": []},
            "Inner": {"type": "v", "value": {"type": "a{sv}", "value":
                {"k": {"type": "a{us}", "value": [[7, "seven"]]}}}},
            "Twice": {"type": "a{os}", "value": [["/k", "1"], ["/k", "2"]]}},
        "x.A": {"Same": {"type": "s", "value": "second"}}}}]}],
    "raid": {"controllers": [{"raid_id": 7, "raw": {"0": "08", "398": "10"},
        "physical": [{"device_id": 3, "vendor": "A B",
                      "raw": {"0": "ff", "30": "e4c4", "212": "01"}}],
        "logical": [{"id": 2, "members": [3, 513], "raw": {"98": "aa"}}]}],
        "texts": {"unknown": "?"}}})json");
    const auto recording = recorded(machine.dump());
    EXPECT_EQ(recording.status, 0);
    EXPECT_EQ(recording.errors, "");
    EXPECT_EQ(recording.output, machine.dump(2) + '\n');
    // Nobody knows what these bytes tell.
    const auto masked = recorded(machine.dump(), "--anonymize").output;
    EXPECT_EQ(masked.find("raw"), masked.npos);
}

TEST(Record, TellsWhatItLeavesOut)
{
    const std::string p = R"("P":{"type":"i","value":1,"readOnly":true})";
    const std::string q = R"("Q":{"type":"i","value":2})";
    const std::string empty = R"("x.Empty":{})";
    const auto both = R"("x.I":{)" + p + ',' + q + '}';
    const auto all = '{' + both + ',' + empty + '}';
    const std::string bus = "org.freedesktop.DBus.Error.";
    const auto introspecting = [](const std::string& end) {
        return R"({"when": {"member": "Introspect"}, "then": {"reply": {
            "type": "s", "value": "<?xml version='1.0'?>)"
               R"(<!-- <interface name='x.No'> --><node><interface name='x.I'>)"
               R"(<property access='read' type='i' name='P'>)"
               R"(<annotation name='a' value='b'/></property>)"
               R"(<property name='Q' type='i'/></interface>)"
               R"(<node name='c'><interface name='x.J'/></node>)"
               R"(<interface name='x.Empty'/>)" +
               end + "\"}}}";
    };
    const struct
    {
        std::string fault;
        std::string left;
        std::string told;
    } cases[]{
        {introspecting("</node>"), '{' + empty + ',' + both + '}', ""},
        {introspecting(""), '{' + empty + ',' + both + '}',
         "/a/b: x.S: introspection: not well-formed"},
        {R"({"when": {"service": "x.S"}, "then": {"silent": true}})", "null",
         "x.S, from object / on: " + bus + "Timeout"},
        {R"({"when": {"path": "/a/b", "member": "GetAll"},
             "then": {"die": true}})",
         "null", "x.S, from object /a/b on: " + bus + "ServiceUnknown"},
        {R"({"when": {"path": "/a/b"}, "then": {"vanished": true}})", "null",
         "/a/b: x.S: " + bus + "UnknownObject"},
        {R"({"when": {"path": "/a/b", "property": "P"},
             "then": {"error": "x.Error"}})",
         R"({"x.I":{)" + q + "}," + empty + '}', "/a/b: x.S: x.I: x.Error"},
        {R"({"when": {"interface": "x.I", "member": "GetAll"},
             "then": {"reply": {"type": "i", "value": 1}}})",
         all, "/a/b: x.S: x.I: reading the answer"},
    };
    for (const auto& [fault, left, told] : cases)
    {
        const auto recording =
            recorded(withInterfaces(all, fault), "--timeout 3");
        EXPECT_EQ(recording.status, told.empty() ? 0 : 1) << told;
        EXPECT_NE(recording.errors.find(told), std::string::npos)
            << recording.errors;
        EXPECT_EQ(interfacesOf(recording), left) << told;
    }
}

TEST(Record, ChoosesServicesAndRefusesWhatIsNone)
{
    const auto chosen =
        recorded("", "--service xyz.openbmc_project.Settings --service x.None");
    EXPECT_EQ(chosen.status, 1);
    EXPECT_EQ(chosen.errors, "morvath-sim: left out: x.None: the object mapper "
                             "does not know the service\n");
    const auto recording = Json::parse(chosen.output);
    EXPECT_FALSE(recording.contains("raid"));
    EXPECT_EQ(recording["objects"].size(), 3u);

    EXPECT_EQ(recorded("", "--service none").status, 2);
    EXPECT_EQ(
        inScenario("", "env MORVATH_SIM_RAID=/none $MORVATH_SIM record").errors,
        "morvath-sim: left out: RAID: /none: cannot be read\n");
    EXPECT_EQ(
        recorded(R"({"format": 1, "raid": {"controllers": [{"raid_id": 7}],
        "faults": [{"operation": "getPhyDevIdList", "result": -1}]}})")
            .errors,
        "morvath-sim: left out: RAID: controller 7: physical drives: the "
        "RAID management library fails with -1\n");
    const auto none = recorded(R"({"format": 1, "mapper": false})");
    EXPECT_EQ(none.status, 1);
    EXPECT_TRUE(none.errors.starts_with(
        "morvath-sim: the object mapper cannot be asked: "))
        << none.output << none.errors;
}

TEST(Record, MasksWhatIdentifiesTheMachineAlone)
{
    // Of each property its type, its value and, unless it stays, its mask.
    const auto cases = Json::parse(R"json({
"SerialNumber": ["s", "SN-7Q ", "AA-0B "],
"ServiceTag": ["s", "7XK29Q2", "0AA00A1"],
"ASSET_TAG": ["ay", [75,74,49,50,51,0,7], [65,65,48,48,49,0,7]],
"HostName": ["s", "rack7", "aaaa1"],
"Address": ["as", ["10.1.2.3", "fe80::1"], ["11.1.1.2", "aa11::2"]],
"Bare": ["s", "eth-5a3c9b102204, 5a3c.9b10.2204, 77aa.bbcc.dd01",
              "eth-0a0a0a000001, 0a0a.0a00.0001, 00aa.aaaa.aa01"],
"Known": ["s", "rack7: KJ123, 5a-3c-9b-10-22-04, sn-7q",
               "aaaa1: AA001, 0a-0a-0a-00-00-01, aa-0b"],
"Addresses": ["s", "[fe80::1%eth0], 10.1.2.3/24.", "[aa11::2%eth0], 11.1.1.2/24."],
"Url": ["s", "https://me@files.lab:8443/x ldap://nas", "https://me@aaaaa.aab:8443/x ldap://aab"],
"Path": ["o", "/x_SN_7Q/_310_2e1_2e2_2e3_2f24/10_1_2_3/5a_3c_9b_10_22_04",
              "/x_AA_0B/_311_2e1_2e1_2e2_2f24/11_1_1_2/0a_0a_0a_00_00_01"],
"Keys": ["a{ss}", {"10.1.2.4": "", "UUID": "7D1F0C52-8B3E-1F6A-9C27-15E8A4D2B6F0"},
                  {"11.1.2.1": "", "UUID": "0A0A0A00-0A0A-0A0A-0A00-00A0A0A0A0A1"}],
"AllSerial": ["as", ["1", "2", "3", "4", "5", "6", "7", "8", "9"],
                    ["0", "1", "2", "3", "4", "5", "6", "7", "8"]],
"LikeAddressSerial": ["s", "101299", "111112"],
"LikeSerialAddress": ["s", "10.1.2.99", "11.1.1.12"],
"OfManyAddress": ["as", ["0.0.0.0", "127.0.0.1", "255.255.252.0", "ff02::1", "0x50"]],
"Words": ["as", ["123456789012", "deadbeef", "1.2.3.4.5", "xyz.openbmc_project.Rack7.Off",
                "xrack7 rack78"]],
"Version": ["as", ["1.2.3.4", "5a3c9b10"]],
"NoSerial": ["as", ["", "Unknown", "N/A", "0000", "To be filled by O.E.M."]]})json");
    Json properties;
    Json expected;
    for (const auto& [name, one] : cases.items())
    {
        properties[name] = {{"type", one[0]}, {"value", one[1]}};
        expected[name] = {{"type", one[0]}, {"value", one.back()}};
    }
    EXPECT_EQ(
        interfacesOf(recorded(withInterfaces(Json{{"x.I", properties}}.dump()),
                              "--anonymize")),
        (Json{{"x.I", expected}}.dump()));
}

} // namespace morvath::tests::record
