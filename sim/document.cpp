// SPDX-License-Identifier: Apache-2.0
#include "sim/document.hpp"

#include "cli/words.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <unordered_set>
#include <vector>

namespace morvath::sim
{
namespace
{

// Enough for every value that the bus carries.
constexpr std::size_t deepestDocument = 100;

/** Looks for a value by its address. */
bool findPlace(const Json* wanted, const Json& inside,
               Json::json_pointer& place)
{
    if (wanted == &inside)
    {
        return true;
    }
    if (inside.is_structured())
    {
        for (const auto& [key, child] : inside.items())
        {
            place.push_back(key);
            if (findPlace(wanted, child, place))
            {
                return true;
            }
            place.pop_back();
        }
    }
    return false;
}

/**
 * Builds a document of which no object has a key twice. The library's own
 * parser looks through all earlier keys of an object for every key.
 */
class DocumentBuilder
{
  public:
    explicit DocumentBuilder(Json& document) :
        document(document),
        next(&document)
    {}

    // The events of the parser.
    bool null() { return add(nullptr); }
    bool boolean(bool flag) { return add(flag); }
    bool number_integer(int64_t number) { return add(number); }
    bool number_unsigned(uint64_t number) { return add(number); }
    bool number_float(double number, const std::string&) { return add(number); }
    bool string(std::string& text) { return add(std::move(text)); }
    bool binary(Json::binary_t&) { return false; }
    bool start_object(std::size_t) { return add(Json::object(), true); }
    bool start_array(std::size_t) { return add(Json::array(), true); }
    bool end_object() { return end_array(); }

    bool end_array()
    {
        levels.pop_back();
        return true;
    }

    bool key(std::string& key)
    {
        auto& [object, keys] = levels.back();
        // Past the library's own search for the key.
        Json::object_t::Container& members = object->get_ref<Json::object_t&>();
        next = &members.emplace_back(key, nullptr).second;
        demand(keys.insert(key).second, *next, "the key stands here twice");
        return true;
    }

    bool parse_error(std::size_t, const std::string&,
                     const Json::exception& error)
    {
        // In front of the text stands the parser's own error number.
        const std::string what = error.what();
        const auto end = what.find("] ");
        throw Mistake(document, what.substr(end == what.npos ? 0 : end + 2));
    }

  private:
    struct Level
    {
        Json* json;
        std::unordered_set<std::string> keys{};
    };

    bool add(Json&& value, bool opens = false)
    {
        if (!levels.empty() && levels.back().json->is_array())
        {
            next = &levels.back().json->emplace_back(nullptr);
        }
        *next = std::move(value);
        if (opens)
        {
            levels.push_back({next});
        }
        demand(levels.size() <= deepestDocument, document,
               "the nesting is too deep");
        return true;
    }

    Json& document;
    /** Where the next value goes, unless that is a list. */
    Json* next;
    std::vector<Level> levels;
};

} // namespace

ScenarioError located(const Mistake& mistake, const Json& document,
                      std::string_view source)
{
    Json::json_pointer pointer;
    findPlace(mistake.value, document, pointer);
    const auto place = pointer.to_string() + mistake.below;
    return ScenarioError(std::string(source) + ": " +
                         (place.empty() ? "/" : place) + ": " + mistake.what());
}

void parse(std::string_view text, Json& document)
{
    DocumentBuilder builder(document);
    Json::sax_parse(text, &builder);
}

void demand(bool isRight, const Json& value, std::string_view message)
{
    if (!isRight)
    {
        throw Mistake(value, message);
    }
}

const Json& asObject(const Json& json)
{
    demand(json.is_object(), json, "must be an object");
    return json;
}

const Json& asList(const Json& json)
{
    demand(json.is_array(), json, "must be an array");
    return json;
}

const std::string& asText(const Json& json)
{
    demand(json.is_string(), json, "must be a text");
    return json.get_ref<const std::string&>();
}

bool asFlag(const Json& json)
{
    demand(json.is_boolean(), json, "must be true or false");
    return json.get<bool>();
}

void checkTrue(const Json& json) { demand(asFlag(json), json, "must be true"); }

uint64_t asWhole(const Json& json, int64_t least, uint64_t most, char type)
{
    const auto fits = [&](auto number) {
        return std::cmp_greater_equal(number, least) &&
               std::cmp_less_equal(number, most);
    };
    if (json.is_number_unsigned()
            ? fits(json.get<uint64_t>())
            : json.is_number_integer() && fits(json.get<int64_t>()))
    {
        return json.get<uint64_t>();
    }
    throw Mistake(json, "must be a whole number from " + std::to_string(least) +
                            " to " + std::to_string(most) +
                            (type ? std::string(" (type ") + type + ')' : ""));
}

const Json* findMember(const Json& object, std::string_view key)
{
    const auto found = asObject(object).find(key);
    return found == object.end() ? nullptr : &*found;
}

const Json& member(const Json& object, std::string_view key)
{
    const auto* found = findMember(object, key);
    demand(found, object, '"' + std::string(key) + "\" is missing");
    return *found;
}

void allowOnly(const Json& object, std::initializer_list<std::string_view> keys)
{
    for (const auto& [key, value] : asObject(object).items())
    {
        if (std::ranges::find(keys, key) == keys.end())
        {
            cli::Terms known;
            for (const auto one : keys)
            {
                known.push_back({std::string(one), {}});
            }
            throw Mistake(value, cli::unknown("key", key, known));
        }
    }
}

} // namespace morvath::sim
