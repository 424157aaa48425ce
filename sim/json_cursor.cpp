// SPDX-License-Identifier: Apache-2.0
#include "sim/json_cursor.hpp"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace morvath::sim
{

// sd-bus nests containers up to 128 deep; what is read here fits into that.
constexpr std::size_t depthLimit = 100;

namespace
{

std::string escaped(std::string_view key)
{
    std::string result;
    for (char character : key)
    {
        switch (character)
        {
            case '~':
                result += "~0";
                break;
            case '/':
                result += "~1";
                break;
            default:
                result += character;
        }
    }
    return result;
}

std::string errorText(std::string_view source, const std::string& pointer,
                      const std::string& message)
{
    return std::string(source) + ": " + pointer + ": " + message;
}

/** Looks for what the parser lets pass: equal keys and endless nesting. */
class StructureGuard
{
  public:
    explicit StructureGuard(std::string_view source) : source_(source) {}

    void see(Json::parse_event_t event, const Json& parsed)
    {
        switch (event)
        {
            case Json::parse_event_t::object_start:
            case Json::parse_event_t::array_start:
                enterLevel();
                break;
            case Json::parse_event_t::key:
                enter(parsed.get_ref<const std::string&>());
                break;
            case Json::parse_event_t::object_end:
            case Json::parse_event_t::array_end:
                open_.pop_back();
                [[fallthrough]];
            case Json::parse_event_t::value:
                finishElement();
        }
    }

  private:
    struct Level
    {
        std::set<std::string> keys;
        std::string key;
        std::size_t elements = 0;
    };

    void enterLevel()
    {
        open_.emplace_back();
        if (open_.size() > depthLimit)
        {
            throw ScenarioError(std::string(source_) +
                                ": the nesting is too deep");
        }
    }

    void enter(const std::string& key)
    {
        open_.back().key = key;
        if (!open_.back().keys.insert(key).second)
        {
            throw ScenarioError(
                errorText(source_, pointer(), "the key stands here twice"));
        }
    }

    void finishElement()
    {
        if (!open_.empty())
        {
            open_.back().elements++;
        }
    }

    std::string pointer() const
    {
        std::string result;
        for (const Level& level : open_)
        {
            result += "/" + (level.keys.empty() ? std::to_string(level.elements)
                                                : escaped(level.key));
        }
        return result;
    }

    std::string_view source_;
    std::vector<Level> open_;
};

} // namespace

JsonCursor::JsonCursor(const Json& root, std::string_view source) :
    JsonCursor(root, source, "")
{}

JsonCursor::JsonCursor(const Json& json, std::string_view source,
                       std::string pointer) :
    json_(&json),
    source_(source),
    pointer_(std::move(pointer))
{}

void JsonCursor::fail(const std::string& message) const
{
    throw ScenarioError(
        errorText(source_, pointer_.empty() ? "/" : pointer_, message));
}

JsonCursor JsonCursor::at(const Json& child, std::string_view key) const
{
    return {child, source_, pointer_ + "/" + escaped(key)};
}

std::optional<JsonCursor> JsonCursor::find(std::string_view key) const
{
    if (!json_->is_object())
    {
        fail("must be an object");
    }
    const auto found = json_->find(key);
    if (found == json_->end())
    {
        return std::nullopt;
    }
    return at(*found, key);
}

JsonCursor JsonCursor::member(std::string_view key) const
{
    std::optional<JsonCursor> found = find(key);
    if (!found)
    {
        fail("\"" + std::string(key) + "\" is missing");
    }
    return *std::move(found);
}

void JsonCursor::forEachElement(
    const std::function<void(const JsonCursor&)>& action) const
{
    if (!json_->is_array())
    {
        fail("must be an array");
    }
    for (std::size_t index = 0; index < json_->size(); index++)
    {
        action(at((*json_)[index], std::to_string(index)));
    }
}

void JsonCursor::forEachMember(
    const std::function<void(const std::string&, const JsonCursor&)>& action)
    const
{
    if (!json_->is_object())
    {
        fail("must be an object");
    }
    for (const auto& [key, child] : json_->items())
    {
        action(key, at(child, key));
    }
}

void JsonCursor::allowOnly(const std::vector<std::string_view>& keys) const
{
    forEachMember([&](const std::string& key, const JsonCursor& child) {
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
        {
            child.fail("the key is unknown here");
        }
    });
}

const std::string& JsonCursor::text() const
{
    if (!json_->is_string())
    {
        fail("must be a text");
    }
    return json_->get_ref<const std::string&>();
}

bool JsonCursor::flag() const
{
    if (!json_->is_boolean())
    {
        fail("must be true or false");
    }
    return json_->get<bool>();
}

Json parseJson(std::string_view text, std::string_view source)
{
    StructureGuard guard(source);
    const auto watch = [&](int, Json::parse_event_t event, Json& parsed) {
        guard.see(event, parsed);
        return true;
    };
    try
    {
        return Json::parse(text, watch);
    }
    catch (const Json::exception& error)
    {
        // In front of the text stands the parser's own error number.
        const std::string_view what = error.what();
        const auto end = what.find("] ");
        throw ScenarioError(
            std::string(source) + ": " +
            std::string(end == what.npos ? what : what.substr(end + 2)));
    }
}

} // namespace morvath::sim
