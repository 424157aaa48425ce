#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""What the exporter and "morvath metrics" answer, whatever happens."""

import contextlib
import gzip
import json
import os
import re
import resource
import shutil
import socket
import subprocess
import tempfile
import time
import unittest
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from harness import (EXPORTER, MORVATH, PATIENCE, SIM, TABLES, Exporter, failed,
                     reading, samples, scenario, served, temperature)

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
# A reader that reads all.
GOOD = ('for t in %s; do echo "morvath_table_success{table=\\"$t\\"} 1"; done\n'
        % " ".join(sorted(TABLES)))


def metrics(document=None):
    """What is printed on a simulated server."""
    with tempfile.TemporaryDirectory() as folder:
        options = scenario(folder, document) if document else []
        return subprocess.run(
            [*SIM, "run", *options, "--", *MORVATH, "metrics"],
            check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True, timeout=PATIENCE).stdout


def resident(process):
    status = Path(f"/proc/{process.pid}/status").read_text()
    return int(status.split("VmRSS:")[1].split()[0])


def readers(process):
    """Processes that were started by an exporter."""
    return Path(f"/proc/{process.pid}/task/{process.pid}/children"
                ).read_text().split()


class Metrics(unittest.TestCase):
    def test_they_say_what_the_server_has(self):
        text = metrics()
        self.assertEqual(failed(samples(text)), set())
        lines = set(text.splitlines())
        known = set((HERE / "server.txt").read_text().splitlines())
        self.assertEqual(known - lines, set())
        # Of these sensors it has all samples.
        for sensor in ("DIMMG2_Temp", "FAN4", "NVMe3_Temp"):
            self.assertEqual({line for line in lines - known
                              if f'sensor="{sensor}"' in line}, set())

    def test_they_are_documented(self):
        documented = re.findall(
            r"`(morvath_\w+)`",
            "".join(re.findall(r"^\| (`morvath_[^|]*)\|",
                               (ROOT / "docs/exporter.md").read_text(), re.M)))
        self.assertEqual(
            sorted({key[0] for key in samples(metrics())}
                   | {"morvath_scrape_success"}), sorted(documented))

    def test_hostile_names_cost_nothing(self):
        names = ['"} 1\nmorvath_forged 1\n', "back\\slash", "\\", '"',
                 "x" * 5000, "é" * 500, "tab\tand\x01\x7f\x1b[31m", "", "",
                 "same", "same", "same#2", "{}", "# EOF"]
        objects = [temperature(f"hostile_{number}", number, name)
                   for number, name in enumerate(names)]
        found = samples(metrics({"objects": objects}))
        values = {value for key, value in found.items()
                  if key[0] == "morvath_temperature_celsius"}
        self.assertLessEqual(set(range(len(names))), values)
        self.assertEqual(failed(found), set())

    def test_labels_of_a_raid_library_are_text(self):
        drive = {"device_id": 1, "text80": "bay", "raw": {"81": "ff80c3"}}
        text = metrics({"raid": {"controllers": [
            {"raid_id": 1, "name": "c", "physical": [drive]}]}})
        self.assertIn("b\ufffd", text)
        self.assertEqual(failed(samples(text)), set())

    def test_tables_that_are_missing_are_no_failure(self):
        self.assertEqual(failed(samples(metrics({"extends": None}))), set())


