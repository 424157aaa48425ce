// SPDX-License-Identifier: Apache-2.0
#include "bus/message.hpp"

#include <sdbusplus/bus.hpp>
#include <systemd/sd-bus.h>

#include <cerrno>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <variant>

namespace morvath
{
namespace
{

sdbusplus::bus_t openProcessBus()
{
    // Opened here and not by the binding, which raises where no bus is: the
    // library must load all the same.
    sd_bus* connection = nullptr;
    sd_bus_default(&connection);

    // A connection that never gets a unique name is unusable: the binding
    // then raises, which deliberately ends the load.
    sdbusplus::bus_t bus(connection, std::false_type());
    bus.set_should_close(true);
    return bus;
}

/**
 * The one connection of the process, opened when the library is loaded and
 * flushed, closed and released when the process exits. It is null when there
 * was no bus; every call then fails where its request is created.
 */
sdbusplus::bus_t processBus = openProcessBus();

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
                         std::strchr("sxtdiunqyb", contents[0]);
    return isBasic ? contents[0] : BasicValue::other;
}

} // namespace

Request::Request(const char* service, const char* path, const char* interface,
                 const char* member) :
    message(processBus.new_method_call(service, path, interface, member))
{}

Request& Request::append(char type, const void* value)
{
    sd_bus_message_append_basic(message.get(), type, value);
    return *this;
}

Request& Request::append(const char* const* texts)
{
    open('a', "s");
    for (; *texts; ++texts)
    {
        append(*texts);
    }
    return close();
}

Request& Request::open(char type, const char* contents)
{
    sd_bus_message_open_container(message.get(), type, contents);
    return *this;
}

Request& Request::close()
{
    sd_bus_message_close_container(message.get());
    return *this;
}

sdbusplus::message_t Request::call() { return processBus.call(message); }

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

bool ReplyReader::read(char type, void* value)
{
    return checked(sd_bus_message_read_basic(message, type, value),
                   "sd_bus_message_read_basic") != 0;
}

bool ReplyReader::isAtEnd()
{
    return checked(sd_bus_message_at_end(message, false),
                   "sd_bus_message_at_end") != 0;
}

const char* ReplyReader::text()
{
    // Null at the end of what there is.
    const char* value = nullptr;
    read(SD_BUS_TYPE_STRING, &value);
    return value;
}

void ReplyReader::enterVariant(const char* contents)
{
    const int result =
        sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents);
    if (result == -ENXIO)
    {
        // Anything but a variant does not answer the question.
        skip("v");
        // Raised by std::get(), which gives it the text that callers know.
        std::ignore = std::get<int>(std::variant<char, int>());
    }
    checked(result, "sd_bus_message_enter_container");
}

const char* ReplyReader::contents()
{
    const char* contents = "";
    checked(sd_bus_message_peek_type(message, nullptr, &contents),
            "sd_bus_message_peek_type");
    return contents ? contents : "";
}

BasicValue ReplyReader::variant(char& expected)
{
    BasicValue value{};
    expected = value.type = enterBasicVariant(expected);
    if (value.type == BasicValue::other)
    {
        skip("v");
        return value;
    }
    read(value.type, &value.text);
    leave();
    return value;
}

char ReplyReader::enterBasicVariant(char expected)
{
    const char guess[]{expected, '\0'};
    // The objects of a table nearly always have the same types, and entering
    // costs no more than asking.
    if (expected != BasicValue::other &&
        sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, guess) > 0)
    {
        return expected;
    }
    const char* held = contents();
    const char type = basicType(held);
    if (type != BasicValue::other)
    {
        enter(SD_BUS_TYPE_VARIANT, held);
    }
    return type;
}

} // namespace morvath
