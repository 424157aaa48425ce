// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace morvath::sim
{

struct IntrospectedProperty
{
    std::string name;
    bool isReadOnly;
};

/** The properties of each interface that an object describes. */
using Introspected = std::map<std::string, std::vector<IntrospectedProperty>>;

/** Reads introspection data; what it does not understand it passes over. */
Introspected introspectedFromXml(std::string_view xml);

} // namespace morvath::sim
