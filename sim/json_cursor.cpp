// SPDX-License-Identifier: Apache-2.0
#include "sim/json_cursor.hpp"

#include "cli/words.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <unordered_set>
#include <utility>

namespace morvath::sim
{
namespace
{

// Enough for every value that the bus carries.
constexpr std::size_t deepest = 100;

std::string escaped(std::string_view key)
{
    std::string result;
    for (const auto character : key)
    {
        switch (character)
        {
            case '~': result += "~0"; break;
            case '/': result += "~1"; break;
            default: result += character;
        }
    }
    return result;
}

std::string errorText(std::string_view source, const std::string& pointer,
                      const std::string& message)
{
    return std::string(source) + ": " + pointer + ": " + message;
}

/** The JSON pointer of a value of the document, which is looked for in it. */
std::optional<std::string> pointerTo(const Json& wanted, const Json& inside)
{
    if (&wanted == &inside)
    {
        return "";
    }
    if (inside.is_structured())
    {
        for (const auto& [key, child] : inside.items())
        {
            if (const auto rest = pointerTo(wanted, child))
            {
                return '/' + escaped(key) + *rest;
            }
        }
    }
    return std::nullopt;
}

/**
 * Builds a document of which no object has a key twice. The library's own
 * parser looks through all earlier keys of an object for every key.
 */
class Builder
{
  public:
    explicit Builder(std::string_view source) : source(source) {}

    Json release() { return std::move(document); }

    bool null() { return value(nullptr); }

    bool boolean(bool flag) { return value(flag); }

    bool number_integer(int64_t number) { return value(number); }

    bool number_unsigned(uint64_t number) { return value(number); }

    bool number_float(double number, const std::string&)
    {
        return value(number);
    }

    bool string(std::string& text) { return value(std::move(text)); }

    bool binary(Json::binary_t&) { return false; }

    bool start_object(std::size_t) { return start(Json::object()); }

    bool key(std::string& key)
    {
        auto& level = open.back();
        // Past the library's own search for the key.
        Json::object_t::Container& members =
            level.value->get_ref<Json::object_t&>();
        members.emplace_back(key, nullptr);
        if (!level.keys.insert(key).second)
        {
            const auto place = pointerTo(members.back().second, document);
            throw ScenarioError(
                errorText(source, *place, "the key stands here twice"));
        }
        return true;
    }

    bool end_object()
    {
        open.pop_back();
        return true;
    }

    bool start_array(std::size_t) { return start(Json::array()); }

    bool end_array() { return end_object(); }

    bool parse_error(std::size_t, const std::string&,
                     const Json::exception& error)
    {
        // In front of the text stands the parser's own error number.
        const std::string_view what = error.what();
        const auto end = what.find("] ");
        throw ScenarioError(
            std::string(source) + ": " +
            std::string(end == what.npos ? what : what.substr(end + 2)));
    }

  private:
    struct Level
    {
        Json* value;
        std::unordered_set<std::string> keys{};
    };

    Json& add(Json&& part)
    {
        if (open.empty())
        {
            return document = std::move(part);
        }
        auto& parent = *open.back().value;
        if (parent.is_array())
        {
            return parent.emplace_back(std::move(part));
        }
        auto& members = parent.get_ref<Json::object_t&>();
        return members.back().second = std::move(part);
    }

    bool value(Json&& part)
    {
        add(std::move(part));
        return true;
    }

    bool start(Json&& part)
    {
        open.push_back({&add(std::move(part))});
        if (open.size() > deepest)
        {
            throw ScenarioError(std::string(source) +
                                ": the nesting is too deep");
        }
        return true;
    }

    std::string_view source;
    Json document;
    std::vector<Level> open;
};

} // namespace

void JsonCursor::fail(const std::string& message) const
{
    const auto pointer = pointerTo(*place, *root).value_or("");
    throw ScenarioError(
        errorText(source, pointer.empty() ? "/" : pointer, message));
}

void JsonCursor::failBelow(const std::string& pointer,
                           const std::string& message) const
{
    throw ScenarioError(errorText(
        source, pointerTo(*place, *root).value_or("") + pointer, message));
}

std::optional<JsonCursor> JsonCursor::find(std::string_view key) const
{
    if (!contents->is_object())
    {
        fail("must be an object");
    }
    const auto found = contents->find(key);
    if (found == contents->end())
    {
        return std::nullopt;
    }
    return at(*found);
}

JsonCursor JsonCursor::member(std::string_view key) const
{
    const auto found = find(key);
    if (!found)
    {
        fail("\"" + std::string(key) + "\" is missing");
    }
    return *found;
}

void JsonCursor::forEachElement(
    const std::function<void(const JsonCursor&)>& action) const
{
    if (!contents->is_array())
    {
        fail("must be an array");
    }
    for (const auto& element : *contents)
    {
        action(at(element));
    }
}

void JsonCursor::forEachMember(
    const std::function<void(const std::string&, const JsonCursor&)>& action)
    const
{
    if (!contents->is_object())
    {
        fail("must be an object");
    }
    for (const auto& [key, child] : contents->items())
    {
        action(key, at(child));
    }
}

void JsonCursor::allowOnly(const std::vector<std::string_view>& keys) const
{
    forEachMember([&](const std::string& key, const JsonCursor& child) {
        if (std::ranges::find(keys, key) == keys.end())
        {
            cli::Terms known;
            for (const auto name : keys)
            {
                known.push_back({std::string(name), {}});
            }
            child.fail(cli::unknown("key", key, known));
        }
    });
}

const std::string& JsonCursor::text() const
{
    if (!contents->is_string())
    {
        fail("must be a text");
    }
    return contents->get_ref<const std::string&>();
}

bool JsonCursor::flag() const
{
    if (!contents->is_boolean())
    {
        fail("must be true or false");
    }
    return contents->get<bool>();
}

template <typename Number>
Number JsonCursor::number(char type) const
{
    const auto fits = contents->is_number_unsigned()
                          ? std::in_range<Number>(contents->get<uint64_t>())
                          : contents->is_number_integer() &&
                                std::in_range<Number>(contents->get<int64_t>());
    if (!fits)
    {
        using Limits = std::numeric_limits<Number>;
        fail("must be a whole number from " + std::to_string(Limits::min()) +
             " to " + std::to_string(Limits::max()) +
             (type ? std::string(" (type ") + type + ')' : ""));
    }
    return contents->get<Number>();
}

template uint8_t JsonCursor::number(char) const;
template int16_t JsonCursor::number(char) const;
template uint16_t JsonCursor::number(char) const;
template int32_t JsonCursor::number(char) const;
template uint32_t JsonCursor::number(char) const;
template int64_t JsonCursor::number(char) const;
template uint64_t JsonCursor::number(char) const;

Json parseJson(std::string_view text, std::string_view source)
{
    Builder builder(source);
    Json::sax_parse(text, &builder);
    return builder.release();
}

} // namespace morvath::sim
