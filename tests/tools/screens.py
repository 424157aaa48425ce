#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares what the command shows in a terminal with screens that are kept.

screens.py [--update] SIMULATOR MORVATH SCREEN...

A screen is called NAME-COLUMNSxROWS.txt. Its first line is the command, after
"$ "; the others are the terminal after it, or after the first round of a
command that repeats. Programs may be several words. --update writes the
screens anew.
"""

import difflib
import fcntl
import os
import pathlib
import pty
import re
import shlex
import signal
import struct
import sys
import termios

TIME = re.compile(r"^\d\d:\d\d:\d\d", re.MULTILINE)
# On a slow machine also what is being read, which is wiped in the end.
UNSEEN = re.compile(r"[^\n]*\r\x1b\[K|\x1b\[[0-9;]*[A-Za-z]|\r")
END_OF_ROUND = b"\x1b[J"
PATIENCE = 120


def shown_by(command, columns, rows):
    """All that the command writes to a terminal of that size."""
    pid, terminal = pty.fork()
    if pid == 0:
        size = struct.pack("HHHH", rows, columns, 0, 0)
        fcntl.ioctl(sys.stdout, termios.TIOCSWINSZ, size)
        os.execvp(command[0], command)
    signal.alarm(PATIENCE)
    output = b""
    try:
        while not output.endswith(END_OF_ROUND):
            part = os.read(terminal, 65536)
            if not part:
                break
            output += part
    except OSError:
        pass  # Linux says so when the other side is closed.
    os.kill(pid, signal.SIGTERM)
    os.close(terminal)
    os.waitpid(pid, 0)
    return output.decode()


def screen_of(path, simulator, morvath):
    first = path.read_text().splitlines()[0]
    words = shlex.split(first.removeprefix("$ "))
    columns, rows = map(int, re.search(r"-(\d+)x(\d+)$", path.stem).groups())
    command = [*simulator, "run", "--", *morvath, *words[1:]]
    text = UNSEEN.sub("", shown_by(command, columns, rows))
    return f"{first}\n" + TIME.sub("14:32:07", text.rstrip("\n")) + "\n"


def main():
    arguments = sys.argv[1:]
    is_update = arguments[0] == "--update"
    simulator, morvath, *paths = arguments[is_update:]
    os.environ |= {"LANG": "C.UTF-8", "TERM": "xterm", "NO_COLOR": "1"}
    os.environ.pop("LC_ALL", None)
    status = 0
    for path in map(pathlib.Path, paths):
        text = screen_of(path, simulator.split(), morvath.split())
        if is_update:
            path.write_text(text)
        elif text != path.read_text():
            status = 1
            sys.stdout.writelines(difflib.unified_diff(
                path.read_text().splitlines(True), text.splitlines(True),
                str(path), "shown"))
    return status


if __name__ == "__main__":
    sys.exit(main())
