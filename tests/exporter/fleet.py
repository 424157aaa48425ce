#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A fleet of simulated servers, watched by Prometheus itself: fleet BUILD

All is on loopback. The rules are the ones that are installed, without their
patience.
"""

import contextlib
import json
import os
import re
import signal
import socket
import subprocess
import sys
import tempfile
import time
import urllib.parse
import urllib.request
from pathlib import Path

BUILD = Path(sys.argv[1]).resolve()
os.environ |= {"MORVATH": f"{BUILD}/tools/morvath",
               "MORVATH_EXPORTER": f"{BUILD}/exporter/morvath-exporter",
               "MORVATH_SIM": f"{BUILD}/sim/morvath-sim"}
from harness import MORVATH, SIM, Exporter, scenario, temperature

RULES = Path(__file__).resolve().parents[2] / "exporter/rules"
SERVERS = 20
HANGING = 3
KILLED = 7
PATIENCE = 60

HANGS = [{"when": {"service": "xyz.openbmc_project.FanSensor"},
          "then": {"silent": True}}]
HOSTILE = '"}\n# TYPE \\ é \x01 ' + "x" * 3000


def document(number):
    """Each server has a temperature of its own, one hangs."""
    return {"objects": [temperature("Inlet_Temp", 20.5 + number, "Inlet_Temp")],
            "faults": HANGS if number == HANGING else []}


def run(*command, **options):
    return subprocess.run(command, check=True, timeout=PATIENCE, **options)


def check_metrics(folder):
    """That Prometheus has nothing against metrics with and without tables."""
    hostile = temperature("Inlet_Temp", 1, HOSTILE)
    for changes in {"objects": [hostile], "faults": HANGS}, {"mapper": False}:
        options = scenario(folder, changes)
        done = subprocess.run(
            [*SIM, "run", *options, "--", *MORVATH, "metrics",
             "--deadline", "2"], stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL, timeout=PATIENCE)
        said = run("promtool", "check", "metrics", input=done.stdout,
                   capture_output=True)
        assert not said.stdout + said.stderr, said


def free_port():
    with socket.create_server(("127.0.0.1", 0)) as server:
        return server.getsockname()[1]


class Prometheus(contextlib.AbstractContextManager):
    def __init__(self, folder, targets):
        impatient = re.sub(r"\bfor: \w+", "for: 0s",
                           (RULES / "morvath.rules.yml").read_text())
        (folder / "rules.yml").write_text(impatient)
        configuration = {
            "global": {"scrape_interval": "2s", "scrape_timeout": "2s",
                       "evaluation_interval": "1s"},
            "rule_files": [str(folder / "rules.yml")],
            "scrape_configs": [{"job_name": "morvath", "static_configs": [
                {"targets": targets}]}]}
        (folder / "prometheus.yml").write_text(json.dumps(configuration))
        run("promtool", "check", "config", folder / "prometheus.yml",
            stdout=subprocess.DEVNULL)
        self.address = f"127.0.0.1:{free_port()}"
        self.log = open(folder / "log", "w+")
        self.process = subprocess.Popen(
            ["prometheus", f"--config.file={folder}/prometheus.yml",
             f"--storage.tsdb.path={folder}/data",
             f"--web.listen-address={self.address}"], stderr=self.log,
            stdout=self.log)

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(PATIENCE)

    def ask(self, expression):
        """The values by labels, without those that all have."""
        query = urllib.parse.urlencode({"query": expression})
        with urllib.request.urlopen(
                f"http://{self.address}/api/v1/query?{query}") as answer:
            found = json.load(answer)["data"]["result"]
        return {tuple(sorted((label, value) for label, value in
                             one["metric"].items()
                             if label not in ("job", "__name__"))):
                float(one["value"][1]) for one in found}

    def await_(self, expression, expected):
        deadline = time.monotonic() + PATIENCE
        found = None
        while time.monotonic() < deadline:
            with contextlib.suppress(OSError):
                found = self.ask(expression)
                if found == expected:
                    return
            time.sleep(0.1)
        sys.exit(f"{expression}: {found}\nand not {expected}")


def check_fleet(prometheus, servers):
    targets = [server.address for server in servers]
    # Each reading is that of its scenario.
    prometheus.await_(
        'sum by (instance) (morvath_temperature_celsius{sensor="Inlet_Temp"})',
        {(("instance", target),): 20.5 + number
         for number, target in enumerate(targets)})
    # A service that hangs costs its own tables only, and no target.
    hanging = ("instance", targets[HANGING])
    prometheus.await_("morvath_table_success == 0", {
        (hanging, ("table", "fans")): 0, (hanging, ("table", "pwms")): 0})
    prometheus.await_(
        'sum by (instance, sensor) (ALERTS{alertname="MorvathFanSlow"})',
        {(("instance", target), ("sensor", "FAN4")): 1
         for target in targets if target != targets[HANGING]})
    os.killpg(servers[KILLED].process.pid, signal.SIGKILL)
    prometheus.await_(
        'sum by (instance) (ALERTS{alertname="MorvathDown",'
        'alertstate="firing"})', {(("instance", targets[KILLED]),): 1})
    prometheus.await_("count(up == 1)", {(): SERVERS - 1})


def main():
    run("promtool", "test", "rules", "morvath.test.yml", cwd=RULES,
        stdout=subprocess.DEVNULL)
    with tempfile.TemporaryDirectory() as folder, \
            contextlib.ExitStack() as running:
        check_metrics(folder)
        servers = []
        for number in range(SERVERS):
            own = Path(folder, str(number))
            own.mkdir()
            options = scenario(own, document(number))
            servers.append(running.enter_context(Exporter(
                "--reader", *MORVATH, before=[*SIM, "run", *options, "--"])))
        prometheus = running.enter_context(Prometheus(
            Path(folder), [server.address for server in servers]))
        check_fleet(prometheus, servers)
    print(f"Prometheus sees {SERVERS} servers as they are")


if __name__ == "__main__":
    main()
