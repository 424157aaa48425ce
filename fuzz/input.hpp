// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace morvath::fuzz
{

/** The bytes of one run, read front to back; zeros follow the last one. */
class Input
{
  public:
    explicit Input(std::span<const uint8_t> bytes) : bytes(bytes) {}

    uint8_t byte()
    {
        if (bytes.empty())
        {
            return 0;
        }
        const auto first = bytes.front();
        bytes = bytes.subspan(1);
        return first;
    }

    /** Less than count. */
    std::size_t below(std::size_t count) { return byte() % count; }

    template <std::integral Number>
    Number number()
    {
        uint64_t value = 0;
        for (std::size_t index = 0; index < sizeof(Number); ++index)
        {
            value = value << 8 | byte();
        }
        return static_cast<Number>(value);
    }

    /** Up to a zero; what is not ASCII becomes the UTF-8 that D-Bus needs. */
    std::string text()
    {
        std::string text;
        while (const auto character = byte())
        {
            if (character >= 0x80)
            {
                text += static_cast<char>(0xc0 | character >> 6);
            }
            text +=
                static_cast<char>(character & (character < 0x80 ? ~0 : 0xbf));
        }
        return text;
    }

    /** One of the words, the first for a zero, or rarely a text. */
    std::string oneOf(std::span<const char* const> words)
    {
        const auto choice = below(words.size() + 2);
        return choice < words.size() ? words[choice] : text();
    }

  private:
    std::span<const uint8_t> bytes;
};

} // namespace morvath::fuzz
