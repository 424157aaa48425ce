// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <gio/gio.h>

#include <cstdlib>
#include <cstring>

namespace morvath::bench
{
namespace
{

GDBusConnection* connection()
{
    static GDBusConnection* bus =
        g_bus_get_sync(G_BUS_TYPE_STARTER, nullptr, nullptr);
    return bus;
}

GVariant* call(const char* service, const char* path, const char* interfaceName,
               const char* member, GVariant* arguments)
{
    constexpr int defaultTimeout = -1;
    return g_dbus_connection_call_sync(
        connection(), service, path, interfaceName, member, arguments, nullptr,
        G_DBUS_CALL_FLAGS_NONE, defaultTimeout, nullptr, nullptr);
}

char* render(GVariant* value)
{
    switch (g_variant_classify(value))
    {
        case G_VARIANT_CLASS_STRING:
            return strdup(g_variant_get_string(value, nullptr));
        case G_VARIANT_CLASS_INT64:
            return textOf(int64_t{g_variant_get_int64(value)});
        case G_VARIANT_CLASS_UINT64:
            return textOf(uint64_t{g_variant_get_uint64(value)});
        case G_VARIANT_CLASS_DOUBLE: return textOf(g_variant_get_double(value));
        case G_VARIANT_CLASS_INT32:
            return textOf(int64_t{g_variant_get_int32(value)});
        case G_VARIANT_CLASS_UINT32:
            return textOf(uint64_t{g_variant_get_uint32(value)});
        case G_VARIANT_CLASS_UINT16:
            return textOf(uint64_t{g_variant_get_uint16(value)});
        case G_VARIANT_CLASS_BYTE:
            return textOf(uint64_t{g_variant_get_byte(value)});
        case G_VARIANT_CLASS_BOOLEAN:
            return strdup(g_variant_get_boolean(value) ? "1" : "0");
        default: return strdup("");
    }
}

Row readRow(const char* service, const char* path)
{
    auto* reply = call(service, path, propertiesInterface, "GetAll",
                       g_variant_new("(s)", ""));
    Row row{};
    GVariantIter* properties = nullptr;
    g_variant_get(reply, "(a{sv})", &properties);
    const char* name = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_loop(properties, "{&sv}", &name, &value))
    {
        const auto column = columnOf(name);
        if (column < row.size())
        {
            std::free(row[column]);
            row[column] = render(value);
        }
    }
    g_variant_iter_free(properties);
    g_variant_unref(reply);
    return row;
}

} // namespace

Rows readWithGdbus()
{
    const char* interfaces[]{interface, nullptr};
    auto* reply = call(mapperService, mapperPath, mapperService, "GetSubTree",
                       g_variant_new("(si^as)", root, 0, interfaces));
    Rows rows;
    GVariantIter* objects = nullptr;
    g_variant_get(reply, "(a{sa{sas}})", &objects);
    const char* path = nullptr;
    GVariantIter* owners = nullptr;
    while (g_variant_iter_loop(objects, "{&sa{sas}}", &path, &owners))
    {
        const char* service = nullptr;
        GVariantIter* owned = nullptr;
        if (g_variant_iter_next(owners, "{&sas}", &service, &owned))
        {
            rows.push_back(readRow(service, path));
            g_variant_iter_free(owned);
        }
    }
    g_variant_iter_free(objects);
    g_variant_unref(reply);
    return rows;
}

} // namespace morvath::bench
