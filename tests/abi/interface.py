#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares the binary interface of the built library with what is kept.

usage: interface.py KEPT LIBRARY HEADER [--update]

KEPT is the interface on a 32-bit machine: records with sizes and offsets, and
functions. It is compared with the debug information of LIBRARY, without the
sizes and offsets on other machines, with its symbols, and with HEADER.
"""

import difflib
import re
import subprocess
import sys


def readelf(library, *options):
    return subprocess.run(["readelf", "--wide", *options, library], check=True,
                          capture_output=True, text=True).stdout.splitlines()


class Entry:
    """An entry of the debug information."""

    def __init__(self, tag):
        self.tag = tag
        self.attributes = {}
        self.children = []

    def number(self, name):
        return int(self.attributes[name].split()[-1], 0)


def read_entries(library):
    """All entries by their place."""
    entries = {}
    path = []
    for line in readelf(library, "--debug-dump=info"):
        start = re.match(r" *<(\w+)><(\w+)>: .*\((DW_TAG_\w+)\)", line)
        if start:
            entry = Entry(start[3])
            entries[int(start[2], 16)] = entry
            del path[int(start[1], 16):]
            if path:
                path[-1].children.append(entry)
            path.append(entry)
            continue
        value = re.match(r" *<\w+> +(DW_AT_\w+) *: (?:\(\w+\) )?(?:\(.*?\): )?(.*)",
                         line)
        if value and path:
            path[-1].attributes[value[1]] = value[2].strip()
    return entries


class Interface:
    def __init__(self, library):
        self.entries = read_entries(library)
        header = "\n".join(readelf(library, "--file-header"))
        self.has_kept_sizes = "ELF32" in header
        self.records = {}
        self.functions = {}
        symbols = set(exported(library))
        for entry in self.entries.values():
            name = entry.attributes.get("DW_AT_name")
            if (entry.tag == "DW_TAG_subprogram" and name in symbols
                    and "DW_AT_declaration" not in entry.attributes):
                self.functions[name] = self.function(name, entry)
        for name in symbols - set(self.functions):
            self.functions[name] = name + " without debug information"

    def referred(self, entry):
        place = re.search(r"<(\w+)>", entry.attributes.get("DW_AT_type", ""))
        return place and self.entries[int(place[1], 16)]

    def type(self, entry):
        """The name of a type; a record is noted."""
        if entry is None:
            return "void"
        if entry.tag in ("DW_TAG_pointer_type", "DW_TAG_reference_type"):
            sign = "*" if "pointer" in entry.tag else "&"
            return self.type(self.referred(entry)) + sign
        if entry.tag == "DW_TAG_const_type":
            return self.type(self.referred(entry)) + " const"
        name = entry.attributes["DW_AT_name"]
        if entry.tag == "DW_TAG_typedef" and not name.endswith("_t"):
            return self.type(self.referred(entry))
        if entry.tag == "DW_TAG_structure_type":
            self.note(name, entry)
        return name

    def note(self, name, entry):
        members = [one for one in entry.children if one.tag == "DW_TAG_member"]
        if name in self.records or not name.endswith("Entry"):
            return
        self.records[name] = [f"{name} {entry.number('DW_AT_byte_size')}"] + [
            f"    {one.number('DW_AT_data_member_location')} "
            f"{self.type(self.referred(one))} {one.attributes['DW_AT_name']}"
            for one in members]

    def function(self, name, entry):
        arguments = ", ".join(self.type(self.referred(one))
                              for one in entry.children
                              if one.tag == "DW_TAG_formal_parameter")
        return f"{self.type(self.referred(entry))} {name}({arguments})"

    def lines(self):
        lines = []
        for name in sorted(self.records):
            lines += self.records[name]
        return lines + [self.functions[name] for name in sorted(self.functions)]


def exported(library):
    for line in readelf(library, "--dyn-syms", "--demangle"):
        fields = line.split(None, 7)
        if (len(fields) == 8 and fields[4] in ("GLOBAL", "WEAK")
                and fields[6] != "UND"):
            yield re.match(r"\w+", fields[7])[0]


def declared(header):
    text = re.sub(r"/\*.*?\*/|//[^\n]*|^#[^\n]*", "", open(header).read(),
                  flags=re.S | re.M)
    return set(re.findall(r"^\w[\w :]*[\s*&](\w+)\([^{}]*?\)\s*;", text, re.M))


def without_sizes(lines):
    """Also without arguments of templates, which compilers spell their way."""
    return [re.sub(r"^(    )?\d+ | \d+$|<.*>", "", line) for line in lines]


def main():
    kept_name, library, header = sys.argv[1:4]
    built = Interface(library)
    lines = built.lines()
    if "--update" in sys.argv:
        if not built.has_kept_sizes:
            sys.exit("this is not the library of a 32-bit machine")
        open(kept_name, "w").write("\n".join(lines) + "\n")
    kept = open(kept_name).read().splitlines()
    if not built.has_kept_sizes:
        kept, lines = without_sizes(kept), without_sizes(lines)
    differences = list(difflib.unified_diff(kept, lines, "kept", "built",
                                            lineterm=""))
    differences += [f"{name} is not in header and library"
                    for name in declared(header) ^ set(built.functions)]
    for difference in differences:
        print(difference)
    return 1 if differences or not built.functions else 0


if __name__ == "__main__":
    sys.exit(main())
