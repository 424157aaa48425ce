# SPDX-License-Identifier: Apache-2.0
"""Writes manual pages with the man macros."""

import re
import textwrap


def escape(text):
    """Text of a paragraph or a macro's argument, without its meaning."""
    return (text.replace("\\", "\\e").replace('"', "\\(dq")
            .replace("'", "\\(aq").replace("~", "\\(ti")
            .replace("^", "\\(ha"))


def literal(text):
    """Text that people copy: minus signs must not become hyphens."""
    return escape(text).replace("-", "\\-")


def sentence(text):
    text = " ".join(text.split())
    text = text[:1].upper() + text[1:]
    return text if text.endswith((".", "?")) else text + "."


def bold(text):
    return f"\\fB{literal(text)}\\fP"


def italic(text):
    return f"\\fI{literal(text)}\\fP"


class Page:
    """A page that grows section by section; texts are given escaped."""

    def __init__(self, name, section, release, title):
        version, date = release
        # Names of functions and objects are not to be broken.
        self.lines = [f'.TH {name} {section} "{date}" "morvath {version}" '
                      f'"{title}"', ".nh", ".ad l"]

    def section(self, title):
        self.lines.append(f'.SH "{escape(title)}"')

    def subsection(self, title):
        self.lines.append(f'.SS "{title}"')

    def paragraph(self, text):
        if not self.lines[-1].startswith((".SH", ".SS")):
            self.lines.append(".PP")
        self._text(text)

    def term(self, tag, text):
        self.lines.append(".TP")
        self._text(tag)
        self._text(text)

    def code(self, text, indented=True):
        """Lines as they are."""
        around = (".EX", ".EE") if not indented else (".RS 4\n.EX",
                                                      ".EE\n.RE")
        if not self.lines[-1].startswith((".SH", ".SS")):
            self.lines.append(".PP")
        self.lines.append(around[0])
        self.lines += [self._guarded(literal(line.expandtabs(4)))
                       for line in text.strip("\n").split("\n")]
        self.lines.append(around[1])

    def _text(self, text):
        # A new sentence begins a new line, as troff expects it.
        for part in re.sub(r"(?<=[a-z0-9)P][.?!]) +(?=[A-Z])", "\n",
                           text).split("\n"):
            self.lines += [self._guarded(line) for line in textwrap.wrap(
                part, break_long_words=False, break_on_hyphens=False)]

    @staticmethod
    def _guarded(line):
        return "\\&" + line if line.startswith((".", "'")) else line

    def __str__(self):
        return "\n".join(self.lines) + "\n"
