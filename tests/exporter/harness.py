# SPDX-License-Identifier: Apache-2.0
"""The exporter as the tests run it, and a strict reader of what it says."""

import contextlib
import http.client
import json
import os
import re
import shlex
import signal
import subprocess
import tempfile
from pathlib import Path

# How the programs run here, perhaps with an emulator before them.
EXPORTER = shlex.split(os.environ["MORVATH_EXPORTER"])
MORVATH = shlex.split(os.environ["MORVATH"])
SIM = shlex.split(os.environ["MORVATH_SIM"])
# Emulated and sanitized programs are slow.
PATIENCE = 60

TABLES = {"temperatures", "fans", "voltages", "currents", "powers", "pwms",
          "host", "power-supplies", "disks", "raid-drives", "gpus", "memory",
          "processors", "network-ports", "bmc-network", "network-adapters",
          "pcie-slots", "system", "firmware", "raid-controllers"}

LABEL = r'[a-z_0-9]+="(?:[^"\\\n]|\\["\\n])*"'
SAMPLE = re.compile(rf"([a-z_0-9]+)(?:\{{({LABEL}(?:,{LABEL})*)\}})? "
                    r"([+-]?(?:[0-9.]+(?:e[+-]?[0-9]+)?|Inf))")


def samples(text):
    """All samples by name and labels; raises for what is not well formed."""
    found = {}
    described = set()
    current = None
    assert text.endswith("\n")
    for line in text[:-1].split("\n"):
        if line.startswith("# "):
            _, keyword, name, *_ = line.split(" ")
            assert (keyword, name) not in described, line
            assert keyword in ("HELP", "TYPE") and name.startswith("morvath_")
            assert current == name or (keyword, name) == ("HELP", name)
            described.add((keyword, name))
            current = name
            continue
        match = SAMPLE.fullmatch(line)
        assert match and match[1] == current, line
        assert ("TYPE", current) in described
        labels = re.findall(rf"{LABEL}", match[2] or "")
        key = (match[1], *sorted(labels))
        assert key not in found, line
        assert all(len(label.encode()) < 800 for label in labels)
        found[key] = float(match[3])
    return found


def failed(found):
    """The tables that were not read."""
    tables = {key[1].split('"')[1]: value for key, value in found.items()
              if key[0] == "morvath_table_success"}
    assert tables.keys() == TABLES, tables
    return {table for table, value in tables.items() if value == 0}


def scenario(folder, document):
    """A file with a scenario, by default the built-in server with changes."""
    file = Path(folder, "scenario.json")
    whole = {"format": 1, "extends": "default", "objects": [], **document}
    file.write_text(json.dumps({key: value for key, value in whole.items()
                                if value is not None}))
    return ["--scenario", str(file)]


def temperature(sensor, value, name):
    """A sensor's object for a scenario."""
    unit = "xyz.openbmc_project.Sensor.Value.Unit.DegreesC"
    return {"path": f"/xyz/openbmc_project/sensors/temperature/{sensor}",
            "services": [{"name": "xyz.openbmc_project.Test", "interfaces": {
                "xyz.openbmc_project.Sensor.Value": {
                    "Value": {"type": "d", "value": value},
                    "Name": {"type": "s", "value": name},
                    "Unit": {"type": "s", "value": unit}}}}]}


def script(folder, text):
    """A program: what a reader can be, apart from the real one."""
    file = Path(folder, "reader")
    file.write_text("#!/bin/sh\n" + text)
    file.chmod(0o755)
    return str(file)


class Exporter(contextlib.AbstractContextManager):
    """A running exporter, and a client of it."""

    def __init__(self, *options, before=(), **spawning):
        self.process = subprocess.Popen(
            [*before, *EXPORTER, "--listen", "127.0.0.1:0", *options],
            stderr=subprocess.PIPE, text=True, process_group=0, **spawning)
        self.address = next(line for line in self.process.stderr
                            if "listening on" in line).split()[-1]

    def request(self, path="/metrics", method="GET", **headers):
        with contextlib.closing(http.client.HTTPConnection(
                self.address, timeout=PATIENCE)) as client:
            client.request(method, path, headers={
                name.replace("_", "-"): value
                for name, value in headers.items()})
            answer = client.getresponse()
            return answer, answer.read()

    def scrape(self, timeout=PATIENCE, **headers):
        answer, body = self.request(
            X_Prometheus_Scrape_Timeout_Seconds=str(timeout), **headers)
        assert answer.status == 200
        return samples(body.decode())

    def __exit__(self, *_):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait(PATIENCE)
        self.process.stderr.close()


@contextlib.contextmanager
def served(document=None):
    """An exporter on a simulated server."""
    with tempfile.TemporaryDirectory() as folder:
        reader = script(folder, f'exec {shlex.join(MORVATH)} "$@"\n')
        options = scenario(folder, document) if document else []
        with Exporter("--reader", reader,
                      before=[*SIM, "run", *options, "--"]) as running:
            yield running


@contextlib.contextmanager
def reading(text, **spawning):
    """An exporter with a reader of this shell script, and its folder."""
    with tempfile.TemporaryDirectory() as folder:
        reader = script(folder, text)
        with Exporter("--reader", reader, cwd=folder, **spawning) as running:
            yield running, Path(folder)