class Faults(unittest.TestCase):
    def test_hanging_services_lose_their_objects_only(self):
        hang = {"faults": [
            {"when": {"service": f"xyz.openbmc_project.{name}Sensor"},
             "then": {"silent": True}} for name in ("HwmonTemp", "NVMe")]}
        with served(hang) as server:
            start = time.monotonic()
            found = server.scrape(timeout=5)
            self.assertLess(time.monotonic() - start, 5)
        self.assertEqual(failed(found), {"temperatures", "powers"})
        self.assertIn(("morvath_temperature_celsius", 'sensor="PSU1_Temp"'),
                      found)

    def test_a_bad_sensor_does_not_hide_the_others(self):
        path = "/xyz/openbmc_project/sensors/fan_tach/FAN1"
        for fault in {"error": "x.Refused"}, {"silent": True}:
            with self.subTest(fault), served({"faults": [
                    {"when": {"path": path}, "then": fault}]}) as server:
                found = server.scrape(timeout=5)
                self.assertEqual(failed(found), {"fans"})
                fans = {key[1] for key in found
                        if key[0] == "morvath_fan_speed_rpm"}
                self.assertEqual(len(fans), 7)
                self.assertNotIn('sensor="FAN1"', fans)

    def test_a_mapper_that_hangs_or_is_gone_is_told(self):
        for document in ({"mapper": False}, {"faults": [
                {"when": {"service": "xyz.openbmc_project.ObjectMapper"},
                 "then": {"silent": True}}]}):
            with self.subTest(document), served(document) as server:
                found = server.scrape(timeout=5)
                self.assertLessEqual({"temperatures", "fans", "voltages",
                                      "currents", "powers", "pwms"},
                                     failed(found))

    def test_what_came_before_the_deadline_is_answered(self):
        script = ('echo "# TYPE morvath_x gauge"; echo "morvath_x 1"\n'
                  'echo \'morvath_table_success{table="fans"} 1\'\n'
                  'printf "morvath_cut "; exec sleep 1000\n')
        with reading(script) as (server, _):
            start = time.monotonic()
            answer, body = server.request(
                X_Prometheus_Scrape_Timeout_Seconds="0.8")
            self.assertLess(time.monotonic() - start, 0.8)
            self.assertIn(b"morvath_x 1\n", body)
            self.assertNotIn(b"morvath_cut", body)
            self.assertIn(b'{table="fans"} 1\n', body)
            self.assertIn(b'{table="voltages"} 0\n', body)
            self.assertIn(b"\nmorvath_scrape_success 0\n", body)
            self.assertEqual(readers(server.process), [])

    def test_a_bad_reader_is_told_and_the_next_one_is_right(self):
        scripts = {"killed": "kill -9 $$", "fails": "exit 3",
                   "is endless": "exec yes", "is binary": "head -c 99999 "
                   "/dev/urandom", "writes nothing": "exec sleep 1000",
                   "leaves others": "sleep 1000 & sleep 1000"}
        for what, bad in scripts.items():
            script = f"[ -e good ] || {{ {bad}\nexit; }}\n{GOOD}"
            with self.subTest(what), reading(script) as (server, folder):
                _, body = server.request(
                    X_Prometheus_Scrape_Timeout_Seconds="0.5")
                self.assertIn(b"\nmorvath_scrape_success 0\n", body)
                self.assertEqual(body.count(b"} 0\n"), len(TABLES))
                self.assertEqual(readers(server.process), [])
                (folder / "good").touch()
                _, body = server.request()
                self.assertIn(b"\nmorvath_scrape_success 1\n", body)
        with Exporter("--reader", "/nowhere") as server:
            _, body = server.request()
            self.assertIn(b"\nmorvath_scrape_success 0\n", body)

    @unittest.skipIf(len(EXPORTER) > 1, "an emulator would need processes, too")
    @unittest.skipIf(os.geteuid() != 0, "a user of their own needs root")
    def test_a_failed_fork_is_told_and_the_next_one_is_right(self):
        user = {"user": 54321, "group": 54321}

        def limit():
            resource.setrlimit(resource.RLIMIT_NPROC, (2, 2))
        with tempfile.TemporaryDirectory() as place:
            # Where it was built the user may not be let in.
            os.chmod(place, 0o755)
            own = {"executable": shutil.copy(EXPORTER[0], place),
                   "preexec_fn": limit, **user}
            with (subprocess.Popen(["sleep", str(PATIENCE)], **user) as other,
                  reading(GOOD, **own) as (server, folder)):
                folder.chmod(0o755)
                _, body = server.request()
                self.assertIn(b"\nmorvath_scrape_success 0\n", body)
                other.kill()
                other.wait(PATIENCE)
                _, body = server.request()
                self.assertIn(b"\nmorvath_scrape_success 1\n", body)

    def test_scrapes_share_a_reading(self):
        script = ("echo x >>starts; echo 'morvath_x 1'\n"
                  "while ! [ -e go ]; do sleep 0.01; done\n")
        with reading(script) as (server, folder):
            pool = ThreadPoolExecutor(8)
            answers = [pool.submit(server.request) for _ in range(8)]
            # An impatient one does not end it for the others.
            server.request(X_Prometheus_Scrape_Timeout_Seconds="0.2")
            (folder / "go").touch()
            for answer in answers:
                self.assertIn(b"morvath_x 1", answer.result()[1])
            pool.shutdown()
            self.assertEqual((folder / "starts").read_text(), "x\n")
            self.assertEqual(readers(server.process), [])


