// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <systemd/sd-bus.h>

#include <cstdlib>
#include <cstring>

// The loops that the library is measured against: plain sd-bus, nothing
// checked that a well-behaved platform does not need, no type of its own.

namespace morvath::bench
{
namespace
{

sd_bus* connection()
{
    static sd_bus* bus = [] {
        sd_bus* opened = nullptr;
        sd_bus_default(&opened);
        return opened;
    }();
    return bus;
}

sd_bus_message* call(sd_bus_message* request)
{
    sd_bus_message* reply = nullptr;
    sd_bus_call(connection(), request, 0, nullptr, &reply);
    sd_bus_message_unref(request);
    return reply;
}

sd_bus_message* listObjects()
{
    sd_bus_message* request = nullptr;
    sd_bus_message_new_method_call(connection(), &request, mapperService,
                                   mapperPath, mapperService, "GetSubTree");
    sd_bus_message_append(request, "sias", root, 0, 1, interface);
    return call(request);
}

sd_bus_message* getAll(const char* service, const char* path)
{
    sd_bus_message* request = nullptr;
    sd_bus_message_new_method_call(connection(), &request, service, path,
                                   propertiesInterface, "GetAll");
    sd_bus_message_append_basic(request, 's', "");
    return call(request);
}

sd_bus_message* get(const char* property)
{
    sd_bus_message* request = nullptr;
    sd_bus_message_new_method_call(connection(), &request, service, firstObject,
                                   propertiesInterface, "Get");
    sd_bus_message_append(request, "ss", interface, property);
    return call(request);
}

/** The one type that a variant holds, asked once. */
char peekedType(sd_bus_message* reply)
{
    const char* contents = nullptr;
    sd_bus_message_peek_type(reply, nullptr, &contents);
    return contents[1] == '\0' ? contents[0] : '\0';
}

/** The same as programs find it that try one type after the other. */
char verifiedType(sd_bus_message* reply)
{
    char found = '\0';
    for (const auto* contents : {"a(sss)", "as", "ad", "s", "x", "t", "d", "i",
                                 "u", "n", "q", "y", "b", "au", "aq"})
    {
        if (sd_bus_message_verify_type(reply, 'v', contents) > 0 &&
            contents[1] == '\0')
        {
            found = contents[0];
        }
    }
    return found;
}

union Basic
{
    const char* text;
    int64_t int64;
    uint64_t uint64;
    double real;
    int32_t int32;
    uint32_t uint32;
    uint16_t uint16;
    uint8_t byte;
    int boolean;
};

char* render(char type, const Basic& value)
{
    switch (type)
    {
        case 's': return strdup(value.text);
        case 'x': return textOf(value.int64);
        case 't': return textOf(value.uint64);
        case 'd': return textOf(value.real);
        case 'i': return textOf(int64_t{value.int32});
        case 'u': return textOf(uint64_t{value.uint32});
        case 'q': return textOf(uint64_t{value.uint16});
        case 'y': return textOf(uint64_t{value.byte});
        default: return strdup(value.boolean ? "1" : "0");
    }
}

template <auto TypeOf>
char* readValue(sd_bus_message* reply)
{
    const char type = TypeOf(reply);
    if (type == '\0' || !std::strchr("sxtdiuqyb", type))
    {
        sd_bus_message_skip(reply, "v");
        return strdup("");
    }
    const char contents[]{type, '\0'};
    Basic value{};
    sd_bus_message_enter_container(reply, 'v', contents);
    sd_bus_message_read_basic(reply, type, &value);
    sd_bus_message_exit_container(reply);
    return render(type, value);
}

template <auto TypeOf>
Row readRow(sd_bus_message* reply)
{
    Row row{};
    sd_bus_message_enter_container(reply, 'a', "{sv}");
    while (sd_bus_message_enter_container(reply, 'e', "sv") > 0)
    {
        const char* name = nullptr;
        sd_bus_message_read_basic(reply, 's', &name);
        const auto column = columnOf(name);
        if (column < row.size())
        {
            std::free(row[column]);
            row[column] = readValue<TypeOf>(reply);
        }
        else
        {
            sd_bus_message_skip(reply, "v");
        }
        sd_bus_message_exit_container(reply);
    }
    return row;
}

/** Hands the path and the first owner of each object to use. */
template <typename Use>
void forEachObject(const Use& use)
{
    auto* objects = listObjects();
    sd_bus_message_enter_container(objects, 'a', "{sa{sas}}");
    while (sd_bus_message_enter_container(objects, 'e', "sa{sas}") > 0)
    {
        const char* path = nullptr;
        const char* owner = nullptr;
        sd_bus_message_read_basic(objects, 's', &path);
        sd_bus_message_enter_container(objects, 'a', "{sas}");
        sd_bus_message_enter_container(objects, 'e', "sas");
        sd_bus_message_read_basic(objects, 's', &owner);
        sd_bus_message_skip(objects, "as");
        sd_bus_message_exit_container(objects);
        sd_bus_message_exit_container(objects);
        sd_bus_message_exit_container(objects);
        use(path, owner);
    }
    sd_bus_message_unref(objects);
}

template <auto TypeOf>
Rows readRows()
{
    Rows rows;
    forEachObject([&](const char* path, const char* owner) {
        auto* reply = getAll(owner, path);
        rows.push_back(readRow<TypeOf>(reply));
        sd_bus_message_unref(reply);
    });
    return rows;
}

Rows readOne(const char* property, char type)
{
    const char contents[]{type, '\0'};
    Basic value{};
    auto* reply = get(property);
    sd_bus_message_enter_container(reply, 'v', contents);
    sd_bus_message_read_basic(reply, type, &value);
    Rows rows{Row{render(type, value)}};
    sd_bus_message_unref(reply);
    return rows;
}

} // namespace

Rows readWithRawSdBus() { return readRows<peekedType>(); }

Rows readWithVerifiedSdBus() { return readRows<verifiedType>(); }

Rows readTextWithRawSdBus() { return readOne(textProperty, 's'); }

Rows readFlagWithRawSdBus() { return readOne(flagProperty, 'b'); }

Rows listWithRawSdBus()
{
    Rows rows;
    forEachObject([&](const char* path, const char*) {
        rows.push_back(Row{strdup(path)});
    });
    return rows;
}

} // namespace morvath::bench
