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

std::string withProgram(std::string command)
{
    const auto variable = command.substr(command.rfind(' ') + 1);
    const char* program = std::getenv(variable.c_str());
    command.resize(command.size() - variable.size());
    return command + (program ? program : "false " + variable);
}

} // namespace

Outcome run(const std::string& command, const std::string& arguments)
{
    const sim::MemoryFile output("");
    const sim::MemoryFile errors("");
    const auto line = '>' + output.path() + " 2>" + errors.path() + ' ' +
                      withProgram(command) + ' ' + arguments;
    const int status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
            contentOf(output.path()), contentOf(errors.path())};
}

} // namespace morvath::tests
