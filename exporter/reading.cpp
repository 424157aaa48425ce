// SPDX-License-Identifier: Apache-2.0
#include "reading.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace morvath::exporter
{
namespace
{

/** Much more than a large server has, and little enough to hold. */
constexpr rlimit longestText{8 << 20, 8 << 20};

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
    output = memfd_create("metrics", MFD_CLOEXEC);
    const int error = output < 0 ? errno
                                 : spawn(reader, program,
                                         const_cast<char**>(arguments), output);
    if (error == 0)
    {
        // Who writes too much is killed.
        prlimit(reader, RLIMIT_FSIZE, &longestText, nullptr);
        return;
    }
    reader = -1;
    std::fprintf(stderr, "morvath-exporter: cannot start %s: %s\n", program,
                 std::strerror(error));
}

Reading::~Reading()
{
    if (reader > 0)
    {
        kill(-reader, SIGKILL);
        while (waitpid(reader, nullptr, 0) < 0 && errno == EINTR)
        {
            continue;
        }
    }
    if (output >= 0)
    {
        close(output);
    }
}

std::string Reading::text() const
{
    struct stat file;
    std::string written(fstat(output, &file) == 0 ? file.st_size : 0, '\0');
    const auto size = pread(output, written.data(), written.size(), 0);
    written.resize(std::max<ssize_t>(size, 0));
    return written;
}

Seconds Reading::duration() const { return Clock::now() - start; }

} // namespace morvath::exporter
