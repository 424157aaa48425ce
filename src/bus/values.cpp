// SPDX-License-Identifier: Apache-2.0
#include "base/texts.hpp"
#include "bus/properties.hpp"
#include "morvath.h"

#include <systemd/sd-bus.h>

#include <iterator>
#include <string_view>

using namespace morvath;

namespace
{

using Triple = std::tuple<std::string, std::string, std::string>;

/** By the index of the alternative. */
constexpr const char* types[]{"a(sss)", "as", "ad", "s", "x", "t",  "d", "i",
                              "u",      "n",  "q",  "y", "b", "au", "aq"};
static_assert(std::size(types) == std::variant_size_v<PropertyValue>);

// The contents of a variant: read and appended by the type of the alternative,
// which the signature repeats.

void read(ReplyReader& reader, const char* type, auto& number)
{
    reader.read(*type, &number);
}

void read(ReplyReader& reader, const char* type, bool& flag)
{
    int word = 0;
    reader.read(*type, &word);
    flag = word != 0;
}

void read(ReplyReader& reader, const char*, std::string& text)
{
    text = reader.text();
}

void read(ReplyReader& reader, const char*, Triple& triple)
{
    reader.enter(SD_BUS_TYPE_STRUCT, "sss");
    triple = {reader.text(), reader.text(), reader.text()};
    reader.leave();
}

template <typename Element>
void read(ReplyReader& reader, const char* type, std::vector<Element>& list)
{
    reader.enter(SD_BUS_TYPE_ARRAY, type + 1);
    while (!reader.isAtEnd())
    {
        read(reader, type + 1, list.emplace_back());
    }
}

void append(Request& request, const char* type, const auto& number)
{
    request.append(*type, &number);
}

void append(Request& request, const char* type, bool flag)
{
    const int word = flag;
    request.append(*type, &word);
}

void append(Request& request, const char*, const std::string& text)
{
    request.append(text.c_str());
}

void append(Request& request, const char*, const Triple& triple)
{
    const auto& [first, second, third] = triple;
    request.open(SD_BUS_TYPE_STRUCT, "sss")
        .append(first.c_str())
        .append(second.c_str());
    request.append(third.c_str()).close();
}

template <typename Element>
void append(Request& request, const char* type,
            const std::vector<Element>& list)
{
    request.open(SD_BUS_TYPE_ARRAY, type + 1);
    for (const auto& element : list)
    {
        append(request, type + 1, element);
    }
    request.close();
}

/** Whether it is this alternative that was there. */
template <std::size_t index>
bool readAlternative(ReplyReader& reader, std::string_view contents,
                     PropertyValue& value)
{
    const char* type = types[index];
    if (contents != type)
    {
        return false;
    }
    std::variant_alternative_t<index, PropertyValue> held{};
    reader.enterVariant(type);
    read(reader, type, held);
    value.emplace<index>(std::move(held));
    return true;
}

template <std::size_t... indices>
void readValue(ReplyReader& reader, PropertyValue& value,
               std::index_sequence<indices...>)
{
    const std::string_view contents = reader.contents();
    if (!(readAlternative<indices>(reader, contents, value) || ...))
    {
        reader.skip("v");
        value.emplace<0>();
    }
}

} // namespace

int32_t _getDbusProperty(const char* service, const char* path,
                         const char* interface, const char* property,
                         PropertyValue* value)
{
    auto request = propertyCall("Get", {service, path, interface, property});
    return statusOf([&] {
        auto reply = request.call();
        ReplyReader reader(reply);
        readValue(reader, *value, std::make_index_sequence<std::size(types)>());
    });
}

int32_t _setDbusProperty(const char* service, const char* path,
                         const char* interface, const char* property,
                         const PropertyValue* value)
{
    required(value);
    auto request = propertyCall("Set", {service, path, interface, property});
    std::visit(
        [&](const auto& held) {
            const char* type = types[value->index()];
            request.open('v', type);
            append(request, type, held);
            request.close();
        },
        *value);
    return statusOf([&] { request.call(); });
}
