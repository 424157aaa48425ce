// SPDX-License-Identifier: Apache-2.0
#include "headers.hpp"

#include "number.hpp"

#include <algorithm>
#include <string_view>

namespace morvath::exporter
{
namespace
{

using std::string_view;

constexpr Seconds largestMargin{0.5};
constexpr double marginRatio = 0.25;
constexpr Seconds longestWait{120};

string_view trimmed(string_view text)
{
    const auto begin = text.find_first_not_of(" \t");
    const auto end = text.find_last_not_of(" \t");
    return begin == text.npos ? string_view()
                              : text.substr(begin, end + 1 - begin);
}

/** The next element of a list, or of the parameters of an element. */
string_view next(string_view& list, char separator)
{
    const auto element = list.substr(0, list.find(separator));
    list.remove_prefix(std::min(element.size() + 1, list.size()));
    return trimmed(element);
}

bool areEqual(string_view a, string_view b)
{
    return std::ranges::equal(a, b, [](char one, char other) {
        return (one >= 'A' && one <= 'Z' ? one + ('a' - 'A') : one) == other;
    });
}

/** An element of a list such as "text/plain;version=0.0.4;q=0.5, gzip". */
struct Element
{
    string_view name;
    string_view version;
    double quality = 1;
};

Element elementOf(string_view text)
{
    Element element{.name = next(text, ';'), .version = {}};
    while (!text.empty())
    {
        auto value = next(text, ';');
        const auto key = next(value, '=');
        if (areEqual(key, "q"))
        {
            element.quality = numberIn(value).value_or(0);
        }
        else if (areEqual(key, "version"))
        {
            element.version = value;
        }
    }
    return element;
}

template <typename Matches>
double bestQuality(const char* header, Matches matches)
{
    double best = 0;
    for (string_view list = header ? header : ""; !list.empty();)
    {
        const auto element = elementOf(next(list, ','));
        if (matches(element))
        {
            best = std::max(best, element.quality);
        }
    }
    return best;
}

} // namespace

Format acceptedFormat(const char* accept)
{
    const auto openMetrics = bestQuality(accept, [](const Element& element) {
        return areEqual(element.name, "application/openmetrics-text") &&
               (element.version.empty() || element.version == "1.0.0");
    });
    const auto text = bestQuality(accept, [](const Element& element) {
        return areEqual(element.name, "text/plain") &&
               (element.version.empty() || element.version == "0.0.4");
    });
    return openMetrics > 0 && openMetrics >= text ? Format::openMetrics
                                                  : Format::text;
}

bool acceptsGzip(const char* acceptEncoding)
{
    return bestQuality(acceptEncoding, [](const Element& element) {
               return areEqual(element.name, "gzip");
           }) > 0;
}

Seconds acceptedWait(const char* timeout, Seconds otherwise)
{
    const auto asked = numberIn(timeout ? timeout : "");
    // Also false for what is not a number.
    if (!asked || !(*asked > 0))
    {
        return otherwise;
    }
    const auto wait = std::min(Seconds(*asked), longestWait);
    return wait - std::min(largestMargin, wait * marginRatio);
}

} // namespace morvath::exporter
