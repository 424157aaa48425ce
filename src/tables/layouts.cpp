// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"

#include <cstddef>
#include <cstdint>

// The records are a binary interface on 32-bit targets, where every field is
// one word; other targets have the same fields in the same order.
#define WORD(record, field, word) \
    static_assert(sizeof(void*) != 4 || offsetof(record, field) == 4 * (word))
#define WORDS(record, count) \
    static_assert(sizeof(void*) != 4 || sizeof(record) == 4 * (count))

WORD(PsuInfoEntry, id, 0);
WORD(PsuInfoEntry, name, 1);
WORD(PsuInfoEntry, manufacturer, 2);
WORD(PsuInfoEntry, partNumber, 3);
WORD(PsuInfoEntry, serialNumber, 4);
WORD(PsuInfoEntry, rating, 5);
WORD(PsuInfoEntry, firmwareVersion, 6);
WORD(PsuInfoEntry, reserved1, 7);
WORD(PsuInfoEntry, reserved2, 8);
WORDS(PsuInfoEntry, 9);

WORD(PcieInfoEntry, id, 0);
WORD(PcieInfoEntry, name, 1);
WORD(PcieInfoEntry, manufacturer, 2);
WORD(PcieInfoEntry, locationCode, 3);
WORD(PcieInfoEntry, present, 4);
WORD(PcieInfoEntry, reserved1, 5);
WORD(PcieInfoEntry, reserved2, 6);
WORDS(PcieInfoEntry, 7);

WORD(NetAdapterInfoEntry, id, 0);
WORD(NetAdapterInfoEntry, name, 1);
WORD(NetAdapterInfoEntry, manufacturer, 2);
WORD(NetAdapterInfoEntry, model, 3);
WORD(NetAdapterInfoEntry, subModel, 4);
WORD(NetAdapterInfoEntry, networkTech, 5);
WORD(NetAdapterInfoEntry, portNum, 6);
WORD(NetAdapterInfoEntry, reserved1, 7);
WORD(NetAdapterInfoEntry, reserved2, 8);
WORDS(NetAdapterInfoEntry, 9);

WORD(GpuInfoEntry, id, 0);
WORD(GpuInfoEntry, cardName, 1);
WORD(GpuInfoEntry, manufacturer, 2);
WORD(GpuInfoEntry, partNumber, 3);
WORD(GpuInfoEntry, serialNumber, 4);
WORD(GpuInfoEntry, totalMemory, 5);
WORD(GpuInfoEntry, temperature, 6);
WORD(GpuInfoEntry, fanLevel, 7);
WORD(GpuInfoEntry, currentPower, 8);
WORD(GpuInfoEntry, reserved1, 9);
WORD(GpuInfoEntry, reserved2, 10);
WORDS(GpuInfoEntry, 11);

WORD(MemInfoEntry, id, 0);
WORD(MemInfoEntry, name, 1);
WORD(MemInfoEntry, manufacturer, 2);
WORD(MemInfoEntry, partNumber, 3);
WORD(MemInfoEntry, serialNumber, 4);
WORD(MemInfoEntry, memoryType, 5);
WORD(MemInfoEntry, formFactor, 6);
WORD(MemInfoEntry, bankLocator, 7);
WORD(MemInfoEntry, deviceLocator, 8);
WORD(MemInfoEntry, ecc, 9);
WORD(MemInfoEntry, maxSpeedMhz, 10);
WORD(MemInfoEntry, sizeKB, 11);
WORD(MemInfoEntry, dataWidth, 12);
WORD(MemInfoEntry, present, 13);
WORD(MemInfoEntry, reserved1, 14);
WORD(MemInfoEntry, reserved2, 15);
WORDS(MemInfoEntry, 16);

WORD(CpuInfoEntry, id, 0);
WORD(CpuInfoEntry, name, 1);
WORD(CpuInfoEntry, manufacturer, 2);
WORD(CpuInfoEntry, version, 3);
WORD(CpuInfoEntry, partNumber, 4);
WORD(CpuInfoEntry, serialNumber, 5);
WORD(CpuInfoEntry, architecture, 6);
WORD(CpuInfoEntry, curSpeedMhz, 7);
WORD(CpuInfoEntry, maxSpeedMhz, 8);
WORD(CpuInfoEntry, coreCount, 9);
WORD(CpuInfoEntry, threadCount, 10);
WORD(CpuInfoEntry, l1CacheKiB, 11);
WORD(CpuInfoEntry, l1CacheKiBAlt, 12);
WORD(CpuInfoEntry, l2CacheKiB, 13);
WORD(CpuInfoEntry, l3CacheKiB, 14);
WORD(CpuInfoEntry, present, 15);
WORD(CpuInfoEntry, reserved1, 16);
WORD(CpuInfoEntry, reserved2, 17);
WORDS(CpuInfoEntry, 18);

