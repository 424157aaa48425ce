// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

namespace morvath::tests::sensors
{

int32_t getAirflows(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount, "/air", "com.Flow");
}
template <auto Get>
Lines linesOfServer()
{
    return linesOf<Get>(Machine::server());
}

TEST(Sensors, OfEachClassAreThoseOfTheServer)
{
    struct
    {
        Lines lines;
        std::size_t count;
        std::string one;
    } const classes[]{
        {linesOfServer<getTempTableInfo>(), 22,
         "0|DIMMG2_Temp|86.50|0|0|95.00|nan|1|0|85.00|nan|-128.00|127.00|"
         "DegreesC|0|0"},
        {linesOfServer<getFanTableInfo>(), 8,
         "0|FAN4|420.00|0|1|nan|500.00|0|1|nan|800.00|0.00|25000.00|RPMS|0|0"},
        {linesOfServer<getVoltageTableInfo>(), 12,
         "0|P5V|5.02|0|0|5.50|4.50|0|0|5.35|4.65|0.00|20.00|Volts|0|0"},
        {linesOfServer<getCurrentTableInfo>(), 6,
         "0|PSU0_Iin|1.62|0|0|-|-|0|0|4.20|nan|0.00|10.00|Amperes|0|0"},
        {linesOfServer<getPowerTableInfo>(), 9,
         "0|CPU0_Power|148.25|0|0|-|-|0|0|-|-|0.00|511.00|Watts|0|0"},
        {linesOfServer<getPwmTableInfo>(), 6,
         "0|Pwm_4|100.00|0|0|-|-|0|0|-|-|0.00|100.00|Percent|0|0"},
    };
    for (const auto& [lines, count, one] : classes)
    {
        EXPECT_EQ(lines[0], "0");
        EXPECT_EQ(lines.size(), 1 + count) << one;
        EXPECT_EQ(std::ranges::count(lines, one), 1) << one;
    }
}

TEST(Sensors, HaveOrLackLimitsByTheFirstAlarm)
{
    const Json properties{{"CriticalAlarmHigh", property("b", true)},
                          {"CriticalAlarmLow", property("b", false)},
                          {"CriticalHigh", property("d", 90)},
                          {"CriticalLow", property("d", 10)},
                          {"WarningAlarmHigh", property("b", false)},
                          {"WarningAlarmLow", property("b", true)},
                          {"WarningHigh", property("d", 80)},
                          {"WarningLow", property("d", 20)},
                          {"MaxValue", property("d", "inf")},
                          {"MinValue", property("d", "-inf")},
                          {"Unit", text("a.Unit.CFM")},
                          {"Value", property("d", "nan")}};
    const std::pair<Json, Lines> cases[]{
        {{},
         {"0", "0|1st|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|CFM|0|0"}},
        {{{"CriticalAlarmHigh", nullptr}},
         {"0", "0|1st|nan|0|0|-|-|0|1|80.00|20.00|-inf|inf|CFM|0|0"}},
        {{{"WarningAlarmHigh", nullptr}, {"Value", nullptr}},
         {"0", "0|1st|null|1|0|90.00|10.00|0|0|-|-|-inf|inf|CFM|0|0"}},
        {{{"CriticalLow", nullptr}},
         {"0", "0|1st|nan|1|0|90.00|null|0|1|80.00|20.00|-inf|inf|CFM|0|0"}},
        {{{"WarningAlarmLow", nullptr}},
         {nullText,
          "0|1st|null|1|0|90.00|10.00|0|0|null|null|null|null|null|0|0"}},
        {{{"CriticalAlarmLow", text("no")}},
         {"invalid argument: stoi",
          "0|1st|null|1|0|null|null|0|0|null|null|null|null|null|0|0"}},
        {{{"Unit", text("CFM")}},
         {"0",
          "0|1st|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|unknown|0|0"}},
        {{{"Unit", nullptr}},
         {nullText,
          "0|1st|null|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|null|0|0"}},
    };
    for (const auto& [changes, lines] : cases)
    {
        const auto machine =
            Machine().owns("/air/_31st", "com.example.Inventory",
                           {{"com.Flow", changed(properties, changes)}});
        EXPECT_EQ(linesOf<getAirflows>(machine), lines) << changes;
    }
}

} // namespace morvath::tests::sensors
