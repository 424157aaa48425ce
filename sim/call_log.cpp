// SPDX-License-Identifier: Apache-2.0
#include "sim/call_log.hpp"

#include <utility>

namespace morvath::sim
{

nlohmann::ordered_json toJson(const Call& call)
{
    return {{"service", call.service},
            {"path", call.path},
            {"interface", call.interface},
            {"member", call.member},
            {"arguments", call.arguments}};
}

CallLog::CallLog(CallSink sink) : sink_(std::move(sink)) {}

void CallLog::add(Call call)
{
    if (sink_)
    {
        sink_(call);
        return;
    }
    const std::lock_guard lock(mutex_);
    calls_.push_back(std::move(call));
}

std::vector<Call> CallLog::calls() const
{
    const std::lock_guard lock(mutex_);
    return calls_;
}

void CallLog::clear()
{
    const std::lock_guard lock(mutex_);
    calls_.clear();
}

} // namespace morvath::sim
