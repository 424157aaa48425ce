#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes manual pages.

usage: generate.py list HEADER MAP
       generate.py library HEADER MAP FOLDER VERSION DATE EXAMPLE...
       generate.py snippets HEADER FILE
       generate.py man DESCRIPTION FILE DATE [SCREEN...]

"list" prints a line for each page that "library" makes: its name and those of
the functions on it. "snippets" writes the examples in the header as functions
of C++. DESCRIPTION is what a program prints with --describe, a SCREEN a command after
"$ " and what it shows.
"""

import json
import os
import sys

from command_page import command_page
from header import exported, parse_header
from library_pages import library_pages, page_name, snippets

PROGRAMS = [("morvath", 1), ("morvath-sim", 1), ("morvath-exporter", 1),
            ("libmorvath", 3)]


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def checked_header(header, exports):
    """The header, with each exported function in it once."""
    about, families = parse_header(header)
    documented = sorted(name for family in families
                        for name in family.functions)
    if documented != exported(exports):
        odd = sorted(set(documented) ^ set(exported(exports)))
        sys.exit(f"{header}: not documented once, or not exported: {odd}")
    return about, families


def main(kind, source, *rest):
    if kind == "list":
        print("libmorvath")
        for family in checked_header(source, *rest)[1]:
            print(page_name(family), *family.functions)
    elif kind == "library":
        exports, folder, *release = rest
        examples = release[2:]
        pages = library_pages(checked_header(source, exports), release[:2],
                              [read(example) for example in examples])
        for name, text in pages.items():
            write(os.path.join(folder, name + ".3"), text)
    elif kind == "snippets":
        write(rest[0], snippets(parse_header(source)[1]))
    else:
        file, date, *screens = rest
        write(file, command_page(json.loads(read(source)), date, PROGRAMS,
                                 [read(screen) for screen in screens]))


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
