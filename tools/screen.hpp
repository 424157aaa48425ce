// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cli/program.hpp"
#include "table.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace morvath::tools
{

/** How things are printed, from the options of a command. */
struct Look
{
    bool asJson = false;
    bool asCsv = false;
    bool withTitles = true;
    /** All columns, however wide that is. */
    bool isWide = false;
    /** Nothing drawn, nothing coloured, one line a thing. */
    bool isPlain = false;
    std::string colour = "auto";

    // What standard output is; 0 where there is no limit.
    bool isTerminal = false;
    bool hasUtf8 = false;
    bool hasColour = false;
    std::size_t width = 0;
    std::size_t height = 0;

    /** Finds out about the terminal; raises Misuse for what excludes. */
    void measure();
};

cli::Parameter colourOption(Look& look);
cli::Parameter plainOption(Look& look);

/** Adds the options of all commands that print tables. */
void addOptions(std::vector<cli::Parameter>& parameters, Look& look);

enum class Colour
{
    none,
    red,
    yellow,
    faint,
    bold,
};

std::string coloured(const std::string& text, Colour colour, const Look& look);

using Texts = std::vector<std::string>;

std::string joined(const Texts& parts, std::string_view separator);

/** Lines as one text. */
std::string textOf(const Texts& lines);

/** A text with blanks up to a width, after or before it. */
std::string padded(std::string text, std::size_t width,
                   bool toTheRight = false);

/** The widest texts of each column. */
std::vector<std::size_t> widthsOf(const std::vector<Texts>& rows);

/** A line a row; columns whose side is 'r' stand to the right. */
Texts inColumns(const std::vector<Texts>& rows, std::string_view sides,
                std::string_view gap = "  ");

/** What a terminal gets of a line: as much as fits. */
std::string fitted(const std::string& line, const Look& look);

/** A time in UTC as in RFC 3339. */
std::string utcText(int64_t seconds);

/** A cell as people read it, with its unit. */
std::string cellText(Columns columns, const Cells& cells, std::size_t column);

/** A number without decimals that say nothing; empty for another text. */
std::string numberText(const std::string& text);

/** A colour for each row, if any. */
using RowColour = Colour (*)(const Cells&);

/** Rows as lines, within the width of the terminal. */
Texts textLines(Columns columns, const std::vector<Cells>& rows,
                const Look& look, RowColour colourOf = nullptr);

/** Each row as a paragraph of labels and values. */
Texts blockLines(Columns columns, const std::vector<Cells>& rows);

/** The rows in natural order of their first two columns. */
std::vector<Cells> inNaturalOrder(std::vector<Cells> rows);

/** Says on standard error what is wrong. */
void complain(std::string_view message);

/** Writes a text to standard output, all that was printed before it, too. */
void print(std::string_view text);

/**
 * Runs rounds with a pause after each, until SIGINT or SIGTERM ends the
 * program with success. A round that raises is told. Returns only when
 * standard output is lost.
 */
void watch(cli::Seconds pause, const std::function<void()>& round);

/** Prints a text that SIGINT and SIGTERM cannot cut off. */
void printWhole(const std::string& text);

} // namespace morvath::tools
