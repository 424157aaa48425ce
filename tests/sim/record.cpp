// SPDX-License-Identifier: Apache-2.0
#include "sim/json.hpp"
#include "sim/memory_file.hpp"
#include "sim/record/introspected.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace morvath::tests
{

namespace
{

using sim::Json;
using sim::MemoryFile;

Outcome inScenario(const std::string& scenario, const std::string& command)
{
    return run("MORVATH_SIM", "run " + scenario + " -- " + command);
}

Outcome recorded(const std::string& scenario, const std::string& options = "")
{
    return inScenario(scenario, "$MORVATH_SIM record " + options);
}

std::string option(const MemoryFile& file)
{
    return "--scenario " + file.path();
}

/** One object; in the order in which the interfaces are registered. */
std::string withProperties(const std::string& interfaces,
                           const std::string& rest = "")
{
    return R"({"format": 1, "objects": [{"path": "/a/b", "services": [
        {"name": "x.S", "interfaces": )" +
           interfaces + "}]}]" + rest + "}";
}

Json interfacesOf(const Outcome& recording)
{
    return Json::parse(
        recording.output)["objects"][0]["services"][0]["interfaces"];
}

Json recordedProperties(const Json& properties, const std::string& options)
{
    const MemoryFile scenario(withProperties(Json{{"x.I", properties}}.dump()));
    return interfacesOf(recorded(option(scenario), options))["x.I"];
}

} // namespace

TEST(Record, ReplaysAsTheOriginal)
{
    const Outcome first = recorded("");
    EXPECT_EQ(first.status, 0);
    EXPECT_EQ(first.errors, "");
    const MemoryFile recording(first.output);
    EXPECT_EQ(recorded(option(recording)).output, first.output);
    const std::string show = "$MORVATH show --all --json";
    const Outcome original = inScenario("", show);
    EXPECT_EQ(original.status, 0);
    EXPECT_EQ(inScenario(option(recording), show).output, original.output);

    const std::string masked = recorded("", "--anonymize").output;
    EXPECT_EQ(recorded(option(recording), "--anonymize").output, masked);
    for (const char* secret :
         {"VSN26A0417", "SF9600071A", "7d1f0c52", "AT-004512", "rack7",
          "5a:3c:9b", "5a3c9b", "10.20.30.", "_310_2e20", "0x4c1f", "fe80::"})
    {
        EXPECT_EQ(masked.find(secret), std::string::npos) << secret;
    }
    const MemoryFile anonymous(masked);
    const Outcome disks = inScenario(option(anonymous), "$MORVATH show disks");
    EXPECT_EQ(disks.status, 0) << disks.errors;
    EXPECT_NE(disks.output.find("DRISKO-DSSATA960-AA0000000A"),
              std::string::npos);
}

TEST(Record, KeepsEveryTypeAndTheOrder)
{
    const std::string interfaces = R"json({"x.Empty": {},
        "x.Z": {"Same": {"type": "s", "value": "first"}},
        "x.B": {
            "Byte": {"type": "y", "value": 255, "readOnly": true},
            "Long": {"type": "(xt)", "value": [-9223372036854775808,
                                               18446744073709551615]},
            "Small": {"type": "(nqiu)", "value": [-32768, 65535, -1, 4294967295]},
            "Doubles": {"type": "ad", "value": [0.1, -0.0, 5e-324, 1e300, 3.0,
                                                "nan", "inf", "-inf"]},
            "Text": {"type": "(bsog)", "value": [true, "\u00fc\\\n", "/", "a{sv}"]},
            "Bytes": {"type": "ay", "value": [0, 127, 255]},
            "None": {"type": "a(sss)", "value": []},
            "Inner": {"type": "v", "value": {"type": "a{sv}", "value":
                {"k": {"type": "a{us}", "value": [[7, "seven"]]}}}},
            "Twice": {"type": "a{os}", "value": [["/k", "1"], ["/k", "2"]]}},
        "x.A": {"Same": {"type": "s", "value": "second"}}})json";
    const MemoryFile scenario(withProperties(interfaces));
    const Outcome recording = recorded(option(scenario));
    EXPECT_EQ(recording.status, 0) << recording.errors;
    EXPECT_EQ(interfacesOf(recording).dump(2), Json::parse(interfaces).dump(2));
    const MemoryFile again(recording.output);
    EXPECT_EQ(recorded(option(again)).output, recording.output);
}

