// SPDX-License-Identifier: Apache-2.0
#include "listen.hpp"
#include "memory.hpp"
#include "number.hpp"
#include "server.hpp"

#include <getopt.h>
#include <systemd/sd-daemon.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace morvath::exporter;

constexpr int misused = 2;

constexpr auto help =
    "Serves the readings of a management controller to Prometheus.\n"
    "\n"
    "Usage: morvath-exporter [OPTIONS]\n"
    "\n"
    "Options:\n"
    "  -h, --help             Print this help and exit\n"
    "  --version              Print the version and exit\n"
    "  --listen ADDRESS:PORT  Where to answer, unless systemd hands over a\n"
    "                         socket (127.0.0.1:9795); [::1]:9795 for IPv6\n"
    "  --timeout SECONDS      Longest time for an answer to a client that\n"
    "                         names none (10)\n"
    "  --reader FILE          What is called with \"metrics\" for each "
    "reading\n"
    "                         (morvath)\n"
    "\n"
    "Exit status:\n"
    "  0  ended by a signal\n"
    "  1  the address or the socket cannot be used\n"
    "  2  misuse\n";

enum Option
{
    optionListen = 256,
    optionTimeout,
    optionReader,
    optionVersion,
};

constexpr option longOptions[] = {
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, optionVersion},
    {"listen", required_argument, nullptr, optionListen},
    {"timeout", required_argument, nullptr, optionTimeout},
    {"reader", required_argument, nullptr, optionReader},
    {},
};

[[noreturn]] void print(const char* text)
{
    std::fputs(text, stdout);
    std::exit(std::fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}

Seconds secondsIn(const char* text)
{
    const auto number = numberIn(text);
    if (!number || !(*number >= 0.1) || *number > 120)
    {
        std::fprintf(stderr,
                     "morvath-exporter: --timeout: %s is not between 0.1 and "
                     "120 seconds\n",
                     text);
        std::exit(misused);
    }
    return Seconds(*number);
}

Options parse(int argc, char** argv)
{
    Options options;
    for (int found = 0;
         (found = getopt_long(argc, argv, "h", longOptions, nullptr)) >= 0;)
    {
        switch (found)
        {
            case 'h': print(help);
            case optionVersion: print("morvath-exporter " MORVATH_VERSION "\n");
            case optionListen: options.address = optarg; break;
            case optionTimeout: options.timeout = secondsIn(optarg); break;
            case optionReader: options.reader = optarg; break;
            default: std::exit(misused);
        }
    }
    if (optind < argc)
    {
        std::fprintf(stderr, "morvath-exporter: %s: no argument is taken\n",
                     argv[optind]);
        std::exit(misused);
    }
    return options;
}

/** Ends by a signal, after the reader. */
int serve(const Options& options, int socket)
{
    sd_event* made = nullptr;
    if (sd_event_new(&made) < 0)
    {
        return EXIT_FAILURE;
    }
    const Owned<sd_event, sd_event_unref> event(made);
    sigset_t signals;
    sigemptyset(&signals);
    // sd-event asks the kernel for all of them.
    for (const int signal : {SIGINT, SIGTERM, SIGCHLD})
    {
        sigaddset(&signals, signal);
    }
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    for (const int signal : {SIGINT, SIGTERM})
    {
        sd_event_add_signal(made, nullptr, signal, nullptr, nullptr);
    }
    std::signal(SIGPIPE, SIG_IGN);
    const auto address = addressOf(socket);
    Server server(made, options);
    if (!server.start(socket))
    {
        std::fprintf(stderr, "morvath-exporter: cannot serve %s\n",
                     address.c_str());
        return EXIT_FAILURE;
    }
    std::fprintf(stderr, "morvath-exporter: listening on %s\n",
                 address.c_str());
    releaseCode();
    sd_notify(0, "READY=1");
    return sd_event_loop(made) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const auto options = parse(argc, argv);
    const int socket = listenAt(options.address);
    return socket < 0 ? EXIT_FAILURE : serve(options, socket);
}
