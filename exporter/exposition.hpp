// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace morvath::exporter
{

enum class Format
{
    text,
    openMetrics,
};

using Seconds = std::chrono::duration<double>;

/**
 * Completes what a reader wrote so far: whole lines only, the samples of a
 * metric together, the tables that are missing, and the scrape itself. Lines
 * that are not samples are left out: one of them would cost the whole scrape.
 */
std::string expose(std::string_view text, Seconds duration, Format format);

/** A page for people, with the alarms of an answer in the text format. */
std::string page(const std::string& text);

} // namespace morvath::exporter
