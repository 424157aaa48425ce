// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/message.hpp>

#include <cstdint>

namespace morvath
{

/** A basic value where it lies in its message; texts are not copied. */
struct BasicValue
{
    /** The D-Bus type, or other for all that is not told apart further. */
    char type;
    union
    {
        const char* text;
        int64_t int64;
        uint64_t uint64;
        double real;
        int32_t int32;
        uint32_t uint32;
        int16_t int16;
        uint16_t uint16;
        uint8_t byte;
        int boolean;
    };

    static constexpr char other = '\0';
};

/**
 * Walks a reply in place. Each step raises SdBusError, with the name of the
 * sd-bus function, when the reply does not have what is asked for.
 */
class ReplyReader
{
  public:
    explicit ReplyReader(sdbusplus::message_t& reply) : message(reply.get()) {}

    /** Whether there was one; not so at the end of an array. */
    bool enter(char type, const char* contents);
    void leave();
    void skip(const char* types);

    /** Whether there was one; not so at the end of an array. */
    bool read(char type, void* value);

    bool isAtEnd();

    /** Valid as long as the reply. */
    const char* text();

    /**
     * Enters a variant of just these contents; one of others raises
     * std::bad_variant_access.
     */
    void enterVariant(const char* contents);

    /** What is in a variant; "" when there is none. */
    const char* contents();

    /**
     * The value in a variant; skipped when it is not a basic one.
     * @param[in,out] expected  the type that is tried first; becomes the one
     *                          that was found
     */
    BasicValue variant(char& expected);

  private:
    char enterBasicVariant(char expected);

    sd_bus_message* message;
};

} // namespace morvath
