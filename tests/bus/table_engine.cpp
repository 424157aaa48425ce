#include "morvath.h"
#include "support/machine.hpp"
#include "support/rows.hpp"

#include <gtest/gtest.h>
#include <sdbusplus/exception.hpp>

#include <stdexcept>

namespace morvath::tests
{
namespace
{

constexpr auto service = "com.example.Inventory";
constexpr auto item = "com.example.Item";
constexpr auto none = std::nullopt;

Machine items(const std::vector<Json>& properties)
{
    Machine machine;
    for (std::size_t index = 0; index < properties.size(); ++index)
    {
        machine.owns("/items/item" + std::to_string(index), service,
                     {{item, properties[index]}});
    }
    return machine;
}

TEST(TableEngine, RendersEachType)
{
    struct
    {
        const char* type;
        Json value;
        const char* text;
    } const cases[]{
        {"s", "as it is", "as it is"},
        {"s", "", ""},
        {"x", INT64_MIN, "-9223372036854775808"},
        {"t", UINT64_MAX, "18446744073709551615"},
        {"i", -2147483648, "-2147483648"},
        {"u", 4294967295, "4294967295"},
        {"q", 5, "5"},
        {"y", 65, "65"},
        {"y", 0, "0"},
        {"b", true, "1"},
        {"b", false, "0"},
        {"d", 3.14159, "3.14"},
        {"d", 100, "100.00"},
        {"d", -0.5, "-0.50"},
        {"d", 0.0, "0.00"},
        {"d", -0.0, "-0.00"},
        {"d", 0.125, "0.12"},
        {"d", 1e20, "100000000000000000000.00"},
        {"d", "nan", "nan"},
        {"d", "inf", "inf"},
        {"d", "-inf", "-inf"},
        {"n", 5, ""},
        {"a(sss)", Json::array({{"a", "b", "c"}}), ""},
        {"as", {"a"}, ""},
        {"ad", {1.5}, ""},
        {"au", {1}, ""},
        {"aq", {1}, ""},
        {"o", "/a", ""},
        {"v", property("s", "a"), ""},
        {"a{sv}", {{"a", property("i", 1)}}, ""},
    };
    Json properties;
    std::vector<std::string> names;
    std::vector<Cell> expected;
    for (const auto& one : cases)
    {
        names.push_back("P" + std::to_string(names.size()));
        properties[names.back()] = property(one.type, one.value);
        expected.push_back(one.text);
    }
    sim::Platform platform(items({properties}).scenario());

    std::vector<const char*> columns;
    for (const auto& name : names)
    {
        columns.push_back(name.c_str());
    }
    Rows rows(columns);
    EXPECT_EQ(rows.read("/items", item), 0);
    EXPECT_EQ(rows.cells(), Cells{expected});
}

TEST(TableEngine, RendersTheLongestDouble)
{
    sim::Platform platform(
        items({{{"Low", property("d", -1.7976931348623157e308)}}}).scenario());
    Rows rows({"Low"});
    EXPECT_EQ(rows.read("/items", item), 0);
    const std::string text = *rows.cells().at(0).at(0);
    EXPECT_EQ(text.size(), 313u);
    EXPECT_EQ(text.substr(0, 18), "-17976931348623157");
    EXPECT_EQ(text.substr(310), ".00");
}

TEST(TableEngine, FillsCellsInTheOrderOfTheNames)
{
    sim::Platform platform(items({
                                     {{"B", text("b0")},
                                      {"Skipped", property("as", {"x"})},
                                      {"A", text("a0")}},
                                     {{"A", text("a1")}},
                                     Json::object(),
                                 })
                               .scenario());
    Rows rows({"A", "B", "A"});
    EXPECT_EQ(rows.read("/items", item), 0);
    EXPECT_EQ(
        rows.cells(),
        (Cells{{"a0", "b0", "a0"}, {"a1", none, "a1"}, {none, none, none}}));
}

TEST(TableEngine, FallsBackToThePathForNames)
{
    const Json itemOnly{{item, Json::object()}};
    sim::Platform platform(Machine()
                               .owns("/items/_12V", service, itemOnly)
                               .owns("/items/_6eic_2d1", service, itemOnly)
                               .owns("/items/_Temp", service, itemOnly)
                               .owns("/items/plain_2d", service, itemOnly)
                               .owns("/items/with", service,
                                     {{item,
                                       {{"Name", text("")},
                                        {"nAMED", text("own")},
                                        {"PrettyName", text("pretty")}}}})
                               .scenario());
    Rows rows({"Name", "nAMED", "PrettyName", "Nam"});
    EXPECT_EQ(rows.read("/items", item), 0);
    EXPECT_EQ(rows.cells(), (Cells{{"\x12V", "\x12V", none, none},
                                   {"nic-1", "nic-1", none, none},
                                   {"", "", none, none},
                                   {"plain_2d", "plain_2d", none, none},
                                   {"", "own", "pretty", none}}));
}

TEST(TableEngine, LetsTheLastOfTwoInterfacesCount)
{
    // In a reply the interface that was registered last comes first.
    sim::Platform platform(
        Machine()
            .owns("/items/a", service,
                  {{item, {{"Version", text("registered first")}}},
                   {"com.example.More", {{"Version", text("last")}}}})
            .scenario());
    Rows rows({"Version"});
    EXPECT_EQ(rows.read("/items", item), 0);
    EXPECT_EQ(rows.cells(), (Cells{{"registered first"}}));
}

TEST(TableEngine, AsksTheFirstOwnerOnly)
{
    sim::Platform platform(
        Machine()
            .owns("/items/a", "com.example.Z", {{item, {{"A", text("z")}}}})
            .owns("/items/a", "com.example.B", {{item, {{"A", text("b")}}}})
            .scenario());
    Rows rows({"A"});
    EXPECT_EQ(rows.read("/", item), 0);
    EXPECT_EQ(rows.cells(), (Cells{{"b"}}));
}

TEST(TableEngine, MakesOneCallForTheListAndOneForEachObject)
{
    sim::Platform platform(items({{{"A", text("")}, {"B", text("")}},
                                  {{"A", text("")}, {"B", text("")}}})
                               .scenario());
    Rows rows({"A", "B"});
    EXPECT_EQ(rows.read("/items", item), 0);
    const auto calls = platform.calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].member, "GetSubTree");
    for (auto index : {1u, 2u})
    {
        EXPECT_EQ(calls[index].service, service);
        EXPECT_EQ(calls[index].path, "/items/item" + std::to_string(index - 1));
        EXPECT_EQ(calls[index].interface, "org.freedesktop.DBus.Properties");
        EXPECT_EQ(calls[index].member, "GetAll");
        EXPECT_EQ(calls[index].arguments, Json::array({""}));
    }
}