WORD(BmcSensorEntry, id, 0);
WORD(BmcSensorEntry, name, 1);
WORD(BmcSensorEntry, value, 2);
WORD(BmcSensorEntry, criticalAlarmHigh, 3);
WORD(BmcSensorEntry, criticalAlarmLow, 4);
WORD(BmcSensorEntry, criticalHigh, 5);
WORD(BmcSensorEntry, criticalLow, 6);
WORD(BmcSensorEntry, warningAlarmHigh, 7);
WORD(BmcSensorEntry, warningAlarmLow, 8);
WORD(BmcSensorEntry, warningHigh, 9);
WORD(BmcSensorEntry, warningLow, 10);
WORD(BmcSensorEntry, minValue, 11);
WORD(BmcSensorEntry, maxValue, 12);
WORD(BmcSensorEntry, unit, 13);
WORD(BmcSensorEntry, reserved1, 14);
WORD(BmcSensorEntry, reserved2, 15);
WORDS(BmcSensorEntry, 16);

WORD(BmcNetworkInfoEntry, id, 0);
WORD(BmcNetworkInfoEntry, ifName, 1);
WORD(BmcNetworkInfoEntry, macAddress, 2);
WORD(BmcNetworkInfoEntry, ipAddress, 3);
WORD(BmcNetworkInfoEntry, defaultGateway, 4);
WORD(BmcNetworkInfoEntry, netmask, 5);
WORD(BmcNetworkInfoEntry, addressOrigin, 6);
WORD(BmcNetworkInfoEntry, nicEnabled, 7);
WORD(BmcNetworkInfoEntry, reserved0, 8);
WORD(BmcNetworkInfoEntry, reserved1, 9);
WORD(BmcNetworkInfoEntry, reserved2, 10);
WORDS(BmcNetworkInfoEntry, 11);

WORD(PortInfoEntry, id, 0);
WORD(PortInfoEntry, adapterName, 1);
WORD(PortInfoEntry, name, 2);
WORD(PortInfoEntry, macAddress, 3);
WORD(PortInfoEntry, rootBdf, 4);
WORD(PortInfoEntry, portType, 5);
WORD(PortInfoEntry, maxSpeedGbps, 6);
WORD(PortInfoEntry, lldpEnabled, 7);
WORD(PortInfoEntry, phyLink, 8);
WORD(PortInfoEntry, dropRatio, 9);
WORD(PortInfoEntry, reserved1, 10);
WORD(PortInfoEntry, reserved2, 11);
WORDS(PortInfoEntry, 12);

WORD(HddInfoEntry, id, 0);
WORD(HddInfoEntry, name, 1);
WORD(HddInfoEntry, manufacturer, 2);
WORD(HddInfoEntry, model, 3);
WORD(HddInfoEntry, serialNumber, 4);
WORD(HddInfoEntry, mediaType, 5);
WORD(HddInfoEntry, protocol, 6);
WORD(HddInfoEntry, revision, 7);
WORD(HddInfoEntry, diskUsage, 8);
WORD(HddInfoEntry, capableSpeed, 9);
WORD(HddInfoEntry, diskTemp, 10);
WORD(HddInfoEntry, capacityGiB, 11);
WORD(HddInfoEntry, present, 12);
WORD(HddInfoEntry, reserved1, 13);
WORD(HddInfoEntry, reserved2, 14);
WORDS(HddInfoEntry, 15);

WORD(RaidControllerEntry, id, 0);
WORD(RaidControllerEntry, name, 1);
WORD(RaidControllerEntry, idText1, 2);
WORD(RaidControllerEntry, confText1, 3);
WORD(RaidControllerEntry, confText2, 4);
WORD(RaidControllerEntry, confText3, 5);
WORD(RaidControllerEntry, confText4, 6);
WORD(RaidControllerEntry, idText3, 7);
WORD(RaidControllerEntry, idText2, 8);
WORD(RaidControllerEntry, vendorId, 9);
WORD(RaidControllerEntry, deviceId, 10);
WORD(RaidControllerEntry, subVendorId, 11);
WORD(RaidControllerEntry, subDeviceId, 12);
WORD(RaidControllerEntry, driveInterfaces, 13);
WORD(RaidControllerEntry, supportedRaidLevels, 14);
WORD(RaidControllerEntry, hostInterface, 15);
WORD(RaidControllerEntry, byteProperty, 16);
WORD(RaidControllerEntry, wordProperty, 17);
WORD(RaidControllerEntry, reserved1, 18);
WORD(RaidControllerEntry, reserved2, 19);
WORDS(RaidControllerEntry, 20);

WORD(RaidHddEntry, id, 0);
WORD(RaidHddEntry, raidLevel, 1);
WORD(RaidHddEntry, state, 2);
WORD(RaidHddEntry, driveText, 3);
WORD(RaidHddEntry, controllerName, 4);
WORD(RaidHddEntry, reserved1, 5);
WORD(RaidHddEntry, reserved2, 6);
WORDS(RaidHddEntry, 7);
