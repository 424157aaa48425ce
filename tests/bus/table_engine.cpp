// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

#include <limits>

namespace morvath::tests::table_engine
{

constexpr auto service = "com.example.Inventory";
constexpr auto item = "com.example.Item";

/** An object with each of the properties. */
Machine items(const std::vector<Json>& properties)
{
    Machine machine;
    for (const auto& one : properties)
    {
        const auto number = std::to_string(10 + (&one - properties.data()));
        machine.owns("/items/item" + number, service, {{item, one}});
    }
    return machine;
}

/** The code or the error of the bus, and a line for each row. */
Lines rowsOf(const Machine& machine, const std::vector<const char*>& names)
{
    const sim::Platform platform(machine.scenario());
    char*** rows = nullptr;
    int32_t count = 0;
    Lines lines;
    try
    {
        const auto code =
            getDbusTableData("/items", item, names.data(),
                             static_cast<int32_t>(names.size()), &rows, &count);
        lines.push_back(std::to_string(code));
    }
    catch (const sdbusplus::exception::SdBusError& error)
    {
        lines.emplace_back(error.what());
    }
    for (int32_t row = 0; row < count; ++row)
    {
        lines.push_back(taken(rows[row], names.size()));
    }
    std::free(rows);
    return lines;
}

TEST(TableEngine, RendersEachType)
{
    const auto lowest = std::numeric_limits<double>::lowest();
    // With six decimals.
    auto longest = std::to_string(lowest);
    longest.resize(longest.size() - 4);
    struct
    {
        const char* type;
        Json value;
        std::string text;
    } const cases[]{
        {"s", "as it is", "as it is"},
        {"s", "", ""},
        {"x", INT64_MIN, "-9223372036854775808"},
        {"t", UINT64_MAX, "18446744073709551615"},
        {"i", INT32_MIN, "-2147483648"},
        {"u", UINT32_MAX, "4294967295"},
        {"q", 65535, "65535"},
        {"y", 255, "255"},
        {"b", true, "1"},
        {"b", false, "0"},
        {"d", 3.14159, "3.14"},
        {"d", -0.0, "-0.00"},
        {"d", 0.125, "0.12"},
        {"d", lowest, longest},
        {"d", "nan", "nan"},
        {"d", "-inf", "-inf"},
        {"n", 5, ""},
        {"as", {"a"}, ""},
        {"o", "/a", ""},
        {"v", property("s", "a"), ""},
        {"a{sv}", {{"a", property("i", 1)}}, ""},
    };
    std::vector<Json> objects;
    Lines expected{"0"};
    for (const auto& [type, value, text] : cases)
    {
        objects.push_back({{"A", property(type, value)}});
        expected.push_back(text + '|');
    }
    EXPECT_EQ(rowsOf(items(objects), {"A"}), expected);
}

TEST(TableEngine, FillsCellsInTheOrderOfTheNames)
{
    const auto machine = items({{{"B", text("b0")},
                                 {"Skipped", property("as", {"x"})},
                                 {"A", text("a0")}},
                                {{"A", text("a1")}},
                                Json::object()});
    EXPECT_EQ(rowsOf(machine, {"A", "B", "A"}),
              (Lines{"0", "a0|b0|a0|", "a1|null|a1|", "null|null|null|"}));
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
    EXPECT_EQ(rowsOf(machine, {"Name", "nAMED", "PrettyName", "Nam"}),
              (Lines{"0", "\x12V|\x12V|null|null|", "nic-1|nic-1|null|null|",
                     "||null|null|", "plain_2d|plain_2d|null|null|",
                     "|own|pretty|null|"}));
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
    EXPECT_EQ(rowsOf(machine, {"A"}), (Lines{"0", "registered first|"}));
}

TEST(TableEngine, AsksOnceForEachRowAndAddsToTheCounter)
{
    const sim::Platform platform(
        items({Json::object(), Json::object()}).scenario());
    char*** rows = nullptr;
    int32_t count = 3;
    EXPECT_EQ(getDbusTableData("/items", item, nullptr, -3, &rows, &count), 0);
    EXPECT_EQ(count, 5);
    std::free(rows[0]);
    std::free(rows[1]);
    std::free(std::exchange(rows, nullptr));

    const auto calls = platform.calls();
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0].member, "GetSubTree");
    EXPECT_EQ(calls[2].service, service);
    EXPECT_EQ(calls[2].path, "/items/item11");
    EXPECT_EQ(calls[2].interface, "org.freedesktop.DBus.Properties");
    EXPECT_EQ(calls[2].member, "GetAll");
    EXPECT_EQ(*calls[2].arguments, Json::array({""}));

    EXPECT_EQ(getDbusTableData("/items", "a.b", nullptr, 0, &rows, &count), 0);
    EXPECT_NE(rows, nullptr);
    EXPECT_EQ(count, 5);
    std::free(rows);
}

TEST(TableEngine, RaisesForANullName)
{
    char*** rows = nullptr;
    int32_t count = 3;
    const char* unnamed[]{nullptr};
    const sim::Platform platform(items({Json::object()}).scenario());
    EXPECT_EQ(outcomeOf([&] {
                  return getDbusTableData("/items", item, unnamed, 1, &rows,
                                          &count);
              }),
              nullText);
    EXPECT_EQ(rows, nullptr);
    EXPECT_EQ(count, 3);
}

TEST(TableEngine, KeepsTheRowsBeforeAnObjectThatFails)
{
    const std::pair<Json, std::string> cases[]{
        {{{"error", "com.example.Refused"}, {"message", "not now"}},
         "sd_bus_call: com.example.Refused: not now"},
        {{{"reply", property("a{ss}", {{"A", "a"}})}},
         "sd_bus_message_enter_container: System.Error.ENXIO: No such device "
         "or address"},
    };
    for (const auto& [fault, error] : cases)
    {
        const auto machine =
            items({{{"A", text("0")}},
                   {{"A", text("1")}},
                   Json::object(),
                   Json::object()})
                .fault({{"member", "GetAll"}, {"call", 3}}, fault);
        EXPECT_EQ(rowsOf(machine, {"A"}), (Lines{error, "0|", "1|"}));
    }
}

} // namespace morvath::tests::table_engine