TEST(TableEngine, AddsToTheCounter)
{
    sim::Platform platform(items({Json::object(), Json::object()}).scenario());
    for (const int32_t columns : {0, -3})
    {
        char*** rows = nullptr;
        int32_t count = 3;
        EXPECT_EQ(
            getDbusTableData("/items", item, nullptr, columns, &rows, &count),
            0);
        EXPECT_EQ(count, 5);
        std::free(rows[0]);
        std::free(rows[1]);
        std::free(rows);
    }
    Rows empty({"A"});
    EXPECT_EQ(empty.read("/items", "com.example.Nobody"), 0);
    EXPECT_NE(empty.rows, nullptr);
    EXPECT_EQ(empty.count, 0);
}

TEST(TableEngine, WritesNothingWhenThereIsNoList)
{
    char*** rows = nullptr;
    int32_t count = 3;
    const char* nothing[]{nullptr};
    // Only with a list are the names looked at.
    EXPECT_EQ(getDbusTableData("/items", item, nothing, 1, &rows, &count), -1);
    EXPECT_EQ(rows, nullptr);
    EXPECT_EQ(count, 3);

    sim::Platform platform(items({Json::object()}).scenario());
    EXPECT_THROW(getDbusTableData("/items", item, nothing, 1, &rows, &count),
                 std::logic_error);
    EXPECT_EQ(rows, nullptr);
    EXPECT_EQ(count, 3);
}

TEST(TableEngine, KeepsTheRowsBeforeAnObjectThatFails)
{
    struct
    {
        const char* what;
        Json when;
        Json then;
        std::string error;
    } const cases[]{
        {"refused",
         {{"member", "GetAll"}, {"call", 3}},
         {{"error", "com.example.Refused"}, {"message", "not now"}},
         "sd_bus_call: com.example.Refused: not now"},
        {"gone",
         {{"path", "/items/item2"}},
         {{"vanished", true}},
         "sd_bus_call: org.freedesktop.DBus.Error.UnknownObject: "},
        {"died",
         {{"member", "GetAll"}, {"call", 3}},
         {{"die", true}},
         "sd_bus_call: org.freedesktop.DBus.Error.NoReply: "},
        {"other type",
         {{"member", "GetAll"}, {"call", 3}},
         {{"reply", property("a{ss}", {{"A", "a"}})}},
         "sd_bus_message_enter_container: "},
    };
    for (const auto& one : cases)
    {
        sim::Platform platform(items({{{"A", text("0")}},
                                      {{"A", text("1")}},
                                      {{"A", text("2")}},
                                      {{"A", text("3")}}})
                                   .fault(one.when, one.then)
                                   .scenario());
        Rows rows({"A"});
        try
        {
            rows.read("/items", item);
            ADD_FAILURE() << one.what;
        }
        catch (const sdbusplus::exception::SdBusError& error)
        {
            EXPECT_TRUE(std::string(error.what()).starts_with(one.error))
                << error.what();
        }
        EXPECT_EQ(rows.cells(), (Cells{{"0"}, {"1"}})) << one.what;
    }
}

TEST(TableEngine, CannotAskAnObjectWithoutOwners)
{
    sim::Platform platform(
        Machine()
            .fault({{"member", "GetSubTree"}},
                   {{"reply",
                     property("a{sa{sas}}", {{"/orphan", Json::object()}})}})
            .scenario());
    Rows rows({"A"});
    EXPECT_THROW(rows.read("/", item), sdbusplus::exception::SdBusError);
    EXPECT_EQ(rows.count, 0);
}

} // namespace
} // namespace morvath::tests
