// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "owned.hpp"
#include "reading.hpp"

#include <microhttpd.h>
#include <systemd/sd-event.h>

#include <list>
#include <memory>
#include <optional>

namespace morvath::exporter
{

using Source = Owned<sd_event_source, sd_event_source_disable_unref>;
using Response = Owned<MHD_Response, MHD_destroy_response>;

struct Options
{
    std::string address = "127.0.0.1:9795";
    std::string reader = "morvath";
    Seconds timeout{10};
};

/**
 * Answers with readings. There is one at a time: requests that come while it
 * lasts share it, each until its own deadline.
 */
class Server
{
  public:
    Server(sd_event* event, const Options& options) :
        event(event),
        options(options)
    {}
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server();

    /** Takes the socket over; whether it can be served. */
    bool start(int socket);

  private:
    enum class Page
    {
        metrics,
        alarms,
    };

    /** A request that waits for a reading, or has its answer. */
    struct Request
    {
        Server* server;
        MHD_Connection* connection;
        Page page;
        Source deadline{};
        Response response{};
        std::list<Request>::iterator place{};
    };

    static MHD_Result onRequest(void* server, MHD_Connection* connection,
                                const char* url, const char* method,
                                const char* version, const char* upload,
                                size_t* uploadSize, void** request);
    static void onEnd(void* server, MHD_Connection* connection, void** request,
                      MHD_RequestTerminationCode code);

    MHD_Result await(MHD_Connection* connection, Page page, void** request);
    void watchDeadline(Request& request, Seconds wait);
    void answerAll();
    void answer(Request& request);
    Response responseTo(const Request& request) const;
    bool isFull() const;
    void serve();
    void prepareTimer();

    sd_event* event;
    const Options& options;
    Owned<MHD_Daemon, MHD_stop_daemon> daemon;
    Source input;
    Source timer;
    std::optional<Reading> reading;
    Source readingEnd;
    std::list<Request> requests;
    std::size_t waiting = 0;
    unsigned readings = 0;
    /** Which libmicrohttpd does not tell as work to do. */
    bool hasMore = false;
};

} // namespace morvath::exporter
