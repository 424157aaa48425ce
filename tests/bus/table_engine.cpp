// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"
#include "support/machine.hpp"
#include "support/result.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace morvath::tests::table_engine
{

constexpr auto service = "com.example.Inventory";
constexpr auto item = "com.example.Item";
constexpr auto none = std::nullopt;

using Cell = std::optional<std::string>;
using Cells = std::vector<std::vector<Cell>>;

/** What the table engine stored, released as a caller would. */
struct Rows
{
    std::vector<const char*> names;
    char*** rows = nullptr;
    int32_t count = 0;

    ~Rows()
    {
        for (int32_t row = 0; row < count; ++row)
        {
            std::for_each_n(rows[row], names.size(), std::free);
            std::free(rows[row]);
        }
        std::free(rows);
    }

    int32_t read(const char* root = "/items", const char* interface = item)
    {
        return getDbusTableData(root, interface, names.data(),
                                static_cast<int32_t>(names.size()), &rows,
                                &count);
    }

    Cells cells() const
    {
        Cells all(count);
        for (int32_t row = 0; row < count; ++row)
        {
            for (std::size_t column = 0; column < names.size(); ++column)
            {
                const char* cell = rows[row][column];
                all[row].push_back(cell ? Cell(cell) : none);
            }
        }
        return all;
    }
};

Machine items(const std::vector<Json>& properties)
{
    Machine machine;
    for (const auto& one : properties)
    {
        machine.owns("/items/item" + std::to_string(&one - properties.data()),
                     service, {{item, one}});
    }
    return machine;
}

Cells cellsOf(const Machine& machine, const std::vector<const char*>& names)
{
    sim::Platform platform(machine.scenario());
    Rows rows{names};
    EXPECT_EQ(rows.read(), 0);
    return rows.cells();
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
    for (const auto& one : cases)
    {
        EXPECT_EQ(
            cellsOf(items({{{"A", property(one.type, one.value)}}}), {"A"}),
            (Cells{{one.text}}))
            << one.type << one.value;
    }
    // The longest of all.
    const Json low{{"A", property("d", -1.7976931348623157e308)}};
    const auto text = cellsOf(items({low}), {"A"}).at(0).at(0).value();
    EXPECT_EQ(text.size(), 313u);
    EXPECT_EQ(text.substr(0, 18), "-17976931348623157");
    EXPECT_EQ(text.substr(310), ".00");
}

TEST(TableEngine, FillsCellsInTheOrderOfTheNames)
{
    sim::Platform platform(items({{{"B", text("b0")},
                                   {"Skipped", property("as", {"x"})},
                                   {"A", text("a0")}},
                                  {{"A", text("a1")}},
                                  Json::object()})
                               .scenario());
    Rows rows{{"A", "B", "A"}};
    EXPECT_EQ(rows.read(), 0);
    EXPECT_EQ(
        rows.cells(),
        (Cells{{"a0", "b0", "a0"}, {"a1", none, "a1"}, {none, none, none}}));

    const auto calls = platform.calls();
    ASSERT_EQ(calls.size(), 4u);
    EXPECT_EQ(calls[0].member, "GetSubTree");
    for (auto index : {1u, 2u, 3u})
    {
        EXPECT_EQ(calls[index].service, service);
        EXPECT_EQ(calls[index].path, "/items/item" + std::to_string(index - 1));
        EXPECT_EQ(calls[index].interface, "org.freedesktop.DBus.Properties");
        EXPECT_EQ(calls[index].member, "GetAll");
        EXPECT_EQ(*calls[index].arguments, Json::array({""}));
    }
}

TEST(TableEngine, FallsBackToThePathForNames)
{
    const Json itemOnly{{item, Json::object()}};
    const Json named{{"Name", text("")},
                     {"nAMED", text("own")},
                     {"PrettyName", text("pretty")}};
    const auto machine = Machine()
                             .owns("/items/_12V", service, itemOnly)
                             .owns("/items/_6eic_2d1", service, itemOnly)
                             .owns("/items/_Temp", service, itemOnly)
                             .owns("/items/plain_2d", service, itemOnly)
                             .owns("/items/with", service, {{item, named}});
    EXPECT_EQ(cellsOf(machine, {"Name", "nAMED", "PrettyName", "Nam"}),
              (Cells{{"\x12V", "\x12V", none, none},
                     {"nic-1", "nic-1", none, none},
                     {"", "", none, none},
                     {"plain_2d", "plain_2d", none, none},
                     {"", "own", "pretty", none}}));
}

TEST(TableEngine, TakesTheFirstOwnerAndTheLastInterface)
{
    // In a reply the interface that was registered last comes first.
    const auto machine =
        Machine()
            .owns("/items/a", "com.example.Z", {{item, {{"A", text("z")}}}})
            .owns("/items/a", "com.example.B",
                  {{item, {{"A", text("registered first")}}},
                   {"com.example.More", {{"A", text("last")}}}});
    EXPECT_EQ(cellsOf(machine, {"A"}), (Cells{{"registered first"}}));
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
    Rows empty{{"A"}};
    EXPECT_EQ(empty.read("/items", "com.example.Nobody"), 0);
    EXPECT_NE(empty.rows, nullptr);
    EXPECT_EQ(empty.count, 0);
}

TEST(TableEngine, WritesNothingWhenThereIsNoList)
{
    char*** rows = nullptr;
    int32_t count = 3;
    const char* unnamed[]{nullptr};
    // Only with a list are the names looked at.
    EXPECT_EQ(getDbusTableData("/items", item, unnamed, 1, &rows, &count), -1);
    EXPECT_EQ(rows, nullptr);
    EXPECT_EQ(count, 3);

    sim::Platform platform(items({Json::object()}).scenario());
    EXPECT_THROW(getDbusTableData("/items", item, unnamed, 1, &rows, &count),
                 std::logic_error);
    EXPECT_EQ(rows, nullptr);
    EXPECT_EQ(count, 3);
}

TEST(TableEngine, KeepsTheRowsBeforeAnObjectThatFails)
{
    const Json third{{"member", "GetAll"}, {"call", 3}};
    const std::pair<Json, std::string> cases[]{
        {{{"error", "com.example.Refused"}, {"message", "not now"}},
         "sd_bus_call: com.example.Refused: not now"},
        {{{"reply", property("a{ss}", {{"A", "a"}})}},
         "sd_bus_message_enter_container: "},
    };
    for (const auto& [fault, expected] : cases)
    {
        sim::Platform platform(items({{{"A", text("0")}},
                                      {{"A", text("1")}},
                                      {{"A", text("2")}},
                                      {{"A", text("3")}}})
                                   .fault(third, fault)
                                   .scenario());
        Rows rows{{"A"}};
        const auto error = busErrorOf([&] { rows.read(); });
        EXPECT_TRUE(error.starts_with(expected)) << error;
        EXPECT_EQ(rows.cells(), (Cells{{"0"}, {"1"}}));
    }
}

} // namespace morvath::tests::table_engine
