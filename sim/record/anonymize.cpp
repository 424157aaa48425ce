// SPDX-License-Identifier: Apache-2.0
#include "sim/record/anonymize.hpp"

#include "sim/record/masks.hpp"
#include "sim/record/occurrences.hpp"
#include "sim/record/path_names.hpp"
#include "sim/record/scenario_texts.hpp"
#include "sim/sd_bus.hpp"

#include <algorithm>
#include <optional>

namespace morvath::sim
{

namespace
{

std::string_view trimmed(std::string_view text)
{
    const auto start = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

Form formOf(const NameRule& rule, std::string_view text)
{
    const FoundForm found = formAt(text, 0);
    if (found.length == text.size())
    {
        return found.form;
    }
    const std::size_t digits = rule.bareForm == Form::uuid  ? 32
                               : rule.bareForm == Form::mac ? 12
                                                            : 0;
    const bool isBare =
        text.size() == digits &&
        text.find_first_not_of("0123456789abcdefABCDEF") == text.npos;
    return isBare ? rule.bareForm : Form::none;
}

bool isWhole(const NameRule* rule, std::string_view text)
{
    return rule != nullptr && rule->treatment != Treatment::kept &&
           !text.empty() &&
           (rule->treatment != Treatment::asHostName ||
            formOf(*rule, text) != Form::none || looksLikeHostName(text));
}

/** Reads the texts of a scenario twice: to note them and to mask them. */
class Anonymizer
{
  public:
    Json anonymize(const Json& scenario)
    {
        const auto change = [this](const NameRule* rule,
                                   const std::string& text) {
            return changed(rule, text);
        };
        withTexts(scenario, change);
        masks_.assign();
        occurrences_ = Occurrences(masks_);
        isNoting_ = false;
        return withTexts(scenario, change);
    }

  private:
    std::string changed(const NameRule* rule, const std::string& text)
    {
        if (isNoting_)
        {
            masks_.avoid(text);
        }
        if (text.starts_with('/') &&
            sd_bus_object_path_is_valid(text.c_str()) > 0)
        {
            return changedPath(text);
        }
        const std::string_view core = trimmed(text);
        if (isWhole(rule, core))
        {
            const auto start =
                static_cast<std::size_t>(core.data() - text.data());
            return text.substr(0, start) + changedWhole(*rule, core) +
                   text.substr(start + core.size());
        }
        const bool hasForms =
            rule == nullptr || rule->treatment != Treatment::kept;
        return scanned(text, hasForms, false);
    }

    std::string changedWhole(const NameRule& rule, std::string_view text)
    {
        const Form form = formOf(rule, text);
        if (form != Form::none || !isNoting_)
        {
            return changedForm(form, text);
        }
        masks_.noteText(text, rule.treatment);
        return std::string(text);
    }

    std::string changedForm(Form form, std::string_view text)
    {
        if (!isNoting_)
        {
            return masks_.maskOf(form, text);
        }
        masks_.note(form, text);
        return std::string(text);
    }

    std::string changedPath(std::string_view path)
    {
        std::string result;
        while (!path.empty())
        {
            path.remove_prefix(1);
            const std::size_t end = std::min(path.find('/'), path.size());
            result.append("/").append(changedSegment(path.substr(0, end)));
            path.remove_prefix(end);
        }
        return result;
    }

    std::string changedSegment(std::string_view segment)
    {
        if (const auto name = decodedName(segment))
        {
            const std::string changed = scanned(*name, true, false);
            if (changed != *name)
            {
                return encodedName(changed);
            }
        }
        return scanned(segment, true, true);
    }

    std::string scanned(std::string_view text, bool hasForms, bool isPath)
    {
        std::string result;
        for (std::size_t place = 0; place < text.size();)
        {
            const FoundForm found =
                hasForms ? formAt(text, place) : FoundForm{};
            if (const auto* entry = occurrences_.at(text, place, isPath))
            {
                result += entry->mask;
                place += entry->original.size();
            }
            else if (found.length > 0)
            {
                result +=
                    changedForm(found.form, text.substr(place, found.length));
                place += found.length;
            }
            else
            {
                result += text[place++];
            }
        }
        return result;
    }

    bool isNoting_ = true;
    Masks masks_;
    Occurrences occurrences_;
};

/** Bytes of which nobody knows what they tell. */
void removeRaw(Json& json)
{
    if (json.is_object())
    {
        json.erase("raw");
    }
    for (Json& member : json)
    {
        if (member.is_structured())
        {
            removeRaw(member);
        }
    }
}

} // namespace

Json anonymized(const Json& scenario)
{
    Json source = scenario;
    if (source.contains("raid"))
    {
        removeRaw(source["raid"]);
    }
    Json result = Anonymizer().anonymize(source);
    std::ranges::sort(result["objects"].get_ref<Json::array_t&>(), {},
                      [](const Json& object) {
                          return object["path"].get_ref<const std::string&>();
                      });
    return result;
}

} // namespace morvath::sim
