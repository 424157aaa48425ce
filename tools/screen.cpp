// SPDX-License-Identifier: Apache-2.0
#include "screen.hpp"

#include "cli/terminal_text.hpp"

#include <sys/ioctl.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace morvath::tools
{
namespace
{

bool isWantedColour(const Look& look)
{
    const char* terminal = std::getenv("TERM");
    const char* none = std::getenv("NO_COLOR");
    const auto isDumb = !terminal || std::string_view(terminal) == "dumb";
    return look.colour == "always" ||
           (look.colour == "auto" && look.isTerminal && !isDumb &&
            !(none && *none));
}

/**
 * At once, even while a service is silent: outside of printWhole() nothing is
 * half-printed.
 */
void stop(int)
{
    if (isatty(STDOUT_FILENO) && write(STDOUT_FILENO, "\n", 1) < 0)
    {
        _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS);
}

} // namespace

void Look::measure()
{
    if (asJson && asCsv)
    {
        throw cli::Misuse("--csv excludes --json");
    }
    isTerminal = isatty(STDOUT_FILENO);
    hasUtf8 = cli::showsUtf8();
    hasColour = !isPlain && isWantedColour(*this);
    winsize size{};
    if (isTerminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0)
    {
        width = size.ws_col;
        height = size.ws_row;
    }
}

cli::Parameter colourOption(Look& look)
{
    auto option = cli::text("--color", "WHEN", look.colour,
                            "Whether to colour: auto, always or never");
    option.words = {{"auto", ""}, {"always", ""}, {"never", ""}};
    return option;
}

cli::Parameter plainOption(Look& look)
{
    return cli::flag("--plain", look.isPlain,
                     "Print without colours and drawings");
}

void addOptions(std::vector<cli::Parameter>& parameters, Look& look)
{
    for (auto& option :
         {cli::flag("--json", look.asJson,
                    "Print one JSON document instead of text"),
          cli::flag("--csv", look.asCsv,
                    "Print comma-separated values instead of text"),
          cli::flag("--wide", look.isWide, "Print all columns, nothing cut"),
          plainOption(look), colourOption(look),
          cli::Parameter{
              "--no-legend", "Leave out the titles",
              [&look](const std::string&) { look.withTitles = false; }}})
    {
        parameters.push_back(option);
    }
}

std::string coloured(const std::string& text, Colour colour, const Look& look)
{
    constexpr std::array codes{"", "\x1b[1;31m", "\x1b[33m", "\x1b[2m",
                               "\x1b[1m"};
    if (!look.hasColour || colour == Colour::none)
    {
        return text;
    }
    return codes.at(static_cast<std::size_t>(colour)) + text + "\x1b[0m";
}

std::string joined(const Texts& parts, std::string_view separator)
{
    std::string text;
    for (const auto& part : parts)
    {
        text.append(&part == &parts.front() ? "" : separator).append(part);
    }
    return text;
}

std::string textOf(const Texts& lines)
{
    return lines.empty() ? "" : joined(lines, "\n") + '\n';
}

std::string padded(std::string text, std::size_t width, bool toTheRight)
{
    const auto own = cli::widthOf(text);
    const std::string blanks(width - std::min(width, own), ' ');
    return toTheRight ? blanks + text : text + blanks;
}

std::vector<std::size_t> widthsOf(const std::vector<Texts>& rows)
{
    std::vector<std::size_t> widths;
    for (const auto& row : rows)
    {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t place = 0; place < row.size(); ++place)
        {
            widths[place] = std::max(widths[place], cli::widthOf(row[place]));
        }
    }
    return widths;
}

Texts inColumns(const std::vector<Texts>& rows, std::string_view sides,
                std::string_view gap)
{
    const auto widths = widthsOf(rows);
    Texts lines;
    for (const auto& row : rows)
    {
        auto& line = lines.emplace_back();
        for (std::size_t place = 0; place < row.size(); ++place)
        {
            line += padded(row[place], widths[place],
                           place < sides.size() && sides[place] == 'r');
            line += gap;
        }
        line.erase(line.find_last_not_of(' ') + 1);
    }
    return lines;
}

std::string fitted(const std::string& line, const Look& look)
{
    return cli::visible(line, look.width > 0 ? look.width : cli::anyWidth);
}

std::string utcText(int64_t seconds)
{
    const time_t moment = seconds;
    tm utc{};
    gmtime_r(&moment, &utc);
    std::array<char, 32> text;
    strftime(text.data(), text.size(), "%FT%TZ", &utc);
    return text.data();
}

void complain(std::string_view message) { cli::complain("morvath", message); }

void print(std::string_view text)
{
    cli::endProgress();
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

void watch(cli::Seconds pause, const std::function<void()>& round)
{
    std::signal(SIGINT, stop);
    std::signal(SIGTERM, stop);
    while (!std::ferror(stdout))
    {
        try
        {
            round();
        }
        catch (const std::exception& error)
        {
            complain(error.what());
        }
        waitOnBus(pause);
    }
}

void printWhole(const std::string& text)
{
    sigset_t stops;
    sigemptyset(&stops);
    sigaddset(&stops, SIGINT);
    sigaddset(&stops, SIGTERM);
    sigprocmask(SIG_BLOCK, &stops, nullptr);
    print(text);
    sigprocmask(SIG_UNBLOCK, &stops, nullptr);
}

} // namespace morvath::tools
