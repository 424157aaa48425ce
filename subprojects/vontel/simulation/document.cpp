// SPDX-License-Identifier: Apache-2.0
#include "simulation/document.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <unordered_set>

namespace vontel::document
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
    bool start_object(std::size_t) { return add(Json::object()); }
    bool start_array(std::size_t) { return add(Json::array()); }

    bool end_array()
    {
        open.pop_back();
        return true;
    }

    bool key(std::string& key)
    {
        // Past the library's own search for the key.
        auto& members = open.back()->get_ref<Json::object_t&>();
        next = &members.emplace_back(std::move(key), nullptr).second;
        return true;
    }

    bool end_object()
    {
        std::unordered_set<std::string_view> keys;
        for (const auto& [key, value] : open.back()->items())
        {
            demand(keys.insert(key).second, value, "duplicate key");
        }
        return end_array();
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
    bool add(Json&& value)
    {
        if (!open.empty() && open.back()->is_array())
        {
            next = &open.back()->emplace_back(nullptr);
        }
        *next = std::move(value);
        if (next->is_structured())
        {
            open.push_back(next);
        }
        demand(open.size() <= deepestDocument, document,
               "the nesting is too deep");
        return true;
    }

    Json& document;
    /** Where the next value goes, unless that is a list. */
    Json* next;
    /** The lists and objects that are not complete, each in the one before. */
    std::vector<Json*> open;
};

} // namespace

std::string placeOf(const Mistake& mistake, const Json& document)
{
    Json::json_pointer pointer;
    findPlace(mistake.value, document, pointer);
    return pointer.to_string() + mistake.below;
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

bool flagAt(const Json& object, std::string_view key, bool otherwise)
{
    const auto* flag = findMember(object, key);
    return flag ? asFlag(*flag) : otherwise;
}

const Json& listAt(const Json& object, std::string_view key)
{
    static const auto none = Json::array();
    const auto* list = findMember(object, key);
    return list ? asList(*list) : none;
}

void allowOnly(const Json& object, const std::vector<std::string_view>& keys)
{
    for (const auto& [key, value] : asObject(object).items())
    {
        if (std::ranges::find(keys, key) == keys.end())
        {
            Mistake mistake(value, "no key '" + key + '\'');
            mistake.knownKeys.assign(keys.begin(), keys.end());
            throw mistake;
        }
    }
}

} // namespace vontel::document
