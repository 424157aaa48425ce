// SPDX-License-Identifier: Apache-2.0
#include "records.hpp"

#include <algorithm>
#include <iterator>

/*
 * All tables but those of sensors. What is printed, what programs get as JSON
 * and what becomes a metric comes from these columns.
 */
namespace morvath::tools
{
namespace
{

using Supply = PsuInfoEntry;
using Slot = PcieInfoEntry;
using Adapter = NetAdapterInfoEntry;
using Gpu = GpuInfoEntry;
using Module = MemInfoEntry;
using Cpu = CpuInfoEntry;
using Disk = HddInfoEntry;
using Controller = RaidControllerEntry;
using Drive = RaidHddEntry;
using Interface = BmcNetworkInfoEntry;
using Port = PortInfoEntry;

constexpr Published info{Published::info};

constexpr Published label(std::string_view name)
{
    return {Published::info, name};
}

constexpr Published identity(std::string_view name)
{
    return {Published::identity, name};
}

constexpr Published gauge(std::string_view name, std::string_view help)
{
    return {Published::gauge, name, help};
}

template <auto Get>
std::vector<Cells> rows(const Table& table)
{
    constexpr auto recordsOf =
        []<typename Record>(int32_t (*)(Record**, int32_t*)) -> Record {
        return {};
    };
    return rowsOf<decltype(recordsOf(Get))>(table, Get);
}

constexpr Column powerSupplies[]{
    {"name", "NAME", of<&Supply::name>, always, identity("power_supply")},
    {"manufacturer", "MANUFACTURER", of<&Supply::manufacturer>, 3, info},
    {"partNumber", "PART NUMBER", of<&Supply::partNumber>, 5, info},
    {"serialNumber", "SERIAL NUMBER", of<&Supply::serialNumber>, 1, info},
    {"ratingWatts", "RATING", of<&Supply::rating>, 1,
     gauge("rating_watts", "Rated power."), "W", Form::number},
    {"firmwareVersion", "FIRMWARE", of<&Supply::firmwareVersion>, 1, info},
};

constexpr Column pcieSlots[]{
    {"name", "NAME", of<&Slot::name>, always, identity("slot")},
    {"manufacturer", "MANUFACTURER", of<&Slot::manufacturer>, 3, info},
    {"locationCode", "LOCATION", of<&Slot::locationCode>, 1, label("location")},
    {"present", "PRESENT", yesOrNo<&Slot::present>, 1,
     gauge("present", "Whether the slot has a card.")},
};

constexpr Column networkAdapters[]{
    {"name", "NAME", of<&Adapter::name>, always, identity("adapter")},
    {"manufacturer", "MANUFACTURER", of<&Adapter::manufacturer>, 3, info},
    {"model", "MODEL", of<&Adapter::model>, 1, info},
    {"subModel", "VARIANT", of<&Adapter::subModel>, 4, label("variant")},
    {"networkTech", "NETWORK", of<&Adapter::networkTech>, 1,
     label("technology")},
    {"portNum", "PORTS", of<&Adapter::portNum>, 1,
     gauge("ports", "Number of ports.")},
};

constexpr Column gpus[]{
    {"cardName", "CARD", of<&Gpu::cardName>, always, identity("gpu")},
    {"manufacturer", "MANUFACTURER", of<&Gpu::manufacturer>, 3, info},
    {"partNumber", "PART NUMBER", of<&Gpu::partNumber>, 5, info},
    {"serialNumber", "SERIAL NUMBER", of<&Gpu::serialNumber>, 1, info},
    {"totalMemory", "MEMORY", of<&Gpu::totalMemory>, 1,
     gauge("memory_bytes", "Size of the memory."), "MiB"},
    {"temperature", "TEMP", of<&Gpu::temperature>, 1,
     gauge("temperature_celsius", "Temperature."), "°C"},
    {"fanLevel", "FAN", of<&Gpu::fanLevel>, 1,
     gauge("fan_ratio", "Speed of the fan, 0 to 1."), "%"},
    {"currentPower", "POWER", of<&Gpu::currentPower>, 1,
     gauge("power_watts", "Power drawn."), "W"},
};

constexpr Column memory[]{
    {"name", "NAME", of<&Module::name>, always, identity("module")},
    {"manufacturer", "MANUFACTURER", of<&Module::manufacturer>, 5, info},
    {"partNumber", "PART NUMBER", of<&Module::partNumber>, seldom, info},
    {"serialNumber", "SERIAL NUMBER", of<&Module::serialNumber>, 1, info},
    {"memoryType", "TYPE", of<&Module::memoryType>, 2, label("type")},
    {"formFactor", "FORM", of<&Module::formFactor>, seldom, info},
    {"bankLocator", "BANK", of<&Module::bankLocator>, seldom, label("bank")},
    {"deviceLocator", "SOCKET", of<&Module::deviceLocator>, 6, label("socket")},
    {"ecc", "ECC", of<&Module::ecc>, seldom, info},
    {"maxSpeedMhz", "MAX SPEED", of<&Module::maxSpeedMhz>, 4,
     gauge("frequency_max_hertz", "Highest speed."), "MHz"},
    {"sizeKiB", "SIZE", of<&Module::sizeKB>, always,
     gauge("size_bytes", "Size of the module."), "KiB"},
    {"dataWidthBits", "WIDTH", of<&Module::dataWidth>, seldom, {}, "bit"},
    {"present", "PRESENT", yesOrNo<&Module::present>, 1,
     gauge("present", "Whether the socket has a module.")},
};

constexpr Column processors[]{
    {"name", "NAME", of<&Cpu::name>, always, identity("processor")},
    {"manufacturer", "MANUFACTURER", of<&Cpu::manufacturer>, 5, info},
    {"version", "VERSION", of<&Cpu::version>, 2, info},
    {"partNumber", "PART NUMBER", of<&Cpu::partNumber>, seldom, info},
    {"serialNumber", "SERIAL NUMBER", of<&Cpu::serialNumber>, seldom, info},
    {"architecture", "ARCHITECTURE", of<&Cpu::architecture>, seldom, info},
    {"curSpeedMhz", "SPEED", of<&Cpu::curSpeedMhz>, 6,
     gauge("frequency_hertz", "Present speed."), "MHz"},
    {"maxSpeedMhz", "MAX SPEED", of<&Cpu::maxSpeedMhz>, 4,
     gauge("frequency_max_hertz", "Highest speed."), "MHz"},
    {"coreCount", "CORES", of<&Cpu::coreCount>, 1,
     gauge("cores", "Number of cores.")},
    {"threadCount", "THREADS", of<&Cpu::threadCount>, 1,
     gauge("threads", "Number of threads.")},
    {"l1CacheKiB", "L1", of<&Cpu::l1CacheKiB>, seldom,
     gauge("l1_cache_bytes", "Size of the level 1 cache."), "KiB"},
    {"l2CacheKiB", "L2", of<&Cpu::l2CacheKiB>, seldom,
     gauge("l2_cache_bytes", "Size of the level 2 cache."), "KiB"},
    {"l3CacheKiB", "L3", of<&Cpu::l3CacheKiB>, seldom,
     gauge("l3_cache_bytes", "Size of the level 3 cache."), "KiB"},
    {"present", "PRESENT", yesOrNo<&Cpu::present>, 1,
     gauge("present", "Whether the socket has a processor.")},
};

constexpr Column disks[]{
    {"name", "NAME", of<&Disk::name>, always, identity("disk")},
    {"manufacturer", "MANUFACTURER", of<&Disk::manufacturer>, seldom, info},
    {"model", "MODEL", of<&Disk::model>, seldom, info},
    {"serialNumber", "SERIAL NUMBER", of<&Disk::serialNumber>, 6, info},
    {"mediaType", "MEDIA", of<&Disk::mediaType>, 1, info},
    {"protocol", "PROTOCOL", of<&Disk::protocol>, 1, info},
    {"revision", "REVISION", of<&Disk::revision>, seldom, info},
    {"usage", "USED", of<&Disk::diskUsage>, 3,
     gauge("usage_ratio", "Usage as the platform has it, 0 to 1."), "%"},
    {"speed", "SPEED", of<&Disk::capableSpeed>, seldom, label("link_speed")},
    {"temperatureCelsius", "TEMP", of<&Disk::diskTemp>, 1,
     gauge("temperature_celsius",
           "Temperature; 0 also where the platform has none."),
     "°C"},
    {"capacityGiB", "CAPACITY", of<&Disk::capacityGiB>, 1,
     gauge("size_bytes", "Capacity, cut off to 2^30 bytes."), "GiB"},
    {"present", "PRESENT", yesOrNo<&Disk::present>, 1,
     gauge("present", "Whether the disk is there.")},
};

constexpr Column controllers[]{
    {"name", "Name", of<&Controller::name>, 1, identity("controller")},
    {"idText1", "First identity text", of<&Controller::idText1>},
    {"idText2", "Second identity text", of<&Controller::idText2>},
    {"idText3", "Third identity text", of<&Controller::idText3>},
    {"confText1", "First configured text", of<&Controller::confText1>},
    {"confText2", "Second configured text", of<&Controller::confText2>},
    {"confText3", "Third configured text", of<&Controller::confText3>},
    {"confText4", "Fourth configured text", of<&Controller::confText4>},
    {"vendorId", "PCI vendor", of<&Controller::vendorId>, 1, info},
    {"deviceId", "PCI device", of<&Controller::deviceId>, 1, info},
    {"subVendorId", "PCI subsystem vendor", of<&Controller::subVendorId>, 1,
     label("subvendor_id")},
    {"subDeviceId", "PCI subsystem", of<&Controller::subDeviceId>, 1,
     label("subdevice_id")},
    {"driveInterfaces", "Interfaces of drives",
     of<&Controller::driveInterfaces>, 1, info},
    {"hostInterface", "Interface of the host", of<&Controller::hostInterface>,
     1, info},
    {"byteProperty", "8-bit figure", of<&Controller::byteProperty>},
    {"wordProperty", "16-bit figure", of<&Controller::wordProperty>},
    {"supportedRaidLevels", "RAID levels", of<&Controller::supportedRaidLevels>,
     1, label("raid_levels")},
};

constexpr auto dashed = Form::dashed;

constexpr Column drives[]{
    {"driveText", "DRIVE", of<&Drive::driveText>, 1, identity("drive"), "",
     dashed},
    {"raidLevel", "RAID LEVEL", of<&Drive::raidLevel>, 1, info, "", dashed},
    {"state", "STATE", of<&Drive::state>, 1, info, "", dashed},
    {"controllerName", "CONTROLLER", of<&Drive::controllerName>, 1,
     identity("controller"), "", dashed},
};

Value originInWords(const void* record)
{
    switch (static_cast<const Interface*>(record)->addressOrigin)
    {
        case 1: return "static";
        case 2: return "other";
        default: return "none";
    }
}

constexpr Column bmcNetwork[]{
    {"interface", "INTERFACE", of<&Interface::ifName>, always,
     identity("interface")},
    {"macAddress", "MAC ADDRESS", of<&Interface::macAddress>, 4, info},
    {"ipAddress", "IP ADDRESS", of<&Interface::ipAddress>, 1, info, "", dashed},
    {"netmask", "NETMASK", of<&Interface::netmask>, 1, info, "", dashed},
    {"defaultGateway", "GATEWAY", of<&Interface::defaultGateway>, 5,
     label("gateway")},
    {"addressOrigin", "ORIGIN", originInWords, 1, label("origin")},
    {"enabled", "ENABLED", yesOrNo<&Interface::nicEnabled>, 1,
     gauge("enabled", "Whether the interface is switched on.")},
};

constexpr Column networkPorts[]{
    {"adapter", "ADAPTER", of<&Port::adapterName>, always, identity("adapter")},
    {"name", "NAME", of<&Port::name>, always, identity("port")},
    {"macAddress", "MAC ADDRESS", of<&Port::macAddress>, 4, info},
    {"rootBdf", "PCI ADDRESS", of<&Port::rootBdf>, 5, label("pci_address")},
    {"portType", "TYPE", of<&Port::portType>, 1, label("type")},
    {"maxSpeedGbps", "SPEED", of<&Port::maxSpeedGbps>, 1,
     gauge("speed_bytes_per_second", "Highest speed."), "Gbit/s"},
    {"lldpEnabled", "LLDP", yesOrNo<&Port::lldpEnabled>, 1,
     gauge("lldp_enabled", "Whether the port speaks LLDP.")},
    {"phyLink", "LINK", yesOrNo<&Port::phyLink>, 1,
     gauge("link_up", "Whether the port has a link.")},
    {"dropRatio", "DROPS", of<&Port::dropRatio>, 3,
     gauge("drop_ratio", "Dropped packets by packets, 0 to 1."), "", dashed},
};

std::vector<Table> allTables()
{
    std::vector<Table> all{
        {"power-supplies", "power supplies and their firmware", powerSupplies,
         rows<getPsuTableInfo>, "power_supply", "A power supply."},
        {"pcie-slots", "PCIe slots, empty ones too", pcieSlots,
         rows<getPcieTableInfo>, "pcie_slot", "A PCIe slot.", "Present"},
        {"network-adapters", "network adapters of the host", networkAdapters,
         rows<getNetAdapterTableInfo>, "network_adapter",
         "A network adapter of the host.", "PortNum"},
        {"gpus", "graphics processors", gpus, rows<getGpuInfoEntry>, "gpu",
         "A graphics processor.",
         "TotalMemory Temperature FanLevel CurrentPower"},
        {"memory", "memory modules, empty sockets too", memory,
         rows<getMemoryTableInfo>, "memory_module",
         "A memory module, or an empty socket.",
         "MemoryType FormFactor ECC MaxMemorySpeedInMhz MemorySizeInKB "
         "MemoryDataWidth Present"},
        {"processors", "processors, empty sockets too", processors,
         rows<getCpuTableInfo>, "processor", "A processor, or an empty socket.",
         "LocationCode CurSpeedInMhz MaxSpeedInMhz CoreCount ThreadCount "
         "L1CacheKiB L2CacheKiB L3CacheKiB Present"},
        {"disks", "disks on the bus and behind RAID controllers", disks,
         rows<getHddTableInfo>, "disk",
         "A disk, on the bus or behind a RAID controller.",
         "DiskTemp Capacity CapableSpeedGbs Present"},
        {"raid-controllers", "RAID controllers", controllers,
         rows<getRaidControllerInfo>, "raid_controller", "A RAID controller.",
         "", true},
        {"raid-drives", "drives behind RAID controllers, with their RAID level",
         drives, rows<getRaidHddTableInfo>, "raid_drive",
         "A drive behind a RAID controller."},
    };
    std::ranges::move(sensorTables(), std::back_inserter(all));
    all.push_back({"bmc-network",
                   "network interfaces of the management controller",
                   bmcNetwork, rows<getNetworkTableInfo>, "bmc_interface",
                   "A network interface of the management controller.",
                   "InterfaceName NICEnabled Origin PrefixLength"});
    all.push_back({"network-ports", "ports of the network adapters",
                   networkPorts, rows<getNetPortTableInfo>, "network_port",
                   "A port of a network adapter of the host.",
                   "MaxSpeed LldpEnabled PhyLink Packets Drop"});
    return all;
}

} // namespace

const std::vector<Table>& tables()
{
    static const auto all = allTables();
    return all;
}

const Table& tableNamed(std::string_view name)
{
    return *std::ranges::find(tables(), name, &Table::name);
}

} // namespace morvath::tools
