// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace morvath::cli
{

/** A word that a program uses or takes, and what it means. */
struct Term
{
    std::string name;
    std::string meaning;
};

using Terms = std::vector<Term>;

/** What is wrong with a command line; the program then ends with status 2. */
struct Misuse : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

constexpr int misused = 2;

/** An option, or an argument, whose name has no dashes. */
struct Parameter
{
    /** Such as "--json" or "-o,--output"; "TABLE" for an argument. */
    std::string names;
    std::string meaning;
    /** Takes each value, "" for a flag; raises Misuse for one that is wrong. */
    std::function<void(const std::string&)> take;
    /** What kind of value an option takes; empty for a flag. */
    std::string value{};
    bool isRequired = false;
    bool isRepeated = false;
    /** The words that it takes. */
    Terms words{};
    /** Whether it takes others, too, about which take() decides. */
    bool takesOthers = false;
};

// Kinds of values that are completed as what they are.
constexpr auto fileValue = "FILE";
constexpr auto commandValue = "COMMAND";

/** A program, or a command of a program. */
struct Command
{
    std::string name;
    std::string meaning;
    std::vector<Parameter> parameters{};
    /** The exit status. Without it, one of the commands must be chosen. */
    std::function<int()> run{};
    /** What help says at the end. */
    std::string notes{};
    std::vector<Command> commands{};
    /** Says what a word is that is not one of the commands, if it knows. */
    std::function<std::optional<std::string>(const std::string&)> explain{};
};

/** What a program tells of itself besides its commands. */
struct About
{
    std::string version;
    Terms exitStatuses;
    Terms environment;
    Terms examples;
};

using Seconds = std::chrono::duration<double>;

// The usual parameters. What they write to must outlive the run.
Parameter flag(std::string names, bool& value, std::string meaning);
Parameter text(std::string names, std::string value, std::string& text,
               std::string meaning);
Parameter seconds(std::string names, std::function<void(Seconds)> take,
                  std::string meaning);

template <typename Value>
Parameter seconds(std::string names, Value& value, std::string meaning)
{
    return seconds(std::move(names),
                   std::function([&value](Seconds given) { value = given; }),
                   std::move(meaning));
}

/**
 * Parses the command line and runs what it says; the exit status. Help,
 * manual and completion come from the commands as well.
 */
int run(const Command& program, const About& about, int argc, char** argv);

} // namespace morvath::cli
