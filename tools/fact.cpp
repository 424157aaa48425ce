// SPDX-License-Identifier: Apache-2.0
#include "fact.hpp"

#include "table.hpp"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <variant>
#include <vector>

namespace morvath::tools
{
namespace
{

constexpr int32_t busFailure = -1;

struct Free
{
    void operator()(char* text) const
    {
        std::free(text);
    }
};

template <typename Number>
std::optional<Number> numberOf(const std::string& text)
{
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number)
                                               : std::nullopt;
}

/** By its text or, for people with a table of codes, by its code. */
const Word* findWord(std::span<const Word> words, const std::string& value)
{
    const auto code = numberOf<uint32_t>(value);
    const auto found = std::ranges::find_if(words, [&](const Word& word) {
        return word.text == value || (code && word.code == *code);
    });
    return found == words.end() ? nullptr : &*found;
}

Value listOf(const std::string& line)
{
    auto list = Value::array();
    std::istringstream parts(line);
    for (std::string part; parts >> part;)
    {
        list.push_back(part);
    }
    return list;
}

} // namespace

Answer readText(int32_t (*get)(char**))
{
    char* text = nullptr;
    const int32_t code = get(&text);
    const std::unique_ptr<char, Free> owned(text);
    return {code, text && *text ? Value(text) : Value()};
}

Answer readList(int32_t (*get)(char**))
{
    auto answer = readText(get);
    if (answer.value.is_string())
    {
        answer.value = listOf(answer.value.get<std::string>());
    }
    return answer;
}

Answer readFlag(int32_t (*get)(uint32_t*))
{
    auto answer = readNumber(get);
    answer.value = answer.value != 0;
    return answer;
}

Answer readWord(int32_t (*get)(uint32_t*), std::span<const Word> words)
{
    uint32_t code = 0;
    const int32_t status = get(&code);
    const auto found = std::ranges::find(words, code, &Word::code);
    return {status, found == words.end() ? "unknown" : Value(found->text)};
}

int32_t writeWord(const std::string& value, int32_t (*set)(uint32_t),
                  std::span<const Word> words)
{
    const auto* word = findWord(words, value);
    return word ? set(word->code) : rejected;
}

int32_t writeNumber(const std::string& value, int32_t (*set)(int32_t))
{
    const auto number = numberOf<int32_t>(value);
    return number ? set(*number) : rejected;
}

Value readFact(const Fact& fact)
{
    try
    {
        auto [code, value] = fact.read();
        if (code == busFailure)
        {
            if (!isPublished(fact.source))
            {
                return nullptr;
            }
            throw std::runtime_error("the platform does not answer, refuses, "
                                     "or holds an unknown value");
        }
        requireSuccess(code);
        return std::move(value);
    }
    catch (const std::bad_variant_access&)
    {
        throw std::runtime_error("the property is of an unexpected type");
    }
}

std::string acceptedBy(const Fact& fact)
{
    std::vector<std::string_view> kinds;
    std::ranges::transform(fact.words, std::back_inserter(kinds), &Word::text);
    if (!fact.values.empty())
    {
        kinds.push_back(fact.values);
    }
    std::string text(kinds.front());
    for (std::size_t kind = 1; kind < kinds.size(); ++kind)
    {
        text += kind + 1 < kinds.size() ? ", " : " or ";
        text += kinds[kind];
    }
    return text;
}

void writeFact(const Fact& fact, const std::string& value)
{
    const int32_t code = fact.write(value);
    if (code == rejected)
    {
        throw std::invalid_argument('"' + value + "\" is not " +
                                    acceptedBy(fact));
    }
    if (code == busFailure)
    {
        throw std::runtime_error(
            isPublished(fact.source)
                ? "the platform refuses the value, or does not answer"
                : "the platform does not have it");
    }
    requireSuccess(code);
    if (fact.isReadBack && readFact(fact) != listOf(value))
    {
        throw std::runtime_error(
            "the platform accepted the value, but does not use it");
    }
}

} // namespace morvath::tools
