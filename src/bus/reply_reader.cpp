// SPDX-License-Identifier: Apache-2.0
#include "bus/reply_reader.hpp"

#include <sdbusplus/exception.hpp>
#include <systemd/sd-bus.h>

#include <cerrno>
#include <cstring>

namespace morvath
{
namespace
{

int checked(int result, const char* function)
{
    if (result < 0)
    {
        throw sdbusplus::exception::SdBusError(-result, function);
    }
    return result;
}

/** The one type in a variant, or other when it is not a basic one. */
char basicType(const char* contents)
{
    const bool isBasic = contents[0] != '\0' && contents[1] == '\0' &&
                         std::strchr("sxtdiuqyb", contents[0]);
    return isBasic ? contents[0] : BasicValue::other;
}

} // namespace

bool ReplyReader::enter(char type, const char* contents)
{
    return checked(sd_bus_message_enter_container(message, type, contents),
                   "sd_bus_message_enter_container") != 0;
}

void ReplyReader::leave()
{
    checked(sd_bus_message_exit_container(message),
            "sd_bus_message_exit_container");
}

void ReplyReader::skip(const char* types)
{
    checked(sd_bus_message_skip(message, types), "sd_bus_message_skip");
}

const char* ReplyReader::text()
{
    const char* value = nullptr;
    checked(sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &value),
            "sd_bus_message_read_basic string");
    return value;
}

BasicValue ReplyReader::variant(char& expected)
{
    BasicValue value{};
    expected = value.type = enterVariant(expected);
    if (value.type == BasicValue::other)
    {
        skip("v");
        return value;
    }
    checked(sd_bus_message_read_basic(message, value.type, &value.text),
            "sd_bus_message_read_basic");
    leave();
    return value;
}

char ReplyReader::enterVariant(char expected)
{
    const char guess[]{expected, '\0'};
    // The objects of a table nearly always have the same types, and entering
    // costs no more than asking.
    if (expected != BasicValue::other &&
        sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, guess) > 0)
    {
        return expected;
    }
    const char* contents = "";
    checked(sd_bus_message_peek_type(message, nullptr, &contents),
            "sd_bus_message_peek_type");
    const char type = basicType(contents);
    if (type != BasicValue::other)
    {
        enter(SD_BUS_TYPE_VARIANT, contents);
    }
    return type;
}

} // namespace morvath
