// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sdbusplus/exception.hpp>
#include <sdbusplus/message/types.hpp>

namespace sdbusplus::message::details
{

// The typed readers below are thin: these do the work, once.
void read_basic(sd_bus_message* m, char type, void* value, const char* failure);
void enter(sd_bus_message* m, char type, const char* contents,
           const char* failure);
void leave(sd_bus_message* m, const char* failure);
bool at_end(sd_bus_message* m, const char* failure);
bool holds(sd_bus_message* m, const char* contents);
void skip_variant(sd_bus_message* m);

inline void read(sd_bus_message* m, std::string& text)
{
    const char* value = nullptr;
    read_basic(m, 's', &value, "sd_bus_message_read_basic string");
    text = value;
}

inline void read(sd_bus_message* m, bool& value)
{
    int word = 0;
    read_basic(m, 'b', &word, "sd_bus_message_read_basic bool");
    value = word != 0;
}

template <Number T>
void read(sd_bus_message* m, T& value)
{
    read_basic(m, *signature<T>::text, &value,
               "sd_bus_message_read_basic fundamental");
}

template <typename T>
void read(sd_bus_message* m, std::vector<T>& values);
template <typename First, typename Second>
void read(sd_bus_message* m, std::pair<First, Second>& entry);
template <typename... Ts>
void read(sd_bus_message* m, std::tuple<Ts...>& fields);
template <typename... Ts>
void read(sd_bus_message* m, std::variant<Ts...>& value);

template <typename T>
void read(sd_bus_message* m, std::vector<T>& values)
{
    enter(m, 'a', signature<T>::text,
          "sd_bus_message_enter_container emplace_back_container");
    while (!at_end(m, "sd_bus_message_at_end emplace_back_container"))
    {
        read(m, values.emplace_back());
    }
    leave(m, "sd_bus_message_exit_container emplace_back_container");
}

template <typename First, typename Second>
void read(sd_bus_message* m, std::pair<First, Second>& entry)
{
    enter(m, 'e', contents_of<First, Second>::text,
          "sd_bus_message_enter_container tuple");
    read(m, entry.first);
    read(m, entry.second);
    leave(m, "sd_bus_message_exit_container tuple");
}

template <typename... Ts>
void read(sd_bus_message* m, std::tuple<Ts...>& fields)
{
    enter(m, 'r', contents_of<Ts...>::text,
          "sd_bus_message_enter_container tuple");
    std::apply([&](auto&... field) { (read(m, field), ...); }, fields);
    leave(m, "sd_bus_message_exit_container tuple");
}

/** Copies, and must not fail: without memory the process ends here. */
template <typename T, typename... Ts>
void hold(std::variant<Ts...>& value, const T& held) noexcept
{
    value.template emplace<T>(held);
}

template <typename T, typename... Ts>
bool read_alternative(sd_bus_message* m, std::variant<Ts...>& value)
{
    if (!holds(m, signature<T>::text))
    {
        return false;
    }
    enter(m, 'v', signature<T>::text, "sd_bus_message_enter_container variant");
    T held{};
    read(m, held);
    hold(value, held);
    leave(m, "sd_bus_message_exit_container variant");
    return true;
}

template <typename... Ts>
void read(sd_bus_message* m, std::variant<Ts...>& value)
{
    if (!(read_alternative<Ts>(m, value) || ...))
    {
        skip_variant(m);
        value = {};
    }
}

} // namespace sdbusplus::message::details
