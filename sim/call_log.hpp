// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace morvath::sim
{

/** One method call that reached a service. */
struct Call
{
    /** The destination as the caller wrote it. */
    std::string service;
    std::string path;
    std::string interface;
    std::string member;
    /** A list; null when the arguments cannot be shown. */
    nlohmann::ordered_json arguments;
};

nlohmann::ordered_json toJson(const Call& call);

/** Receives calls as they come, on the thread that serves them. */
using CallSink = std::function<void(const Call&)>;

/** Keeps the calls, or hands them on where there is a sink. */
class CallLog
{
  public:
    explicit CallLog(CallSink sink);

    void add(Call call);
    std::vector<Call> calls() const;
    void clear();

  private:
    const CallSink sink_;
    mutable std::mutex mutex_;
    std::vector<Call> calls_;
};

} // namespace morvath::sim
