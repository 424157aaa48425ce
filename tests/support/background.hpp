// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <signal.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace morvath::tests
{

/** A program in the background; its output is read line by line. */
class Background
{
  public:
    /** @param[in] command  of a shell, which the program replaces */
    explicit Background(const std::string& command) :
        output(popen(("echo $$; exec " + command).c_str(), "re")),
        process(std::stoi(line()))
    {}

    ~Background()
    {
        if (output)
        {
            send(SIGKILL);
            pclose(output);
        }
    }

    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    pid_t id() const { return process; }
    void send(int signal) const { kill(process, signal); }

    /** The next line; empty at the end, when all writers are gone. */
    std::string line() const
    {
        std::string text;
        for (int letter = 0;
             (letter = std::getc(output)) != EOF && letter != '\n';)
        {
            text += static_cast<char>(letter);
        }
        return text;
    }

    /** Whether there comes a line with such a text. */
    bool says(std::string_view text) const
    {
        for (std::string one; !(one = line()).empty();)
        {
            if (one.find(text) != one.npos)
            {
                return true;
            }
        }
        return false;
    }

    /** Waits for the end; the status is that of wait(). */
    int end() { return pclose(std::exchange(output, nullptr)); }

  private:
    std::FILE* output;
    pid_t process;
};

} // namespace morvath::tests
