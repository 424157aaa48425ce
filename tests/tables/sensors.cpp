// SPDX-License-Identifier: Apache-2.0
#include "support/records.hpp"

namespace morvath::tests::sensors
{

int32_t getAirflows(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount, "/air", "com.Flow");
}

TEST(Sensors, OfEachClassAreInItsFolder)
{
    const sim::Platform platform(sim::Scenario::standard());
    const std::pair<decltype(&getTempTableInfo), std::string> classes[]{
        {getTempTableInfo, "DegreesC"}, {getFanTableInfo, "RPMS"},
        {getVoltageTableInfo, "Volts"}, {getCurrentTableInfo, "Amperes"},
        {getPowerTableInfo, "Watts"},   {getPwmTableInfo, "Percent"}};
    for (const auto& [get, unit] : classes)
    {
        EXPECT_EQ(read(get)[0].unit, unit);
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
    expectVariants<getAirflows>(
        "/air/_31st", "com.Flow", properties,
        {
            {{},
             {"0",
              "0|1st|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|CFM|0|0"}},
            {{{"CriticalAlarmHigh", nullptr}},
             {"0", "0|1st|nan|0|0|-|-|0|1|80.00|20.00|-inf|inf|CFM|0|0"}},
            {{{"WarningAlarmHigh", nullptr}, {"Value", nullptr}},
             {"0", "0|1st|null|1|0|90.00|10.00|0|0|-|-|-inf|inf|CFM|0|0"}},
            {{{"CriticalLow", nullptr}},
             {"0",
              "0|1st|nan|1|0|90.00|null|0|1|80.00|20.00|-inf|inf|CFM|0|0"}},
            {{{"WarningAlarmLow", nullptr}},
             {nullText,
              "0|1st|null|1|0|90.00|10.00|0|0|null|null|null|null|null|0|0"}},
            {{{"CriticalAlarmLow", text("no")}},
             {"invalid argument: stoi",
              "0|1st|null|1|0|null|null|0|0|null|null|null|null|null|0|0"}},
            {{{"Unit", text("CFM")}},
             {"0", "0|1st|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|unknown|"
                   "0|0"}},
            {{{"Unit", nullptr}},
             {nullText,
              "0|1st|null|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|null|0|0"}},
        });
}

} // namespace morvath::tests::sensors
