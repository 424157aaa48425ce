# SPDX-License-Identifier: Apache-2.0
"""Reads the public header: families of functions with their comments."""

import re
from dataclasses import dataclass, field


@dataclass
class Comment:
    """A comment in parts: paragraphs, examples and what has a tag."""

    paragraphs: list = field(default_factory=list)
    examples: list = field(default_factory=list)
    parameters: list = field(default_factory=list)
    returns: list = field(default_factory=list)
    throws: list = field(default_factory=list)


@dataclass
class Entry:
    """A comment with the declarations that it is for."""

    comment: Comment
    functions: list = field(default_factory=list)
    code: str = ""
    record: str = ""
    fields: list = field(default_factory=list)


@dataclass
class Family:
    title: str
    comment: Comment
    entries: list = field(default_factory=list)

    @property
    def functions(self):
        return [name for entry in self.entries for name in entry.functions]


def lines_of(comment):
    text = re.sub(r"^/\*\*?|\*/$", "", comment)
    return [re.sub(r"^\s*\*(?: |$)", "", line).rstrip()
            for line in text.split("\n")]


def parse_comment(comment):
    parsed = Comment()
    text = "\n".join(lines_of(comment)).strip("\n")
    text = re.sub(r"@file\s*", "", text)

    def keep_example(match):
        parsed.examples.append(match.group(1).strip("\n"))
        return ""
    text = re.sub(r"@code\n(.*?)@endcode", keep_example, text, flags=re.S)
    for part in re.split(r"\n\s*\n|\n(?=@)", text.strip()):
        part = part.strip("\n")
        tag = re.match(r"@(param(?:\[out\])?|return|throws)\s+", part)
        if not tag:
            parsed.paragraphs += [part] if part.strip() else []
            continue
        rest = re.sub(r"\s+", " ", part[tag.end():]).strip()
        if tag.group(1).startswith("param"):
            name, meaning = rest.split(" ", 1)
            parsed.parameters.append((name, "out" in tag.group(1), meaning))
        else:
            getattr(parsed, {"return": "returns"}.get(
                tag.group(1), tag.group(1))).append(rest)
    return parsed


def function_names(code):
    return re.findall(r"^[\w:]+[\w :&*]*?[\s*&](\w+)\([^{};]*\);", code, re.M)


def record_fields(code):
    found = re.findall(r"^\s+(\w+ \*?)(\w+);\s*/\*\*<(.*?)\*/", code,
                       re.M | re.S)
    return [(kind.strip(), name, re.sub(r"\s+", " ", meaning).strip())
            for kind, name, meaning in found]


def entry_of(comment, code):
    code = re.sub(r"^(#.*|extern \"C\" \{|\} // extern.*)\n", "", code,
                  flags=re.M).strip("\n")
    record = re.search(r"^typedef struct (\w+)\n\{\n(.*?)^\}", code,
                       re.M | re.S)
    return Entry(parse_comment(comment), function_names(code),
                 code.split("\n\n\n")[0],
                 record.group(1) if record else "",
                 record_fields(record.group(2)) if record else [])


def parse_header(path):
    """What the file says of itself, and its families."""
    text = open(path, encoding="utf-8").read()
    # Comments at the beginning of a line; those of fields are code.
    parts = re.split(r"^(/\*.*?\*/)\n", text, flags=re.M | re.S)[1:]
    about = parse_comment(parts[0])
    families = []
    for comment, code in zip(parts[2::2], parts[3::2]):
        if comment.startswith("/**"):
            families[-1].entries.append(entry_of(comment, code))
            continue
        parsed = parse_comment(comment)
        title = parsed.paragraphs[0]
        if "\n" in title or title.endswith("."):
            # A remark within a family.
            families[-1].entries.append(Entry(parsed))
        else:
            del parsed.paragraphs[0]
            families.append(Family(title, parsed))
    return about, families


def exported(path):
    """The names in a linker map."""
    published = re.search(r"global:(.*?)local:",
                          open(path, encoding="utf-8").read(), re.S).group(1)
    names = re.findall(r'"(\w+)\(|^\s*(\w+);', published, re.M)
    return sorted(quoted or plain for quoted, plain in names)
