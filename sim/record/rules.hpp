// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <regex.h>

#include <array>
#include <new>
#include <string>

namespace morvath::sim
{

/** A regular expression, for small and capital letters. */
struct Expression
{
    Expression(const char* text)
    {
        if (regcomp(&compiled, text, REG_EXTENDED | REG_ICASE) != 0)
        {
            throw std::bad_alloc();
        }
    }

    Expression(Expression&&) = delete;

    ~Expression() { regfree(&compiled); }

    bool matches(const std::string& text) const
    {
        return regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    }

    regex_t compiled{};
};

enum class Kind
{
    harmless,
    // What is of several kinds is masked as the first of them.
    address,
    /** Serial numbers, MAC addresses and the like. */
    identifier,
    host,
};

struct Rule
{
    Kind kind;
    Expression expression;
    /** What tells nothing all the same. */
    Expression exception{"^$"};
};

#define HEX "[0-9a-f]"
#define GROUP HEX "{1,4}"
#define APART(contents)                              \
    "(^|[^[:alnum:].])(0x|eui\\.|naa\\.)?(" contents \
    ")($|[^[:alnum:].]|\\.($|[^[:alnum:]]))"

/** What tells one machine and its place from others. */
struct Rules
{
    /** By the letters that the name of a property ends with. */
    const std::array<Rule, 4> names{{
        // Four numbers of a version are not an address.
        {Kind::harmless, "(version|text132)$", ""},
        {Kind::identifier,
         "(serial(number)?|servicetag|assettag|ppid|uuid|guid|"
         "uniqueidentifier|ww[np]?n|worldwidename|macaddress|"
         "text84|text164)$"},
        {Kind::host, "(hostname|domainname|fqdn)$"},
        // There may be names of hosts, too, but "0x50" is not one.
        {Kind::host, "(ntpservers|address|gateway)$",
         "^(0x.*|[^a-z]*|.*[^a-z0-9.-].*)$"},
    }};

    /** In any text, as the third group. */
    const std::array<Rule, 3> forms{{
        {Kind::identifier,
         APART(HEX "{8}([-_:]" HEX "{4}){3}[-_:]" HEX "{12}|" HEX
                   "{2}([-_:]" HEX "{2}){5,}|" HEX "{4}(\\." HEX "{4}){2}|" HEX
                   "{12}|" HEX "{16}|" HEX "{32}"),
         // Group addresses, numbers and words.
         "^(.[13579bdf]([-_:]..){5}|[0-9.]*|[^0-9]*)$"},
        {Kind::host, "(://)([^/?#@ ]*@)?([0-9.-]*[a-z][a-z0-9.-]*)"},
        {Kind::address,
         APART("[0-9]{1,3}(\\.[0-9]{1,3}){3}|(" GROUP ":){7}" GROUP "|((" GROUP
               ":){1,6}|:)(:" GROUP "){1,7}|(" GROUP ":){1,7}:"),
         // Loopback and multicast addresses, netmasks.
         "^([0:]*1?$|ff" HEX HEX ":|(127|22[4-9]|23[0-9]|255)\\.)"},
    }};

    /** Without marks and spaces. */
    const Expression placeholder{
        "^(0*|f*|x*|defaultstring|localhost|na|none|null|"
        "not(available|set|specified)|unknown|unspecified|"
        "tobefilledbyoem)$"};
};

#undef APART
#undef GROUP
#undef HEX

} // namespace morvath::sim
