// SPDX-License-Identifier: Apache-2.0
#include "sim/client.hpp"
#include "sim/platform.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>

namespace morvath::tests
{

namespace
{

constexpr const char* objects = R"([
{"path": "/a", "services": [{"name": "x.S", "interfaces": {
  "x.I": {"P": {"type": "s", "value": "one"}, "Q": {"type": "i", "value": 2},
          "H": {"type": "i", "value": 3, "hidden": true}},
  "x.J": {"P": {"type": "s", "value": "other"}}}}]},
{"path": "/b", "services": [{"name": "x.S", "interfaces": {
  "x.I": {"P": {"type": "s", "value": "b"}}}}]}])";

sim::Scenario withFaults(const std::string& faults)
{
    return sim::Scenario::parse(R"({"format": 1, "objects": )" +
                                    std::string(objects) + R"(, "faults": [)" +
                                    faults + "]}",
                                "faults");
}

} // namespace

/** What Get P, Get Q and GetAll of x.I on /a and Get P on /b answer. */
TEST(Faults, ReachExactlyTheCallsTheyDescribe)
{
    const Json two{{"type", "i"}, {"value", 2}};
    const Json onlyQ{{"Q", two}};
    const Json all{{"P", {{"type", "s"}, {"value", "one"}}}, {"Q", two}};
    const std::string gone = "org.freedesktop.DBus.Error.UnknownObject";
    const std::string unknown = "org.freedesktop.DBus.Error.UnknownProperty";
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
         {unknown, 2, onlyQ, "b"}},
        {R"({"when": {"path": "/a"}, "then": {"vanished": true}})",
         {gone, gone, gone, "b"}},
        {R"({"when": {"path": "/b"}, "then":
             {"reply": {"type": "v", "value": {"type": "u", "value": 9}}}})",
         {"one", 2, all, 9}},
    };
    for (const auto& [faults, expected] : cases)
    {
        const sim::Platform platform(withFaults(faults));
        Client client;
        const Json answers{client.get("x.S", "/a", "x.I", "P").value,
                           client.get("x.S", "/a", "x.I", "Q").value,
                           client.getAll("x.S", "/a", "x.I").value,
                           client.get("x.S", "/b", "x.I", "P").value};
        EXPECT_EQ(answers, expected) << faults;
    }
}

TEST(Faults, DelayedCallIsAnsweredLate)
{
    const sim::Platform platform(withFaults(
        R"({"when": {"path": "/a"}, "then": {"delayMs": 60}},
           {"when": {"path": "/a", "property": "P"},
            "then": {"missing": true}})"));
    Client client;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(client.get("x.S", "/a", "x.I", "Q").value, 2);
    EXPECT_GE(std::chrono::steady_clock::now() - start,
              std::chrono::milliseconds(60));
    EXPECT_EQ(client.get("x.S", "/a", "x.I", "P").value,
              "org.freedesktop.DBus.Error.UnknownProperty");
}

TEST(Platform, HasItsNamesAlone)
{
    const sim::Platform platform(withFaults(""));
    EXPECT_THROW(sim::Platform(withFaults("")), std::system_error);
}

} // namespace morvath::tests
