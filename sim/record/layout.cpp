// SPDX-License-Identifier: Apache-2.0
#include "sim/record/layout.hpp"

#include <algorithm>
#include <string_view>

namespace morvath::sim
{

constexpr std::size_t lineLength = 100;

namespace
{

using MemberWriter = std::string (*)(const Json& member, std::size_t depth);

/** The members of an array or an object, each with its key if it has one. */
std::string joined(const Json& container, std::string_view separator,
                   std::size_t depth, MemberWriter write)
{
    std::string text;
    for (const auto& [key, member] : container.items())
    {
        text += text.empty() ? "" : separator;
        text += container.is_object() ? Json(key).dump() + ": " : "";
        text += write(member, depth);
    }
    return text;
}

std::string bracketed(const Json& container, const std::string& contents)
{
    return container.is_object() ? "{" + contents + "}" : "[" + contents + "]";
}

std::string onOneLine(const Json& json, std::size_t = 0)
{
    return json.is_structured()
               ? bracketed(json, joined(json, ", ", 0, onOneLine))
               : json.dump();
}

std::string newLine(std::size_t depth)
{
    return "\n" + std::string(2 * depth, ' ');
}

bool isNested(const Json& json)
{
    return std::any_of(json.begin(), json.end(), [](const Json& member) {
        return member.is_structured();
    });
}

std::string onSomeLines(const Json& json, std::size_t depth)
{
    std::string line = onOneLine(json);
    if (line.size() <= lineLength || !isNested(json))
    {
        return line;
    }
    return bracketed(json, newLine(depth + 1) +
                               joined(json, "," + newLine(depth + 1), depth + 1,
                                      onSomeLines) +
                               newLine(depth));
}

std::string serviceText(const Json& service, std::size_t depth)
{
    const Json& interfaces = service["interfaces"];
    const std::string line = newLine(depth + 1);
    return "{\"name\": " + service["name"].dump() + ", \"interfaces\": {" +
           (interfaces.empty() ? "" : line) +
           joined(interfaces, "," + line, 0, onOneLine) + "}}";
}

std::string objectText(const Json& object, std::size_t depth)
{
    const std::string line = newLine(depth + 1);
    return "{\"path\": " + object["path"].dump() + ", \"services\": [" + line +
           joined(object["services"], "," + line, depth + 1, serviceText) +
           "]}";
}

std::string objectsText(const Json& objects)
{
    return "[" + newLine(2) + joined(objects, "," + newLine(2), 2, objectText) +
           newLine(1) + "]";
}

} // namespace

std::string laidOut(const Json& scenario)
{
    std::string text;
    for (const auto& [key, member] : scenario.items())
    {
        const bool isObjects = key == "objects" && !member.empty();
        text += (text.empty() ? "" : ",") + newLine(1) + Json(key).dump() +
                ": " +
                (isObjects ? objectsText(member) : onSomeLines(member, 1));
    }
    return "{" + text + "\n}\n";
}

} // namespace morvath::sim