TEST(Record, UnderstandsForeignIntrospection)
{
    const auto read = sim::introspectedFromXml(
        "<?xml version='1.0'?><!-- <interface name=\"x.No\"> -->\n<node>"
        "<interface name='x.I'><property access='read' type='s' name='P'>"
        "<annotation name='a' value='b'/></property>"
        "<property name=\"Q\" type=\"s\"\naccess=\"readwrite\"/></interface>"
        "<node name=\"child\"><interface name=\"x.Child\"/></node>"
        "<node name='leaf'/><interface name=\"x.J\"></interface></node><");
    ASSERT_EQ(read.size(), 2U);
    EXPECT_TRUE(read.at("x.J").empty());
    ASSERT_EQ(read.at("x.I").size(), 2U);
    EXPECT_EQ(read.at("x.I")[0].name, "P");
    EXPECT_TRUE(read.at("x.I")[0].isReadOnly);
    EXPECT_EQ(read.at("x.I")[1].name, "Q");
    EXPECT_FALSE(read.at("x.I")[1].isReadOnly);
}

TEST(Record, KeepsRecordsOfDrivesToTheByte)
{
    const std::string raid =
        R"({"controllers":[{"raid_id":7,)"
        R"("physical":[{"device_id":3,"vendor":"A B",)"
        R"("raw":{"0":"ff","30":"e4c4","212":"01"}}],)"
        R"("logical":[{"id":2,"members":[3,513],)"
        R"("raw":{"98":"aa"}}],"raw":{"0":"08","398":"10"}}],)"
        R"("texts":{"unknown":"?"}})";
    const MemoryFile scenario(R"({"format": 1, "raid": )" + raid + "}");
    const Outcome recording = recorded(option(scenario));
    EXPECT_EQ(recording.status, 0) << recording.errors;
    const Outcome unread =
        inScenario("", "env MORVATH_SIM_RAID=/none $MORVATH_SIM record");
    EXPECT_EQ(unread.status, 1);
    EXPECT_EQ(unread.errors,
              "morvath-sim: left out: RAID: /none: cannot be read\n");
    using Unordered = nlohmann::json;
    EXPECT_EQ(Unordered::parse(recording.output)["raid"],
              Unordered::parse(raid));
}

TEST(Record, TellsWhatItLeavesOut)
{
    struct
    {
        const char* when;
        const char* then;
        const char* left;
        const char* told;
    } const cases[]{
        {R"("service": "x.S")", R"("silent": true)", "null",
         "x.S, from object / on: org.freedesktop.DBus.Error.Timeout"},
        {R"("path": "/a/b", "member": "GetAll")", R"("die": true)", "null",
         "x.S, from object /a/b on: "
         "org.freedesktop.DBus.Error.ServiceUnknown"},
        {R"("path": "/a/b")", R"("vanished": true)", "null",
         "/a/b: x.S: org.freedesktop.DBus.Error.UnknownObject"},
        {R"("path": "/a/b", "property": "P")", R"("missing": true)", "[2]",
         "/a/b: x.S: x.I.P: org.freedesktop.DBus.Error.UnknownProperty"},
        {R"("path": "/a/b", "property": "P")", R"("error": "x.Error")", "[2]",
         "/a/b: x.S: x.I: x.Error"},
        {R"("member": "GetAll")", R"("reply": {"type": "i", "value": 1})",
         "[1,2]", "/a/b: x.S: x.I: "},
    };
    for (const auto& one : cases)
    {
        const MemoryFile scenario(withProperties(
            R"({"x.I": {"P": {"type": "i", "value": 1},
                        "Q": {"type": "i", "value": 2}}})",
            std::string(R"(, "faults": [{"when": {)") + one.when +
                R"(}, "then": {)" + one.then + "}}]"));
        const Outcome recording = recorded(option(scenario), "--timeout 3");
        EXPECT_EQ(recording.status, 1) << one.told;
        EXPECT_NE(recording.errors.find(one.told), std::string::npos)
            << recording.errors;
        Json left;
        const Json properties = interfacesOf(recording)["x.I"];
        for (const Json& property : properties)
        {
            left.push_back(property["value"]);
        }
        EXPECT_EQ(left.dump(), one.left) << one.told;
    }
}