class Http(unittest.TestCase):
    SCRIPT = ("echo '# TYPE morvath_a_info gauge'\n"
              "echo 'morvath_a_info{a=\"1\"} 1'\necho 'morvath_b 1'\n"
              "echo 'morvath_a_info{a=\"2\"} 1'\n"
              "echo 'morvath_sensor_alarm{class=\"fan\",sensor=\"<i>\\\"&\","
              "alarm=\"x\"} 1'\n")

    def test_the_format_is_chosen_by_the_client(self):
        openmetrics = "application/openmetrics-text"
        cases = {
            "": False, "*/*": False, "text/plain": False, openmetrics: True,
            f"{openmetrics};version=1.0.0,text/plain;version=0.0.4;q=0.5": True,
            f"{openmetrics};version=1.0.0;q=0.3, text/plain;q=0.9": False,
            f"{openmetrics};q=0": False, f"{openmetrics};version=2.0.0": False,
            f"{openmetrics.upper()} ; q=1": True, ";;,,=;q": False,
        }
        with reading(self.SCRIPT) as (server, _):
            for accept, is_openmetrics in cases.items():
                answer, body = server.request(Accept=accept)
                kind = openmetrics if is_openmetrics else "text/plain"
                self.assertIn(kind, answer.headers["Content-Type"], accept)
                self.assertEqual(body.endswith(b"# EOF\n"), is_openmetrics)
                self.assertIn(b"# TYPE morvath_a info\n" if is_openmetrics
                              else b"# TYPE morvath_a_info gauge\n", body)
                self.assertIn(b'{a="1"} 1\nmorvath_a_info{a="2"} 1\n', body)
            for encoding, packed in {"gzip": True, "deflate, GZIP;q=0.5": True,
                                     "gzip;q=0": False, "br": False}.items():
                answer, body = server.request(Accept_Encoding=encoding)
                self.assertEqual(answer.headers["Content-Encoding"] == "gzip",
                                 packed)
                text = gzip.decompress(body) if packed else body
                self.assertIn(b"morvath_b 1\n", text)

    def test_other_requests_are_refused(self):
        with reading(self.SCRIPT) as (server, _):
            for path, method, status in (
                    ("/metrics", "GET", 200), ("/metrics?x=<b>", "GET", 200),
                    ("/metrics", "HEAD", 200), ("/-/healthy", "GET", 200),
                    ("/", "GET", 200), ("/metrics", "POST", 405),
                    ("/", "DELETE", 405), ("/metrics/", "GET", 404),
                    ("/etc/passwd", "GET", 404), ("/../x", "PUT", 404),
                    ("/<b>%3Cscript%3E", "GET", 404)):
                answer, body = server.request(path, method)
                self.assertEqual(answer.status, status, (path, method))
                self.assertNotIn(b"<b>", body)
                self.assertNotIn(b"<script", body)
            answer, body = server.request("/")
            self.assertIn("text/html", answer.headers["Content-Type"])
            self.assertIn(b'<tr><td>fan<td>&lt;i&gt;"&amp;<td>x\n', body)

    def test_bad_clients_are_cut_off(self):
        with reading(self.SCRIPT) as (server, _):
            host, port = server.address.rsplit(":", 1)

            def connected(data=b""):
                client = socket.create_connection((host, int(port)), PATIENCE)
                with contextlib.suppress(OSError):
                    client.sendall(data)
                return client

            def received(client):
                """What is answered at once, or before the connection ends."""
                try:
                    with client:
                        client.settimeout(2)
                        client.shutdown(socket.SHUT_WR)
                        return b"".join(iter(lambda: client.recv(65536), b""))
                except OSError:
                    return b""

            megabyte = b"x" * (1 << 20)
            bad = (b"GET /metrics HTTP/1.1\r\nHost: a\r\nA: " + megabyte,
                   b"GET /" + megabyte + b" HTTP/1.1\r\n\r\n",
                   b"POST /metrics HTTP/1.1\r\nHost: a\r\n"
                   b"Content-Length: 1048576\r\n\r\n" + megabyte,
                   os.urandom(5000), b"\0" * 100, b"\r\n" * 5000,
                   b"GET /metrics HTTP/9.9\r\n\r\n", b"\x16\x03\x01\x02")
            with ThreadPoolExecutor(len(bad)) as pool:
                for answer in pool.map(lambda data: received(connected(data)),
                                       bad):
                    self.assertNotIn(b" 200 ", answer[:20])
            # Half of a request, and nobody who reads the answer.
            idle = [connected(b"GET /metr") for _ in range(8)]
            idle += [connected(b"GET /metrics HTTP/1.1\r\nHost: a\r\n\r\n" * 9)
                     for _ in range(8)]
            # It has seen all of them when these are answered, and has given
            # back the code that it needed to start.
            for _ in range(3):
                server.request()
            before = resident(server.process)
            begin = time.monotonic()
            with ThreadPoolExecutor(1000) as pool:
                list(pool.map(lambda _: server.request(), range(1000)))
            _, body = server.request()
            self.assertIn(b"morvath_b 1\n", body)
            if os.environ.get("MEASURED"):
                # Nobody waits until idle clients are cut off, after 10 s.
                self.assertLess(time.monotonic() - begin, 9)
                self.assertLess(resident(server.process), before + 1024)
                self.assertLessEqual(resident(server.process), 4096)
            self.assertEqual(readers(server.process), [])
            for client in idle:
                client.close()

    def test_it_listens_where_it_is_told(self):
        with Exporter("--listen", "[::1]:0") as server:
            self.assertIn("[::1]:", server.address)
            self.assertEqual(server.request("/-/healthy")[0].status, 200)
        with socket.create_server(("127.0.0.1", 0)) as handed:
            environment = {**os.environ, "LISTEN_FDS": "1"}
            move = f"exec 3<&{handed.fileno()}; " if handed.fileno() != 3 else ""
            with Exporter(before=["sh", "-c", move + 'LISTEN_PID=$$ exec "$@"',
                                  "sh"], pass_fds=[handed.fileno()],
                          env=environment) as server:
                port = handed.getsockname()[1]
                self.assertEqual(server.address, f"127.0.0.1:{port}")
                self.assertEqual(server.request("/-/healthy")[0].status, 200)

    def test_help_says_what_the_manual_says(self):
        done = subprocess.run([*EXPORTER, "--help"], timeout=PATIENCE,
                              capture_output=True, text=True)
        said = " ".join(done.stdout.split())
        described = json.loads((ROOT / "exporter/description.json.in")
                               .read_text())
        for option in described["options"]:
            words = [", ".join(option["names"]), option["value"],
                     option["meaning"]]
            self.assertIn(" ".join(filter(None, words)), said)
        for status in described["exitStatuses"]:
            self.assertIn(f"{status['name']} {status['meaning']}", said)
        self.assertLessEqual(max(map(len, done.stdout.split("\n"))), 80)

    def test_misuse_is_told(self):
        for *options, status, error in (
                ("--nosuch", 2, "nosuch"), ("x", 2, "x"),
                ("--timeout", "-1", 2, "-1"),
                ("--listen", "127.0.0.1:99999", 1, "99999"),
                ("--listen", "192.0.2.1:9795", 1, "192.0.2.1")):
            done = subprocess.run([*EXPORTER, *options], timeout=PATIENCE,
                                  capture_output=True, text=True)
            self.assertEqual(done.returncode, status, options)
            self.assertIn(error, done.stderr)


if __name__ == "__main__":
    unittest.main()
