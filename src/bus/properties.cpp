// SPDX-License-Identifier: Apache-2.0
#include "bus/properties.hpp"

#include "base/texts.hpp"
#include "bus/mapper.hpp"
#include "morvath.h"

#include <systemd/sd-bus.h>

#include <cstring>

namespace morvath
{
namespace
{

// Anything longer counts as no text for callers of the text getters.
constexpr std::size_t longestText = 199;

using Take = void(const BasicValue& held, void* output);

/** What is taken of the value is taken before its reply goes. */
int32_t readBasic(const Property& property, char type, Take* take, void* output)
{
    auto request = propertyCall("Get", property);
    return statusOf([&] {
        auto reply = request.call();
        ReplyReader reader(reply);
        const char contents[]{type, '\0'};
        reader.enterVariant(contents);
        BasicValue held{};
        reader.read(type, &held.text);
        take(held, output);
    });
}

int32_t writeBasic(const Property& property, char type, const void* value)
{
    auto request = propertyCall("Set", property);
    const char contents[]{type, '\0'};
    request.open('v', contents).append(type, value).close();
    return statusOf([&] { request.call(); });
}

int32_t writeTexts(const Property& property, const char* const* values)
{
    auto request = propertyCall("Set", property);
    request.open('v', "as").append(values).close();
    return statusOf([&] { request.call(); });
}

} // namespace

Request propertyCall(const char* member, const Property& property)
{
    required(property.service);
    required(property.path);
    required(property.interface);
    required(property.name);
    Request request(property.service, property.path, propertiesInterface,
                    member);
    request.append(property.interface).append(property.name);
    return request;
}

int32_t readText(const Property& property, CText& value)
{
    const auto take = [](const BasicValue& held, void* output) {
        const std::string_view text(held.text);
        if (!text.empty() && text.size() <= longestText)
        {
            *static_cast<CText*>(output) = newText(text);
        }
    };
    return readBasic(property, SD_BUS_TYPE_STRING, take, &value);
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

std::vector<const char*> readTexts(ReplyReader& reader)
{
    std::vector<const char*> texts;
    reader.enter('a', "s");
    while (const char* text = reader.text())
    {
        texts.push_back(text);
    }
    reader.leave();
    return texts;
}

int32_t readTexts(const Property& property, TextList& list)
{
    auto request = propertyCall("Get", property);
    return statusOf([&] {
        auto answer = request.call();
        ReplyReader reader(answer);
        reader.enterVariant("as");
        list.texts = readTexts(reader);
        list.reply = std::move(answer);
    });
}

int32_t readByte(const Property& property, uint8_t* value)
{
    const auto take = [](const BasicValue& held, void* output) {
        *static_cast<uint8_t*>(output) = held.byte;
    };
    return readBasic(property, SD_BUS_TYPE_BYTE, take, value);
}

int32_t readFlag(const Property& property, uint8_t* value)
{
    const auto take = [](const BasicValue& held, void* output) {
        *static_cast<uint8_t*>(output) = held.boolean != 0;
    };
    return readBasic(property, SD_BUS_TYPE_BOOLEAN, take, value);
}

int32_t writeText(const Property& property, const char* value)
{
    return writeBasic(property, SD_BUS_TYPE_STRING, required(value));
}

int32_t writeNumber(const Property& property, uint64_t value)
{
    return writeBasic(property, SD_BUS_TYPE_UINT64, &value);
}

} // namespace morvath

using namespace morvath;

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
    TextList list;
    const auto code = readTexts({service, path, interface, property}, list);
    if (code == success)
    {
        if (!list.texts.empty())
        {
            *values = newTexts(list.texts);
        }
        *count = static_cast<uint32_t>(list.texts.size());
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

int32_t setDbusPropertyBool(const char* service, const char* path,
                            const char* interface, const char* property,
                            uint8_t value)
{
    const int flag = value != 0;
    return writeBasic({service, path, interface, property}, SD_BUS_TYPE_BOOLEAN,
                      &flag);
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
    return writeTexts({service, path, interface, property}, required(values));
}

int32_t setDbusPropertyVectorStringWithoutPath(const char* service,
                                               const char* interface,
                                               const char* property,
                                               const char** values)
{
    required(service);
    required(property);
    required(values);
    auto request = mapperCall("GetSubTreePaths", "/", interface);
    TextList paths;
    const auto code = statusOf([&] {
        auto answer = request.call();
        ReplyReader reader(answer);
        paths.texts = readTexts(reader);
        paths.reply = std::move(answer);
    });
    if (code != success)
    {
        // Deliberately no error: without an answer there is nothing to write.
        return success;
    }
    for (const char* path : paths.texts)
    {
        if (writeTexts({service, path, interface, property}, values) != success)
        {
            return busFailure;
        }
    }
    return success;
}
