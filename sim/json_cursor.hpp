// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

/** Keeps the order of keys: interfaces and properties are published in it. */
using Json = nlohmann::ordered_json;

/** A scenario that cannot be used; what() is "FILE: /pointer: message". */
class ScenarioError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** A place in a JSON document, which must stay as it is and outlive this. */
class JsonCursor
{
  public:
    JsonCursor(const Json& root, std::string_view source) :
        JsonCursor(&root, &root, &root, source)
    {}

    [[noreturn]] void fail(const std::string& message) const;
    /** @param[in] pointer  from here on */
    [[noreturn]] void failBelow(const std::string& pointer,
                                const std::string& message) const;

    const Json& json() const { return *contents; }

    /** The member of an object; fails without it. */
    JsonCursor member(std::string_view key) const;
    std::optional<JsonCursor> find(std::string_view key) const;

    /** The same place with other contents, which must outlive the cursor. */
    JsonCursor replaced(const Json& other) const
    {
        return {root, place, &other, source};
    }

    void
    forEachElement(const std::function<void(const JsonCursor&)>& action) const;
    void forEachMember(
        const std::function<void(const std::string&, const JsonCursor&)>&
            action) const;

    /** Fails at a key that is none of these. */
    void allowOnly(const std::vector<std::string_view>& keys) const;

    const std::string& text() const;
    bool flag() const;

    /**
     * A whole number that the type can hold.
     * @param[in] type  the D-Bus type that it is for, if any
     */
    template <typename Number>
    Number number(char type = 0) const;

  private:
    JsonCursor(const Json* root, const Json* place, const Json* contents,
               std::string_view source) :
        root(root),
        place(place),
        contents(contents),
        source(source)
    {}

    JsonCursor at(const Json& child) const
    {
        return {root, &child, &child, source};
    }

    // The name of the place is looked for only when it is wanted.
    const Json* root;
    const Json* place;
    const Json* contents;
    std::string_view source;
};

/** Parses a document. A key may stand only once in an object. */
Json parseJson(std::string_view text, std::string_view source);

} // namespace morvath::sim
