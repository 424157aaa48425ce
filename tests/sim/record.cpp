// SPDX-License-Identifier: Apache-2.0
#include "sim/document.hpp"
#include "sim/process.hpp"
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
    const std::string show = "$MORVATH show --all --wide";
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
    EXPECT_NE(disks.output.find("AA0000000B"), std::string::npos);
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
    const std::string xml =
        "<?xml version='1.0'?><!-- <interface name=\"x.No\"> -->\n<node>"
        "<interface name='x.J'><property access='read' type='s' name='P'>"
        "<annotation name='a' value='b'/></property>"
        "<property name=\"Q\" type=\"s\"\naccess=\"readwrite\"/></interface>"
        "<node name=\"child\"><interface name=\"x.I\"/></node>"
        "<node name='leaf'/><interface name=\"x.I\"></interface>";
    const auto answered = [](const std::string& answer) {
        return withProperties(
            R"({"x.J": {"P": {"type": "s", "value": ""},
                        "Q": {"type": "s", "value": ""}}, "x.I": {}})",
            R"(, "faults": [{"when": {"path": "/a/b", "member": "Introspect"},
                "then": {"reply": {"type": "s", "value": )" +
                Json(answer).dump() + "}}}]");
    };
    const MemoryFile whole(answered(xml + "</node>"));
    const Outcome recording = recorded(option(whole));
    EXPECT_EQ(recording.errors, "");
    const Json expected = Json::parse(
        R"({"x.I": {}, "x.J": {
            "P": {"type": "s", "value": "", "readOnly": true},
            "Q": {"type": "s", "value": ""}}})");
    EXPECT_EQ(interfacesOf(recording).dump(), expected.dump());

    const MemoryFile cut(answered(xml));
    const Outcome gap = recorded(option(cut));
    EXPECT_EQ(gap.status, 1);
    EXPECT_EQ(gap.errors, "morvath-sim: left out: /a/b: x.S: introspection: "
                          "not well-formed\n");
    EXPECT_EQ(gap.output, recording.output);
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
        {"SerialNumber", "s", R"("SN-7Q ")", R"("AA-0B ")"},
        {"SubSerial", "s", R"("7")", R"("1")"},
        {"ServiceTag", "s", R"("7XK29Q2")", R"("0AA00A1")"},
        {"PPID", "s", R"("CN0ABC1234567")", R"("AA0AAA0000001")"},
        {"ASSET_TAG", "ay", "[75,74,49,50,51,0,7]", "[65,65,48,48,49,0,7]"},
        {"HostName", "s", R"("rack7")", R"("aaaa1")"},
        {"MACAddress", "s", R"("5A3C9B102204")", R"("0A0A0A000001")"},
        {"Address", "as", R"(["10.1.2.3","fe80::1"])",
         R"(["11.1.1.2","aa11::2"])"},
        {"Bare", "s", R"("eth-5a3c9b102204")", R"("eth-0a0a0a000001")"},
        {"Dotted", "s", R"("5a3c.9b10.2204, 77aa.bbcc.dd01")",
         R"("0a0a.0a00.0001, 00aa.aaaa.aa01")"},
        {"Namespace", "s", R"("eui.0025385b71b12345")",
         R"("eui.0000000a00a00001")"},
        {"Known", "s", R"("disk cn0abc1234567, 7xk29q2, sn-7q")",
         R"("disk aa0aaa0000001, 0aa00a1, aa-0b")"},
        {"Text", "s",
         R"("rack7: KJ123, 5a-3c-9b-10-22-04, [fe80::1%eth0], 10.1.2.3/24.")",
         R"("aaaa1: AA001, 0a-0a-0a-00-00-01, [aa11::2%eth0], 11.1.1.2/24.")"},
        {"Url", "s",
         R"("https://me@files.lab:8443/x ldap://nas tftp://10.1.2.9")",
         R"("https://me@aaaaa.aab:8443/x ldap://aab tftp://11.1.1.4")"},
        {"Path", "o",
         R"("/x_SN_7Q/_310_2e1_2e2_2e3_2f24/10_1_2_3/5a_3c_9b_10_22_04")",
         R"("/x_AA_0B/_311_2e1_2e1_2e2_2f24/11_1_1_2/0a_0a_0a_00_00_01")"},
        {"Dictionary", "a{ss}",
         R"({"10.1.2.4":"","UUID":"7D1F0C52-8B3E-1F6A-9C27-15E8A4D2B6F0"})",
         R"({"11.1.1.3":"","UUID":"0A0A0A00-0A0A-0A0A-0A00-00A0A0A0A0A1"})"},
        {"Variant", "v",
         R"({"type":"a{sv}","value":{"SN":{"type":"s","value":"5a3c9b102204"}}})",
         R"({"type":"a{sv}","value":{"SN":{"type":"s","value":"0a0a0a000001"}}})"},
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

TEST(Record, KeepsWhatManyMachinesHave)
{
    const Json kept{
        {"Addresses",
         {"0.0.0.0", "127.0.0.1", "224.0.0.1", "255.255.252.0", "::1",
          "ff02::1", "00:00:00:00:00:00", "01:00:5e:00:00:fb", "0x50"}},
        {"NumbersAndWords",
         {"123456789012", "deadbeef", "12:34:56", "2026-11-21", "1.2.3.4.5"}},
        {"Version", {"1.2.3.4", "5a3c9b10"}},
        {"SerialNumber",
         {"", "Unknown", "N/A", "0000", "To be filled by O.E.M."}},
        {"HostName", {"host"}},
        {"Enumerations", {"xyz.openbmc_project.State.Host.HostState.Off"}}};
    Json properties;
    for (const auto& [name, texts] : kept.items())
    {
        properties[name] = {{"type", "as"}, {"value", texts}};
    }
    const Json masked = recordedProperties(properties, "--anonymize");
    for (const auto& [name, texts] : kept.items())
    {
        EXPECT_EQ(masked[name]["value"] == texts, name != "HostName") << name;
    }
}

TEST(Record, MasksDifferAsTheOriginalsDo)
{
    constexpr std::size_t count = 800;
    Json addresses;
    Json serials;
    for (std::size_t number = 0; number < count; number++)
    {
        addresses.push_back("10.0." + std::to_string(number / 250) + "." +
                            std::to_string(number % 250));
        serials.push_back("S" + std::to_string(number));
    }
    const Json digits{"1", "2", "3", "4", "5", "6", "7", "8", "9"};
    const Json masked =
        recordedProperties({{"Ip", {{"type", "as"}, {"value", addresses}}},
                            {"Serial", {{"type", "as"}, {"value", serials}}},
                            {"OneSerial", {{"type", "as"}, {"value", digits}}}},
                           "--anonymize");
    std::set<std::string> all;
    for (const Json& property : masked)
    {
        all.insert(property["value"].begin(), property["value"].end());
    }
    EXPECT_EQ(all.size(), 2 * count + digits.size());
}

} // namespace morvath::tests
