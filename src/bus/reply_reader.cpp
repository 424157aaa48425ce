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

bool isRead(const char* signature)
{
    return signature[0] != '\0' && signature[1] == '\0' &&
           std::strchr("sxtdiuqyb", signature[0]);
}

} // namespace

void ReplyReader::enter(char type, const char* contents)
{
    checked(sd_bus_message_enter_container(message, type, contents),
            "sd_bus_message_enter_container");
}

void ReplyReader::leave()
{
    checked(sd_bus_message_exit_container(message),
            "sd_bus_message_exit_container");
}

bool ReplyReader::atEnd()
{
    return checked(sd_bus_message_at_end(message, false),
                   "sd_bus_message_at_end") != 0;
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

BasicValue ReplyReader::variant()
{
    BasicValue value{};
    const char* contents = nullptr;
    checked(sd_bus_message_peek_type(message, nullptr, &contents),
            "sd_bus_message_peek_type");
    if (!isRead(contents))
    {
        skip("v");
        return value;
    }
    enter(SD_BUS_TYPE_VARIANT, contents);
    value.type = contents[0];
    checked(sd_bus_message_read_basic(message, value.type, &value.text),
            "sd_bus_message_read_basic");
    leave();
    return value;
}

} // namespace morvath
