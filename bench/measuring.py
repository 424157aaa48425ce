# SPDX-License-Identifier: Apache-2.0
"""Programs on the simulated platform, and what they cost."""

import contextlib
import glob
import itertools
import json
import os
import re
import resource
import subprocess
import time

BUILD = "build/bench"
SIMULATOR = f"{BUILD}/sim/morvath-sim"
# Client, bus and platform on one processor: what they cost adds up, and
# moving between processors does not blur it.
PINNED = ["taskset", "-c", "0"]


def program(name):
    return f"{BUILD}/bench/bench-{name}"


def scenario(folder, objects, properties=24):
    file = f"{folder}/{objects}-{properties}.json"
    if not os.path.exists(file):
        with open(file, "w") as output:
            subprocess.run(["bench/scenario", str(objects), str(properties)],
                           stdout=output, check=True)
    return ["--scenario", file]


def on_platform(command, options):
    """What the command prints, and what valgrind says of it."""
    run = subprocess.run([*PINNED, SIMULATOR, "run", *options, "--", *command],
                         check=True, capture_output=True, text=True)
    return run.stdout, run.stderr


def number(pattern, text):
    return int(re.search(pattern + r"\s*([\d,]+)", text)[1].replace(",", ""))


CALLGRIND = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"]
DHAT = ["valgrind", "--tool=dhat", "--dhat-out-file=/dev/null"]


def instructions(command, options=()):
    """Also what the command printed."""
    printed, report = on_platform([*CALLGRIND, *command], options)
    return number("refs:", report), printed


def heap(command, options=()):
    """The number of allocations, and the most bytes at one time."""
    _, report = on_platform([*DHAT, *command], options)
    return (number(r"Total: .* bytes in", report),
            number("At t-gmax:", report))


def benchmarks(pattern, options, repetitions):
    """CPU microseconds of each repetition, by job and client."""
    printed, _ = on_platform([
        program("timing"), f"--benchmark_filter={pattern}",
        "--benchmark_format=json", "--benchmark_time_unit=us",
        "--benchmark_min_time=0.05", f"--benchmark_repetitions={repetitions}",
        "--benchmark_enable_random_interleaving=true"], options)
    samples = {}
    for one in json.loads(printed)["benchmarks"]:
        if one["run_type"] == "iteration":
            samples.setdefault(one["run_name"], []).append(one["cpu_time"])
    return samples


def cpu_seconds_of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run_in_turns(commands, rounds):
    """CPU and wall milliseconds of each run, by command."""
    samples = [[] for _ in commands]
    for _ in range(rounds):
        for command, runs in zip(commands, samples):
            cpu, wall = cpu_seconds_of_children(), time.perf_counter()
            subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
            runs.append((1e3 * (cpu_seconds_of_children() - cpu),
                         1e3 * (time.perf_counter() - wall)))
    return samples


@contextlib.contextmanager
def process(command, environment):
    """A process that says in its first line that it is ready, and the line."""
    with subprocess.Popen([*PINNED, *command], env=environment, text=True,
                          stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE) as running:
        try:
            yield running, running.stdout.readline().strip()
        finally:
            running.terminate()


@contextlib.contextmanager
def served(command):
    """A bus with this server; the server, and the environment to reach it."""
    with process(["dbus-daemon", "--session", "--nofork", "--nopidfile",
                  "--print-address"], None) as (_, address):
        environment = {**os.environ, "DBUS_STARTER_BUS_TYPE": "system",
                       "DBUS_STARTER_ADDRESS": address,
                       "DBUS_SYSTEM_BUS_ADDRESS": address,
                       "DBUS_SESSION_BUS_ADDRESS": address}
        with process(command, environment) as (server, _):
            yield server, environment


def cpu_microseconds(server):
    total = 0
    for file in glob.glob(f"/proc/{server.pid}/task/*/schedstat"):
        with open(file) as text:
            total += int(text.read().split()[0])
    return total / 1e3


def ask(job, times, environment):
    subprocess.run([*PINNED, program("once"), job, "floor", str(times)],
                   env=environment, check=True, stdout=subprocess.DEVNULL)


def server_instructions(command, job):
    """What it takes the server to do the job once more."""
    counts = []
    for times in (1, 2):
        with served([*CALLGRIND, *command]) as (server, environment):
            ask(job, times, environment)
            server.terminate()
            counts.append(number("refs:", server.communicate()[1]))
    return counts[1] - counts[0]


def servers_in_turns(commands, jobs, rounds):
    """The least CPU of each server, and wall, of each job in microseconds."""
    least = {}
    with contextlib.ExitStack() as running:
        servers = {name: running.enter_context(served(command))
                   for name, command in commands.items()}
        for _, job, name in itertools.product(range(rounds), jobs, servers):
            server, environment = servers[name]
            cpu, wall = cpu_microseconds(server), time.perf_counter()
            ask(job, 1, environment)
            spent = (cpu_microseconds(server) - cpu,
                     1e6 * (time.perf_counter() - wall))
            before = least.get((name, job), spent)
            least[name, job] = tuple(map(min, spent, before))
    return least
