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

/** The options of all commands that print tables. */
std::vector<cli::Parameter> lookOptions(Look& look);

std::string coloured(const std::string& text, Colour colour, const Look& look);

/** A text with blanks up to a width, after or before it. */
std::string padded(std::string text, std::size_t width,
                   bool toTheRight = false);

/** A cell as people read it, with its unit. */
std::string cellText(const std::vector<Column>& columns, const Cells& cells,
                     std::size_t column);

/** A number without decimals that say nothing; empty for another text. */
std::string numberText(const std::string& text);

/** A colour for each row, if any. */
using RowColour = Colour (*)(const Cells&);

/** Rows as lines, within the width of the terminal. */
std::vector<std::string> textLines(const std::vector<Column>& columns,
                                   const std::vector<Cells>& rows,
                                   const Look& look,
                                   RowColour colourOf = nullptr);

/** Each row as a paragraph of labels and values. */
std::vector<std::string> blockLines(const std::vector<Column>& columns,
                                    const std::vector<Cells>& rows);

/** The rows in natural order of their first two columns. */
std::vector<Cells> inNaturalOrder(std::vector<Cells> rows);

/** Says on standard error what is wrong. */
void complain(std::string_view message);

/** Writes a text to standard output, all that was printed before it, too. */
void print(std::string_view text);

} // namespace morvath::tools
