// SPDX-License-Identifier: Apache-2.0
#include "sim/process.hpp"

#include "cli/terminal_text.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

namespace morvath::sim
{
namespace
{

// As shells have it.
constexpr int statusNotFound = 127;
constexpr int statusNotExecutable = 126;
constexpr int statusOfSignals = 128;

void requireSuccess(bool succeeded, const char* operation)
{
    if (!succeeded)
    {
        throw std::system_error(errno, std::generic_category(), operation);
    }
}

Descriptor newMemory(std::string_view contents)
{
    Descriptor file(memfd_create("morvath-sim", MFD_CLOEXEC), "memfd_create");
    const auto written =
        pwrite(file.get(), contents.data(), contents.size(), 0);
    requireSuccess(written == static_cast<ssize_t>(contents.size()), "pwrite");
    return file;
}

/** After a fork, when other threads are gone: what is used works there. */
[[noreturn]] void becomeProgram(char* const* command, const char* shownName,
                                const std::array<int, 3>& streams, pid_t parent)
{
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    // Too late for the signal when the parent has ended already.
    if (getppid() != parent)
    {
        _exit(EXIT_FAILURE);
    }
    // The parent's mask would be inherited and keep the program from ending.
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    for (int stream = 0; stream < static_cast<int>(streams.size()); ++stream)
    {
        dup2(streams[stream], stream);
    }
    execvp(command[0], command);
    const auto reason = errno;
    dprintf(STDERR_FILENO, "morvath-sim: cannot run %s: %s\n", shownName,
            strerrordesc_np(reason));
    _exit(reason == ENOENT ? statusNotFound : statusNotExecutable);
}

} // namespace

Descriptor::Descriptor(int number, const char* operation) : number(number)
{
    requireSuccess(number >= 0, operation);
}

MemoryFile::MemoryFile(std::string_view contents) : file(newMemory(contents)) {}

void MemoryFile::replace(std::string_view contents)
{
    const auto other = newMemory(contents);
    requireSuccess(dup3(other.get(), file.get(), O_CLOEXEC) >= 0, "dup3");
}

std::string MemoryFile::path() const
{
    // By our number and not as /proc/self: commands close what they inherit.
    return "/proc/" + std::to_string(getpid()) + "/fd/" +
           std::to_string(file.get());
}

Process::Process(const std::vector<std::string>& command,
                 const std::array<int, 3>& streams)
{
    std::vector<char*> arguments;
    for (const auto& word : command)
    {
        arguments.push_back(const_cast<char*>(word.c_str()));
    }
    arguments.push_back(nullptr);
    const auto shownName = cli::visible(command.front());
    const auto parent = getpid();
    pid = fork();
    requireSuccess(pid >= 0, "fork");
    if (pid == 0)
    {
        becomeProgram(arguments.data(), shownName.c_str(), streams, parent);
    }
}

Process::~Process()
{
    if (pid > 0)
    {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
}

void Process::send(int signal) const { kill(pid, signal); }

std::optional<int> Process::status()
{
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) != pid)
    {
        return {};
    }
    pid = 0;
    return WIFSIGNALED(status) ? statusOfSignals + WTERMSIG(status)
                               : WEXITSTATUS(status);
}

} // namespace morvath::sim
