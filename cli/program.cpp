// SPDX-License-Identifier: Apache-2.0
#include "cli/program.hpp"

#include "cli/terminal_text.hpp"
#include "cli/words.hpp"

// Costly to compile: this is the only file that includes it.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <map>
#include <memory>
#include <string_view>
#include <utility>

namespace morvath::cli
{
namespace
{

constexpr double shortestWait = 0.001;
constexpr double longestWait = 24 * 60 * 60;

using CommandOf = std::map<const CLI::App*, const Command*>;

/** Terms below a title, with their meanings in one column; nothing of none. */
std::string listOf(const std::string& title, const Terms& terms)
{
    std::size_t width = 0;
    for (const auto& term : terms)
    {
        width = std::max(width, term.name.size());
    }
    auto text = terms.empty() ? "" : '\n' + title + ":\n";
    for (const auto& [name, meaning] : terms)
    {
        const std::string blanks(width - name.size() + 2, ' ');
        text.append("  ").append(name).append(blanks).append(meaning) += '\n';
    }
    return text;
}

/** Help within 80 columns; that of the parser is another in each version. */
class Help : public CLI::FormatterBase
{
  public:
    Help(const CommandOf& commands, const Terms& exitStatuses) :
        commands(commands),
        exitStatuses(exitStatuses)
    {}

    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode) const override
    {
        const auto& command = *commands.at(app);
        auto usage = "Usage: " + name + " [OPTIONS]";
        Terms arguments;
        auto options = usualOptions(!app->get_parent());
        options.front().name.insert(0, "-h,");
        for (const auto& parameter : command.parameters)
        {
            auto shown = parameter.names;
            if (!isArgument(parameter))
            {
                shown += (parameter.value.empty() ? "" : " ") + parameter.value;
                options.push_back({shown, parameter.meaning});
                continue;
            }
            arguments.push_back({shown, parameter.meaning});
            shown += parameter.isRepeated ? "..." : "";
            usage += parameter.isRequired ? ' ' + shown : " [" + shown + ']';
        }
        if (!command.commands.empty())
        {
            usage += command.run ? " [COMMAND]" : " COMMAND";
        }
        auto text = command.meaning + '\n' + usage + '\n' +
                    listOf("Arguments", arguments) +
                    listOf("Options", options) +
                    listOf("Commands", commandsOf(command));
        for (const auto& parameter : command.parameters)
        {
            const auto& words = parameter.words;
            if (!words.empty() && !words.front().meaning.empty())
            {
                text += listOf(parameter.names, words);
            }
        }
        return text +
               listOf("Exit status",
                      app->get_parent() ? Terms() : exitStatuses) +
               (command.notes.empty() ? "" : '\n' + command.notes + '\n');
    }

