// SPDX-License-Identifier: Apache-2.0
#include "sim/json_value.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <limits>
#include <unordered_set>
#include <utility>

namespace morvath::sim
{
namespace
{

// A message may have 64 containers in each other, and a reply to GetAll has
// two around the variant of each property.
constexpr unsigned deepest = 62;

constexpr std::array<std::pair<std::string_view, double>, 3> wordsForDoubles{
    {{"nan", std::numeric_limits<double>::quiet_NaN()},
     {"inf", std::numeric_limits<double>::infinity()},
     {"-inf", -std::numeric_limits<double>::infinity()}}};

double doubleIn(const JsonCursor& value)
{
    if (value.json().is_number())
    {
        return value.json().get<double>();
    }
    const auto* word =
        std::ranges::find_if(wordsForDoubles, [&](const auto& one) {
            return value.json() == one.first;
        });
    if (word == wordsForDoubles.end())
    {
        value.fail(R"(must be a number, "nan", "inf" or "-inf" (type d))");
    }
    return word->second;
}

/** The complete type that a valid signature begins with. */
std::string_view firstType(std::string_view signature)
{
    std::size_t length = 0;
    for (int open = 0;; ++length)
    {
        const auto letter = signature[length];
        open += letter == '(' || letter == '{';
        open -= letter == ')' || letter == '}';
        if (open == 0 && letter != 'a')
        {
            return signature.substr(0, length + 1);
        }
    }
}

/** Puts values into a message, and knows how deep it is in them. */
class Appender
{
  public:
    explicit Appender(sd_bus_message* message) : message(message) {}

    void append(std::string_view type, const JsonCursor& value)
    {
        const auto letter = type.front();
        switch (letter)
        {
            case 'b':
            {
                const int flag = value.flag();
                return appendBasic(letter, &flag);
            }
            case 'y': return appendInteger<uint8_t>(letter, value);
            case 'n': return appendInteger<int16_t>(letter, value);
            case 'q': return appendInteger<uint16_t>(letter, value);
            case 'i': return appendInteger<int32_t>(letter, value);
            case 'u': return appendInteger<uint32_t>(letter, value);
            case 'x': return appendInteger<int64_t>(letter, value);
            case 't': return appendInteger<uint64_t>(letter, value);
            case 'd':
            {
                const auto number = doubleIn(value);
                return appendBasic(letter, &number);
            }
            case 'v':
                value.allowOnly({"type", "value"});
                return appendVariant(value);
            case 'a': return appendArray(type, value);
            case '(': return appendStructure(SD_BUS_TYPE_STRUCT, type, value);
            case '{':
                return appendStructure(SD_BUS_TYPE_DICT_ENTRY, type, value);
            case 'h':
                value.fail("a file descriptor cannot be written down (type h)");
            default: return appendText(letter, value);
        }
    }

    void appendValues(std::string_view types, const JsonCursor& value)
    {
        if (!types.empty() && firstType(types).size() == types.size())
        {
            return append(types, value);
        }
        appendList(types, types, value);
    }

    void appendVariant(const JsonCursor& value)
    {
        const auto type = value.member("type");
        const auto contents = value.member("value");
        Container variant(*this, 'v', type.text(), type);
        append(type.text(), contents);
        variant.close();
    }

  private:
    /** Opens a container. One that is not closed has spoilt the message. */
    class Container
    {
      public:
        Container(Appender& appender, char type, std::string_view contents,
                  const JsonCursor& place) :
            appender(appender)
        {
            if (++appender.depth > deepest)
            {
                place.fail("is nested too deep for the bus");
            }
            const std::string signature(contents);
            const auto opened =
                signature.find('\0') == signature.npos
                    ? sd_bus_message_open_container(appender.message, type,
                                                    signature.c_str())
                    : -EINVAL;
            if (opened == -EINVAL)
            {
                place.fail("\"" + signature +
                           "\" is not one complete D-Bus type");
            }
            check(opened, "sd_bus_message_open_container");
        }

