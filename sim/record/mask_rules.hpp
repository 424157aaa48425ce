// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sim/record/mask_forms.hpp"

#include <string>
#include <string_view>

namespace morvath::sim
{

/** Where else the text of a property with a certain name is looked for. */
enum class Treatment
{
    /** In all texts and paths, too. */
    everywhere,
    /** As a word in other texts. */
    asWord,
    /** Likewise, but only if it looks like the name of a host. */
    asHostName,
    /** Nowhere: it only looks like something to mask. */
    kept,
};

/** What the name of a property tells about its text. */
struct NameRule
{
    /** In small letters, without other characters. */
    std::string_view name;
    bool isOnlyTheEnd;
    Treatment treatment;
    /** What as many hexadecimal digits without separators are. */
    Form bareForm = Form::none;
};

/** The rule for a property or a key; nullptr without one. */
const NameRule* ruleFor(std::string_view name);

/** Whether a text stands in place of one that is not known. */
bool isPlaceholder(std::string_view text);

bool looksLikeHostName(std::string_view text);

} // namespace morvath::sim
