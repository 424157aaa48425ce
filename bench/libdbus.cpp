// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <dbus/dbus.h>

#include <cstdlib>
#include <cstring>

namespace morvath::bench
{
namespace
{

DBusConnection* connection()
{
    static DBusConnection* bus = dbus_bus_get(DBUS_BUS_STARTER, nullptr);
    return bus;
}

DBusMessage* call(DBusMessage* request)
{
    auto* reply = dbus_connection_send_with_reply_and_block(
        connection(), request, DBUS_TIMEOUT_USE_DEFAULT, nullptr);
    dbus_message_unref(request);
    return reply;
}

DBusMessage* listObjects()
{
    auto* request = dbus_message_new_method_call(mapperService, mapperPath,
                                                 mapperService, "GetSubTree");
    const char* rootText = root;
    const char* interfaceText = interface;
    const char** interfaces = &interfaceText;
    const dbus_int32_t depth = 0;
    dbus_message_append_args(
        request, DBUS_TYPE_STRING, &rootText, DBUS_TYPE_INT32, &depth,
        DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &interfaces, 1, DBUS_TYPE_INVALID);
    return call(request);
}

DBusMessage* getAll(const char* service, const char* path)
{
    auto* request = dbus_message_new_method_call(service, path,
                                                 propertiesInterface, "GetAll");
    const char* allInterfaces = "";
    dbus_message_append_args(request, DBUS_TYPE_STRING, &allInterfaces,
                             DBUS_TYPE_INVALID);
    return call(request);
}

char* render(int type, const DBusBasicValue& value)
{
    switch (type)
    {
        case DBUS_TYPE_STRING: return strdup(value.str);
        case DBUS_TYPE_INT64: return textOf(int64_t{value.i64});
        case DBUS_TYPE_UINT64: return textOf(uint64_t{value.u64});
        case DBUS_TYPE_DOUBLE: return textOf(value.dbl);
        case DBUS_TYPE_INT32: return textOf(int64_t{value.i32});
        case DBUS_TYPE_UINT32: return textOf(uint64_t{value.u32});
        case DBUS_TYPE_UINT16: return textOf(uint64_t{value.u16});
        case DBUS_TYPE_BYTE: return textOf(uint64_t{value.byt});
        case DBUS_TYPE_BOOLEAN: return strdup(value.bool_val ? "1" : "0");
        default: return strdup("");
    }
}

char* readValue(DBusMessageIter* entry)
{
    DBusMessageIter variant;
    dbus_message_iter_recurse(entry, &variant);
    const int type = dbus_message_iter_get_arg_type(&variant);
    DBusBasicValue value{};
    if (dbus_type_is_basic(type))
    {
        dbus_message_iter_get_basic(&variant, &value);
    }
    return render(type, value);
}

const char* readText(DBusMessageIter* from)
{
    const char* text = nullptr;
    dbus_message_iter_get_basic(from, &text);
    dbus_message_iter_next(from);
    return text;
}

Row readRow(DBusMessage* reply)
{
    Row row{};
    DBusMessageIter top;
    DBusMessageIter entries;
    dbus_message_iter_init(reply, &top);
    dbus_message_iter_recurse(&top, &entries);
    while (dbus_message_iter_get_arg_type(&entries) != DBUS_TYPE_INVALID)
    {
        DBusMessageIter entry;
        dbus_message_iter_recurse(&entries, &entry);
        const auto column = columnOf(readText(&entry));
        if (column < row.size())
        {
            std::free(row[column]);
            row[column] = readValue(&entry);
        }
        dbus_message_iter_next(&entries);
    }
    return row;
}

} // namespace

Rows readWithLibdbus()
{
    Rows rows;
    auto* list = listObjects();
    DBusMessageIter top;
    DBusMessageIter objects;
    dbus_message_iter_init(list, &top);
    dbus_message_iter_recurse(&top, &objects);
    while (dbus_message_iter_get_arg_type(&objects) != DBUS_TYPE_INVALID)
    {
        DBusMessageIter object;
        DBusMessageIter owners;
        DBusMessageIter owner;
        dbus_message_iter_recurse(&objects, &object);
        const char* path = readText(&object);
        dbus_message_iter_recurse(&object, &owners);
        dbus_message_iter_recurse(&owners, &owner);
        auto* reply = getAll(readText(&owner), path);
        rows.push_back(readRow(reply));
        dbus_message_unref(reply);
        dbus_message_iter_next(&objects);
    }
    dbus_message_unref(list);
    return rows;
}

} // namespace morvath::bench
