// SPDX-License-Identifier: Apache-2.0
#include "server.hpp"

#include "gzip.hpp"
#include "headers.hpp"
#include "memory.hpp"

#include <sys/epoll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string_view>

namespace morvath::exporter
{
namespace
{

// A scraper or two and a few people. What comes meanwhile waits in the
// backlog of the socket.
constexpr unsigned connectionLimit = 32;
constexpr size_t connectionMemory = 8192;
constexpr unsigned idleSeconds = 10;

// It costs as much as half of an answer.
constexpr unsigned readingsToRelease = 16;

constexpr auto textType = "text/plain; version=0.0.4; charset=utf-8";
constexpr auto openMetricsType =
    "application/openmetrics-text; version=1.0.0; charset=utf-8";
constexpr auto pageType = "text/html; charset=utf-8";

constexpr uint64_t microseconds = 1'000'000;
constexpr uint64_t millisecond = 1'000;

const char* header(MHD_Connection* connection, const char* name)
{
    return MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
}

Response response(std::string_view text, const char* type)
{
    Response made(MHD_create_response_from_buffer(
        text.size(), const_cast<char*>(text.data()), MHD_RESPMEM_MUST_COPY));
    MHD_add_response_header(made.get(), MHD_HTTP_HEADER_CONTENT_TYPE, type);
    MHD_add_response_header(made.get(), "X-Content-Type-Options", "nosniff");
    return made;
}

MHD_Result refuse(MHD_Connection* connection, unsigned status,
                  std::string_view text)
{
    const auto refusal = response(text, "text/plain; charset=utf-8");
    if (status == MHD_HTTP_METHOD_NOT_ALLOWED)
    {
        MHD_add_response_header(refusal.get(), MHD_HTTP_HEADER_ALLOW,
                                "GET, HEAD");
    }
    return MHD_queue_response(connection, status, refusal.get());
}

/** What is kept of a request before it is looked at. */
char seen;

bool isRead(std::string_view method)
{
    return method == MHD_HTTP_METHOD_GET || method == MHD_HTTP_METHOD_HEAD;
}

} // namespace

Server::~Server()
{
    // A connection cannot be closed while it waits.
    for (auto& request : requests)
    {
        if (request.deadline)
        {
            MHD_resume_connection(request.connection);
        }
    }
    input.reset();
    daemon.reset();
}

bool Server::start(int socket)
{
    daemon.reset(MHD_start_daemon(
        MHD_USE_EPOLL | MHD_ALLOW_SUSPEND_RESUME, 0, nullptr, nullptr,
        onRequest, this, MHD_OPTION_LISTEN_SOCKET, socket,
        MHD_OPTION_CONNECTION_LIMIT, connectionLimit,
        MHD_OPTION_CONNECTION_MEMORY_LIMIT, connectionMemory,
        MHD_OPTION_CONNECTION_TIMEOUT, idleSeconds, MHD_OPTION_NOTIFY_COMPLETED,
        onEnd, this, MHD_OPTION_END));
    if (!daemon)
    {
        close(socket);
        return false;
    }
    const auto* epoll =
        MHD_get_daemon_info(daemon.get(), MHD_DAEMON_INFO_EPOLL_FD);
    sd_event_source* source = nullptr;
    sd_event_add_io(
        event, &source, epoll->epoll_fd, EPOLLIN,
        [](sd_event_source*, int, uint32_t, void* self) {
            static_cast<Server*>(self)->serve();
            return 0;
        },
        this);
    input.reset(source);
    sd_event_source_set_prepare(source, [](sd_event_source*, void* self) {
        static_cast<Server*>(self)->prepareTimer();
        return 0;
    });
    sd_event_add_time(
        event, &source, CLOCK_MONOTONIC, UINT64_MAX, millisecond,
        [](sd_event_source*, uint64_t, void* self) {
            static_cast<Server*>(self)->serve();
            return 0;
        },
        this);
    timer.reset(source);
    return true;
}

bool Server::isFull() const
{
    const auto* info =
        MHD_get_daemon_info(daemon.get(), MHD_DAEMON_INFO_CURRENT_CONNECTIONS);
    return info->num_connections >= connectionLimit;
}

void Server::serve()
{
    hasMore = false;
    const bool wasFull = isFull();
    MHD_run(daemon.get());
    // Only another run listens to those who wait in the backlog.
    hasMore |= wasFull && !isFull();
}

void Server::prepareTimer()
{
    MHD_UNSIGNED_LONG_LONG wait = 0;
    if (hasMore || MHD_get_timeout(daemon.get(), &wait) == MHD_YES)
    {
        sd_event_source_set_time_relative(timer.get(), wait * millisecond);
        sd_event_source_set_enabled(timer.get(), SD_EVENT_ONESHOT);
    }
    else
    {
        sd_event_source_set_enabled(timer.get(), SD_EVENT_OFF);
    }
}

MHD_Result Server::onRequest(void* server, MHD_Connection* connection,
                             const char* url, const char* method, const char*,
                             const char*, size_t*, void** request)
{
    if (*request && *request != &seen)
    {
        return MHD_queue_response(
            connection, MHD_HTTP_OK,
            static_cast<Request*>(*request)->response.get());
    }
    const std::string_view path = url;
    const bool isAlive = path == "/-/healthy";
    if (path != "/metrics" && path != "/" && !isAlive)
    {
        return refuse(connection, MHD_HTTP_NOT_FOUND, "not found\n");
    }
    if (!isRead(method))
    {
        return refuse(connection, MHD_HTTP_METHOD_NOT_ALLOWED,
                      "method not allowed\n");
    }
    // An answer at the first call closes the connection.
    if (!*request)
    {
        *request = &seen;
        return MHD_YES;
    }
    if (isAlive)
    {
        return refuse(connection, MHD_HTTP_OK, "healthy\n");
    }
    auto* self = static_cast<Server*>(server);
    return self->await(connection, path == "/" ? Page::alarms : Page::metrics,
                       request);
}

void Server::onEnd(void* server, MHD_Connection*, void** request,
                   MHD_RequestTerminationCode)
{
    if (*request && *request != &seen)
    {
        static_cast<Server*>(server)->requests.erase(
            static_cast<Request*>(*request)->place);
    }
}

MHD_Result Server::await(MHD_Connection* connection, Page page, void** request)
{
    const auto place = requests.insert(
        requests.end(),
        {.server = this, .connection = connection, .page = page});
    place->place = place;
    *request = &*place;
    const auto wait =
        acceptedWait(header(connection, "X-Prometheus-Scrape-Timeout-Seconds"),
                     options.timeout);
    MHD_suspend_connection(connection);
    ++waiting;
    watchDeadline(*place, wait);
    if (!reading)
    {
        reading.emplace(options.reader.c_str(), wait);
        sd_event_source* source = nullptr;
        if (reading->process() < 0 ||
            sd_event_add_child(
                event, &source, reading->process(), WEXITED,
                [](sd_event_source*, const siginfo_t*, void* self) {
                    static_cast<Server*>(self)->answerAll();
                    return 0;
                },
                this) < 0)
        {
            answerAll();
            return MHD_YES;
        }
        readingEnd.reset(source);
    }
    return MHD_YES;
}

void Server::watchDeadline(Request& request, Seconds wait)
{
    sd_event_source* source = nullptr;
    sd_event_add_time_relative(
        event, &source, CLOCK_MONOTONIC, wait.count() * microseconds,
        millisecond,
        [](sd_event_source*, uint64_t, void* late) {
            auto& request = *static_cast<Request*>(late);
            request.server->answer(request);
            return 0;
        },
        &request);
    request.deadline.reset(source);
}

void Server::answerAll()
{
    for (auto& request : requests)
    {
        if (request.deadline)
        {
            answer(request);
        }
    }
}

/** Who is answered last ends the reading. */
void Server::answer(Request& request)
{
    request.deadline.reset();
    request.response = responseTo(request);
    MHD_resume_connection(request.connection);
    hasMore = true;
    if (--waiting == 0)
    {
        readingEnd.reset();
        reading.reset();
        // The first time, what the answer needs comes back all at once.
        if (readings++ % readingsToRelease < 2)
        {
            releaseCode();
        }
    }
}

Response Server::responseTo(const Request& request) const
{
    const bool isPage = request.page == Page::alarms;
    const auto format =
        isPage ? Format::text
               : acceptedFormat(header(request.connection, "Accept"));
    auto text = expose(reading->text(), reading->duration(), format);
    if (isPage)
    {
        text = page(text);
    }
    const auto packed =
        acceptsGzip(header(request.connection, "Accept-Encoding"))
            ? gzip(text)
            : std::string();
    auto made = response(packed.empty() ? text : packed,
                         isPage                   ? pageType
                         : format == Format::text ? textType
                                                  : openMetricsType);
    if (!packed.empty())
    {
        MHD_add_response_header(made.get(), MHD_HTTP_HEADER_CONTENT_ENCODING,
                                "gzip");
    }
    MHD_add_response_header(made.get(), MHD_HTTP_HEADER_VARY,
                            "Accept, Accept-Encoding");
    return made;
}

} // namespace morvath::exporter
