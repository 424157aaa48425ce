// SPDX-License-Identifier: Apache-2.0
#include "sim/record/scenario_texts.hpp"

#include <algorithm>
#include <utility>

namespace morvath::sim
{

namespace
{

class Changer
{
  public:
    explicit Changer(const TextChange& change) : change_(change) {}

    Json object(const Json& object) const
    {
        Json changed = object;
        changed["path"] = text(nullptr, object["path"]);
        for (Json& service : changed["services"])
        {
            for (Json& interface : service["interfaces"])
            {
                for (const auto& [name, property] : interface.items())
                {
                    changeTyped(ruleFor(name), property);
                }
            }
        }
        return changed;
    }

    /** A key inside has its own rule, or else that of what is around it. */
    Json value(const NameRule* rule, const Json& value) const
    {
        if (value.is_string())
        {
            return text(rule, value);
        }
        if (!value.is_structured())
        {
            return value;
        }
        if (value.is_array())
        {
            Json changed = Json::array();
            for (const Json& element : value)
            {
                changed.push_back(this->value(rule, element));
            }
            return changed;
        }
        const bool isVariant = value.size() == 2 && value.contains("type") &&
                               value.contains("value");
        if (isVariant)
        {
            Json changed = value;
            changeTyped(rule, changed);
            return changed;
        }
        Json changed = Json::object();
        for (const auto& [key, member] : value.items())
        {
            const NameRule* own = ruleFor(key);
            changed[change_(nullptr, key)] =
                this->value(own == nullptr ? rule : own, member);
        }
        return changed;
    }

  private:
    std::string text(const NameRule* rule, const Json& text) const
    {
        return change_(rule, text.get_ref<const std::string&>());
    }

    void changeTyped(const NameRule* rule, Json& typed) const
    {
        Json& value = typed["value"];
        value = typed["type"] == "ay" ? bytes(rule, value)
                                      : this->value(rule, value);
    }

    /** Vital product data often comes as the bytes of a text. */
    Json bytes(const NameRule* rule, const Json& list) const
    {
        std::string text;
        for (const Json& byte : list)
        {
            text += static_cast<char>(byte.get<unsigned char>());
        }
        const std::size_t end = std::min(text.find('\0'), text.size());
        const bool isText = std::all_of(
            text.begin(), text.begin() + static_cast<std::ptrdiff_t>(end),
            [](char character) {
                return character >= ' ' && character <= '~';
            });
        if (!isText)
        {
            return list;
        }
        const std::string changed =
            change_(rule, text.substr(0, end)) + text.substr(end);
        return std::vector<unsigned char>(changed.begin(), changed.end());
    }

    const TextChange& change_;
};

} // namespace

Json withTexts(const Json& scenario, const TextChange& change)
{
    const Changer changer(change);
    Json changed = scenario;
    for (Json& object : changed["objects"])
    {
        object = changer.object(object);
    }
    if (changed.contains("raid"))
    {
        changed["raid"] = changer.value(nullptr, scenario["raid"]);
    }
    return changed;
}

} // namespace morvath::sim
