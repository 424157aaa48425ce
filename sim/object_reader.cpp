// SPDX-License-Identifier: Apache-2.0
#include "sim/object_reader.hpp"

#include "sim/names.hpp"
#include "sim/request.hpp"
#include "sim/value_reader.hpp"

#include <algorithm>

namespace morvath::sim
{

namespace
{

bool flagOr(const JsonCursor& json, std::string_view key, bool otherwise)
{
    const auto flag = json.find(key);
    return flag ? flag->flag() : otherwise;
}

std::vector<std::string> enumerationFromJson(const JsonCursor& property)
{
    std::vector<std::string> texts;
    const auto enumeration = property.find("enum");
    if (!enumeration)
    {
        return texts;
    }
    if (property.member("type").text() != "s")
    {
        enumeration->fail("only a property of type s has an enumeration");
    }
    enumeration->forEachElement([&](const JsonCursor& text) {
        texts.push_back(*valueFromJson("s", text).text());
    });
    if (texts.empty())
    {
        enumeration->fail("must not be empty");
    }
    return texts;
}

Property propertyFromJson(const std::string& name, const JsonCursor& json)
{
    json.allowOnly({"type", "value", "readOnly", "hidden", "enum"});
    return {checkedName(NameKind::member, name, json), typedValueFromJson(json),
            flagOr(json, "readOnly", false), flagOr(json, "hidden", false),
            enumerationFromJson(json)};
}

Interface interfaceFromJson(const std::string& name, const JsonCursor& json)
{
    if (std::find(standardInterfaces.begin(), standardInterfaces.end(), name) !=
        standardInterfaces.end())
    {
        json.fail("every object has the standard interfaces by itself");
    }
    Interface interface {
        checkedName(NameKind::interface, name, json), {}
    };
    json.forEachMember([&](const std::string& key, const JsonCursor& property) {
        interface.properties.push_back(propertyFromJson(key, property));
    });
    return interface;
}

Owner ownerFromJson(const JsonCursor& json)
{
    json.allowOnly({"name", "interfaces"});
    const JsonCursor name = json.member("name");
    if (name.text().starts_with(':') || name.text() == "org.freedesktop.DBus")
    {
        name.fail("\"" + name.text() + "\" is not a name to ask the bus for");
    }
    Owner owner{checkedName(NameKind::service, name.text(), name), {}};
    json.member("interfaces")
        .forEachMember([&](const std::string& key, const JsonCursor& member) {
            owner.interfaces.push_back(interfaceFromJson(key, member));
        });
    return owner;
}

} // namespace

Object objectFromJson(const JsonCursor& json)
{
    json.allowOnly({"path", "services"});
    const JsonCursor path = json.member("path");
    Object object{checkedName(NameKind::path, path.text(), path), {}};
    const JsonCursor services = json.member("services");
    services.forEachElement([&](const JsonCursor& element) {
        Owner owner = ownerFromJson(element);
        const auto isSame = [&](const Owner& other) {
            return other.service == owner.service;
        };
        if (std::any_of(object.owners.begin(), object.owners.end(), isSame))
        {
            element.fail("the service stands here twice");
        }
        object.owners.push_back(std::move(owner));
    });
    if (object.owners.empty())
    {
        services.fail("an object needs a service");
    }
    return object;
}

} // namespace morvath::sim
