// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvath::sim
{

/** Owns a file descriptor. */
class Descriptor
{
  public:
    Descriptor() = default;

    /** Throws std::system_error when the operation gave no descriptor. */
    Descriptor(int number, const char* operation);

    Descriptor(Descriptor&& other) noexcept :
        number(std::exchange(other.number, -1))
    {}

    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(number, other.number);
        return *this;
    }

    ~Descriptor() { close(); }

    int get() const noexcept { return number; }

    void close() noexcept;

  private:
    int number = -1;
};

struct Pipe
{
    Descriptor readEnd;
    Descriptor writeEnd;

    Pipe();
};

/** A text that other processes can read as a file. */
class MemoryFile
{
  public:
    explicit MemoryFile(std::string_view contents);

    /** Puts another text in its place, at once for all who open it then. */
    void replace(std::string_view contents);

    /** Good in every process of the same user while this one lives. */
    std::string path() const;

    const Descriptor& descriptor() const noexcept { return file; }

  private:
    Descriptor file;
};

struct ProcessOptions
{
    /** Added to our own environment, or instead of what it has there. */
    std::vector<std::pair<std::string, std::string>> environment;
    /** Descriptors to use as standard output and error; -1 keeps ours. */
    int output = -1;
    int error = -1;
    /** A socket to hand over as systemd does; -1 for none. */
    int listening = -1;
    /** Away from the terminal, so that its signals do not get there. */
    bool ownSession = false;
    /** The signal that it gets when the thread that starts it ends. */
    int deathSignal;
};

/** A child process; killed and reaped with the object. */
class Process
{
  public:
    /** Throws std::system_error when the program cannot be started. */
    Process(const std::vector<std::string>& command,
            const ProcessOptions& options);
    ~Process();

    Process(Process&& other) noexcept :
        pid(std::exchange(other.pid, 0)),
        status(other.status)
    {}

    void send(int signal) const;

    /** Whether it has ended; then its status is there. Does not wait. */
    bool hasEnded();

    /** The status as a shell shows it. */
    int exitStatus() const;

  private:
    pid_t pid;
    int status = 0;
};

} // namespace morvath::sim
