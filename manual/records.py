# SPDX-License-Identifier: Apache-2.0
"""The layouts of the records, as a document."""

import re

HEAD = """\
# Layouts of the records

The records of the [public header](../include/morvath.h) are a binary interface
on 32-bit targets: every field, pointers too, is one word of 4 bytes in the
byte order of the target. 64-bit targets have the same fields in the same order,
with pointers of 8 bytes.

This file is made from the header and from `src/tables/layouts.cpp`, which pins
every offset at compile time: `manual/generate.py records`.
"""


def pinned(path):
    """The fields of each record by word, as the build checks them."""
    with open(path, encoding="utf-8") as file:
        text = file.read()
    words = {}
    for record, name, word in re.findall(r"^WORD\((\w+), (\w+), (\d+)\);",
                                         text, re.M):
        words.setdefault(record, {})[int(word)] = name
    sizes = dict(re.findall(r"^WORDS\((\w+), (\d+)\);", text, re.M))
    return words, {record: int(size) for record, size in sizes.items()}


def records_document(families, layouts):
    words, sizes = pinned(layouts)
    parts = [HEAD]
    records = [entry for family in families for entry in family.entries
               if entry.record]
    if {entry.record for entry in records} != set(sizes):
        raise SystemExit(f"{layouts}: not the records of the header")
    for entry in records:
        pins = words[entry.record]
        names = [name for _, name, _ in entry.fields]
        if [pins.get(word) for word in range(sizes[entry.record])] != names:
            raise SystemExit(f"{layouts}: not the fields of {entry.record}")
        parts.append(f"## {entry.record}: {4 * sizes[entry.record]} bytes\n\n"
                     "| Offset | Type | Field | |\n|---:|---|---|---|\n"
                     + "".join(
                         f"| {4 * word} | `{kind}` | `{name}` | {meaning} |\n"
                         for word, (kind, name, meaning)
                         in enumerate(entry.fields)))
    return "\n".join(parts)
