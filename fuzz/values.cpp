// SPDX-License-Identifier: Apache-2.0
#include "fuzz/values.hpp"

#include "fuzz/words.hpp"

#include <climits>
#include <cstdlib>
#include <string>
#include <string_view>

namespace morvath::fuzz
{
namespace
{

// Of two and more the frequent ones; the first belongs to a zero.
constexpr std::string_view basicTypes = "sssbynqiuxtdog";
constexpr std::string_view anyTypes = "sbynqiuxtdogvva(a{a";
constexpr std::size_t deepestType = 3;
constexpr std::size_t deepestValue = 24;
constexpr std::size_t mostElements = 4;
constexpr std::size_t mostProperties = 16;

std::string anyType(Input& input, std::size_t depth = 0)
{
    const auto& types = depth < deepestType ? anyTypes : basicTypes;
    const char first = types[input.below(types.size())];
    if (first == 'a')
    {
        return 'a' + anyType(input, depth + 1);
    }
    if (first == '{')
    {
        const auto key = anyType(input, deepestType);
        return "a{" + key + anyType(input, depth + 1) + '}';
    }
    if (first == '(')
    {
        auto fields = anyType(input, depth + 1);
        for (auto more = input.below(mostElements); more > 0; --more)
        {
            fields += anyType(input, depth + 1);
        }
        return '(' + fields + ')';
    }
    return {first};
}

/** The length of the first complete type. */
std::size_t lengthOfType(std::string_view types)
{
    std::size_t length = types.find_first_not_of('a');
    int open = 0;
    do
    {
        const char type = types[length++];
        open += (type == '(' || type == '{') - (type == ')' || type == '}');
    } while (open > 0);
    return length;
}

template <typename Fill>
void inside(sd_bus_message* message, char type, const std::string& contents,
            const Fill& fill)
{
    check(sd_bus_message_open_container(message, type, contents.c_str()));
    fill();
    check(sd_bus_message_close_container(message));
}

/** One for a zero, so that what an input leaves open leads deep. */
std::size_t few(Input& input)
{
    return (input.below(mostElements) + 1) % mostElements;
}

template <typename Fill>
void repeat(std::size_t count, const Fill& fill)
{
    while (count-- > 0)
    {
        fill();
    }
}

void appendText(sd_bus_message* message, const std::string& text,
                char type = 's')
{
    check(sd_bus_message_append_basic(message, type, text.c_str()));
}

void appendBasic(sd_bus_message* message, Input& input, char type)
{
    switch (type)
    {
        case 's': return appendText(message, input.oneOf(values));
        case 'o':
            return appendText(
                message, objectPaths[input.below(objectPaths.size())], type);
        case 'g': return appendText(message, anyType(input), type);
        default:
        {
            // As wide as the widest; the others take their part of it.
            const uint64_t number = type == 'b'   ? input.below(2)
                                    : type == 'y' ? input.byte()
                                                  : input.number<uint64_t>();
            check(sd_bus_message_append_basic(message, type, &number));
        }
    }
}

void append(sd_bus_message* message, Input& input, std::string_view types,
            std::size_t depth = 0)
{
    while (!types.empty())
    {
        const auto length = lengthOfType(types);
        const char type = types.front();
        std::string contents(types.substr(1, length - 1));
        types.remove_prefix(length);
        const auto fill = [&] { append(message, input, contents, depth + 1); };
        if (type == 'a')
        {
            inside(message, type, contents, [&] { repeat(few(input), fill); });
        }
        else if (type == '(' || type == '{')
        {
            contents.pop_back();
            inside(message, type == '(' ? 'r' : 'e', contents, fill);
        }
        else if (type == 'v')
        {
            contents = anyType(input, depth < deepestValue ? 0 : deepestType);
            inside(message, type, contents, fill);
        }
        else
        {
            appendBasic(message, input, type);
        }
    }
}

void appendOwners(sd_bus_message* reply, Input& input)
{
    repeat(few(input), [&] {
        inside(reply, 'e', "sas", [&] {
            appendText(reply, input.oneOf(services));
            append(reply, input, "as");
        });
    });
}

} // namespace

void check(int result)
{
    if (result < 0)
    {
        std::abort();
    }
}

void appendObjects(sd_bus_message* reply, Input& input)
{
    inside(reply, 'a', "{sa{sas}}", [&] {
        repeat(few(input), [&] {
            inside(reply, 'e', "sa{sas}", [&] {
                appendText(reply, input.oneOf(objectPaths));
                inside(reply, 'a', "{sas}",
                       [&] { appendOwners(reply, input); });
            });
        });
    });
}

void appendPaths(sd_bus_message* reply, Input& input)
{
    inside(reply, 'a', "s", [&] {
        repeat(few(input),
               [&] { appendText(reply, input.oneOf(objectPaths)); });
    });
}

void appendProperties(sd_bus_message* reply, Input& input)
{
    // All with one text, or all but one, or none of them; each eighth may have
    // a number instead. Then some again, of which the last counts.
    const auto text = input.oneOf(values);
    const auto numbers = input.byte();
    const std::size_t missing = input.byte();
    inside(reply, 'a', "{sv}", [&] {
        for (std::size_t index = 0; index < properties.size(); ++index)
        {
            if (index + 1 != missing && missing <= properties.size())
            {
                const bool isNumber = numbers >> index % CHAR_BIT & 1;
                check(sd_bus_message_append(
                    reply, "{sv}", properties[index], "s",
                    isNumber ? values.front() : text.c_str()));
            }
        }
        repeat(input.below(mostProperties), [&] {
            inside(reply, 'e', "sv", [&] {
                appendText(reply, input.oneOf(properties));
                appendVariant(reply, input);
            });
        });
    });
}

void appendVariant(sd_bus_message* reply, Input& input)
{
    const auto kind = input.below(mostElements);
    const auto type = kind == 0   ? "s"
                      : kind == 1 ? "as"
                                  : anyType(input, kind == 2 ? 0 : deepestType);
    inside(reply, 'v', type, [&] { append(reply, input, type, 1); });
}

void appendAnything(sd_bus_message* reply, Input& input)
{
    repeat(few(input), [&] { append(reply, input, anyType(input)); });
}

} // namespace morvath::fuzz
