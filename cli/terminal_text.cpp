// SPDX-License-Identifier: Apache-2.0
#include "cli/terminal_text.hpp"

#include <strings.h>
#include <wchar.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace morvath::cli
{
namespace
{

constexpr std::string_view cutSign = "…";
constexpr std::size_t cutSignWidth = 1;

// What wcwidth() lets pass although it moves, turns or hides what is near it.
constexpr std::pair<char32_t, char32_t> unseen[]{
    {0xad, 0xad},     {0x61c, 0x61c},   {0x180e, 0x180e},   {0x200b, 0x200b},
    {0x200e, 0x200f}, {0x2028, 0x202e}, {0x2060, 0x206f},   {0xfeff, 0xfeff},
    {0xfff9, 0xfffb}, {0xfffe, 0xffff}, {0xe0000, 0xe0fff},
};

bool isContinuation(char byte) { return (byte & 0xc0) == 0x80; }

/** In columns; negative for what must not reach a terminal. */
int columnsOf(const Character& character)
{
    const auto code = character.code;
    if (code < 0x80 && !character.isBroken)
    {
        return code < 0x20 || code == 0x7f ? -1 : 1;
    }
    const auto isUnseen = [code](const auto& range) {
        return code >= range.first && code <= range.second;
    };
    if (character.isBroken || code < 0xa0 ||
        std::ranges::any_of(unseen, isUnseen))
    {
        return -1;
    }
    // Of the locale only the characters matter, and these are always UTF-8.
    static const bool isKnown = std::setlocale(LC_CTYPE, "C.UTF-8");
    return isKnown ? wcwidth(static_cast<wchar_t>(code)) : 1;
}

std::string printed(const char* form, char32_t code)
{
    char text[16];
    std::snprintf(text, sizeof(text), form, static_cast<unsigned>(code));
    return text;
}

std::string escaped(const Character& character)
{
    const char* form = character.isBroken || character.code < 0x80 ? "\\x%02x"
                       : character.code < 0x10000                  ? "\\u%04x"
                                                                   : "\\U%08x";
    return printed(form, character.code);
}

/** Beyond 16 bits JSON has pairs. */
std::string escapedInJson(char32_t code)
{
    constexpr char32_t beyond = 0x10000;
    return code < beyond
               ? printed("\\u%04x", code)
               : printed("\\u%04x", 0xd800 + (code - beyond) / 0x400) +
                     printed("\\u%04x", 0xdc00 + (code & 0x3ff));
}

} // namespace

Character firstOf(std::string_view text)
{
    const auto lead = static_cast<uint8_t>(text.front());
    const Character broken{lead, text.substr(0, 1), true};
    if (lead < 0x80)
    {
        return {lead, text.substr(0, 1)};
    }
    const std::size_t size = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || text.size() < size)
    {
        return broken;
    }
    char32_t code = lead & (0x7f >> size);
    for (const char byte : text.substr(1, size - 1))
    {
        if (!isContinuation(byte))
        {
            return broken;
        }
        code = code << 6 | (byte & 0x3f);
    }
    const bool isOverlong =
        (size == 3 && code < 0x800) || (size == 4 && code < 0x10000);
    const bool isSurrogate = code >= 0xd800 && code < 0xe000;
    return isOverlong || isSurrogate || code > 0x10ffff
               ? broken
               : Character{code, text.substr(0, size)};
}

std::string visible(std::string_view text, std::size_t width)
{
    std::string shown;
    std::size_t columns = 0;
    // Where to cut, should there be more than fits.
    std::size_t cut = 0;
    while (!text.empty())
    {
        const auto character = firstOf(text);
        text.remove_prefix(character.bytes.size());
        const auto own = columnsOf(character);
        const auto escape = own < 0 ? escaped(character) : std::string();
        columns += own < 0 ? escape.size() : static_cast<std::size_t>(own);
        if (columns > width)
        {
            shown.resize(cut);
            return shown.append(cutSign);
        }
        shown.append(own < 0 ? escape : character.bytes);
        if (columns + cutSignWidth <= width)
        {
            cut = shown.size();
        }
    }
    return shown;
}

std::string visibleJson(std::string_view json)
{
    std::string shown;
    while (!json.empty())
    {
        const auto character = firstOf(json);
        json.remove_prefix(character.bytes.size());
        // Its own lines are the only control characters in it.
        if (character.code == '\n' || columnsOf(character) >= 0)
        {
            shown += character.bytes;
        }
        else
        {
            shown += escapedInJson(character.code);
        }
    }
    return shown;
}

std::size_t widthOf(std::string_view visible)
{
    std::size_t columns = 0;
    while (!visible.empty())
    {
        const auto character = firstOf(visible);
        visible.remove_prefix(character.bytes.size());
        columns += std::max(columnsOf(character), 0);
    }
    return columns;
}

bool showsUtf8()
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
    {
        const char* value = std::getenv(name);
        if (value && *value)
        {
            const std::string_view locale(value);
            const auto dot = std::min(locale.find('.'), locale.size());
            const std::string charset(locale.substr(dot));
            return strncasecmp(charset.c_str(), ".utf-8", 6) == 0 ||
                   strncasecmp(charset.c_str(), ".utf8", 5) == 0;
        }
    }
    return false;
}

void complain(std::string_view program, std::string_view message)
{
    endProgress();
    std::string line(program);
    line.append(": ").append(visible(message)) += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace morvath::cli
