#pragma once

namespace morvath
{

/** Where a property is: the four texts that every accessor binds. */
struct Property
{
    const char* service;
    const char* path;
    const char* interface;
    const char* name;
};

constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

} // namespace morvath
