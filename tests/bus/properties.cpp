// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

namespace morvath::tests::properties
{

constexpr auto service = "com.example.Settings";
constexpr auto path = "/com/example/settings";
constexpr auto interface = "com.example.Values";

Machine settings(const Json& properties)
{
    return Machine().owns(path, service, {{interface, properties}});
}

template <typename Call, typename... Values>
int32_t on(const char* name, Call call, Values... values)
{
    return call(service, path, interface, name, values...);
}

TEST(GetString, DeliversOneTo199Bytes)
{
    const std::string longest(199, 'x');
    const std::pair<std::string, std::optional<std::string>> cases[]{
        {"", std::nullopt},
        {"a", "a"},
        {longest, longest},
        {longest + "x", std::nullopt},
    };
    for (const auto& [held, result] : cases)
    {
        const sim::Platform platform(
            settings({{"Text", text(held)}}).scenario());
        EXPECT_EQ(read(getDbusPropertyString, service, path, interface, "Text"),
                  result);
    }
}

TEST(GetTexts, WritesTheArrayOnlyForElements)
{
    const sim::Platform platform(
        settings({{"List", property("as", {"one", ""})}}).scenario());
    EXPECT_EQ(
        read(getDbusPropertyVectorString, service, path, interface, "List"),
        (Lines{"one", ""}));

    const char* none[]{nullptr};
    EXPECT_EQ(on("List", setDbusPropertyVectorString, none), 0);
    char* untouched = nullptr;
    char** values = &untouched;
    uint32_t count = 7;
    EXPECT_EQ(on("List", getDbusPropertyVectorString, &values, &count), 0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(values, &untouched);
}

TEST(GetFailures, RaiseAndLeaveTheOutputs)
{
    const sim::Platform platform(
        settings({{"Number", property("u", 1)}}).scenario());
    const std::pair<const char*, const char*> cases[]{
        {path, "another type: std::get: wrong index for variant"},
        {"/not/a/path/", "bus-error"},
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
                          return get(service, one.first, interface, "Number",
                                     outputs...);
                      }),
                      one.second);
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

TEST(Value, KeepsItsTypeBothWays)
{
    /** On the bus, in a scenario and in the library. */
    const struct
    {
        const char* type;
        Json json;
        PropertyValue value;
    } forms[]{
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
    for (const auto& form : forms)
    {
        const auto published = property(form.type, form.json);
        const sim::Platform platform(
            settings({{"Value", published}}).scenario());
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
                          {"v", property("v", property("s", "a"))}};
    const sim::Platform platform(settings(properties).scenario());
    for (const auto& [name, published] : properties.items())
    {
        PropertyValue value = true;
        EXPECT_EQ(on(name.c_str(), _getDbusProperty, &value), 0);
        EXPECT_EQ(value, PropertyValue()) << name;
    }
}

TEST(SetOnAll, WritesEveryObjectUntilOneRefuses)
{
    const Json old{{"Servers", property("as", {"old"})}};
    Machine ports;
    for (const auto* port : {"/net/a", "/net/b", "/net/c"})
    {
        ports.owns(port, service, {{interface, old}});
    }
    const auto write = [](const Machine& machine) {
        const sim::Platform platform(machine.scenario());
        const char* values[]{"new", nullptr};
        Json result{setDbusPropertyVectorStringWithoutPath(service, interface,
                                                           "Servers", values)};
        for (const auto* port : {"/net/a", "/net/b", "/net/c"})
        {
            result += platform.property(service, port, interface, "Servers")[0];
        }
        EXPECT_EQ(*platform.calls()[0].arguments,
                  Json({"/", 0, Json::array({interface})}));
        return result;
    };
    EXPECT_EQ(write(ports), Json({0, "new", "new", "new"}));
    ports.fault({{"member", "Set"}, {"path", "/net/b"}},
                {{"error", "com.example.Refused"}});
    EXPECT_EQ(write(ports), Json({-1, "new", "old", "old"}));
}

} // namespace morvath::tests::properties
