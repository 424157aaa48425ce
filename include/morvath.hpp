// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The functions of morvath.h as C++ programs like them, from C++17 on: results
 * are returned and own themselves, codes are raised. There is nothing to link
 * besides the library.
 *
 * @code
 * for (const PsuInfoEntry& supply : morvath::read(getPsuTableInfo))
 * {
 *     std::printf("%s %s\n", supply.name, supply.serialNumber);
 * }
 * const auto model = morvath::read(getSystemModel);
 * std::printf("%s\n", model.value_or("none").c_str());
 * morvath::write(setSystemAssetTag, "DC4-R07-U12");
 * @endcode
 *
 * What the library raises itself, see "Exceptions" in morvath.h, passes through
 * as it is; all of it and morvath::Error are std::exception.
 */
#ifndef MORVATH_HPP
#define MORVATH_HPP

#include "morvath.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace morvath
{

/** A code other than 0, and the function that returned it. */
class Error : public std::runtime_error
{
  public:
    Error(const char* function, int32_t code) :
        std::runtime_error(std::string(function) + ": " + meaning(code)),
        name(function),
        number(code)
    {}

    /** Its name in morvath.h. */
    const char* function() const noexcept { return name; }

    int32_t code() const noexcept { return number; }

  private:
    static std::string meaning(int32_t code)
    {
        switch (code)
        {
            case -1: return "the call on the bus failed";
            case -2: return "no memory for the records";
            case -3: return "the argument was refused";
            case -4: return "the RAID management library failed";
            default: return "code " + std::to_string(code);
        }
    }

    const char* name;
    int32_t number;
};

namespace details
{

/** Calls the free function of a record. */
// clang-format off
inline void release(PsuInfoEntry& record) { freePsuInfoEntry(&record); }
inline void release(PcieInfoEntry& record) { freePcieInfoEntry(&record); }
inline void release(GpuInfoEntry& record) { freeGpuInfoEntry(&record); }
inline void release(MemInfoEntry& record) { freeMemInfoEntry(&record); }
inline void release(CpuInfoEntry& record) { freeCpuInfoEntry(&record); }
inline void release(BmcSensorEntry& record) { freeBmcSensorEntry(&record); }
inline void release(HddInfoEntry& record) { freeHddInfoEntry(&record); }
inline void release(RaidHddEntry& record) { free_raid_hdd_entry(&record); }
inline void release(PortInfoEntry& record) { free_port_entry_content(&record); }
inline void release(NetAdapterInfoEntry& record)
{
    free_adapter_entry_content(&record);
}
inline void release(BmcNetworkInfoEntry& record)
{
    freeBmcNetworkInfoEntry(&record);
}
inline void release(RaidControllerEntry& record)
{
    freeRaidControllerEntry(&record);
}
// clang-format on

} // namespace details

/** The records of a table; a range that releases them. */
template <typename Record>
class Records
{
  public:
    Records() = default;
    Records(Records&& other) noexcept :
        first(std::exchange(other.first, nullptr)),
        counted(std::exchange(other.counted, 0))
    {}
    Records& operator=(Records other) noexcept
    {
        std::swap(first, other.first);
        std::swap(counted, other.counted);
        return *this;
    }
    ~Records()
    {
        for (std::size_t index = 0; index < size(); ++index)
        {
            details::release(first[index]);
        }
        std::free(first);
    }

    /**
     * Has a table function, or what calls one, store its records here, and
     * returns its code. There are none with another code than 0; when something
     * is raised there are those that were stored until then.
     */
    template <typename Get>
    int32_t fill(const Get& get)
    {
        *this = Records();
        const int32_t code = get(&first, &counted);
        if (code != 0)
        {
            // Outputs mean nothing then; an array may be released already.
            first = nullptr;
        }
        return code;
    }

    const Record* begin() const noexcept { return first; }
    const Record* end() const noexcept { return first + size(); }
    const Record* data() const noexcept { return first; }
    const Record& operator[](std::size_t index) const { return first[index]; }
    bool empty() const noexcept { return size() == 0; }

    std::size_t size() const noexcept
    {
        // A table that could not be read may be counted, but not stored.
        return first && counted > 0 ? static_cast<std::size_t>(counted) : 0;
    }

  private:
    Record* first = nullptr;
    int32_t counted = 0;
};

namespace details
{

template <typename Function>
struct Name
{
    Function* function;
    const char* text;
};

template <typename Function>
Name(Function*, const char*) -> Name<Function>;

/** The names of the functions of one type. */
template <typename Function>
inline constexpr std::array<Name<Function>, 0> names{};

template <typename Record>
using Table = int32_t(Record**, int32_t*);
template <typename... Arguments>
using OfProperty = int32_t(const char*, const char*, const char*, const char*,
                           Arguments...);

// clang-format off
#define MORVATH_NAME(function) Name{function, #function}
template <> inline constexpr std::array names<Table<PsuInfoEntry>>{
    MORVATH_NAME(getPsuTableInfo)};
template <> inline constexpr std::array names<Table<PcieInfoEntry>>{
    MORVATH_NAME(getPcieTableInfo)};
template <> inline constexpr std::array names<Table<NetAdapterInfoEntry>>{
    MORVATH_NAME(getNetAdapterTableInfo)};
template <> inline constexpr std::array names<Table<GpuInfoEntry>>{
    MORVATH_NAME(getGpuInfoEntry)};
template <> inline constexpr std::array names<Table<MemInfoEntry>>{
    MORVATH_NAME(getMemoryTableInfo)};
template <> inline constexpr std::array names<Table<CpuInfoEntry>>{
    MORVATH_NAME(getCpuTableInfo)};
template <> inline constexpr std::array names<Table<BmcSensorEntry>>{
    MORVATH_NAME(getTempTableInfo), MORVATH_NAME(getFanTableInfo),
    MORVATH_NAME(getVoltageTableInfo), MORVATH_NAME(getCurrentTableInfo),
    MORVATH_NAME(getPowerTableInfo), MORVATH_NAME(getPwmTableInfo)};
template <> inline constexpr std::array
    names<int32_t(BmcSensorEntry**, int32_t*, const char*, const char*)>{
    MORVATH_NAME(getCommonSensorTableInfo)};
template <> inline constexpr std::array names<Table<HddInfoEntry>>{
    MORVATH_NAME(getHddTableInfo)};
template <> inline constexpr std::array names<Table<BmcNetworkInfoEntry>>{
    MORVATH_NAME(getNetworkTableInfo)};
template <> inline constexpr std::array names<Table<PortInfoEntry>>{
    MORVATH_NAME(getNetPortTableInfo)};
template <> inline constexpr std::array names<Table<RaidControllerEntry>>{
    MORVATH_NAME(getRaidControllerInfo)};
template <> inline constexpr std::array names<Table<RaidHddEntry>>{
    MORVATH_NAME(getRaidHddTableInfo)};

template <> inline constexpr std::array names<int32_t(char**)>{
    MORVATH_NAME(getSystemManufacturer), MORVATH_NAME(getSystemModel),
    MORVATH_NAME(getSystemSerialNumber), MORVATH_NAME(getSystemUUID),
    MORVATH_NAME(getSystemAssetTag), MORVATH_NAME(getSystemHostName),
    MORVATH_NAME(getSystemConfModel), MORVATH_NAME(getBiosVendor),
    MORVATH_NAME(getBiosBuildDate), MORVATH_NAME(getCpldFirmwareVersion),
    MORVATH_NAME(getBMCFirmwareVersion), MORVATH_NAME(getBiosFirmwareVersion),
    MORVATH_NAME(getBMCManufacturer), MORVATH_NAME(getBMCModel),
    MORVATH_NAME(getBMCSerialNumber), MORVATH_NAME(getBMCPartNumber),
    MORVATH_NAME(getBMCDeviceUUID), MORVATH_NAME(getProductAssetTag),
    MORVATH_NAME(getProductManufacturer), MORVATH_NAME(getProductPartNum),
    MORVATH_NAME(getProductPrettyName), MORVATH_NAME(getProductSerialNum),
    MORVATH_NAME(getProductVersion), MORVATH_NAME(getChassisPartNum),
    MORVATH_NAME(getChassisPrettyName), MORVATH_NAME(getChassisSerialNum),
    MORVATH_NAME(getBoardBuildDate), MORVATH_NAME(getBoardManufacturer),
    MORVATH_NAME(getBoardPartNum), MORVATH_NAME(getBoardPrettyName),
    MORVATH_NAME(getBoardSerialNum), MORVATH_NAME(getSystemPowerState),
    MORVATH_NAME(getPowerRestorePolicy), MORVATH_NAME(getNtpPreferServer)};
template <> inline constexpr std::array names<int32_t(const char*, char**)>{
    MORVATH_NAME(getBMCProperty)};
template <> inline constexpr std::array names<OfProperty<char**>>{
    MORVATH_NAME(getDbusPropertyString)};
template <> inline constexpr std::array names<OfProperty<char***, uint32_t*>>{
    MORVATH_NAME(getDbusPropertyVectorString)};
template <> inline constexpr std::array
    names<int32_t(const char*, const char*, const char*, char***, uint32_t*)>{
    MORVATH_NAME(getDbusInterface)};

template <> inline constexpr std::array names<int32_t(uint32_t*)>{
    MORVATH_NAME(getBiosBootType), MORVATH_NAME(getBiosBootOrder0),
    MORVATH_NAME(getBiosBootOrder1), MORVATH_NAME(getBiosBootOrder2),
    MORVATH_NAME(getBiosBootOrder3), MORVATH_NAME(getBiosIPV4Support),
    MORVATH_NAME(getBiosIPV6Support), MORVATH_NAME(getBiosHyperThreading),
    MORVATH_NAME(getSystemPowerCtl), MORVATH_NAME(getTimeStamp),
    MORVATH_NAME(getNtpServerStatus)};
template <> inline constexpr std::array names<int32_t(int32_t*)>{
    MORVATH_NAME(getTimeZone)};
template <> inline constexpr std::array names<OfProperty<uint8_t*>>{
    MORVATH_NAME(getDbusPropertyUint8), MORVATH_NAME(getDbusPropertyBool)};
template <> inline constexpr std::array names<OfProperty<PropertyValue*>>{
    MORVATH_NAME(_getDbusProperty)};

template <> inline constexpr std::array names<int32_t(const char*)>{
    MORVATH_NAME(setSystemAssetTag), MORVATH_NAME(setSystemHostName),
    MORVATH_NAME(setSystemConfModel), MORVATH_NAME(setPowerRestorePolicy),
    MORVATH_NAME(setNtpServerIP)};
template <> inline constexpr std::array names<int32_t(uint32_t)>{
    MORVATH_NAME(setSystemPowerCtl)};
template <> inline constexpr std::array names<int32_t(int32_t)>{
    MORVATH_NAME(setTimeStamp), MORVATH_NAME(setNtpServerStatus)};
template <> inline constexpr std::array
    names<int32_t(const char*, const char*, int32_t)>{
    MORVATH_NAME(setLldpEnalbed)};
template <> inline constexpr std::array names<OfProperty<uint8_t>>{
    MORVATH_NAME(setDbusPropertyBool)};
template <> inline constexpr std::array names<OfProperty<uint64_t>>{
    MORVATH_NAME(setDbusPropertyUint64)};
template <> inline constexpr std::array names<OfProperty<const char*>>{
    MORVATH_NAME(setDbusPropertyString)};
template <> inline constexpr std::array names<OfProperty<const char**>>{
    MORVATH_NAME(setDbusPropertyVectorString)};
template <> inline constexpr std::array
    names<int32_t(const char*, const char*, const char*, const char**)>{
    MORVATH_NAME(setDbusPropertyVectorStringWithoutPath)};
template <> inline constexpr std::array names<OfProperty<const PropertyValue*>>{
    MORVATH_NAME(_setDbusProperty)};
#undef MORVATH_NAME
// clang-format on

template <typename Function>
void require(int32_t code, Function* function)
{
    if (code == 0)
    {
        return;
    }
    for (const auto& name : names<Function>)
    {
        if (name.function == function)
        {
            throw Error(name.text, code);
        }
    }
    throw Error("another function", code);
}

/** Not deduced: an argument is converted to it. */
template <typename T>
struct As
{
    using Type = T;
};
template <typename T>
using Same = typename As<T>::Type;

template <typename T>
using IfArithmetic = std::enable_if_t<std::is_arithmetic<T>::value, bool>;
template <typename T>
using IfNoPointer = std::enable_if_t<!std::is_pointer<T>::value, bool>;

inline std::string take(char* text)
{
    const std::unique_ptr<char, decltype(&std::free)> owner(text, std::free);
    return text;
}

/** Texts in an array, released whatever happens. */
struct Texts
{
    char** array = nullptr;
    uint32_t count = 0;

    ~Texts()
    {
        for (uint32_t index = 0; index < count; ++index)
        {
            std::free(array[index]);
        }
        std::free(array);
    }
};

} // namespace details

/** The records of a table. */
template <typename Record, typename... Parameters>
Records<Record> read(int32_t (*get)(Record**, int32_t*, Parameters...),
                     details::Same<Parameters>... arguments)
{
    Records<Record> records;
    const auto code = records.fill([&](Record** array, int32_t* count) {
        return get(array, count, arguments...);
    });
    details::require(code, get);
    return records;
}

/** A text, if the platform has one; arguments are the texts before it. */
template <typename... Arguments>
std::optional<std::string>
read(details::Same<int32_t(Arguments..., char**)>* get, Arguments... arguments)
{
    char* text = nullptr;
    details::require(get(arguments..., &text), get);
    return text ? std::optional(details::take(text)) : std::nullopt;
}

/** A list of texts; arguments as for one. */
template <typename... Arguments>
std::vector<std::string>
read(details::Same<int32_t(Arguments..., char***, uint32_t*)>* get,
     Arguments... arguments)
{
    details::Texts texts;
    details::require(get(arguments..., &texts.array, &texts.count), get);
    return {texts.array, texts.array + texts.count};
}

/** A number. */
template <typename Number, details::IfArithmetic<Number> = true>
Number read(int32_t (*get)(Number*))
{
    Number number = 0;
    details::require(get(&number), get);
    return number;
}

/** A property that is a number, or of any type. */
template <typename Value, details::IfNoPointer<Value> = true>
Value read(details::OfProperty<Value*>* get, const char* service,
           const char* path, const char* interface, const char* property)
{
    Value value{};
    details::require(get(service, path, interface, property, &value), get);
    return value;
}

/** Calls a function that writes. */
template <typename... Parameters>
void write(int32_t (*set)(Parameters...),
           details::Same<Parameters>... arguments)
{
    details::require(set(arguments...), set);
}

} // namespace morvath

#endif
