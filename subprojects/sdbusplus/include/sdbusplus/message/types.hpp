// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

/** D-Bus signatures of C++ types, put together at compile time. */
namespace sdbusplus::message::details
{

/** What sd-bus itself reads and writes, but for bool, which it has as int. */
template <typename T>
concept Number = std::is_arithmetic_v<T> && !std::same_as<T, bool>;

template <char... Characters>
struct chars
{
    static constexpr char text[] = {Characters..., '\0'};
};

template <typename... Parts>
struct join;

template <char... Characters>
struct join<chars<Characters...>> : chars<Characters...>
{
    using type = chars<Characters...>;
};

template <char... Left, char... Right, typename... Rest>
struct join<chars<Left...>, chars<Right...>, Rest...>
    : join<chars<Left..., Right...>, Rest...>
{};

template <typename T>
struct signature;

template <typename... Ts>
using contents_of =
    typename join<chars<>, typename signature<Ts>::type...>::type;

// clang-format off
template <> struct signature<uint8_t> : join<chars<'y'>> {};
template <> struct signature<bool> : join<chars<'b'>> {};
template <> struct signature<int16_t> : join<chars<'n'>> {};
template <> struct signature<uint16_t> : join<chars<'q'>> {};
template <> struct signature<int32_t> : join<chars<'i'>> {};
template <> struct signature<uint32_t> : join<chars<'u'>> {};
template <> struct signature<int64_t> : join<chars<'x'>> {};
template <> struct signature<uint64_t> : join<chars<'t'>> {};
template <> struct signature<double> : join<chars<'d'>> {};
template <> struct signature<std::string> : join<chars<'s'>> {};
// clang-format on

template <typename T>
struct signature<std::vector<T>> : join<chars<'a'>, contents_of<T>>
{};

template <typename First, typename Second>
struct signature<std::pair<First, Second>>
    : join<chars<'{'>, contents_of<First, Second>, chars<'}'>>
{};

template <typename... Ts>
struct signature<std::tuple<Ts...>>
    : join<chars<'('>, contents_of<Ts...>, chars<')'>>
{};

template <typename... Ts>
struct signature<std::variant<Ts...>> : join<chars<'v'>>
{};

} // namespace sdbusplus::message::details
