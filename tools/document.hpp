// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "value.hpp"

#include <optional>
#include <string>

namespace morvath::tools
{

/** One JSON document, whatever could be read; what failed is null in it. */
class Document
{
  public:
    /** @param things  what it holds, in the plural with "s" */
    explicit Document(std::string things);

    void add(const std::string& name, Value value,
             const std::optional<std::string>& failure);

    /** The document in several lines for people, or in a single one. */
    std::string inLines() const;
    std::string inOneLine() const;

  private:
    std::string things;
    Value document;
};

} // namespace morvath::tools
