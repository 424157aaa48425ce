// SPDX-License-Identifier: Apache-2.0
#include "morvath.h"

// The records are a binary interface on 32-bit targets, where every field is
// one word; other targets have the same fields in the same order. Fields that
// are named in another order, or not at all, do not compile.

// clang-format off
#define LAYOUT(record, words, ...) \
    static_assert(sizeof(void*) != 4 || sizeof(record) == 4 * (words)); \
    [[maybe_unused]] constexpr record fieldsOf##record{__VA_ARGS__}

LAYOUT(PsuInfoEntry, 9, .id{}, .name{}, .manufacturer{}, .partNumber{},
        .serialNumber{}, .rating{}, .firmwareVersion{}, .reserved1{},
        .reserved2{});
LAYOUT(PcieInfoEntry, 7, .id{}, .name{}, .manufacturer{}, .locationCode{},
        .present{}, .reserved1{}, .reserved2{});
LAYOUT(NetAdapterInfoEntry, 9, .id{}, .name{}, .manufacturer{}, .model{},
        .subModel{}, .networkTech{}, .portNum{}, .reserved1{}, .reserved2{});
LAYOUT(GpuInfoEntry, 11, .id{}, .cardName{}, .manufacturer{}, .partNumber{},
        .serialNumber{}, .totalMemory{}, .temperature{}, .fanLevel{},
        .currentPower{}, .reserved1{}, .reserved2{});
LAYOUT(MemInfoEntry, 16, .id{}, .name{}, .manufacturer{}, .partNumber{},
        .serialNumber{}, .memoryType{}, .formFactor{}, .bankLocator{},
        .deviceLocator{}, .ecc{}, .maxSpeedMhz{}, .sizeKB{}, .dataWidth{},
        .present{}, .reserved1{}, .reserved2{});
LAYOUT(CpuInfoEntry, 18, .id{}, .name{}, .manufacturer{}, .version{},
        .partNumber{}, .serialNumber{}, .architecture{}, .curSpeedMhz{},
        .maxSpeedMhz{}, .coreCount{}, .threadCount{}, .l1CacheKiB{},
        .l1CacheKiBAlt{}, .l2CacheKiB{}, .l3CacheKiB{}, .present{},
        .reserved1{}, .reserved2{});
LAYOUT(BmcSensorEntry, 16, .id{}, .name{}, .value{}, .criticalAlarmHigh{},
        .criticalAlarmLow{}, .criticalHigh{}, .criticalLow{},
        .warningAlarmHigh{}, .warningAlarmLow{}, .warningHigh{}, .warningLow{},
        .minValue{}, .maxValue{}, .unit{}, .reserved1{}, .reserved2{});
LAYOUT(BmcNetworkInfoEntry, 11, .id{}, .ifName{}, .macAddress{}, .ipAddress{},
        .defaultGateway{}, .netmask{}, .addressOrigin{}, .nicEnabled{},
        .reserved0{}, .reserved1{}, .reserved2{});
LAYOUT(PortInfoEntry, 12, .id{}, .adapterName{}, .name{}, .macAddress{},
        .rootBdf{}, .portType{}, .maxSpeedGbps{}, .lldpEnabled{}, .phyLink{},
        .dropRatio{}, .reserved1{}, .reserved2{});
LAYOUT(HddInfoEntry, 15, .id{}, .name{}, .manufacturer{}, .model{},
        .serialNumber{}, .mediaType{}, .protocol{}, .revision{}, .diskUsage{},
        .capableSpeed{}, .diskTemp{}, .capacityGiB{}, .present{}, .reserved1{},
        .reserved2{});
LAYOUT(RaidControllerEntry, 20, .id{}, .name{}, .idText1{}, .confText1{},
        .confText2{}, .confText3{}, .confText4{}, .idText3{}, .idText2{},
        .vendorId{}, .deviceId{}, .subVendorId{}, .subDeviceId{},
        .driveInterfaces{}, .supportedRaidLevels{}, .hostInterface{},
        .byteProperty{}, .wordProperty{}, .reserved1{}, .reserved2{});
LAYOUT(RaidHddEntry, 7, .id{}, .raidLevel{}, .state{}, .driveText{},
        .controllerName{}, .reserved1{}, .reserved2{});
