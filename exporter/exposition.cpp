// SPDX-License-Identifier: Apache-2.0
#include "exposition.hpp"

#include "tables.hpp"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

namespace morvath::exporter
{
namespace
{

using std::string_view;

constexpr string_view info = "_info";

/** A metric: its lines may come from several tables. */
struct Family
{
    string_view name;
    string_view help{};
    string_view type{};
    std::vector<string_view> samples{};
};

bool isNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           (c >= '0' && c <= '9') || c == '_' || c == ':';
}

/** Without converting it, which would be most of the work for a scrape. */
bool isNumber(string_view text)
{
    if (text.starts_with('-') || text.starts_with('+'))
    {
        text.remove_prefix(1);
    }
    constexpr string_view inNumbers = "0123456789.e+-";
    return text == "Inf" || text == "NaN" ||
           (!text.empty() && text.front() <= '9' && text.back() <= '9' &&
            text.find_first_not_of(inNumbers) == text.npos);
}

/** The name of a sample, or nothing for any other line. */
string_view sampleName(string_view line)
{
    const auto* end = std::ranges::find_if_not(line, isNameCharacter);
    const auto name = line.substr(0, end - line.begin());
    const auto blank = line.rfind(' ');
    if (name.empty() || name.front() <= '9' || blank == line.npos ||
        !isNumber(line.substr(blank + 1)))
    {
        return {};
    }
    const auto labels = line.substr(name.size(), blank - name.size());
    const bool isWhole =
        labels.empty() || (labels.starts_with('{') && labels.ends_with('}'));
    return isWhole ? name : string_view();
}

/** Takes what is before a character, and the character, from a text. */
string_view take(string_view& text, char end)
{
    const auto part = text.substr(0, text.find(end));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

class Families
{
  public:
    /** The text must outlive this. */
    void add(string_view text)
    {
        size += text.size();
        while (!text.empty())
        {
            addLine(take(text, '\n'));
        }
    }

    std::string written(Format format) const
    {
        std::string text;
        text.reserve(size);
        for (const auto& family : families)
        {
            write(text, family, format);
        }
        return format == Format::openMetrics ? text + "# EOF\n" : text;
    }

    bool has(string_view name, string_view sample) const
    {
        const auto found = std::ranges::find(families, name, &Family::name);
        return found != families.end() &&
               std::ranges::any_of(found->samples, [sample](string_view one) {
                   return one.starts_with(sample);
               });
    }

  private:
    void addLine(string_view line)
    {
        if (line.starts_with("# "))
        {
            line.remove_prefix(2);
            const auto keyword = take(line, ' ');
            if (keyword == "HELP")
            {
                named(take(line, ' ')).help = line;
            }
            else if (keyword == "TYPE")
            {
                named(take(line, ' ')).type = line;
            }
            return;
        }
        const auto name = sampleName(line);
        if (!name.empty())
        {
            named(name).samples.push_back(line);
        }
    }

    Family& named(string_view name)
    {
        // Mostly that of the line before.
        if (families.empty() || families[current].name != name)
        {
            const auto found = std::ranges::find(families, name, &Family::name);
            current = found - families.begin();
            if (found == families.end())
            {
                families.push_back({name});
            }
        }
        return families[current];
    }

    static void write(std::string& text, const Family& family, Format format)
    {
        auto name = family.name;
        auto type = family.type;
        if (format == Format::openMetrics && name.ends_with(info))
        {
            name.remove_suffix(info.size());
            type = "info";
        }
        if (family.samples.empty())
        {
            return;
        }
        if (!family.help.empty())
        {
            text.append("# HELP ").append(name).append(" ");
            text.append(family.help).append("\n");
        }
        if (!type.empty())
        {
            text.append("# TYPE ").append(name).append(" ");
            text.append(type).append("\n");
        }
        for (const auto sample : family.samples)
        {
            text.append(sample).append("\n");
        }
    }

    std::vector<Family> families;
    std::size_t current = 0;
    std::size_t size = 0;
};

std::string successOf(string_view table)
{
    return std::string("morvath_table_success{table=\"")
        .append(table)
        .append("\"} ");
}

/** What the text of a reader lacks. */
std::string missingOf(const Families& families)
{
    std::string text =
        "# HELP morvath_table_success Whether all of the table was read.\n"
        "# TYPE morvath_table_success gauge\n";
    bool complete = true;
    for (const auto* table : tableNames)
    {
        const auto sample = successOf(table);
        if (!families.has("morvath_table_success", sample))
        {
            complete = false;
            text += sample + "0\n";
        }
    }
    text += "# HELP morvath_scrape_success "
            "Whether the reading ended before the deadline.\n"
            "# TYPE morvath_scrape_success gauge\n"
            "morvath_scrape_success ";
    return text + (complete ? "1\n" : "0\n");
}

void addScrape(std::string& text, Seconds duration)
{
    char number[32];
    std::snprintf(number, sizeof(number), "%.6f\n", duration.count());
    text += "# HELP morvath_scrape_duration_seconds "
            "How long the reading took.\n"
            "# TYPE morvath_scrape_duration_seconds gauge\n"
            "morvath_scrape_duration_seconds ";
    text += number;
    text += "# HELP morvath_build_info The version of the exporter.\n"
            "# TYPE morvath_build_info gauge\n"
            "morvath_build_info{version=\"" MORVATH_VERSION "\"} 1\n";
}

// The page.

constexpr auto pageHead =
    "<!DOCTYPE html>\n<html lang=\"en\">\n<meta charset=\"utf-8\">\n"
    "<meta name=\"viewport\" content=\"width=device-width\">\n"
    "<title>Morvath</title>\n"
    "<style>\n"
    "body { font: 1rem/1.5 system-ui, sans-serif; max-width: 40rem;"
    " margin: 2rem auto; padding: 0 1rem }\n"
    "table { border-collapse: collapse; width: 100% }\n"
    "th, td { text-align: left; padding: .25rem .5rem .25rem 0;"
    " border-bottom: 1px solid #ccc; overflow-wrap: anywhere }\n"
    "</style>\n"
    "<h1>Morvath</h1>\n"
    "<p>This server for Prometheus: <a href=\"metrics\">metrics</a></p>\n";

constexpr auto alarmHead = "<table>\n<tr><th>Class<th>Sensor<th>Alarm\n";

void appendEscaped(std::string& html, char c)
{
    switch (c)
    {
        case '<': html += "&lt;"; break;
        case '>': html += "&gt;"; break;
        case '&': html += "&amp;"; break;
        default: html += c;
    }
}

/** The values of the labels of a sample, one cell each. */
std::string cells(string_view labels)
{
    std::string html;
    bool isInValue = false;
    for (std::size_t i = 0; i < labels.size(); ++i)
    {
        if (labels[i] == '"')
        {
            html += isInValue ? "" : "<td>";
            isInValue = !isInValue;
        }
        else if (isInValue)
        {
            i += labels[i] == '\\' && i + 1 < labels.size();
            const bool isNewLine = labels[i] == 'n' && labels[i - 1] == '\\';
            appendEscaped(html, isNewLine ? ' ' : labels[i]);
        }
    }
    return html;
}

/** Rows for the samples of a metric that have a value. */
std::string rows(string_view text, string_view start, string_view value)
{
    std::string html;
    while (!text.empty())
    {
        auto line = take(text, '\n');
        if (line.starts_with(start) && line.ends_with(value))
        {
            line.remove_suffix(value.size());
            html += "<tr>" + cells(line) + '\n';
        }
    }
    return html;
}

} // namespace

std::string expose(string_view text, Seconds duration, Format format)
{
    Families families;
    families.add(text.substr(0, text.rfind('\n') + 1));
    auto added = missingOf(families);
    addScrape(added, duration);
    families.add(added);
    return families.written(format);
}

std::string page(const std::string& text)
{
    std::string html = pageHead;
    const auto alarms = rows(text, "morvath_sensor_alarm{", "} 1");
    html += "<h2>Alarms</h2>\n";
    html += alarms.empty() ? "<p>No sensor has an alarm.</p>\n"
                           : alarmHead + alarms + "</table>\n";
    const auto failed = rows(text, "morvath_table_success{", "} 0");
    if (!failed.empty())
    {
        html += "<h2>Not read</h2>\n<table>\n" + failed + "</table>\n";
    }
    return html;
}

} // namespace morvath::exporter
