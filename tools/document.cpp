// SPDX-License-Identifier: Apache-2.0
#include "document.hpp"

#include <utility>

namespace morvath::tools
{
namespace
{

constexpr int formatVersion = 1;
constexpr int indentation = 2;
constexpr int oneLine = -1;

std::string dump(const Value& document, int indent)
{
    // Not every source of texts keeps to UTF-8; the document does.
    constexpr auto strict = false;
    return document.dump(indent, ' ', strict, Value::error_handler_t::replace) +
           '\n';
}

} // namespace

Document::Document(std::string things) :
    things(std::move(things)),
    document{{"formatVersion", formatVersion},
             {this->things, Value::object()},
             {"errors", Value::array()}}
{}

void Document::add(const std::string& name, Value value,
                   const std::optional<std::string>& failure)
{
    auto& entry = document[things][name];
    if (failure)
    {
        const auto thing = things.substr(0, things.size() - 1);
        document["errors"].push_back({{thing, name}, {"message", *failure}});
        return;
    }
    entry = std::move(value);
}

std::string Document::inLines() const
{
    return dump(document, indentation);
}

std::string Document::inOneLine() const
{
    return dump(document, oneLine);
}

} // namespace morvath::tools
