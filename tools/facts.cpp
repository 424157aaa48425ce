// SPDX-License-Identifier: Apache-2.0
#include "facts.hpp"

#include <algorithm>

namespace morvath::tools
{
namespace
{

std::vector<Fact> allFacts()
{
    std::vector<Fact> all;
    for (const auto subject : {identityFacts(), settingFacts()})
    {
        all.insert(all.end(), subject.begin(), subject.end());
    }
    return all;
}

} // namespace

const std::vector<Fact>& facts()
{
    static const auto all = allFacts();
    return all;
}

const Fact* findFact(std::string_view name)
{
    const auto found = std::ranges::find(facts(), name, &Fact::name);
    return found == facts().end() ? nullptr : &*found;
}

} // namespace morvath::tools
