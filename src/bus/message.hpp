// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/exception.hpp>
#include <sdbusplus/message.hpp>

#include <cstdint>

/*
 * How failures travel, for the whole library.
 *
 * A request that cannot even be created (no connection, an illegal name or
 * path) leaves every export as SdBusError. What fails after that, the call or
 * the reading of its reply, becomes -1 in the exports that use statusOf();
 * the table engine does not, so there it leaves as SdBusError too. Nothing
 * else is caught: a property of another type (std::bad_variant_access), a text
 * that is null or does not convert, no memory.
 */
namespace morvath
{

constexpr int32_t success = 0;
constexpr int32_t busFailure = -1;
constexpr int32_t outOfMemory = -2;
constexpr int32_t rejected = -3;
constexpr int32_t raidFailure = -4;

/** A method call in the making. None of the texts may be null. */
class Request
{
  public:
    Request(const char* service, const char* path, const char* interface,
            const char* member);

    // What sd-bus says of an argument is not looked at: a request that could
    // not be filled is refused when it is called.

    Request& append(char type, const void* value);
    Request& append(const char* text) { return append('s', text); }
    /** Up to the null that ends the list. */
    Request& append(const char* const* texts);
    Request& open(char type, const char* contents);
    Request& close();

    /** The reply; SdBusError when the call fails. */
    sdbusplus::message_t call();

  private:
    sdbusplus::message_t message;
};

/** Runs one exchange with the bus, from the call to the end of its reply. */
template <typename Exchange>
int32_t statusOf(const Exchange& exchange)
{
    try
    {
        exchange();
    }
    catch (const sdbusplus::exception::exception&)
    {
        return busFailure;
    }
    return success;
}

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
