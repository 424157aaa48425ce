// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace morvath::sim
{

/** What can be told from its form alone; a text with no form is a serial. */
enum class Form
{
    uuid,
    mac,
    worldWideName,
    ipv6,
    ipv4,
    none,
};

struct FormRule
{
    Form form;
    /** How much of the front of a text has the form; 0 without it. */
    std::size_t (*length)(std::string_view text);
    /** The same for all spellings of a value. */
    std::string (*key)(std::string_view text);
    /** Whether it tells nothing about one machine. */
    bool (*isKept)(const std::string& key);
    /** The masks of a key by number: all different, as long as it goes. */
    std::string (*mask)(std::uint64_t number, const std::string& key);
    /** A mask as the original is spelt. */
    std::string (*spelt)(const std::string& mask, std::string_view original);
};

const FormRule& formRule(Form form);

/** The form that begins at a place of a text, and its length. */
struct FoundForm
{
    Form form = Form::none;
    std::size_t length = 0;
};

FoundForm formAt(std::string_view text, std::size_t place);

} // namespace morvath::sim
