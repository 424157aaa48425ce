// SPDX-License-Identifier: Apache-2.0
#include "exposition.hpp"

#include "cli/terminal_text.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace morvath::tools
{
namespace
{

/** In bytes before they are escaped. */
constexpr std::size_t longestLabel = 128;

/** Stands for bytes that are not UTF-8. */
constexpr std::string_view replacement = "\xef\xbf\xbd";

std::string_view escaped(const cli::Character& character)
{
    if (character.isBroken)
    {
        return replacement;
    }
    switch (character.code)
    {
        case '\\': return "\\\\";
        case '"': return "\\\"";
        case '\n': return "\\n";
        default: return character.bytes;
    }
}

std::string sampleText(double value)
{
    if (std::isinf(value))
    {
        return value > 0 ? "+Inf" : "-Inf";
    }
    char text[32];
    // Not all digits: 42.35 percent are 0.4235.
    constexpr int digits = 15;
    return {text, std::to_chars(text, text + sizeof(text), value,
                                std::chars_format::general, digits)
                      .ptr};
}

} // namespace

Metric::Metric(std::string name, std::string_view help) : name(std::move(name))
{
    head.append("# HELP ").append(this->name).append(" ").append(help);
    head.append("\n# TYPE ").append(this->name).append(" gauge\n");
}

void Metric::add(std::string_view labels, double value)
{
    samples += name;
    if (!labels.empty())
    {
        samples.append("{").append(labels).append("}");
    }
    samples.append(" ").append(sampleText(value)).append("\n");
}

Metric& Exposition::metric(std::string name, std::string_view help)
{
    const auto found = std::ranges::find(metrics, name, &Metric::name);
    return found == metrics.end() ? metrics.emplace_back(std::move(name), help)
                                  : *found;
}

Metric& Exposition::shared(std::string name, std::string_view help)
{
    auto& found = metric(std::move(name), help);
    found.isShared = true;
    return found;
}

std::string Exposition::take(bool withShared)
{
    std::string text;
    for (auto& metric : metrics)
    {
        if (!metric.samples.empty() && (withShared || !metric.isShared))
        {
            text.append(metric.head).append(std::exchange(metric.samples, {}));
        }
    }
    return text;
}

std::string label(std::string_view name, std::string_view value)
{
    std::string text(name);
    text += "=\"";
    std::size_t size = 0;
    while (!value.empty())
    {
        const auto character = cli::firstOf(value);
        size += character.bytes.size();
        if (size > longestLabel)
        {
            break;
        }
        text += escaped(character);
        value.remove_prefix(character.bytes.size());
    }
    return text += '"';
}

} // namespace morvath::tools
