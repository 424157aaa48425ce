// SPDX-License-Identifier: Apache-2.0
#include "sim/process.hpp"
#include "support/machine.hpp"
#include "support/program.hpp"

#include <gtest/gtest.h>

namespace morvath::tests::raid
{

TEST(Show, ReadsRaidWithTheRunningScenario)
{
    const auto all =
        run("MORVATH_SIM",
            "run -- $MORVATH show disks raid-controllers raid-drives --json");
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.errors, "");
    const auto tables = Json::parse(all.output).at("tables");
    EXPECT_EQ(tables.at("disks").size(), 12u);
    EXPECT_EQ(tables.at("disks").at(9), Json::parse(R"({
        "name": "DRISKO-DSSATA960-SF9600071A", "manufacturer": "DRISKO",
        "model": "DSSATA960", "serialNumber": "SF9600071A",
        "mediaType": "SSD", "protocol": "SATA", "revision": "UnKnown",
        "usage": "4", "speed": "6GB/s", "temperatureCelsius": 29,
        "capacityGiB": 894, "present": true})"));
    EXPECT_EQ(tables.at("raid-controllers"), Json::parse(R"([{
        "name": "Drisko DR-9408 RAID", "idText1": "DR9408-66-0A17C2",
        "idText2": "7.21.03.00", "idText3": "5a3c9b0000940801",
        "confText1": "Drisko Storage", "confText2": "DR-9408",
        "confText3": "8 GB", "confText4": "12 Gb/s", "vendorId": "0xfa17",
        "deviceId": "0x0940", "subVendorId": "0xfa17",
        "subDeviceId": "0x0015", "driveInterfaces": "SAS, SATA",
        "hostInterface": "PCIE", "byteProperty": 63, "wordProperty": 8,
        "supportedRaidLevels":
            "RAID0/RAID1/RAID5/RAID6/RAID10/RAID50/RAID60"}])"));
    EXPECT_EQ(tables.at("raid-drives").size(), 8u);
    EXPECT_EQ(tables.at("raid-drives").at(4), Json::parse(R"({
        "driveText": "Slot 4", "raidLevel": "RAID5", "state": "Online",
        "controllerName": "Drisko DR-9408 RAID"})"));
}

TEST(Show, TellsThatRaidCouldNotBeRead)
{
    struct
    {
        const char* what;
        const char* section;
        const char* error;
    } const cases[]{
        {"a controller cannot be read",
         R"({"controllers": [{"raid_id": 1}], "faults": [
             {"operation": "getRaidInfoById", "result": -5}]})",
         ": the RAID management library failed\n"},
        {"a mistake in what is to be served", R"({"controllers": 1})",
         ": /controllers: must be an array\n"},
    };
    for (const auto& one : cases)
    {
        const sim::MemoryFile section(one.section);
        const auto outcome =
            run("env MORVATH_SIM_RAID=" + section.path() + " MORVATH",
                "show raid-controllers");
        EXPECT_EQ(outcome.status, 1) << one.what;
        EXPECT_TRUE(outcome.errors.starts_with("morvath: raid-controllers: "));
        EXPECT_TRUE(outcome.errors.ends_with(one.error)) << outcome.errors;
    }
}

} // namespace morvath::tests::raid
