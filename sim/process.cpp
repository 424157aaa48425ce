// SPDX-License-Identifier: Apache-2.0
#include "sim/process.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>

namespace morvath::sim
{
namespace
{

/** Texts in the form that exec wants; they must outlive it. */
std::vector<char*> pointersTo(const std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (const std::string& text : texts)
    {
        pointers.push_back(const_cast<char*>(text.c_str()));
    }
    pointers.push_back(nullptr);
    return pointers;
}

// Room for any.
constexpr std::size_t pidDigits = 20;

std::vector<std::pair<std::string, std::string>>
additionsOf(const ProcessOptions& options)
{
    auto additions = options.environment;
    if (options.listening >= 0)
    {
        additions.push_back({"LISTEN_FDS", "1"});
        // The number is not known yet.
        additions.push_back({"LISTEN_PID", std::string(pidDigits, ' ')});
    }
    return additions;
}

std::vector<std::string> environmentWith(
    const std::vector<std::pair<std::string, std::string>>& additions)
{
    std::vector<std::string> result;
    for (const auto& [name, value] : additions)
    {
        result.push_back(name + "=" + value);
    }
    for (char** entry = environ; *entry != nullptr; entry++)
    {
        const std::string_view text = *entry;
        const std::string_view name = text.substr(0, text.find('='));
        const auto replaces = [&](const auto& addition) {
            return addition.first == name;
        };
        if (std::none_of(additions.begin(), additions.end(), replaces))
        {
            result.emplace_back(text);
        }
    }
    return result;
}

void redirect(int from, int to)
{
    if (from >= 0 && dup2(from, to) < 0)
    {
        _exit(EXIT_FAILURE);
    }
}

constexpr std::string_view listenPid = "LISTEN_PID=";

/** As systemd does it: the first descriptor, for this process alone. */
void handOver(int socket, char* const* environment)
{
    constexpr int first = 3;
    if (socket == first)
    {
        fcntl(socket, F_SETFD, 0);
    }
    redirect(socket == first ? -1 : socket, first);
    for (auto* entry = environment; *entry; ++entry)
    {
        if (std::string_view(*entry).starts_with(listenPid))
        {
            auto* digits = *entry + listenPid.size();
            const auto end =
                std::to_chars(digits, digits + pidDigits, getpid());
            *end.ptr = '\0';
        }
    }
}

/** Between fork and exec: only calls that are safe there. */
[[noreturn]] void becomeProgram(char* const* command, char* const* environment,
                                const ProcessOptions& options, pid_t parent,
                                int errorPipe)
{
    prctl(PR_SET_PDEATHSIG, options.deathSignal);
    // Too late for the signal when the parent has ended already.
    if (getppid() != parent)
    {
        _exit(EXIT_FAILURE);
    }
    // The parent's mask would be inherited and keep the program from ending.
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (options.ownSession)
    {
        setsid();
    }
    redirect(options.output, STDOUT_FILENO);
    redirect(options.error, STDERR_FILENO);
    if (options.listening >= 0)
    {
        handOver(options.listening, environment);
    }
    execvpe(command[0], command, environment);
    const int reason = errno;
    [[maybe_unused]] const ssize_t written =
        write(errorPipe, &reason, sizeof(reason));
    _exit(EXIT_FAILURE);
}

Descriptor newFile(std::string_view contents)
{
    Descriptor file(memfd_create("morvath-sim", MFD_CLOEXEC), "memfd_create");
    for (off_t end = 0; !contents.empty();)
    {
        const auto written =
            pwrite(file.get(), contents.data(), contents.size(), end);
        if (written < 0)
        {
            throw std::system_error(errno, std::generic_category(), "pwrite");
        }
        end += written;
        contents.remove_prefix(static_cast<std::size_t>(written));
    }
    return file;
}

} // namespace

Descriptor::Descriptor(int number, const char* operation) : number(number)
{
    if (number < 0)
    {
        throw std::system_error(errno, std::generic_category(), operation);
    }
}

void Descriptor::close() noexcept
{
    if (number >= 0)
    {
        ::close(std::exchange(number, -1));
    }
}

Pipe::Pipe()
{
    std::array<int, 2> ends{};
    const auto made = pipe2(ends.data(), O_CLOEXEC);
    readEnd = {made < 0 ? -1 : ends[0], "pipe2"};
    writeEnd = {ends[1], "pipe2"};
}

MemoryFile::MemoryFile(std::string_view contents) : file(newFile(contents)) {}

void MemoryFile::replace(std::string_view contents)
{
    const auto other = newFile(contents);
    if (dup3(other.get(), file.get(), O_CLOEXEC) < 0)
    {
        throw std::system_error(errno, std::generic_category(), "dup3");
    }
}

std::string MemoryFile::path() const
{
    // By our number and not as /proc/self: commands close what they inherit.
    return "/proc/" + std::to_string(getpid()) + "/fd/" +
           std::to_string(file.get());
}

Process::Process(const std::vector<std::string>& command,
                 const ProcessOptions& options)
{
    const std::vector<std::string> environment =
        environmentWith(additionsOf(options));
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<char*> variables = pointersTo(environment);
    Pipe failure;
    const pid_t parent = getpid();
    pid = fork();
    if (pid < 0)
    {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (pid == 0)
    {
        becomeProgram(arguments.data(), variables.data(), options, parent,
                      failure.writeEnd.get());
    }
    failure.writeEnd.close();
    // exec closes the pipe; a failing exec writes its reason first.
    int reason = 0;
    if (read(failure.readEnd.get(), &reason, sizeof(reason)) == sizeof(reason))
    {
        waitpid(pid, nullptr, 0);
        throw std::system_error(reason, std::generic_category(),
                                "cannot run " + command.front());
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

void Process::send(int signal) const
{
    if (pid > 0)
    {
        kill(pid, signal);
    }
}

bool Process::hasEnded()
{
    if (pid > 0 && waitpid(pid, &status, WNOHANG) == pid)
    {
        pid = 0;
    }
    return pid == 0;
}

int Process::exitStatus() const
{
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

} // namespace morvath::sim
