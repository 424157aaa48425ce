// SPDX-License-Identifier: Apache-2.0
#include "command.hpp"

#include "cli/terminal_text.hpp"
#include "screen.hpp"

#include <time.h>
#include <unistd.h>

#include <array>

// Costly to compile: this is the only file here that includes it.
#include <nlohmann/json.hpp>

namespace morvath::tools
{
namespace
{

using Json = nlohmann::ordered_json;

constexpr int formatVersion = 1;
constexpr int indentation = 2;

Json jsonOf(const Value& value, Form form = Form::text)
{
    const auto* text = std::get_if<std::string>(&value);
    if (text && form == Form::number)
    {
        auto number = Json::parse(*text, nullptr, false);
        return number.is_number() ? number : Json();
    }
    if (value == Value() || (text && form == Form::dashed && *text == "-"))
    {
        return nullptr;
    }
    if (text)
    {
        return *text;
    }
    if (const auto* number = std::get_if<int64_t>(&value))
    {
        return *number;
    }
    const auto* flag = std::get_if<bool>(&value);
    return flag ? Json(*flag) : Json(std::get<Texts>(value));
}

Json rowsOf(const TableReading& reading)
{
    auto rows = Json::array();
    for (const auto& cells : reading.rows)
    {
        auto& row = rows.emplace_back(Json::object());
        for (std::size_t column = 0; column < cells.size(); ++column)
        {
            const auto& about = reading.table->columns[column];
            row[std::string(about.key)] = jsonOf(cells[column], about.form);
        }
    }
    return rows;
}

/** A document about things of a kind, all of them still to be added. */
Json documentOf(const char* things)
{
    return {{"formatVersion", formatVersion},
            {"time", utcText(time(nullptr))},
            {"host", hostName()},
            {things, Json::object()},
            {"errors", Json::array()}};
}

std::string documentText(const Json& document, bool inOneLine)
{
    // Not every source of texts keeps to UTF-8; the document does.
    constexpr auto strict = false;
    return cli::visibleJson(document.dump(inOneLine ? -1 : indentation, ' ',
                                          strict,
                                          Json::error_handler_t::replace)) +
           '\n';
}

std::string csvText(const Column& column, const Value& value)
{
    const auto json = jsonOf(value, column.form);
    if (!json.is_string())
    {
        return json.is_null() ? "" : json.dump();
    }
    auto shown = cli::visible(json.get_ref<const std::string&>());
    if (shown.find_first_of(",\"") == shown.npos)
    {
        return shown;
    }
    for (auto quote = shown.find('"'); quote != shown.npos;
         quote = shown.find('"', quote + 2))
    {
        shown.insert(quote, 1, '"');
    }
    return '"' + shown + '"';
}

} // namespace

std::string jsonOf(const std::vector<TableReading>& tables, bool inOneLine)
{
    auto document = documentOf("tables");
    for (const auto& reading : tables)
    {
        const auto& name = reading.table->name;
        document["tables"][name] = reading.isUnread ? Json() : rowsOf(reading);
        for (const auto& [object, message] : reading.failures)
        {
            Json error{{"table", name}, {"message", message}};
            if (!object.path.empty())
            {
                error["path"] = object.path;
                error["service"] = object.service;
            }
            document["errors"].push_back(std::move(error));
        }
    }
    return documentText(document, inOneLine);
}

std::string jsonOf(const std::vector<FactReading>& facts)
{
    auto document = documentOf("facts");
    for (const auto& [fact, value, failure] : facts)
    {
        document["facts"][std::string(fact->name)] = jsonOf(value);
        if (failure)
        {
            document["errors"].push_back(
                {{"fact", fact->name}, {"message", *failure}});
        }
    }
    return documentText(document, false);
}

std::string csvOf(Columns columns, const std::vector<Cells>& rows,
                  bool withTitles)
{
    Texts lines;
    if (withTitles)
    {
        Texts keys;
        for (const auto& column : columns)
        {
            keys.emplace_back(column.key);
        }
        lines.push_back(joined(keys, ","));
    }
    for (const auto& row : rows)
    {
        Texts cells;
        for (std::size_t place = 0; place < row.size(); ++place)
        {
            cells.push_back(csvText(columns[place], row[place]));
        }
        lines.push_back(joined(cells, ","));
    }
    return textOf(lines);
}

std::string hostName()
{
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return name.data();
}

} // namespace morvath::tools
