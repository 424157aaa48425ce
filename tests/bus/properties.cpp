#include "morvath.h"
#include "support/machine.hpp"

#include <gtest/gtest.h>
#include <sdbusplus/exception.hpp>

#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>

namespace morvath::tests
{
namespace
{

constexpr auto service = "com.example.Settings";
constexpr auto path = "/com/example/settings";
constexpr auto interface = "com.example.Values";

Machine settings(const Json& properties)
{
    return Machine().owns(path, service, {{interface, properties}});
}

TEST(GetString, DeliversOneTo199Bytes)
{
    const std::string longest(199, 'x');
    sim::Platform platform(settings({{"Empty", text("")},
                                     {"Short", text("a")},
                                     {"Longest", text(longest)},
                                     {"TooLong", text(longest + "x")}})
                               .scenario());
    const std::pair<const char*, const char*> cases[]{
        {"Empty", nullptr},
        {"Short", "a"},
        {"Longest", longest.c_str()},
        {"TooLong", nullptr},
    };
    for (const auto& [name, expected] : cases)
    {
        char* value = nullptr;
        EXPECT_EQ(getDbusPropertyString(service, path, interface, name, &value),
                  0);
        EXPECT_STREQ(value, expected) << name;
        std::free(value);
    }
}

TEST(GetTexts, WritesTheArrayOnlyForElements)
{
    sim::Platform platform(settings({{"Two", property("as", {"one", ""})},
                                     {"None", property("as", Json::array())}})
                               .scenario());
    char* untouched = nullptr;
    char** values = &untouched;
    uint32_t count = 7;
    EXPECT_EQ(getDbusPropertyVectorString(service, path, interface, "None",
                                          &values, &count),
              0);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(values, &untouched);

    EXPECT_EQ(getDbusPropertyVectorString(service, path, interface, "Two",
                                          &values, &count),
              0);
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
                                     {"No", property("b", false)}})
                               .scenario());
    uint8_t value = 9;
    EXPECT_EQ(getDbusPropertyUint8(service, path, interface, "Byte", &value),
              0);
    EXPECT_EQ(value, 255);
    EXPECT_EQ(getDbusPropertyBool(service, path, interface, "Yes", &value), 0);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(getDbusPropertyBool(service, path, interface, "No", &value), 0);
    EXPECT_EQ(value, 0);
}

/** All getters on one property, with outputs that show any write. */
struct Getters
{
    char mark = 'm';
    char* string = &mark;
    char** strings = &string;
    uint32_t count = 7;
    uint8_t byte = 7;
    PropertyValue value = std::string("preset");

    std::vector<std::function<int32_t()>> on(const char* from, const char* at,
                                             const char* name)
    {
        return {
            [=, this] {
                return getDbusPropertyString(from, at, interface, name,
                                             &string);
            },
            [=, this] {
                return getDbusPropertyVectorString(from, at, interface, name,
                                                   &strings, &count);
            },
            [=, this] {
                return getDbusPropertyUint8(from, at, interface, name, &byte);
            },
            [=, this] {
                return getDbusPropertyBool(from, at, interface, name, &byte);
            },
            [=, this] {
                return _getDbusProperty(from, at, interface, name, &value);
            },
        };
    }

    void expectUntouched() const
    {
        EXPECT_EQ(string, &mark);
        EXPECT_EQ(strings, &string);
        EXPECT_EQ(count, 7u);
        EXPECT_EQ(byte, 7);
        EXPECT_EQ(value, PropertyValue(std::string("preset")));
    }
};

TEST(GetFailures, GiveMinusOneAndWriteNothing)
{
    sim::Platform platform(
        settings({{"Here", text("x")}, {"Odd", text("x")}})
            .fault({{"property", "Odd"}}, {{"reply", property("u", 1)}})
            .scenario());
    const char* cases[][3]{
        {"com.example.Nobody", path, "Here"},
        {service, "/com/example/nothing", "Here"},
        {service, "/com/example", "Here"},
        {service, path, "Missing"},
        {service, path, "Odd"},
    };
    Getters getters;
    for (const auto& [from, at, name] : cases)
    {
        for (const auto& get : getters.on(from, at, name))
        {
            EXPECT_EQ(get(), -1) << from << at << name;
        }
    }
    getters.expectUntouched();
}

TEST(GetFailures, RaiseForARequestThatCannotBe)
{
    Getters getters;
    for (const auto& get : getters.on(service, "/not/a/path/", "Any"))
    {
        try
        {
            get();
            ADD_FAILURE() << "returned";
        }
        catch (const sdbusplus::exception::SdBusError& error)
        {
            EXPECT_EQ(error.get_errno(), EINVAL);
            EXPECT_TRUE(std::string(error.what())
                            .starts_with("sd_bus_message_new_method_call: "))
                << error.what();
        }
    }
    getters.expectUntouched();
}