  private:
    const CommandOf& commands;
    const Terms& exitStatuses;
};

/** What a value is called in messages: "table" for TABLE. */
std::string kindOf(const Parameter& parameter)
{
    auto kind = valueOf(parameter);
    std::ranges::transform(kind, kind.begin(), [](unsigned char letter) {
        return std::tolower(letter);
    });
    return kind;
}

void take(const Parameter& parameter, const std::string& value)
{
    const auto isKnown = [&] {
        return std::ranges::find(parameter.words, value, &Term::name) !=
               parameter.words.end();
    };
    if (!parameter.words.empty() && !parameter.takesOthers && !isKnown())
    {
        throw Misuse(unknown(kindOf(parameter), value, parameter.words));
    }
    parameter.take(value);
}

void add(CLI::App& app, const Parameter& parameter)
{
    if (valueOf(parameter).empty())
    {
        app.add_flag_callback(
            parameter.names, [&parameter] { parameter.take(""); },
            parameter.meaning);
        return;
    }
    auto* option = app.add_option(
        parameter.names,
        [&parameter](const CLI::results_t& values) {
            for (const auto& value : values)
            {
                take(parameter, value);
            }
            return true;
        },
        parameter.meaning);
    option->required(parameter.isRequired);
    if (!isArgument(parameter))
    {
        option->type_name(parameter.value);
    }
    if (parameter.isRepeated)
    {
        // An option takes one value each time, an argument all that follow.
        option->expected(isArgument(parameter) ? -1 : 1);
        option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
}

void add(CLI::App& app, const Command& command, CommandOf& commands)
{
    commands[&app] = &command;
    for (const auto& parameter : command.parameters)
    {
        add(app, parameter);
    }
    for (const auto& inner : command.commands)
    {
        add(*app.add_subcommand(inner.name, inner.meaning), inner, commands);
    }
    if (!command.run)
    {
        app.require_subcommand(1);
    }
}

const CLI::App& chosenIn(const CLI::App& app)
{
    const auto* command = &app;
    while (!command->get_subcommands().empty())
    {
        command = command->get_subcommands().back();
    }
    return *command;
}

/** An unknown word also leaves what it stood for missing. */
bool isOfWords(const CLI::ParseError& error)
{
    const auto code = static_cast<CLI::ExitCodes>(error.get_exit_code());
    return code == CLI::ExitCodes::ExtrasError ||
           code == CLI::ExitCodes::RequiredError;
}

/** The message for a misuse; tells the unknown word from what is missing. */
std::string explain(const CLI::App& app, const Command& command,
                    const CLI::ParseError& error)
{
    const auto words = app.remaining();
    if (!isOfWords(error) || words.empty())
    {
        return error.what();
    }
    const auto& word = words.front();
    if (word.starts_with('-'))
    {
        return unknown("option", word.substr(0, word.find('=')),
                       optionsOf(command, !app.get_parent()));
    }
    if (command.commands.empty())
    {
        return "unexpected '" + word + '\'';
    }
    const auto known = command.explain ? command.explain(word) : std::nullopt;
    return known.value_or(unknown("command", word, commandsOf(command)));
}

/** What is asked by other programs: it must not be taken for a command. */
std::optional<std::string> answerTo(const Command& program, const About& about,
                                    const std::vector<std::string>& words)
{
    if (words.size() == 1 && words.front() == "--describe")
    {
        return descriptionOf(program, about) + '\n';
    }
    if (!words.empty() && words.front() == "--complete")
    {
        return completionOf(program, {words.begin() + 1, words.end()});
    }
    return std::nullopt;
}

} // namespace

Parameter flag(std::string names, bool& value, std::string meaning)
{
    return {std::move(names), std::move(meaning),
            [&value](const std::string&) { value = true; }};
}

Parameter text(std::string names, std::string value, std::string& text,
               std::string meaning)
{
    return {std::move(names), std::move(meaning),
            [&text](const std::string& given) { text = given; },
            std::move(value)};
}

Parameter seconds(std::string names, std::function<void(Seconds)> take,
                  std::string meaning)
{
    const auto check = [names, take](const std::string& given) {
        double number = 0;
        if (!CLI::detail::lexical_cast(given, number) ||
            !(number >= shortestWait && number <= longestWait))
        {
            throw Misuse(names + ": " + given +
                         " is not between 0.001 and 86400 seconds");
        }
        take(Seconds(number));
    };
    return {std::move(names), std::move(meaning), check, "SECONDS"};
}

int run(const Command& program, const About& about, int argc, char** argv)
{
    if (const auto answer =
            answerTo(program, about, {argv + std::min(argc, 1), argv + argc}))
    {
        std::fputs(answer->c_str(), stdout);
        return std::fflush(stdout) == 0 ? 0 : 1;
    }
    CLI::App app(program.meaning, program.name);
    CommandOf commands;
    app.set_version_flag("--version", program.name + ' ' + about.version);
    app.formatter(std::make_shared<Help>(commands, about.exitStatuses));
    add(app, program, commands);
    try
    {
        app.parse(argc, argv);
        return commands.at(&chosenIn(app))->run();
    }
    catch (const CLI::Success& request)
    {
        return app.exit(request);
    }
    catch (const CLI::ParseError& error)
    {
        const auto& chosen = chosenIn(app);
        complain(program.name, explain(chosen, *commands.at(&chosen), error));
        return misused;
    }
    catch (const Misuse& misuse)
    {
        complain(program.name, misuse.what());
        return misused;
    }
}

} // namespace morvath::cli