TEST(Record, ChoosesServicesAndRefusesWhatIsNone)
{
    const Outcome chosen =
        recorded("", "--service xyz.openbmc_project.Settings --service x.None");
    EXPECT_EQ(chosen.status, 1);
    EXPECT_EQ(chosen.errors, "morvath-sim: left out: x.None: the object mapper "
                             "does not know the service\n");
    const Json recording = Json::parse(chosen.output);
    EXPECT_FALSE(recording.contains("raid"));
    EXPECT_EQ(recording["objects"].size(), 3U);

    EXPECT_EQ(recorded("", "--service none").status, 2);
    const MemoryFile bare(R"({"format": 1, "mapper": false})");
    const Outcome none = recorded(option(bare));
    EXPECT_EQ(none.status, 1);
    EXPECT_EQ(none.output, "");
    EXPECT_TRUE(none.errors.starts_with(
        "morvath-sim: the object mapper cannot be asked: "))
        << none.errors;
}

TEST(Record, MasksWhatIdentifiesTheMachine)
{
    struct
    {
        const char* name;
        const char* type;
        const char* original;
        const char* masked;
    } const cases[]{
        {"SerialNumber", "s", R"("SN-7Q ")", R"("AA-0A ")"},
        {"Bare", "s", R"("eth-5a3c9b102204")", R"("eth-020000000001")"},
        {"ASSET_TAG", "ay", "[75,74,49,50,51,0]", "[65,65,48,48,48,0]"},
        {"HostName", "s", R"("rack7")", R"("aaaa0")"},
        {"MACAddress", "s", R"("5A3C9B102204")", R"("020000000001")"},
        {"Address", "as", R"(["10.1.2.3","0x50"])", R"(["192.0.2.1","0x50"])"},
        {"Version", "s", R"("1.2.3.4")", R"("1.2.3.4")"},
        {"Kept", "as", R"(["0.0.0.0","::1","255.255.252.0","224.0.0.1"])",
         R"(["0.0.0.0","::1","255.255.252.0","224.0.0.1"])"},
        {"Text", "s",
         R"("rack7: KJ123, 5a-3c-9b-10-22-04, [fe80::1%eth0], 10.1.2.3/24.")",
         R"("aaaa0: AA000, 02-00-00-00-00-01, [2001:db8::1%eth0], )"
         R"(192.0.2.1/24.")"},
        {"Path", "o",
         R"("/x_SN_7Q/_310_2e1_2e2_2e3_2f24/10_1_2_3/5a_3c_9b_10_22_04")",
         R"("/x_AA_0A/_3192_2e0_2e2_2e1_2f24/192_0_2_1/02_00_00_00_00_01")"},
        {"Dictionary", "a{ss}",
         R"({"10.1.2.4":"","UUID":"7D1F0C52-8B3E-1F6A-9C27-15E8A4D2B6F0"})",
         R"({"192.0.2.2":"","UUID":"00000000-0000-1000-8000-000000000001"})"},
    };
    Json properties;
    for (const auto& one : cases)
    {
        properties[one.name] = {{"type", one.type},
                                {"value", Json::parse(one.original)}};
    }
    const Json masked = recordedProperties(properties, "--anonymize");
    for (const auto& one : cases)
    {
        EXPECT_EQ(masked[one.name]["value"].dump(), one.masked) << one.name;
    }
}

TEST(Record, MasksDifferAsTheOriginalsDo)
{
    // More than the first networks hold, and more than one digit can count.
    const std::size_t count = 800;
    Json addresses;
    Json serials;
    for (std::size_t number = 0; number < count; number++)
    {
        addresses.push_back("10.0." + std::to_string(number / 250) + "." +
                            std::to_string(number % 250));
        serials.push_back(std::string(number % 10, '-') +
                          std::to_string(number));
    }
    const Json masked =
        recordedProperties({{"Ip", {{"type", "as"}, {"value", addresses}}},
                            {"Serial", {{"type", "as"}, {"value", serials}}}},
                           "--anonymize");
    std::set<std::string> all;
    for (const Json& property : masked)
    {
        all.insert(property["value"].begin(), property["value"].end());
    }
    EXPECT_EQ(all.size(), 2 * count);
    EXPECT_TRUE(all.contains("203.0.113.254"));
    EXPECT_TRUE(all.contains("198.18.0.38"));
}

} // namespace morvath::tests
