// SPDX-License-Identifier: Apache-2.0
#include "json.hpp"

#include "cli/terminal_text.hpp"

#include <time.h>

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
constexpr auto none = "-";

Json numberOf(const std::string& text)
{
    constexpr auto callback = nullptr;
    constexpr auto raising = false;
    auto number = Json::parse(text, callback, raising);
    return number.is_number() ? number : Json();
}

Json jsonOf(const Value& value, Form form = Form::text)
{
    const auto* text = std::get_if<std::string>(&value);
    if (text && form == Form::number)
    {
        return numberOf(*text);
    }
    if (text && form == Form::dashed && *text == none)
    {
        return nullptr;
    }
    return std::visit(
        [](const auto& held) -> Json {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, std::monostate>)
            {
                return nullptr;
            }
            else
            {
                return held;
            }
        },
        value);
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
            row[about.key] = jsonOf(cells[column], about.form);
        }
    }
    return rows;
}

std::string timeStamp()
{
    const auto now = time(nullptr);
    tm utc{};
    gmtime_r(&now, &utc);
    std::array<char, 32> text;
    strftime(text.data(), text.size(), "%FT%TZ", &utc);
    return text.data();
}

/** A document of things of a kind. */
class Document
{
  public:
    explicit Document(std::string thing) :
        thing(std::move(thing)),
        content{{"formatVersion", formatVersion},
                {"time", timeStamp()},
                {"host", hostName()},
                {this->thing + 's', Json::object()},
                {"errors", Json::array()}}
    {}

    void add(const std::string& name, Json value)
    {
        content[thing + 's'][name] = std::move(value);
    }

    void addFailure(const std::string& name, const std::string& message,
                    const Object& object = {})
    {
        Json error{{thing, name}, {"message", message}};
        if (!object.path.empty())
        {
            error["path"] = object.path;
            error["service"] = object.service;
        }
        content["errors"].push_back(std::move(error));
    }

    std::string text(int indent) const
    {
        // Not every source of texts keeps to UTF-8; the document does.
        constexpr auto strict = false;
        return cli::visibleJson(content.dump(indent, ' ', strict,
                                             Json::error_handler_t::replace)) +
               '\n';
    }

  private:
    std::string thing;
    Json content;
};

std::string csvText(const Column& column, const Value& value)
{
    auto text = jsonOf(value, column.form);
    if (text.is_null())
    {
        return {};
    }
    if (!text.is_string())
    {
        return text.dump();
    }
    auto shown = cli::visible(text.get<std::string>());
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
    Document document("table");
    for (const auto& reading : tables)
    {
        const auto& name = reading.table->name;
        document.add(name, reading.isUnread ? Json() : rowsOf(reading));
        for (const auto& [object, message] : reading.failures)
        {
            document.addFailure(name, message, object);
        }
    }
    return document.text(inOneLine ? -1 : indentation);
}

std::string jsonOf(const std::vector<FactReading>& facts)
{
    Document document("fact");
    for (const auto& [fact, value, failure] : facts)
    {
        const std::string name(fact->name);
        document.add(name, jsonOf(value));
        if (failure)
        {
            document.addFailure(name, *failure);
        }
    }
    return document.text(indentation);
}

std::string csvOf(const std::vector<Column>& columns,
                  const std::vector<Cells>& rows, bool withTitles)
{
    std::string text;
    for (std::size_t place = 0; withTitles && place < columns.size(); ++place)
    {
        text.append(place > 0 ? "," : "").append(columns[place].key);
    }
    text += withTitles ? "\n" : "";
    for (const auto& row : rows)
    {
        for (std::size_t place = 0; place < row.size(); ++place)
        {
            text.append(place > 0 ? "," : "")
                .append(csvText(columns[place], row[place]));
        }
        text += '\n';
    }
    return text;
}

} // namespace morvath::tools
