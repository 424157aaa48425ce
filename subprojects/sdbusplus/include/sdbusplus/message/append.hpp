// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/message/types.hpp>
#include <systemd/sd-bus.h>

namespace sdbusplus::message::details
{

// What sd-bus answers to an append is not looked at: a request that could not
// be filled is refused when it is called.

inline void append(sd_bus_message* m, const char* text)
{
    sd_bus_message_append_basic(m, 's', text);
}

inline void append(sd_bus_message* m, const std::string& text)
{
    append(m, text.c_str());
}

inline void append(sd_bus_message* m, std::string_view text)
{
    append(m, std::string(text));
}

inline void append(sd_bus_message* m, std::same_as<bool> auto value)
{
    const int word = value;
    sd_bus_message_append_basic(m, 'b', &word);
}

template <Number T>
void append(sd_bus_message* m, T value)
{
    sd_bus_message_append_basic(m, *signature<T>::text, &value);
}

template <typename T>
void append(sd_bus_message* m, const std::vector<T>& values);
template <typename First, typename Second>
void append(sd_bus_message* m, const std::pair<First, Second>& entry);
template <typename... Ts>
void append(sd_bus_message* m, const std::tuple<Ts...>& fields);
template <typename... Ts>
void append(sd_bus_message* m, const std::variant<Ts...>& value);

template <typename Fill>
void append_container(sd_bus_message* m, char type, const char* contents,
                      const Fill& fill)
{
    sd_bus_message_open_container(m, type, contents);
    fill();
    sd_bus_message_close_container(m);
}

template <typename T>
void append(sd_bus_message* m, const std::vector<T>& values)
{
    append_container(m, 'a', signature<T>::text, [&] {
        for (const auto& value : values)
        {
            append(m, value);
        }
    });
}

template <typename First, typename Second>
void append(sd_bus_message* m, const std::pair<First, Second>& entry)
{
    append_container(m, 'e', contents_of<First, Second>::text, [&] {
        append(m, entry.first);
        append(m, entry.second);
    });
}

template <typename... Ts>
void append(sd_bus_message* m, const std::tuple<Ts...>& fields)
{
    append_container(m, 'r', contents_of<Ts...>::text, [&] {
        std::apply([&](const auto&... field) { (append(m, field), ...); },
                   fields);
    });
}

template <typename... Ts>
void append(sd_bus_message* m, const std::variant<Ts...>& value)
{
    std::visit(
        [&]<typename T>(const T& held) {
            append_container(m, 'v', signature<T>::text,
                             [&] { append(m, held); });
        },
        value);
}

} // namespace sdbusplus::message::details
