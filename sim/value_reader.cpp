// SPDX-License-Identifier: Apache-2.0
#include "sim/value_reader.hpp"

#include "sim/signature.hpp"

#include <limits>
#include <utility>

namespace morvath::sim
{

namespace
{

template <typename T>
Value integerFromJson(std::string_view type, const JsonCursor& json)
{
    const std::string name(type);
    return {name, json.number<T>(" (type " + name + ")")};
}

Value doubleFromJson(const JsonCursor& json)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr std::pair<std::string_view, double> words[] = {
        {"nan", std::numeric_limits<double>::quiet_NaN()},
        {"inf", infinity},
        {"-inf", -infinity}};
    if (json.json().is_number())
    {
        return {"d", json.json().get<double>()};
    }
    for (const auto& [word, number] : words)
    {
        if (json.json() == word)
        {
            return {"d", number};
        }
    }
    json.fail(R"(must be a number, "nan", "inf" or "-inf" (type d))");
}

Value textFromJson(std::string_view type, const JsonCursor& json)
{
    const std::string& text = json.text();
    if (text.find('\0') != std::string::npos)
    {
        json.fail("the bus carries no text with a zero character");
    }
    if (type == "o" && sd_bus_object_path_is_valid(text.c_str()) <= 0)
    {
        json.fail("\"" + text + "\" is no object path");
    }
    if (type == "g" && !isSignature(text))
    {
        json.fail("\"" + text + "\" is no signature");
    }
    return {std::string(type), text};
}

Value structureFromJson(std::string_view type, const JsonCursor& json)
{
    std::string_view rest = type.substr(1, type.size() - 2);
    Value::Members members;
    json.forEachElement([&](const JsonCursor& field) {
        if (rest.empty())
        {
            field.fail("is one field too many for " + std::string(type));
        }
        const std::string_view fieldType = firstType(rest);
        members.push_back(valueFromJson(fieldType, field));
        rest.remove_prefix(fieldType.size());
    });
    if (!rest.empty())
    {
        json.fail("has too few fields for " + std::string(type));
    }
    return {std::string(type), std::move(members)};
}

Value dictionaryFromJson(std::string_view type, const JsonCursor& json)
{
    const std::string_view entryType = type.substr(1);
    const std::string_view keyType = entryType.substr(1, 1);
    const std::string_view valueType =
        entryType.substr(2, entryType.size() - 3);
    Value::Members entries;
    json.forEachMember([&](const std::string& key, const JsonCursor& member) {
        const Json keyJson(key);
        Value::Members pair{valueFromJson(keyType, member.replaced(keyJson)),
                            valueFromJson(valueType, member)};
        entries.push_back({std::string(entryType), std::move(pair)});
    });
    return {std::string(type), std::move(entries)};
}

Value arrayFromJson(std::string_view type, const JsonCursor& json)
{
    const std::string_view elementType = type.substr(1);
    const bool isDictionary = elementType.front() == '{';
    if (isDictionary && json.json().is_object())
    {
        return dictionaryFromJson(type, json);
    }
    Value::Members elements;
    json.forEachElement([&](const JsonCursor& element) {
        // An entry is written like a structure: [key, value].
        Value value = isDictionary ? structureFromJson(elementType, element)
                                   : valueFromJson(elementType, element);
        elements.push_back(std::move(value));
    });
    return {std::string(type), std::move(elements)};
}

Value booleanFromJson(const JsonCursor& json)
{
    return {"b", static_cast<std::int32_t>(json.flag())};
}

Value variantFromJson(const JsonCursor& json)
{
    json.allowOnly({"type", "value"});
    return {"v", Value::Members{typedValueFromJson(json)}};
}

} // namespace

Value valueFromJson(std::string_view type, const JsonCursor& json)
{
    switch (type.front())
    {
        case 'b':
            return booleanFromJson(json);
        case 'y':
            return integerFromJson<std::uint8_t>(type, json);
        case 'n':
            return integerFromJson<std::int16_t>(type, json);
        case 'q':
            return integerFromJson<std::uint16_t>(type, json);
        case 'i':
            return integerFromJson<std::int32_t>(type, json);
        case 'u':
            return integerFromJson<std::uint32_t>(type, json);
        case 'x':
            return integerFromJson<std::int64_t>(type, json);
        case 't':
            return integerFromJson<std::uint64_t>(type, json);
        case 'd':
            return doubleFromJson(json);
        case 'v':
            return variantFromJson(json);
        case 'a':
            return arrayFromJson(type, json);
        case '(':
            return structureFromJson(type, json);
        case 'h':
            json.fail("a file descriptor cannot be written down (type h)");
        default:
            return textFromJson(type, json);
    }
}

Value typedValueFromJson(const JsonCursor& json)
{
    const JsonCursor type = json.member("type");
    if (!isCompleteType(type.text()))
    {
        type.fail("\"" + type.text() + "\" is not one complete D-Bus type");
    }
    return valueFromJson(type.text(), json.member("value"));
}

} // namespace morvath::sim
