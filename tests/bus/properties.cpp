// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/records.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

namespace morvath::tests::properties
{

constexpr auto service = "com.example.Settings";
constexpr auto path = "/com/example/settings";
constexpr auto interface = "com.example.Values";

/** A property with the name Odd is answered with a bare number. */
sim::Scenario settings(Json properties)
{
    properties.emplace("Odd", property("u", 1));
    return Machine()
        .owns(path, service, {{interface, properties}})
        .fault({{"property", "Odd"}}, {{"reply", property("u", 1)}})
        .scenario();
}

template <typename Call, typename... Values>
int32_t on(const char* name, Call call, Values... values)
{
    return call(service, path, interface, name, values...);
}

TEST(GetString, DeliversOneTo199Bytes)
{
    const std::string longest(199, 'x');
    const std::pair<std::string, TextResult> cases[]{
        {"", {0, nothing}},
        {"a", {0, "a"}},
        {longest, {0, longest}},
        {longest + "x", {0, nothing}},
    };
    for (const auto& [held, result] : cases)
    {
        sim::Platform platform(settings({{"Text", text(held)}}));
        const auto read = readText([](char** value) {
            return on("Text", getDbusPropertyString, value);
        });
        EXPECT_EQ(read, result);
    }
}

TEST(GetTexts, WritesTheArrayOnlyForElements)
{
    sim::Platform platform(settings({{"Two", property("as", {"one", ""})},
                                     {"None", property("as", Json::array())}}));
    char* untouched = nullptr;
    char** values = &untouched;
    uint32_t count = 7;
    EXPECT_EQ(on("None", getDbusPropertyVectorString, &values, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(values, &untouched);

    EXPECT_EQ(on("Two", getDbusPropertyVectorString, &values, &count), 0);
    ASSERT_EQ(count, 2u);
    EXPECT_STREQ(values[0], "one");
    EXPECT_STREQ(values[1], "");
    std::free(values[0]);
    std::free(values[1]);
    std::free(values);
}

TEST(GetNumbers, DeliversBytesAndBooleans)
{
    sim::Platform platform(settings({{"Byte", property("y", 255)},
                                     {"Yes", property("b", true)},
                                     {"No", property("b", false)}}));
    uint8_t value = 9;
    EXPECT_EQ(on("Byte", getDbusPropertyUint8, &value), 0);
    EXPECT_EQ(value, 255);
    EXPECT_EQ(on("Yes", getDbusPropertyBool, &value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(on("No", getDbusPropertyBool, &value), 0);
    EXPECT_EQ(value, 0);
}

TEST(GetFailures, TellWhatCannotBeRead)
{
    sim::Platform platform(settings({{"Number", property("u", 1)},
                                     {"Unknown", property("o", "/a")},
                                     {"Odd", text("x")}}));
    constexpr auto notHere = "com.example.Nobody";
    const struct
    {
        const char* service;
        const char* path;
        const char* name;
        std::string outcome;
    } cases[]{
        {notHere, path, "Number", "-1"},
        {service, "/com/example/nothing", "Number", "-1"},
        {service, path, "Missing", "-1"},
        {service, path, "Odd", "-1"},
        {service, path, "Number", "another-type"},
        {service, path, "Unknown", "another-type"},
        {service, "/not/a/path/", "Number", "bus-error"},
    };
    for (const auto& one : cases)
    {
        char mark = 'm';
        char* string = &mark;
        char** strings = &string;
        uint32_t count = 7;
        uint8_t byte = 7;
        const auto expect = [&one](auto get, auto... outputs) {
            EXPECT_EQ(outcomeOf([&] {
                          return get(one.service, one.path, interface, one.name,
                                     outputs...);
                      }),
                      one.outcome)
                << one.service << one.path << one.name;
        };
        expect(getDbusPropertyString, &string);
        expect(getDbusPropertyVectorString, &strings, &count);
        expect(getDbusPropertyUint8, &byte);
        expect(getDbusPropertyBool, &byte);
        EXPECT_EQ(string, &mark);
        EXPECT_EQ(strings, &string);
        EXPECT_EQ(count, 7u);
        EXPECT_EQ(byte, 7);
    }
}

/** A value in its three forms: on the bus, in a scenario and in the library. */
struct Form
{
    const char* type;
    Json json;
    PropertyValue value;
};

const Form forms[]{
    {"a(sss)", Json::array({{"a", "b", "c"}}),
     std::vector<std::tuple<std::string, std::string, std::string>>{
         {"a", "b", "c"}}},
    {"as", {"a", "b"}, std::vector<std::string>{"a", "b"}},
    {"ad", {0.5, -1.0}, std::vector<double>{0.5, -1}},
    {"s", "text", std::string("text")},
    {"x", INT64_MIN, INT64_MIN},
    {"t", UINT64_MAX, UINT64_MAX},
    {"d", 2.25, 2.25},
    {"i", INT32_MIN, INT32_MIN},
    {"u", UINT32_MAX, UINT32_MAX},
    {"n", -5, int16_t{-5}},
    {"q", 65535, uint16_t{65535}},
    {"y", 65, uint8_t{65}},
    {"b", true, true},
    {"au", {1, 4294967295u}, std::vector<uint32_t>{1, UINT32_MAX}},
    {"aq", Json::array(), std::vector<uint16_t>{}},
};

TEST(Value, KeepsItsTypeBothWays)
{
    for (const auto& form : forms)
    {
        const auto published = property(form.type, form.json);
        sim::Platform platform(settings({{"Value", published}}));
        PropertyValue value;
        EXPECT_EQ(on("Value", _getDbusProperty, &value), 0);
        EXPECT_EQ(value.index(), static_cast<std::size_t>(&form - forms));
        EXPECT_EQ(value, form.value) << form.type;

        EXPECT_EQ(on("Value", _setDbusProperty, &form.value), 0) << form.type;
        EXPECT_EQ(platform.calls().at(1).member, "Set");
        EXPECT_EQ(*platform.calls().at(1).arguments,
                  Json({interface, "Value", published}));
    }
}

TEST(Value, OfAnyOtherTypeIsReadAsTheEmptyFirst)
{
    const Json properties{{"o", property("o", "/a")},
                          {"ai", property("ai", {1})},
                          {"struct", property("(s)", {"a"})},
                          {"dict", property("a{ss}", {{"a", "b"}})},
                          {"v", property("v", property("s", "a"))}};
    sim::Platform platform(settings(properties));
    for (const auto& [name, published] : properties.items())
    {
        PropertyValue value = true;
        EXPECT_EQ(on(name.c_str(), _getDbusProperty, &value), 0);
        EXPECT_EQ(value, PropertyValue()) << name;
    }
}

TEST(SetTyped, SendsWhatItIsGiven)
{
    sim::Platform platform(settings({{"Flag", property("b", false)},
                                     {"Number", property("t", 0)},
                                     {"Text", text("")},
                                     {"Texts", property("as", {"old"})}}));
    const auto held = [&](const char* name) {
        return platform.property(service, path, interface, name);
    };
    const char* none[]{nullptr};
    const char* two[]{"one", "two", nullptr};
    EXPECT_EQ(on("Flag", setDbusPropertyBool, 2), 0);
    EXPECT_EQ(held("Flag"), true);
    EXPECT_EQ(on("Number", setDbusPropertyUint64, UINT64_MAX), 0);
    EXPECT_EQ(held("Number"), UINT64_MAX);
    EXPECT_EQ(on("Text", setDbusPropertyString, "new"), 0);
    EXPECT_EQ(held("Text"), "new");
    EXPECT_EQ(on("Texts", setDbusPropertyVectorString, two), 0);
    EXPECT_EQ(held("Texts"), Json({"one", "two"}));
    EXPECT_EQ(on("Texts", setDbusPropertyVectorString, none), 0);
    EXPECT_EQ(held("Texts"), Json::array());

    EXPECT_EQ(on("Text", setDbusPropertyBool, 1), -1);
    EXPECT_EQ(on("No", setDbusPropertyUint64, 1), -1);
    EXPECT_THROW(on("Text", setDbusPropertyString, nullptr), std::logic_error);
    EXPECT_THROW(setDbusPropertyString(service, "", interface, "Text", "x"),
                 sdbusplus::exception::SdBusError);
    EXPECT_EQ(held("Text"), "new");
}

TEST(SetOnAll, WritesEveryObjectUntilOneRefuses)
{
    Machine ports;
    for (const auto* port : {"/net/a", "/net/b", "/net/c"})
    {
        ports.owns(port, service,
                   {{interface, {{"Servers", property("as", {"old"})}}}});
    }
    const Json atSecond{{"member", "Set"}, {"path", "/net/b"}};
    const Json refused{{"error", "com.example.Refused"}, {"message", ""}};
    struct
    {
        Machine machine;
        const char* of;
        int32_t code;
        const char* first;
        const char* last;
        std::size_t calls;
    } const cases[]{
        {ports, interface, 0, "new", "new", 4},
        {ports, "com.example.Nobody", 0, "old", "old", 1},
        {Machine(ports).fault(atSecond, refused), interface, -1, "new", "old",
         3},
        {Machine(ports).withoutMapper(), interface, 0, "old", "old", 0},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(one.machine.scenario());
        const auto held = [&](const char* port) {
            return platform.property(service, port, interface, "Servers");
        };
        const char* values[]{"new", nullptr};
        EXPECT_EQ(setDbusPropertyVectorStringWithoutPath(service, one.of,
                                                         "Servers", values),
                  one.code);
        EXPECT_EQ(held("/net/a"), Json::array({one.first}));
        EXPECT_EQ(held("/net/c"), Json::array({one.last}));
        const auto calls = platform.calls();
        EXPECT_EQ(calls.size(), one.calls);
        EXPECT_TRUE(calls.empty() || *calls[0].arguments ==
                                         Json({"/", 0, Json::array({one.of})}));
    }
}

} // namespace morvath::tests::properties