TEST(GetFailures, RaiseForAnotherType)
{
    sim::Platform platform(settings({{"Number", property("u", 1)},
                                     {"Unknown", property("o", "/a")}})
                               .scenario());
    for (const auto* name : {"Number", "Unknown"})
    {
        Getters getters;
        auto calls = getters.on(service, path, name);
        calls.pop_back();
        for (const auto& get : calls)
        {
            EXPECT_THROW(get(), std::bad_variant_access) << name;
        }
        getters.expectUntouched();
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

TEST(GetValue, ReadsEachTypeAsItsAlternative)
{
    for (std::size_t index = 0; index < std::size(forms); ++index)
    {
        const auto& form = forms[index];
        sim::Platform platform(
            settings({{"Value", property(form.type, form.json)}}).scenario());
        PropertyValue value;
        EXPECT_EQ(_getDbusProperty(service, path, interface, "Value", &value),
                  0);
        EXPECT_EQ(value.index(), index) << form.type;
        EXPECT_EQ(value, form.value) << form.type;
    }
}

TEST(GetValue, ReadsAnyOtherTypeAsTheEmptyFirst)
{
    for (const auto& [type, json] :
         std::initializer_list<std::pair<const char*, Json>>{
             {"o", "/a"},
             {"ai", {1}},
             {"(s)", {"a"}},
             {"a{ss}", {{"a", "b"}}},
             {"v", property("s", "a")}})
    {
        sim::Platform platform(
            settings({{"Value", property(type, json)}}).scenario());
        PropertyValue value = true;
        EXPECT_EQ(_getDbusProperty(service, path, interface, "Value", &value),
                  0);
        EXPECT_EQ(value, PropertyValue()) << type;
    }
}

TEST(SetValue, SendsTheTypeOfTheAlternative)
{
    for (const auto& form : forms)
    {
        sim::Platform platform(
            settings({{"Value", property(form.type, form.json)}}).scenario());
        EXPECT_EQ(
            _setDbusProperty(service, path, interface, "Value", &form.value), 0)
            << form.type;
        const auto calls = platform.calls();
        ASSERT_EQ(calls.size(), 1u);
        EXPECT_EQ(calls[0].member, "Set");
        EXPECT_EQ(calls[0].arguments,
                  Json({interface, "Value", property(form.type, form.json)}));
    }
}

TEST(SetTyped, SendsWhatItIsGiven)
{
    sim::Platform platform(settings({{"Flag", property("b", false)},
                                     {"Number", property("t", 0)},
                                     {"Text", text("")},
                                     {"Texts", property("as", {"old"})}})
                               .scenario());
    const char* none[]{nullptr};
    const char* two[]{"one", "two", nullptr};
    EXPECT_EQ(setDbusPropertyBool(service, path, interface, "Flag", 2), 0);
    EXPECT_EQ(
        setDbusPropertyUint64(service, path, interface, "Number", UINT64_MAX),
        0);
    EXPECT_EQ(setDbusPropertyString(service, path, interface, "Text", "new"),
              0);
    EXPECT_EQ(
        setDbusPropertyVectorString(service, path, interface, "Texts", two), 0);

    const auto held = [&](const char* name) {
        return platform.property(service, path, interface, name);
    };
    EXPECT_EQ(held("Flag"), true);
    EXPECT_EQ(held("Number"), UINT64_MAX);
    EXPECT_EQ(held("Text"), "new");
    EXPECT_EQ(held("Texts"), Json({"one", "two"}));

    EXPECT_EQ(
        setDbusPropertyVectorString(service, path, interface, "Texts", none),
        0);
    EXPECT_EQ(held("Texts"), Json::array());
}

TEST(SetTyped, ReportsRefusalAndRaisesForNull)
{
    sim::Platform platform(settings({{"Text", text("")}}).scenario());
    EXPECT_EQ(setDbusPropertyBool(service, path, interface, "Text", 1), -1);
    EXPECT_EQ(setDbusPropertyUint64(service, path, interface, "No", 1), -1);
    EXPECT_THROW(
        setDbusPropertyString(service, path, interface, "Text", nullptr),
        std::logic_error);
    EXPECT_THROW(setDbusPropertyString(service, "", interface, "Text", "x"),
                 sdbusplus::exception::SdBusError);
    EXPECT_EQ(platform.property(service, path, interface, "Text"), "");
}

Machine threePorts()
{
    Machine machine;
    for (const auto* port : {"/net/a", "/net/b", "/net/c"})
    {
        machine.owns(port, service,
                     {{interface, {{"Servers", property("as", {"old"})}}}});
    }
    return machine;
}

TEST(SetOnAll, WritesEveryObjectUntilOneRefuses)
{
    const char* values[]{"new", nullptr};
    const auto setOnAll = [&](const char* of) {
        return setDbusPropertyVectorStringWithoutPath(service, of, "Servers",
                                                      values);
    };
    const auto held = [](const sim::Platform& platform, const char* port) {
        return platform.property(service, port, interface, "Servers");
    };
    {
        sim::Platform platform(threePorts().scenario());
        EXPECT_EQ(setOnAll(interface), 0);
        EXPECT_EQ(held(platform, "/net/a"), Json({"new"}));
        EXPECT_EQ(held(platform, "/net/c"), Json({"new"}));
        EXPECT_EQ(platform.calls().size(), 4u);
        EXPECT_EQ(platform.calls()[0].arguments,
                  Json({"/", 0, Json::array({interface})}));
        EXPECT_EQ(setOnAll("com.example.Nobody"), 0);
        EXPECT_EQ(platform.calls().size(), 5u);
    }
    {
        sim::Platform platform(
            threePorts()
                .fault({{"member", "Set"}, {"path", "/net/b"}},
                       {{"error", "com.example.Refused"}, {"message", ""}})
                .scenario());
        EXPECT_EQ(setOnAll(interface), -1);
        EXPECT_EQ(held(platform, "/net/a"), Json({"new"}));
        EXPECT_EQ(held(platform, "/net/c"), Json({"old"}));
        EXPECT_EQ(platform.calls().size(), 3u);
    }
    {
        sim::Platform platform(threePorts().withoutMapper().scenario());
        EXPECT_EQ(setOnAll(interface), 0);
        EXPECT_EQ(held(platform, "/net/a"), Json({"old"}));
    }
}

} // namespace
} // namespace morvath::tests
