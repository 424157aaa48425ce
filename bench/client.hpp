// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace morvath::bench
{

/** What a table is: 13 of the 24 properties of every object, as texts. */
constexpr auto root = "/bench/items";
constexpr auto interface = "com.example.Item";
constexpr std::array columns{
    "Property00", "Property01", "Property02", "Property03", "Property04",
    "Property05", "Property06", "Property07", "Property08", "Property09",
    "Property10", "Property11", "Property12",
};

/** What a single value is: a property of the first object. */
constexpr auto service = "com.example.Inventory";
constexpr auto firstObject = "/bench/items/item0";
constexpr auto textProperty = "Property00";
constexpr auto flagProperty = "Property03";

constexpr auto mapperService = "xyz.openbmc_project.ObjectMapper";
constexpr auto mapperPath = "/xyz/openbmc_project/object_mapper";
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

/** The texts of one object, each to be released with free(). */
using Row = std::array<char*, columns.size()>;
using Rows = std::vector<Row>;

/** The column of a property, or the number of columns for any other. */
std::size_t columnOf(const char* name);

// The texts of numbers, made in the fastest way there is.
char* textOf(int64_t number);
char* textOf(uint64_t number);
char* textOf(double number);

/** A way to do a job. */
struct Client
{
    const char* name;
    Rows (*read)();
};

Rows readWithLibrary();
Rows readWithRawSdBus();
Rows readWithVerifiedSdBus();
Rows readWithBinding();
Rows readWithSdBusCpp();
Rows readWithLibdbus();
Rows readWithGdbus();

// One property of one object, and the objects without their properties.
Rows readTextWithLibrary();
Rows readTextWithRawSdBus();
Rows readFlagWithLibrary();
Rows readFlagWithRawSdBus();
Rows listWithRawSdBus();

inline constexpr std::array tableClients{
    Client{"floor", readWithRawSdBus},
    Client{"morvath", readWithLibrary},
    Client{"floor-verifying", readWithVerifiedSdBus},
    Client{"sdbusplus", readWithBinding},
    Client{"sdbus-c++", readWithSdBusCpp},
    Client{"libdbus", readWithLibdbus},
    Client{"gdbus", readWithGdbus},
};
inline constexpr std::array textClients{
    Client{"floor", readTextWithRawSdBus},
    Client{"morvath", readTextWithLibrary},
};
inline constexpr std::array flagClients{
    Client{"floor", readFlagWithRawSdBus},
    Client{"morvath", readFlagWithLibrary},
};
inline constexpr std::array listClients{Client{"floor", listWithRawSdBus}};

/** What all of its clients do with the same result; the first is the floor. */
struct Job
{
    const char* name;
    std::span<const Client> clients;
};

inline constexpr std::array jobs{
    Job{"table", tableClients},
    Job{"text", textClients},
    Job{"flag", flagClients},
    Job{"list", listClients},
};

/** Releases the texts; the same for equal texts in equal order. */
uint64_t checksum(Rows&& rows);

} // namespace morvath::bench
