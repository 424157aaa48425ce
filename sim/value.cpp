// SPDX-License-Identifier: Apache-2.0
#include "sim/value.hpp"

#include <cerrno>
#include <cmath>
#include <string_view>
#include <type_traits>

namespace morvath::sim
{

namespace
{

char containerType(char first)
{
    switch (first)
    {
        case '(':
            return SD_BUS_TYPE_STRUCT;
        case '{':
            return SD_BUS_TYPE_DICT_ENTRY;
        default:
            return first;
    }
}

std::string containerContents(const Value& value)
{
    const std::string& signature = value.signature;
    switch (signature.front())
    {
        case 'v':
            return value.members().front().signature;
        case 'a':
            return signature.substr(1);
        default:
            return signature.substr(1, signature.size() - 2);
    }
}

void appendContainer(sd_bus_message* message, const Value& value)
{
    const std::string contents = containerContents(value);
    check(sd_bus_message_open_container(message,
                                        containerType(value.signature.front()),
                                        contents.c_str()),
          "sd_bus_message_open_container");
    for (const Value& member : value.members())
    {
        append(message, member);
    }
    check(sd_bus_message_close_container(message),
          "sd_bus_message_close_container");
}

template <typename T>
Value readNumber(sd_bus_message* message, char type)
{
    T number{};
    check(sd_bus_message_read_basic(message, type, &number),
          "sd_bus_message_read_basic");
    return {std::string(1, type), number};
}

Value readText(sd_bus_message* message, char type)
{
    const char* text = nullptr;
    check(sd_bus_message_read_basic(message, type, &text),
          "sd_bus_message_read_basic");
    return {std::string(1, type), std::string(text)};
}

std::string containerSignature(char type, const char* contents)
{
    switch (type)
    {
        case SD_BUS_TYPE_STRUCT:
            return std::string("(") + contents + ")";
        case SD_BUS_TYPE_DICT_ENTRY:
            return std::string("{") + contents + "}";
        case SD_BUS_TYPE_ARRAY:
            return std::string("a") + contents;
        default:
            return "v";
    }
}

Value readContainer(sd_bus_message* message, char type, const char* contents)
{
    std::string signature = containerSignature(type, contents);
    check(sd_bus_message_enter_container(message, type, contents),
          "sd_bus_message_enter_container");
    Value::Members members = readValues(message);
    check(sd_bus_message_exit_container(message),
          "sd_bus_message_exit_container");
    return {std::move(signature), std::move(members)};
}

Json doubleToJson(double number)
{
    if (std::isnan(number))
    {
        return "nan";
    }
    if (std::isinf(number))
    {
        return number > 0 ? "inf" : "-inf";
    }
    return number;
}

Json dictionaryToJson(const Value::Members& entries)
{
    Json object = Json::object();
    for (const Value& entry : entries)
    {
        object[*entry.members()[0].text()] = toJson(entry.members()[1]);
    }
    return object;
}

Json containerToJson(const Value& value)
{
    const Value::Members& members = value.members();
    if (value.signature == "v")
    {
        return {{"type", members[0].signature}, {"value", toJson(members[0])}};
    }
    // Other keys cannot be names in JSON; such a dictionary becomes a list.
    const bool textKeys = value.signature.starts_with("a{s") ||
                          value.signature.starts_with("a{o") ||
                          value.signature.starts_with("a{g");
    if (textKeys)
    {
        Json dictionary = dictionaryToJson(members);
        // Nor can equal keys.
        if (dictionary.size() == members.size())
        {
            return dictionary;
        }
    }
    return toJson(members);
}

} // namespace

bool Value::operator==(const Value& other) const
{
    return signature == other.signature && data == other.data;
}

void append(sd_bus_message* message, const Value& value)
{
    const char type = value.signature.front();
    const auto appendHeld = [&](const auto& held) {
        using Held = std::remove_cvref_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, Value::Members>)
        {
            appendContainer(message, value);
        }
        else if constexpr (std::is_same_v<Held, std::string>)
        {
            check(sd_bus_message_append_basic(message, type, held.c_str()),
                  "sd_bus_message_append_basic");
        }
        else
        {
            check(sd_bus_message_append_basic(message, type, &held),
                  "sd_bus_message_append_basic");
        }
    };
    std::visit(appendHeld, value.data);
}

void appendVariant(sd_bus_message* message, const Value& value)
{
    check(sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT,
                                        value.signature.c_str()),
          "sd_bus_message_open_container");
    append(message, value);
    check(sd_bus_message_close_container(message),
          "sd_bus_message_close_container");
}

Value readValue(sd_bus_message* message)
{
    char type = 0;
    const char* contents = nullptr;
    check(sd_bus_message_peek_type(message, &type, &contents),
          "sd_bus_message_peek_type");
    switch (type)
    {
        case 'y':
            return readNumber<std::uint8_t>(message, type);
        case 'n':
            return readNumber<std::int16_t>(message, type);
        case 'q':
            return readNumber<std::uint16_t>(message, type);
        case 'b':
        case 'i':
            return readNumber<std::int32_t>(message, type);
        case 'u':
            return readNumber<std::uint32_t>(message, type);
        case 'x':
            return readNumber<std::int64_t>(message, type);
        case 't':
            return readNumber<std::uint64_t>(message, type);
        case 'd':
            return readNumber<double>(message, type);
        case 's':
        case 'o':
        case 'g':
            return readText(message, type);
        case 'h':
            check(-EOPNOTSUPP, "reading a file descriptor");
            [[fallthrough]];
        default:
            return readContainer(message, type, contents);
    }
}

std::vector<Value> readValues(sd_bus_message* message)
{
    std::vector<Value> values;
    while (check(sd_bus_message_at_end(message, false),
                 "sd_bus_message_at_end") == 0)
    {
        values.push_back(readValue(message));
    }
    return values;
}

Json toJson(const Value& value)
{
    const auto convert = [&](const auto& held) -> Json {
        using Held = std::remove_cvref_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, Value::Members>)
        {
            return containerToJson(value);
        }
        else if constexpr (std::is_same_v<Held, double>)
        {
            return doubleToJson(held);
        }
        else
        {
            return value.signature == "b" ? Json(held != Held{}) : Json(held);
        }
    };
    return std::visit(convert, value.data);
}

Json toJson(const std::vector<Value>& values)
{
    Json list = Json::array();
    for (const Value& value : values)
    {
        list.push_back(toJson(value));
    }
    return list;
}

} // namespace morvath::sim
