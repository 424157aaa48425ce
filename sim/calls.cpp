// SPDX-License-Identifier: Apache-2.0
#include "sim/service.hpp"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <exception>
#include <system_error>
#include <utility>

// What becomes of the calls that reach a service.

namespace morvath::sim
{
namespace
{

constexpr auto replied = "reply";

/** A header field, which may be missing. */
std::string_view viewOf(const char* text)
{
    return text ? text : std::string_view();
}

Call callOf(sd_bus_message* message)
{
    Json arguments;
    try
    {
        arguments = readJsonList(message);
    }
    catch (const std::system_error&)
    {
        // A file descriptor is among them.
    }
    check(sd_bus_message_rewind(message, true));
    const auto field = [&](auto* get) {
        return std::string(viewOf(get(message)));
    };
    return {.time = std::chrono::system_clock::now(),
            .caller = field(sd_bus_message_get_sender),
            .service = field(sd_bus_message_get_destination),
            .path = field(sd_bus_message_get_path),
            .interface = field(sd_bus_message_get_interface),
            .member = field(sd_bus_message_get_member),
            .arguments = std::make_shared<const Json>(std::move(arguments))};
}

/** The views are of the call. */
CallKeys keysOf(const Call& call, std::string_view service)
{
    const auto text = [&](std::size_t position) {
        const auto& all = *call.arguments;
        const auto isProperties = call.interface == propertiesInterface;
        return isProperties && position < all.size() &&
                       all[position].is_string()
                   ? std::string_view(
                         all[position].get_ref<const std::string&>())
                   : std::string_view();
    };
    return {.service = service,
            .path = call.path,
            .interface = call.interface,
            .member = call.member,
            .propertyInterface = text(0),
            .property = text(1)};
}

void send(const Message& message)
{
    check(sd_bus_send(nullptr, message.get(), nullptr));
}

} // namespace

int Service::receive(sd_bus_message* message)
{
    if (services.busLost &&
        sd_bus_message_is_signal(message, "org.freedesktop.DBus.Local",
                                 "Disconnected") > 0)
    {
        services.busLost();
    }
    if ((services.faults.empty() && !services.log) ||
        sd_bus_message_is_method_call(message, nullptr, nullptr) <= 0)
    {
        return 0;
    }
    const char* self = nullptr;
    check(sd_bus_get_unique_name(bus.get(), &self));
    if (viewOf(sd_bus_message_get_sender(message)) != self)
    {
        return decide(message);
    }
    // A held call has come back.
    uint64_t cookie = 0;
    check(sd_bus_message_get_cookie(message, &cookie));
    const auto call = std::ranges::find(held, cookie, &Held::cookie);
    if (call != held.end())
    {
        leaveOut(call->call.path, call->decision);
    }
    return 0;
}

/** What the filter does not take is answered by the tables of sd-bus. */
int Service::decide(sd_bus_message* message)
{
    auto call = callOf(message);
    const auto object = published.find(call.path);
    auto decision = services.faults.decide(
        keysOf(call, name),
        object == published.end() ? nullptr : &object->second.interfaces);
    const auto* fault = decision.fault;
    if (fault || !decision.missing.empty())
    {
        call.fault = (fault ? fault : decision.missing.front())->place;
    }
    if (services.log && !services.logsOutcome)
    {
        services.log(call);
    }
    if (fault && fault->then != Effect::delay)
    {
        meet(*fault, message, call);
        return 1;
    }
    if (!fault && !services.logsOutcome)
    {
        leaveOut(call.path, decision);
        return 0;
    }
    const std::chrono::milliseconds delay(
        fault ? fault->what->at("delayMs").get<int64_t>() : 0);
    hold({.service = this,
          .message = Message(sd_bus_message_ref(message)),
          .call = std::move(call),
          .decision = std::move(decision)},
         delay);
    return 1;
}

void Service::logOutcome(Call& call, const std::string& outcome)
{
    if (services.logsOutcome)
    {
        call.outcome = outcome;
        services.log(call);
    }
}

void Service::refuse(sd_bus_message* message, Call& call,
                     const std::string& error, const std::string& text)
{
    logOutcome(call, error);
    const sd_bus_error reply{error.c_str(), text.c_str(), 0};
    check(sd_bus_reply_method_error(message, &reply));
}

void Service::meet(const Fault& fault, sd_bus_message* message, Call& call)
{
    const auto& what = *fault.what;
    switch (fault.then)
    {
        case Effect::error:
            return refuse(message, call, what["error"],
                          what.value("message", ""));
        case Effect::vanished:
            return refuse(message, call, SD_BUS_ERROR_UNKNOWN_OBJECT,
                          "Unknown object '" + fault.when.path + "'.");
        case Effect::reply:
        {
            const auto reply = newReply(message);
            appendValues(reply.get(), asText(what["reply"]["type"]),
                         what["reply"].value("value", Json::array()));
            logOutcome(call, replied);
            return send(reply);
        }
        case Effect::death: logOutcome(call, "death"); return die();
        default: return logOutcome(call, "silence");
    }
}

void Service::hold(Held call, std::chrono::microseconds delay)
{
    constexpr uint64_t accuracy = 1;
    const auto send = [](sd_event_source*, uint64_t, void* self) {
        auto& call = *static_cast<Held*>(self);
        auto& service = *call.service;
        try
        {
            service.sendAgain(call);
        }
        catch (const std::exception& error)
        {
            // Without success when the bus is gone.
            sd_bus_reply_method_errorf(call.message.get(), SD_BUS_ERROR_FAILED,
                                       "%s", error.what());
            service.held.remove_if(
                [&](const Held& one) { return &one == &call; });
        }
        return 0;
    };
    sd_event_source* timer = nullptr;
    std::list<Held> one;
    one.push_back(std::move(call));
    check(sd_event_add_time_relative(services.events, &timer, CLOCK_MONOTONIC,
                                     static_cast<uint64_t>(delay.count()),
                                     accuracy, send, &one.front()));
    one.front().timer.reset(timer);
    held.splice(held.end(), one);
}

/** sd-bus answers only what it receives, so the service calls itself. */
void Service::sendAgain(Held& call)
{
    auto* original = call.message.get();
    sd_bus_message* raw = nullptr;
    check(sd_bus_message_new_method_call(bus.get(), &raw, name.c_str(),
                                         sd_bus_message_get_path(original),
                                         sd_bus_message_get_interface(original),
                                         sd_bus_message_get_member(original)));
    const Message again(raw);
    check(sd_bus_message_rewind(original, true));
    check(sd_bus_message_copy(raw, original, true));
    const auto receive = [](sd_bus_message* reply, void* self,
                            sd_bus_error* error) {
        return answering(error, [&] {
            static_cast<Service*>(self)->answer(reply);
            return 1;
        });
    };
    sd_bus_slot* slot = nullptr;
    check(sd_bus_call_async(bus.get(), &slot, raw, receive, this, UINT64_MAX));
    call.reply.reset(slot);
    check(sd_bus_message_get_cookie(raw, &call.cookie));
}

void Service::answer(sd_bus_message* reply)
{
    uint64_t cookie = 0;
    check(sd_bus_message_get_reply_cookie(reply, &cookie));
    // Gone after this, whatever becomes of the answer.
    std::list<Held> answered;
    answered.splice(answered.end(), held,
                    std::ranges::find(held, cookie, &Held::cookie));
    auto& [service, message, call, decision, timer, slot, sent] =
        answered.front();
    if (const auto* error = sd_bus_message_get_error(reply))
    {
        return refuse(message.get(), call, error->name,
                      std::string(viewOf(error->message)));
    }
    logOutcome(call, replied);
    const auto answer = newReply(message.get());
    check(sd_bus_message_copy(answer.get(), reply, true));
    send(answer);
}

} // namespace morvath::sim
