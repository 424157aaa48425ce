// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace morvath::sim
{

/** Owns a file descriptor. */
class Descriptor
{
  public:
    Descriptor() = default;

    /** Throws std::system_error when the operation gave no descriptor. */
    Descriptor(int fd, const char* operation) : fd_(fd)
    {
        if (fd < 0)
        {
            throw std::system_error(errno, std::generic_category(), operation);
        }
    }

    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1))
    {}

    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(fd_, other.fd_);
        return *this;
    }

    ~Descriptor()
    {
        close();
    }

    int get() const noexcept
    {
        return fd_;
    }

    void close() noexcept
    {
        if (fd_ >= 0)
        {
            ::close(std::exchange(fd_, -1));
        }
    }

  private:
    int fd_ = -1;
};

} // namespace morvath::sim