        void close()
        {
            check(sd_bus_message_close_container(appender.message),
                  "sd_bus_message_close_container");
            --appender.depth;
        }

      private:
        Appender& appender;
    };

    void appendBasic(char type, const void* value)
    {
        check(sd_bus_message_append_basic(message, type, value),
              "sd_bus_message_append_basic");
    }

    template <typename Number>
    void appendInteger(char type, const JsonCursor& value)
    {
        const auto number = value.number<Number>(type);
        appendBasic(type, &number);
    }

    void appendText(char type, const JsonCursor& value)
    {
        const auto& text = value.text();
        if (text.find('\0') != text.npos)
        {
            value.fail("the bus carries no text with a zero character");
        }
        const auto result =
            sd_bus_message_append_basic(message, type, text.c_str());
        if (result != -EINVAL)
        {
            check(result, "sd_bus_message_append_basic");
            return;
        }
        switch (type)
        {
            case 'o': value.fail("\"" + text + "\" is not an object path");
            case 'g': value.fail("\"" + text + "\" is not a signature");
            default: value.fail("has a character that the bus does not carry");
        }
    }

    /** A structure, or an entry written like one: [key, value]. */
    void appendStructure(char container, std::string_view type,
                         const JsonCursor& value)
    {
        const auto fields = type.substr(1, type.size() - 2);
        Container structure(*this, container, fields, value);
        appendList(type, fields, value);
        structure.close();
    }

    /** @param[in] name  of all types together */
    void appendList(std::string_view name, std::string_view types,
                    const JsonCursor& value)
    {
        auto rest = types;
        value.forEachElement([&](const JsonCursor& one) {
            if (rest.empty())
            {
                one.fail("is one value too many for " + std::string(name));
            }
            const auto type = firstType(rest);
            append(type, one);
            rest.remove_prefix(type.size());
        });
        if (!rest.empty())
        {
            value.fail("has too few values for " + std::string(name));
        }
    }

    void appendArray(std::string_view type, const JsonCursor& value)
    {
        const auto element = type.substr(1);
        Container array(*this, SD_BUS_TYPE_ARRAY, element, value);
        if (element.front() == '{' && value.json().is_object())
        {
            value.forEachMember(
                [&](const std::string& key, const JsonCursor& member) {
                    appendEntry(element, key, member);
                });
        }
        else
        {
            value.forEachElement(
                [&](const JsonCursor& one) { append(element, one); });
        }
        array.close();
    }

    void appendEntry(std::string_view type, const std::string& key,
                     const JsonCursor& value)
    {
        const auto contents = type.substr(1, type.size() - 2);
        Container entry(*this, SD_BUS_TYPE_DICT_ENTRY, contents, value);
        append(contents.substr(0, 1), value.replaced(Json(key)));
        append(contents.substr(1), value);
        entry.close();
    }

