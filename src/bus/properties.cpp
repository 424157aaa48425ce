// SPDX-License-Identifier: Apache-2.0
#include "bus/properties.hpp"

#include "bus/c_memory.hpp"
#include "bus/call.hpp"
#include "bus/mapper.hpp"
#include "bus/process_bus.hpp"
#include "morvath.h"

#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace morvath
{
namespace
{

using Texts = std::vector<std::string>;

// Callers' buffers for one text have 200 bytes, with the terminator.
constexpr std::size_t longestText = 199;

sdbusplus::message_t newPropertyCall(const char* member,
                                     const Property& property)
{
    auto request = processBus.new_method_call(property.service, property.path,
                                              propertiesInterface, member);
    request.append(property.interface, property.name);
    return request;
}

int32_t readProperty(const Property& property, PropertyValue& value)
{
    auto request = newPropertyCall("Get", property);
    return statusOf([&] {
        PropertyValue read;
        processBus.call(request).read(read);
        value = std::move(read);
    });
}

int32_t writeProperty(const Property& property, const PropertyValue& value)
{
    auto request = newPropertyCall("Set", property);
    request.append(value);
    return statusOf([&] { processBus.call(request); });
}

/** Hands the value to store; one of another type leaves as an exception. */
template <typename Held, typename Store>
int32_t readAs(const Property& property, const Store& store)
{
    PropertyValue value;
    const auto code = readProperty(property, value);
    if (code == success)
    {
        store(std::get<Held>(value));
    }
    return code;
}

char** copyTexts(const Texts& texts)
{
    TextArray copies(texts.size());
    for (std::size_t index = 0; index < texts.size(); ++index)
    {
        copies.set(index, copyText(texts[index].c_str()));
    }
    return copies.release();
}

Texts textsOf(const char** values)
{
    Texts texts;
    for (; *values; ++values)
    {
        texts.emplace_back(*values);
    }
    return texts;
}

} // namespace

int32_t readText(const Property& property, CText& value)
{
    return readAs<std::string>(property, [&](const std::string& text) {
        if (!text.empty() && text.size() <= longestText)
        {
            value = copyText(text.c_str());
        }
    });
}

int32_t readText(const Property& property, char** value)
{
    CText text;
    const auto code = readText(property, text);
    if (text)
    {
        *value = text.release();
    }
    return code;
}

int32_t readTexts(const Property& property, Texts& values)
{
    return readAs<Texts>(property, [&](Texts& texts) { values.swap(texts); });
}

int32_t readByte(const Property& property, uint8_t* value)
{
    return readAs<uint8_t>(property, [&](uint8_t byte) { *value = byte; });
}

int32_t readFlag(const Property& property, uint8_t* value)
{
    return readAs<bool>(property, [&](bool flag) { *value = flag; });
}

int32_t writeText(const Property& property, const char* value)
{
    return writeProperty(property, std::string(value));
}

int32_t writeNumber(const Property& property, uint64_t value)
{
    return writeProperty(property, value);
}

} // namespace morvath

using namespace morvath;

int32_t _getDbusProperty(const char* service, const char* path,
                         const char* interface, const char* property,
                         PropertyValue* value)
{
    return readProperty({service, path, interface, property}, *value);
}

int32_t getDbusPropertyString(const char* service, const char* path,
                              const char* interface, const char* property,
                              char** value)
{
    return readText({service, path, interface, property}, value);
}

int32_t getDbusPropertyVectorString(const char* service, const char* path,
                                    const char* interface, const char* property,
                                    char*** values, uint32_t* count)
{
    Texts texts;
    const auto code = readTexts({service, path, interface, property}, texts);
    if (code == success)
    {
        if (!texts.empty())
        {
            *values = copyTexts(texts);
        }
        *count = static_cast<uint32_t>(texts.size());
    }
    return code;
}

int32_t getDbusPropertyUint8(const char* service, const char* path,
                             const char* interface, const char* property,
                             uint8_t* value)
{
    return readByte({service, path, interface, property}, value);
}

int32_t getDbusPropertyBool(const char* service, const char* path,
                            const char* interface, const char* property,
                            uint8_t* value)
{
    return readFlag({service, path, interface, property}, value);
}

int32_t _setDbusProperty(const char* service, const char* path,
                         const char* interface, const char* property,
                         const PropertyValue* value)
{
    return writeProperty({service, path, interface, property}, *value);
}

int32_t setDbusPropertyBool(const char* service, const char* path,
                            const char* interface, const char* property,
                            uint8_t value)
{
    return writeProperty({service, path, interface, property}, value != 0);
}

int32_t setDbusPropertyUint64(const char* service, const char* path,
                              const char* interface, const char* property,
                              uint64_t value)
{
    return writeNumber({service, path, interface, property}, value);
}

int32_t setDbusPropertyString(const char* service, const char* path,
                              const char* interface, const char* property,
                              const char* value)
{
    return writeText({service, path, interface, property}, value);
}

int32_t setDbusPropertyVectorString(const char* service, const char* path,
                                    const char* interface, const char* property,
                                    const char** values)
{
    return writeProperty({service, path, interface, property}, textsOf(values));
}

int32_t setDbusPropertyVectorStringWithoutPath(const char* service,
                                               const char* interface,
                                               const char* property,
                                               const char** values)
{
    auto request = newMapperCall("GetSubTreePaths", "/", interface);
    Texts paths;
    // Deliberately no error: without an answer there is nothing to write to.
    if (statusOf([&] { processBus.call(request).read(paths); }) != success)
    {
        return success;
    }

    const PropertyValue value = textsOf(values);
    for (const auto& path : paths)
    {
        if (writeProperty({service, path.c_str(), interface, property},
                          value) != success)
        {
            return busFailure;
        }
    }
    return success;
}
