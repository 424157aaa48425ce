#pragma once

#include "sim/value.hpp"

#include <functional>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace morvath::sim
{

/** A scenario that cannot be used; what() is "FILE: /pointer: message". */
class ScenarioError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/** A place in a JSON document that knows its own name for error messages. */
class JsonCursor
{
  public:
    JsonCursor(const Json& root, std::string_view source);

    [[noreturn]] void fail(const std::string& message) const;

    const Json& json() const
    {
        return *json_;
    }

    /** The member of an object; fails without it. */
    JsonCursor member(std::string_view key) const;
    std::optional<JsonCursor> find(std::string_view key) const;
    /** The same place with other contents, which must outlive the cursor. */
    JsonCursor replaced(const Json& json) const
    {
        return {json, source_, pointer_};
    }

    void
    forEachElement(const std::function<void(const JsonCursor&)>& action) const;
    void forEachMember(
        const std::function<void(const std::string&, const JsonCursor&)>&
            action) const;

    void allowOnly(std::initializer_list<std::string_view> keys) const;
    const std::string& text() const;
    bool flag() const;

  private:
    JsonCursor(const Json& json, std::string_view source, std::string pointer);
    JsonCursor at(const Json& child, std::string_view key) const;

    const Json* json_;
    std::string_view source_;
    std::string pointer_;
};

/** Parses a document. A key may stand only once in an object. */
Json parseJson(std::string_view text, std::string_view source);

} // namespace morvath::sim
