#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares what the linker map, the built library and the header publish.

usage: exports.py MAP LIBRARY HEADER
"""

import re
import subprocess
import sys


def in_map(path):
    text = open(path).read()
    published = re.search(r"global:(.*?)local:", text, re.S).group(1)
    # A C++ name is written out in quotes, with its arguments.
    names = re.findall(r'"(\w+)\(|^\s*(\w+);', published, re.M)
    return {quoted or plain for quoted, plain in names}


def in_library(path):
    table = subprocess.run(
        ["readelf", "--dyn-syms", "--wide", "--demangle", path],
        check=True, capture_output=True, text=True).stdout
    names = set()
    for line in table.splitlines():
        fields = line.split(None, 7)
        if len(fields) != 8 or fields[4] not in ("GLOBAL", "WEAK"):
            continue
        if fields[6] != "UND":
            names.add(re.match(r"\w+", fields[7]).group())
    return names


def in_header(path):
    text = open(path).read()
    text = re.sub(r"/\*.*?\*/|//[^\n]*|^#[^\n]*", "", text, flags=re.S | re.M)
    return set(re.findall(r"^\w[\w :]*[\s*&](\w+)\([^{}]*?\)\s*;", text, re.M))


def main():
    sources = {
        "map": in_map(sys.argv[1]),
        "library": in_library(sys.argv[2]),
        "header": in_header(sys.argv[3]),
    }
    everything = set.union(*sources.values())
    for source, names in sources.items():
        for name in sorted(everything - names):
            print(f"{name} is not in the {source}")
    print(f"{len(everything)} names")
    alike = all(names == everything for names in sources.values())
    return 0 if alike and everything else 1


if __name__ == "__main__":
    sys.exit(main())
