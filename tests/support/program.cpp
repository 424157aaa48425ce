// SPDX-License-Identifier: Apache-2.0
#include "support/program.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
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
    char folder[] = "/tmp/morvath-test-XXXXXX";
    if (!mkdtemp(folder))
    {
        std::perror("mkdtemp");
        return {-1, {}, {}};
    }
    const auto output = std::string(folder) + "/output";
    const auto errors = std::string(folder) + "/errors";
    const auto line = '>' + output + " 2>" + errors + ' ' +
                      withProgram(command) + ' ' + arguments;
    const int status = std::system(line.c_str());
    Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                    contentOf(output), contentOf(errors)};
    unlink(output.c_str());
    unlink(errors.c_str());
    rmdir(folder);
    return outcome;
}

} // namespace morvath::tests