    sd_bus_message* message;
    unsigned depth = 0;
};

template <typename Number>
Json readNumber(sd_bus_message* message, char type)
{
    Number number{};
    check(sd_bus_message_read_basic(message, type, &number),
          "sd_bus_message_read_basic");
    return number;
}

Json readDouble(sd_bus_message* message)
{
    double number = 0;
    check(sd_bus_message_read_basic(message, 'd', &number),
          "sd_bus_message_read_basic");
    for (const auto& [word, value] : wordsForDoubles)
    {
        if (number == value || (std::isnan(number) && std::isnan(value)))
        {
            return word;
        }
    }
    return number;
}

Json readText(sd_bus_message* message, char type)
{
    const char* text = nullptr;
    check(sd_bus_message_read_basic(message, type, &text),
          "sd_bus_message_read_basic");
    return text;
}

Json readContents(sd_bus_message* message, char type, const char* contents)
{
    check(sd_bus_message_enter_container(message, type, contents),
          "sd_bus_message_enter_container");
    auto list = readJsonList(message);
    check(sd_bus_message_exit_container(message),
          "sd_bus_message_exit_container");
    return list;
}

/** An object when the keys are different texts, else the list itself. */
Json dictionaryOf(Json&& entries, char keyType)
{
    std::unordered_set<std::string> keys;
    const auto isName = [&](const Json& entry) {
        return keys.insert(entry[0].get_ref<const std::string&>()).second;
    };
    const auto hasTexts = keyType == 's' || keyType == 'o' || keyType == 'g';
    if (!hasTexts || !std::ranges::all_of(entries, isName))
    {
        return std::move(entries);
    }
    auto object = Json::object();
    Json::object_t::Container& members = object.get_ref<Json::object_t&>();
    for (auto& entry : entries)
    {
        members.emplace_back(entry[0].get_ref<const std::string&>(),
                             std::move(entry[1]));
    }
    return object;
}

} // namespace

Message ValueCheck::scratch() const
{
    sd_bus_message* message = nullptr;
    check(
        sd_bus_message_new(nothing.get(), &message, SD_BUS_MESSAGE_METHOD_CALL),
        "sd_bus_message_new");
    return Message(message);
}

void ValueCheck::text(const JsonCursor& json) const { value("s", json); }

void ValueCheck::value(std::string_view type, const JsonCursor& value) const
{
    append(scratch().get(), type, value);
}

void ValueCheck::typed(const JsonCursor& value) const
{
    appendVariant(scratch().get(), value);
}

void ValueCheck::values(const JsonCursor& types, const JsonCursor& value) const
{
    append(scratch().get(), "g", types);
    appendValues(scratch().get(), types.text(), value);
}

void append(sd_bus_message* message, std::string_view type,
            const JsonCursor& value)
{
    Appender(message).append(type, value);
}

void append(sd_bus_message* message, std::string_view type, const Json& value)
{
    append(message, type, JsonCursor(value, ""));
}

void appendValues(sd_bus_message* message, std::string_view types,
                  const JsonCursor& value)
{
    Appender(message).appendValues(types, value);
}

void appendVariant(sd_bus_message* message, const JsonCursor& value)
{
    Appender(message).appendVariant(value);
}

Json readJson(sd_bus_message* message)
{
    char type = 0;
    const char* contents = nullptr;
    check(sd_bus_message_peek_type(message, &type, &contents),
          "sd_bus_message_peek_type");
    switch (type)
    {
        case 'b': return readNumber<int>(message, type) != 0;
        case 'y': return readNumber<uint8_t>(message, type);
        case 'n': return readNumber<int16_t>(message, type);
        case 'q': return readNumber<uint16_t>(message, type);
        case 'i': return readNumber<int32_t>(message, type);
        case 'u': return readNumber<uint32_t>(message, type);
        case 'x': return readNumber<int64_t>(message, type);
        case 't': return readNumber<uint64_t>(message, type);
        case 'd': return readDouble(message);
        case 's':
        case 'o':
        case 'g': return readText(message, type);
        case 'v': return readJsonVariant(message);
        case 'h': check(-EOPNOTSUPP, "reading a file descriptor"); return {};
        default:
        {
            // The text is the message's and moves on with it.
            const std::string inner = contents;
            auto list = readContents(message, type, inner.c_str());
            return type == 'a' && inner.front() == '{'
                       ? dictionaryOf(std::move(list), inner[1])
                       : list;
        }
    }
}

Json readJsonVariant(sd_bus_message* message)
{
    const char* contents = nullptr;
    check(sd_bus_message_peek_type(message, nullptr, &contents),
          "sd_bus_message_peek_type");
    const std::string type = contents;
    auto value = readContents(message, 'v', type.c_str());
    return {{"type", type}, {"value", std::move(value[0])}};
}

Json readJsonList(sd_bus_message* message)
{
    auto list = Json::array();
    while (check(sd_bus_message_at_end(message, false),
                 "sd_bus_message_at_end") == 0)
    {
        list.push_back(readJson(message));
    }
    return list;
}

} // namespace morvath::sim
