// SPDX-License-Identifier: Apache-2.0
#include "sim/json_value.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <unordered_set>
#include <utility>

namespace morvath::sim
{
namespace
{

// A message may have 64 containers in each other, and a reply to GetAll has
// two around the variant of each property.
constexpr unsigned deepestValue = 62;

/** sd-bus would end a text there. */
bool hasZero(std::string_view text) { return text.find('\0') != text.npos; }

template <typename Value>
Value fromJson(const Json& json, char type)
{
    using Limits = std::numeric_limits<Value>;
    return static_cast<Value>(
        asWhole(json, Limits::min(), Limits::max(), type));
}

template <>
bool fromJson(const Json& json, char)
{
    return asFlag(json);
}

template <>
double fromJson(const Json& json, char)
{
    const auto isWord = json == "nan" || json == "inf" || json == "-inf";
    demand(isWord || json.is_number(), json,
           R"(must be a number, "nan", "inf" or "-inf" (type d))");
    return isWord ? std::stod(asText(json)) : json.get<double>();
}

template <>
const char* fromJson(const Json& json, char)
{
    demand(!hasZero(asText(json)), json,
           "the bus carries no text with a zero character");
    return asText(json).c_str();
}

Json toJson(auto value) { return value; }

Json toJson(double number)
{
    const auto* word = std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf";
    return std::isfinite(number) ? Json(number) : Json(word);
}

/** A type that sd-bus reads from and writes to memory, of eight bytes. */
struct BasicType
{
    char type;
    void (*store)(const Json& value, char type, void* memory);
    Json (*load)(const void* memory);
};

template <typename Value, typename Stored = Value>
constexpr BasicType basic(char type)
{
    return {type,
            [](const Json& json, char type, void* memory) {
                const Stored stored = fromJson<Value>(json, type);
                std::memcpy(memory, &stored, sizeof(stored));
            },
            [](const void* memory) {
                Stored stored{};
                std::memcpy(&stored, memory, sizeof(stored));
                return toJson(static_cast<Value>(stored));
            }};
}

constexpr std::array basicTypes{
    basic<uint8_t>('y'),     basic<int16_t>('n'),     basic<uint16_t>('q'),
    basic<int32_t>('i'),     basic<uint32_t>('u'),    basic<int64_t>('x'),
    basic<uint64_t>('t'),    basic<bool, int>('b'),   basic<double>('d'),
    basic<const char*>('s'), basic<const char*>('o'), basic<const char*>('g')};

bool isText(char type) { return type == 's' || type == 'o' || type == 'g'; }

/** Null for a container and for a file descriptor. */
const BasicType* basicType(char type)
{
    const auto* found = std::ranges::find(basicTypes, type, &BasicType::type);
    return found == basicTypes.end() ? nullptr : found;
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

    void append(std::string_view type, const Json& value)
    {
        const auto letter = type.front();
        if (const auto* basic = basicType(letter))
        {
            return appendBasic(*basic, value);
        }
        demand(letter != 'h', value,
               "a file descriptor cannot be written down (type h)");
        if (letter == 'v')
        {
            allowOnly(value, {"type", "value"});
            return appendVariant(value);
        }
        const auto isArray = letter == 'a';
        const std::string inside(
            type.substr(1, type.size() - (isArray ? 1 : 2)));
        const auto container = isArray ? 'a' : letter == '(' ? 'r' : 'e';
        const auto isObject =
            isArray && inside.front() == '{' && value.is_object();
        appendContainer(container, inside, value, [&] {
            isObject ? appendEntries(inside, value)
                     : appendList(inside, value, isArray);
        });
    }

    void appendVariant(const Json& json)
    {
        const auto& type = member(json, "type");
        const auto& value = member(json, "value");
        appendContainer('v', asText(type), type,
                        [&] { append(asText(type), value); });
    }

    /** A value for each of the types, or any number for one. */
    void appendList(std::string_view types, const Json& list, bool isArray)
    {
        auto rest = types;
        for (const auto& one : asList(list))
        {
            demand(!rest.empty(), one,
                   "is one value too many for " + std::string(types));
            const auto type = firstType(rest);
            append(type, one);
            rest.remove_prefix(isArray ? 0 : type.size());
        }
        demand(isArray || rest.empty(), list,
               "has too few values for " + std::string(types));
    }

  private:
    void appendBasic(const BasicType& basic, const Json& value)
    {
        uint64_t memory = 0;
        basic.store(value, basic.type, &memory);
        const void* data = &memory;
        const auto result = sd_bus_message_append_basic(
            message, basic.type,
            isText(basic.type) ? asText(value).c_str() : data);
        demand(result != -EINVAL, value,
               std::string("the bus does not carry this text as type ") +
                   basic.type);
        check(result, "sd_bus_message_append_basic");
    }

    /** A container whose contents cannot be appended has spoilt the message. */
    void appendContainer(char type, const std::string& contents,
                         const Json& place, const auto& appendContents)
    {
        demand(++depth <= deepestValue, place,
               "is nested too deep for the bus");
        const auto opened =
            hasZero(contents) ? -EINVAL
                              : sd_bus_message_open_container(message, type,
                                                              contents.c_str());
        demand(opened != -EINVAL, place,
               '"' + contents + "\" is not one complete D-Bus type");
        check(opened, "sd_bus_message_open_container");
        appendContents();
        check(sd_bus_message_close_container(message),
              "sd_bus_message_close_container");
        --depth;
    }

    /** A mistake in a key is one of its value: only that has a place. */
    void appendEntries(const std::string& entry, const Json& object)
    {
        const auto inside = entry.substr(1, entry.size() - 2);
        for (const auto& one : object.items())
        {
            appendContainer('e', inside, one.value(), [&] {
                try
                {
                    append(inside.substr(0, 1), one.key());
                }
                catch (const Mistake& mistake)
                {
                    throw Mistake(one.value(), mistake.what());
                }
                append(inside.substr(1), one.value());
            });
        }
    }

    sd_bus_message* message;
    unsigned depth = 0;
};

/** A message to nobody: sd-bus tells what it takes. */
Message scratch()
{
    thread_local const auto nothing = [] {
        sd_bus* bus = nullptr;
        check(sd_bus_new(&bus));
        // Messages can be made as soon as it is decided that there is no peer.
        sd_bus_close(bus);
        return Bus(bus);
    }();
    sd_bus_message* message = nullptr;
    check(
        sd_bus_message_new(nothing.get(), &message, SD_BUS_MESSAGE_METHOD_CALL),
        "sd_bus_message_new");
    return Message(message);
}

/** An object when the keys are different texts, else the list itself. */
Json dictionaryOf(Json&& entries, char keyType)
{
    std::unordered_set<std::string_view> keys;
    const auto isName = [&](const Json& entry) {
        return keys.insert(asText(entry[0])).second;
    };
    if (!isText(keyType) || !std::ranges::all_of(entries, isName))
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

bool storeBasic(std::string_view type, const Json& value, void* memory)
{
    const auto* basic = basicType(type.front());
    if (basic)
    {
        basic->store(value, type.front(), memory);
    }
    return basic;
}

void append(sd_bus_message* message, std::string_view type, const Json& value)
{
    Appender(message).append(type, value);
}

void appendValues(sd_bus_message* message, std::string_view types,
                  const Json& value)
{
    const auto isOne =
        !types.empty() && firstType(types).size() == types.size();
    isOne ? append(message, types, value)
          : Appender(message).appendList(types, value, false);
}

void checkValue(std::string_view type, const Json& value)
{
    append(scratch().get(), type, value);
}

void checkVariant(const Json& json)
{
    Appender(scratch().get()).appendVariant(json);
}

void checkValues(const Json& types, const Json& value)
{
    checkValue("g", types);
    appendValues(scratch().get(), asText(types), value);
}

void checkName(const NameKind& kind, const std::string& name, const Json& place)
{
    demand(!hasZero(name) && kind.isValid(name.c_str()) > 0, place,
           '"' + name + "\" is not " + kind.description);
}

const std::string& asName(const NameKind& kind, const Json& json)
{
    checkName(kind, asText(json), json);
    return asText(json);
}

Json readJson(sd_bus_message* message)
{
    char type = 0;
    const char* inside = nullptr;
    check(sd_bus_message_peek_type(message, &type, &inside),
          "sd_bus_message_peek_type");
    if (const auto* basic = basicType(type))
    {
        uint64_t memory = 0;
        check(sd_bus_message_read_basic(message, type, &memory),
              "sd_bus_message_read_basic");
        return basic->load(&memory);
    }
    check(type == 'h' ? -EOPNOTSUPP : 0, "reading a file descriptor");
    // The text is the message's and moves on with it.
    const std::string contents = inside;
    check(sd_bus_message_enter_container(message, type, contents.c_str()),
          "sd_bus_message_enter_container");
    auto list = readJsonList(message);
    check(sd_bus_message_exit_container(message),
          "sd_bus_message_exit_container");
    if (type == 'v')
    {
        return {{"type", contents}, {"value", std::move(list[0])}};
    }
    return contents.front() == '{' && type == 'a'
               ? dictionaryOf(std::move(list), contents[1])
               : list;
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
