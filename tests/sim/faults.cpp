// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace morvath::tests::faults
{

constexpr auto unknownProperty = "org.freedesktop.DBus.Error.UnknownProperty";

const std::string machine = R"({"format": 1, "objects": [
{"path": "/a", "services": [{"name": "x.S", "interfaces": {
  "x.I": {"P": {"type": "s", "value": "one"}, "Q": {"type": "i", "value": 2},
          "H": {"type": "i", "value": 3, "hidden": true}},
  "x.J": {"P": {"type": "s", "value": "other"}}}}]},
{"path": "/b", "services": [{"name": "x.S", "interfaces": {
  "x.I": {"P": {"type": "s", "value": "b"}}}}]}], "faults": [)";

sim::Scenario withFaults(const std::string& faults)
{
    return sim::Scenario::parse(machine + faults + "]}", "faults");
}

/** What Get P, Get Q and GetAll of x.I on /a and Get P on /b answer. */
TEST(Faults, ReachExactlyTheCallsTheyDescribe)
{
    const Json two{{"type", "i"}, {"value", 2}};
    const Json one{{"type", "s"}, {"value", "one"}};
    const Json onlyP{{"P", one}};
    const Json onlyQ{{"Q", two}};
    const Json all{{"P", one}, {"Q", two}};
    const std::string gone = "org.freedesktop.DBus.Error.UnknownObject";
    const std::pair<std::string, Json> cases[]{
        {R"({"when": {"property": "P"}, "then": {"error": "x.E"}})",
         {"x.E", 2, "x.E", "x.E"}},
        {R"({"when": {"path": "/a", "property": "Q", "member": "GetAll"},
             "then": {"error": "x.E"}})",
         {"one", 2, "x.E", "b"}},
        {R"({"when": {"property": "H"}, "then": {"error": "x.E"}})",
         {"one", 2, all, "b"}},
        {R"({"when": {"interface": "x.J", "property": "P"},
             "then": {"error": "x.E"}})",
         {"one", 2, all, "b"}},
        {R"({"when": {"interface": "org.freedesktop.DBus.Properties",
                      "property": "Q"}, "then": {"error": "x.E"}})",
         {"one", "x.E", "x.E", "b"}},
        {R"({"when": {"path": "/a", "call": 2}, "then": {"error": "x.E"}})",
         {"one", "x.E", all, "b"}},
        {R"({"when": {"path": "/a"}, "then": {"error": "x.First"}},
            {"when": {}, "then": {"error": "x.Second"}})",
         {"x.First", "x.First", "x.First", "x.Second"}},
        {R"({"when": {"path": "/a", "property": "P"},
             "then": {"missing": true}})",
         {unknownProperty, 2, onlyQ, "b"}},
        {R"({"when": {"path": "/a"}, "then": {"vanished": true}})",
         {gone, gone, gone, "b"}},
        {R"({"when": {"path": "/b"}, "then":
             {"reply": {"type": "v", "value": {"type": "u", "value": 9}}}})",
         {"one", 2, all, 9}},
        {R"({"when": {"path": "/a", "member": "GetAll"}, "then":
             {"reply": {"type": "ii", "value": [5, 6]}}})",
         {"one", 2, 5, "b"}},
        {R"({"when": {"path": "/a", "property": "Q", "call": 2},
             "then": {"missing": true}})",
         {"one", 2, onlyP, "b"}},
    };
    for (const auto& [faults, expected] : cases)
    {
        const sim::Platform platform(withFaults(faults));
        Client client;
        const Json answers{client.get("x.S", "/a", "x.I", "P"),
                           client.get("x.S", "/a", "x.I", "Q"),
                           client.getAll("x.S", "/a", "x.I"),
                           client.get("x.S", "/b", "x.I", "P")};
        EXPECT_EQ(answers, expected) << faults;
    }
}

TEST(Faults, DelayedCallIsAnsweredLateAndAnUnusedFaultIsTold)
{
    const sim::Platform platform(withFaults(
        R"({"when": {"path": "/a"}, "then": {"delayMs": 60}},
           {"when": {"path": "/a", "property": "P"},
            "then": {"missing": true}},
           {"when": {"path": "/a", "call": 3}, "then": {"die": true}})"));
    Client client;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.get("x.S", "/a", "x.I", "Q"), 2);
    EXPECT_GE(std::chrono::steady_clock::now() - start,
              std::chrono::milliseconds(60));
    EXPECT_EQ(client.get("x.S", "/a", "x.I", "P"), unknownProperty);
    EXPECT_EQ(platform.unusedFaults(), std::vector<std::string>{"/faults/2"});
}

/** The order of interfaces stays while a property comes and goes. */
TEST(Faults, MissingPropertyLeavesTheOthersInTheirOrder)
{
    const sim::Platform platform(withFaults(
        R"({"when": {"path": "/a", "interface": "x.I", "property": "P",
                     "call": 1},
            "then": {"missing": true}})"));
    Client client;
    const auto contents = [&] { return client.getAll("x.S", "/a", "").dump(); };
    EXPECT_EQ(contents(), R"({"P":{"type":"s","value":"other"},)"
                          R"("Q":{"type":"i","value":2}})");
    EXPECT_EQ(contents(), R"([["P",{"type":"s","value":"other"}],)"
                          R"(["P",{"type":"s","value":"one"}],)"
                          R"(["Q",{"type":"i","value":2}]])");
}

} // namespace morvath::tests::faults
