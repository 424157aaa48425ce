// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <sys/types.h>
#include <unistd.h>

#include <array>
#include <optional>
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
    /** Throws std::system_error when the operation gave no descriptor. */
    Descriptor(int number, const char* operation);

    Descriptor(Descriptor&& other) noexcept :
        number(std::exchange(other.number, -1))
    {}

    ~Descriptor() { close(number); }

    int get() const noexcept { return number; }

  private:
    int number;
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

/**
 * A child process; killed and reaped with the object. It is told to terminate
 * when the thread that starts it ends.
 */
class Process
{
  public:
    /**
     * A program that cannot be run is told on the standard error of the child,
     * whose status is then that of a shell.
     * @param[in] streams  its standard input, output and error
     */
    explicit Process(const std::vector<std::string>& command,
                     const std::array<int, 3>& streams = {0, 1, 2});
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void send(int signal) const;

    /** The status as a shell shows it, once it has ended. Does not wait. */
    std::optional<int> status();

  private:
    pid_t pid;
};

} // namespace morvath::sim
