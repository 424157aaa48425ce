// SPDX-License-Identifier: Apache-2.0
#include "client.hpp"

#include <systemd/sd-bus.h>

#include <cstdio>
#include <cstdlib>
#include <string>

// The objects of bench/scenario as a plain service on sd-bus offers them, with
// as much of an object mapper as the clients need: what a simulated platform
// of the same size is measured against.

namespace
{

using namespace morvath::bench;

constexpr std::size_t propertyCount = 24;
constexpr std::array interfaces{"com.example.Item", "com.example.Asset",
                                "com.example.State"};

union Value
{
    const char* text;
    double real;
    uint64_t uint64;
    uint32_t uint32;
    uint16_t uint16;
    int boolean;
};

// As a real service has them, each object has its own, texts too.
struct Object
{
    std::array<Value, propertyCount> values;
    std::array<std::string, propertyCount> texts;
};

// What all objects share.
struct Properties
{
    std::array<std::string, propertyCount> names;
    std::array<std::vector<sd_bus_vtable>, interfaces.size()> vtables;
};

const char* setValue(Object& object, std::size_t index)
{
    constexpr std::array texts{"text of property ",
                               "xyz.openbmc_project.Example.Value.Number"};
    auto& value = object.values[index];
    switch (index % 8)
    {
        case 0:
        case 4:
            object.texts[index] = texts[index % 8 / 4] + std::to_string(index);
            value.text = object.texts[index].c_str();
            return "s";
        case 1: value.real = 20 + static_cast<double>(index) / 7; return "d";
        case 2: value.uint32 = static_cast<uint32_t>(4000 + index); return "u";
        case 3: value.boolean = index % 2 == 0; return "b";
        case 5: value.uint16 = static_cast<uint16_t>(index); return "q";
        case 6: value.text = object.texts[index].c_str(); return "s";
        default: value.uint64 = (uint64_t{1} << 40) + index; return "t";
    }
}

void fill(Properties& properties, std::vector<Object>& objects)
{
    for (auto& vtable : properties.vtables)
    {
        vtable.push_back(SD_BUS_VTABLE_START(0));
    }
    for (std::size_t index = 0; index < propertyCount; ++index)
    {
        auto& name = properties.names[index];
        name = (index < 10 ? "Property0" : "Property") + std::to_string(index);
        const char* type = nullptr;
        for (auto& object : objects)
        {
            type = setValue(object, index);
        }
        properties.vtables[index % interfaces.size()].push_back(SD_BUS_PROPERTY(
            name.c_str(), type, nullptr, index * sizeof(Value), 0));
    }
    for (auto& vtable : properties.vtables)
    {
        vtable.push_back(SD_BUS_VTABLE_END);
    }
}

std::string pathOf(int index)
{
    return std::string(root) + "/item" + std::to_string(index);
}

int getSubTree(sd_bus_message* request, void* userdata, sd_bus_error*)
{
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(request, &reply);
    sd_bus_message_open_container(reply, 'a', "{sa{sas}}");
    for (int index = 0; index < *static_cast<int*>(userdata); ++index)
    {
        // As a mapper lists them, with what every object has.
        sd_bus_message_append(
            reply, "{sa{sas}}", pathOf(index).c_str(), 1, service, 6,
            interfaces[0], interfaces[1], interfaces[2],
            "org.freedesktop.DBus.Introspectable", "org.freedesktop.DBus.Peer",
            "org.freedesktop.DBus.Properties");
    }
    sd_bus_message_close_container(reply);
    const int sent = sd_bus_send(nullptr, reply, nullptr);
    sd_bus_message_unref(reply);
    return sent;
}

constexpr sd_bus_vtable mapper[]{
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("GetSubTree", "sias", "a{sa{sas}}", getSubTree, 0),
    SD_BUS_VTABLE_END,
};

} // namespace

int main(int argc, char** argv)
{
    int objects = argc == 2 ? std::atoi(argv[1]) : 0;
    sd_bus* bus = nullptr;
    if (sd_bus_open(&bus) < 0)
    {
        std::fputs("no bus\n", stderr);
        return 1;
    }
    Properties properties;
    std::vector<Object> all(objects);
    fill(properties, all);
    for (int index = 0; index < objects; ++index)
    {
        for (std::size_t which = 0; which < interfaces.size(); ++which)
        {
            sd_bus_add_object_vtable(
                bus, nullptr, pathOf(index).c_str(), interfaces[which],
                properties.vtables[which].data(), &all[index]);
        }
    }
    sd_bus_add_object_vtable(bus, nullptr, mapperPath, mapperService, mapper,
                             &objects);
    sd_bus_request_name(bus, mapperService, 0);
    sd_bus_request_name(bus, service, 0);
    std::printf("serving %d objects\n", objects);
    std::fflush(stdout);
    while (sd_bus_wait(bus, UINT64_MAX) >= 0)
    {
        while (sd_bus_process(bus, nullptr) > 0)
        {
            continue;
        }
    }
    sd_bus_unref(bus);
    return 0;
}
