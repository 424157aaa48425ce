// SPDX-License-Identifier: Apache-2.0
#include "support/program.hpp"

#include "sim/process.hpp"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace morvath::tests
{
namespace
{

std::string contentOf(const std::string& file)
{
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace

Outcome run(std::string command, const std::string& arguments)
{
    const sim::MemoryFile output("");
    const sim::MemoryFile errors("");
    command.insert(command.rfind(' ') + 1, "$");
    const auto line = '>' + output.path() + " 2>" + errors.path() + ' ' +
                      command + ' ' + arguments;
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            contentOf(output.path()), contentOf(errors.path())};
}

} // namespace morvath::tests
