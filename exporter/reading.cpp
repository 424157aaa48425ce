// SPDX-License-Identifier: Apache-2.0
#include "reading.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace morvath::exporter
{
namespace
{

/** Much more than a large server has, and little enough to hold. */
constexpr std::size_t longestText = 8 << 20;

/** The part of the time that a reader is told, so that it ends by itself. */
constexpr double toldRatio = 0.9;

/** A group of its own, so that what a reader starts ends with it. */
int spawn(pid_t& reader, const char* program, char* const* arguments,
          int output)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null",
                                     O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigaddset(&signals, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP |
                                              POSIX_SPAWN_SETSIGMASK |
                                              POSIX_SPAWN_SETSIGDEF);
    const int error = posix_spawnp(&reader, program, &actions, &attributes,
                                   arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

} // namespace

Reading::Reading(const char* program, Seconds limit)
{
    char deadline[32];
    std::snprintf(deadline, sizeof(deadline), "%.3f",
                  limit.count() * toldRatio);
    const char* arguments[] = {program,      "metrics", "--by-table",
                               "--deadline", deadline,  nullptr};
    int ends[2];
    int error = pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno;
    if (error == 0)
    {
        output = ends[0];
        fcntl(output, F_SETFL, O_NONBLOCK);
        error = spawn(process, program, const_cast<char**>(arguments), ends[1]);
        close(ends[1]);
    }
    if (error != 0)
    {
        process = -1;
        std::fprintf(stderr, "morvath-exporter: cannot start %s: %s\n", program,
                     std::strerror(error));
    }
}

Reading::~Reading()
{
    if (process > 0)
    {
        kill(-process, SIGKILL);
        while (waitpid(process, nullptr, 0) < 0 && errno == EINTR)
        {}
    }
    if (output >= 0)
    {
        close(output);
    }
}

bool Reading::receive()
{
    if (process < 0 || written.size() >= longestText)
    {
        return false;
    }
    char buffer[1 << 14];
    const auto size = read(output, buffer, sizeof(buffer));
    if (size <= 0)
    {
        return size < 0 && (errno == EAGAIN || errno == EINTR);
    }
    written.append(buffer, size);
    return true;
}

Seconds Reading::duration() const { return Clock::now() - start; }

} // namespace morvath::exporter
