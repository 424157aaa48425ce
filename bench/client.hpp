// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace morvath::bench
{

/** The job: 13 of the 24 properties of every object, as texts. */
constexpr auto root = "/bench/items";
constexpr auto interface = "com.example.Item";
constexpr std::array columns{
    "Property00", "Property01", "Property02", "Property03", "Property04",
    "Property05", "Property06", "Property07", "Property08", "Property09",
    "Property10", "Property11", "Property12",
};

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

/** A way to do the job. */
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

inline constexpr std::array clients{
    Client{"floor", readWithRawSdBus},
    Client{"morvath", readWithLibrary},
    Client{"floor-verifying", readWithVerifiedSdBus},
    Client{"sdbusplus", readWithBinding},
    Client{"sdbus-c++", readWithSdBusCpp},
    Client{"libdbus", readWithLibdbus},
    Client{"gdbus", readWithGdbus},
};

/** Releases the texts; the same for equal texts in equal order. */
uint64_t checksum(Rows&& rows);

} // namespace morvath::bench
