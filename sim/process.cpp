// SPDX-License-Identifier: Apache-2.0
#include "sim/process.hpp"

#include "sim/pipe.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
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
    if (options.inherited >= 0)
    {
        fcntl(options.inherited, F_SETFD, 0);
    }
    execvpe(command[0], command, environment);
    const int reason = errno;
    [[maybe_unused]] const ssize_t written =
        write(errorPipe, &reason, sizeof(reason));
    _exit(EXIT_FAILURE);
}

} // namespace

Process::Process(const std::vector<std::string>& command,
                 const ProcessOptions& options)
{
    const std::vector<std::string> environment =
        environmentWith(options.environment);
    const std::vector<char*> arguments = pointersTo(command);
    const std::vector<char*> variables = pointersTo(environment);
    Pipe failure;
    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ < 0)
    {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    if (pid_ == 0)
    {
        becomeProgram(arguments.data(), variables.data(), options, parent,
                      failure.writeEnd.get());
    }
    failure.writeEnd.close();
    // exec closes the pipe; a failing exec writes its reason first.
    int reason = 0;
    if (read(failure.readEnd.get(), &reason, sizeof(reason)) == sizeof(reason))
    {
        waitpid(pid_, nullptr, 0);
        throw std::system_error(reason, std::generic_category(),
                                "cannot run " + command.front());
    }
}

Process::~Process()
{
    if (pid_ > 0)
    {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
}

void Process::send(int signal) const
{
    if (pid_ > 0)
    {
        kill(pid_, signal);
    }
}

bool Process::hasEnded()
{
    if (pid_ > 0 && waitpid(pid_, &status_, WNOHANG) == pid_)
    {
        pid_ = 0;
    }
    return pid_ == 0;
}

int Process::exitStatus() const
{
    return WIFSIGNALED(status_) ? 128 + WTERMSIG(status_)
                                : WEXITSTATUS(status_);
}

} // namespace morvath::sim
