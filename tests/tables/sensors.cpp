#include "morvath.h"
#include "support/records.hpp"

namespace morvath::tests
{
namespace
{

using Temperatures = Records<getTempTableInfo, freeBmcSensorEntry>;
using Fans = Records<getFanTableInfo, freeBmcSensorEntry>;
using Voltages = Records<getVoltageTableInfo, freeBmcSensorEntry>;
using Currents = Records<getCurrentTableInfo, freeBmcSensorEntry>;
using Powers = Records<getPowerTableInfo, freeBmcSensorEntry>;
using Pwms = Records<getPwmTableInfo, freeBmcSensorEntry>;

int32_t getAirflows(BmcSensorEntry** outArray, int32_t* outCount)
{
    return getCommonSensorTableInfo(outArray, outCount, "/air", "com.Flow");
}
using Airflows = Records<getAirflows, freeBmcSensorEntry>;

std::string lineOf(const BmcSensorEntry& entry)
{
    const auto& [id, name, value, criticalAlarmHigh, criticalAlarmLow,
                 criticalHigh, criticalLow, warningAlarmHigh, warningAlarmLow,
                 warningHigh, warningLow, minimum, maximum, unit, one, two] =
        entry;
    return describe(id, name, value, criticalAlarmHigh, criticalAlarmLow,
                    criticalHigh, criticalLow, warningAlarmHigh,
                    warningAlarmLow, warningHigh, warningLow, minimum, maximum,
                    unit, one, two);
}

TEST(Sensors, OfEachClassAreThoseOfTheServer)
{
    struct
    {
        Lines lines;
        std::size_t count;
        std::string one;
    } const classes[]{
        {linesOf<Temperatures>(sim::Scenario::standard(), lineOf), 22,
         "0|DIMMG2_Temp|86.50|0|0|95.00|nan|1|0|85.00|nan|-128.00|127.00|"
         "DegreesC|0|0"},
        {linesOf<Fans>(sim::Scenario::standard(), lineOf), 8,
         "0|FAN4|420.00|0|1|nan|500.00|0|1|nan|800.00|0.00|25000.00|RPMS|0|0"},
        {linesOf<Voltages>(sim::Scenario::standard(), lineOf), 12,
         "0|P5V|5.02|0|0|5.50|4.50|0|0|5.35|4.65|0.00|20.00|Volts|0|0"},
        {linesOf<Currents>(sim::Scenario::standard(), lineOf), 6,
         "0|PSU0_Iin|1.62|0|0|-|-|0|0|4.20|nan|0.00|10.00|Amperes|0|0"},
        {linesOf<Powers>(sim::Scenario::standard(), lineOf), 9,
         "0|CPU0_Power|148.25|0|0|-|-|0|0|-|-|0.00|511.00|Watts|0|0"},
        {linesOf<Pwms>(sim::Scenario::standard(), lineOf), 6,
         "0|Pwm_4|100.00|0|0|-|-|0|0|-|-|0.00|100.00|Percent|0|0"},
    };
    for (const auto& [lines, count, one] : classes)
    {
        EXPECT_EQ(lines[0], "0");
        EXPECT_EQ(lines.size(), 1 + count) << one;
        EXPECT_EQ(std::ranges::count(lines, one), 1) << one;
    }
}

TEST(Sensors, FollowTheirProperties)
{
    expectVariants<Airflows>(
        "/air/_31st_20flow", "com.Flow",
        {{"CriticalAlarmHigh", property("b", true)},
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
         {"Value", property("d", "nan")}},
        lineOf,
        {
            {"all",
             {},
             {"0", "0|1st flow|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|"
                   "CFM|0|0"}},
            {"the first alarm decides about all critical limits",
             {{"CriticalAlarmHigh", nullptr}},
             {"0", "0|1st flow|nan|0|0|-|-|0|1|80.00|20.00|-inf|inf|CFM|0|0"}},
            {"the first alarm decides about all warning limits",
             {{"WarningAlarmHigh", nullptr}},
             {"0", "0|1st flow|nan|1|0|90.00|10.00|0|0|-|-|-inf|inf|CFM|0|0"}},
            {"alarms without limits",
             {{"CriticalLow", nullptr}, {"WarningHigh", nullptr}},
             {"0", "0|1st flow|nan|1|0|90.00|null|0|1|null|20.00|-inf|inf|CFM|"
                   "0|0"}},
            {"no reading and no range",
             {{"Value", nullptr}, {"MaxValue", nullptr}, {"MinValue", nullptr}},
             {"0", "0|1st flow|null|1|0|90.00|10.00|0|1|80.00|20.00|null|null|"
                   "CFM|0|0"}},
            {"unit empty",
             {{"Unit", text("")}},
             {"0", "0|1st flow|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|"
                   "unknown|0|0"}},
            {"unit without a dot",
             {{"Unit", text("CFM")}},
             {"0", "0|1st flow|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf|"
                   "unknown|0|0"}},
            {"unit that ends in a dot",
             {{"Unit", text("a.")}},
             {"0", "0|1st flow|nan|1|0|90.00|10.00|0|1|80.00|20.00|-inf|inf||"
                   "0|0"}},
            {"no unit",
             {{"Unit", nullptr}},
             {nullText,
              "0|1st flow|null|0|0|null|null|0|0|null|null|-inf|inf|null|0|"
              "0"}},
            {"one alarm of two",
             {{"WarningAlarmLow", nullptr}},
             {nullText, "0|1st flow|nan|1|0|90.00|10.00|0|0|null|null|-inf|"
                        "inf|CFM|0|0"}},
            {"alarm in words",
             {{"CriticalAlarmLow", text("no")}},
             {"invalid argument: stoi",
              "0|1st flow|nan|1|0|null|null|0|0|null|null|-inf|inf|CFM|0|0"}},
        });
}

} // namespace
} // namespace morvath::tests
