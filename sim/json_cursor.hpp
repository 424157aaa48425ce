// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/json.hpp"

#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

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

    void allowOnly(const std::vector<std::string_view>& keys) const;
    const std::string& text() const;
    bool flag() const;

    /**
     * A whole number that the type can hold.
     * @param[in] remark  stands at the end of the error message
     */
    template <std::integral Number>
    Number number(const std::string& remark = {}) const
    {
        const bool fits =
            json_->is_number_unsigned()
                ? std::in_range<Number>(json_->get<std::uint64_t>())
                : json_->is_number_integer() &&
                      std::in_range<Number>(json_->get<std::int64_t>());
        if (!fits)
        {
            using Limits = std::numeric_limits<Number>;
            fail("must be a whole number from " +
                 std::to_string(Limits::min()) + " to " +
                 std::to_string(Limits::max()) + remark);
        }
        return json_->get<Number>();
    }

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
