// SPDX-License-Identifier: Apache-2.0
#include "sim/record/introspected.hpp"

#include <algorithm>
#include <cctype>

namespace morvath::sim
{

namespace
{

/** Goes from tag to tag. */
class Tags
{
  public:
    explicit Tags(std::string_view xml) : rest_(xml) {}

    /** What stands between the brackets of the next tag; empty at the end. */
    std::string_view next()
    {
        constexpr std::string_view comment = "<!--";
        rest_.remove_prefix(std::min(rest_.find('<'), rest_.size()));
        const std::string_view end = rest_.starts_with(comment) ? "-->" : ">";
        const auto length = std::min(rest_.find(end), rest_.size());
        const std::string_view tag = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return tag.empty() ? tag : tag.substr(1);
    }

  private:
    std::string_view rest_;
};

bool isBlank(char character)
{
    return std::isspace(static_cast<unsigned char>(character)) != 0;
}

bool isTag(std::string_view tag, std::string_view name)
{
    return tag.starts_with(name) &&
           (tag.size() == name.size() || isBlank(tag[name.size()]));
}

/** No name that the bus allows is ever escaped. */
std::string attribute(std::string_view tag, const std::string& name)
{
    auto start = tag.find(name + '=');
    while (start != tag.npos && (start == 0 || !isBlank(tag[start - 1])))
    {
        start = tag.find(name + '=', start + 1);
    }
    if (start == tag.npos)
    {
        return {};
    }
    const std::string_view quoted = tag.substr(start + name.size() + 1);
    if (quoted.empty())
    {
        return {};
    }
    const std::string_view value = quoted.substr(1);
    return std::string(value.substr(0, value.find(quoted.front())));
}

} // namespace

Introspected introspectedFromXml(std::string_view xml)
{
    Introspected result;
    std::vector<IntrospectedProperty>* properties = nullptr;
    // A child may be described in its parent; that is another object.
    int depth = 0;
    Tags tags(xml);
    for (auto tag = tags.next(); !tag.empty(); tag = tags.next())
    {
        if (isTag(tag, "node") && !tag.ends_with('/'))
        {
            depth++;
        }
        else if (isTag(tag, "/node"))
        {
            depth--;
        }
        else if (depth == 1 && isTag(tag, "interface"))
        {
            properties = &result[attribute(tag, "name")];
        }
        else if (depth == 1 && isTag(tag, "property") && properties != nullptr)
        {
            properties->push_back(
                {attribute(tag, "name"), attribute(tag, "access") == "read"});
        }
    }
    return result;
}

} // namespace morvath::sim
