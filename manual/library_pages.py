# SPDX-License-Identifier: Apache-2.0
"""The manual pages of the library, from its header and examples."""

import re

from troff import Page, bold, escape, literal, sentence

# What an entry of a list in the head of the header begins with.
LISTED = re.compile(r"^ {2,}(-?\d|[\w:, ]+$)")

TABLE_EXAMPLE = """\
{record} *entries = NULL;
int32_t count = 0;
if ({read}(&entries, &count) == 0)
{{
    for (int32_t i = 0; i < count; ++i)
    {{
        {use}
        {free}(&entries[i]);
    }}
    free(entries);
}}
"""


def page_name(family):
    return "morvath_" + re.sub(r"\W+", "_",
                               family.title.lower().replace("c++", "cxx"))


class LibraryPages:
    def __init__(self, about, families, release, examples):
        self.about = about
        self.families = families
        self.release = release
        self.examples = examples
        self.known = {name for family in families
                      for name in family.functions}
        # What the header calls by its title is a page here.
        self.titles = {escape('"Exceptions"'):
                       "EXCEPTIONS in \\fBlibmorvath\\fP(3)"}
        for family in families:
            self.titles[escape(f'"{family.title}"')] = (
                bold(page_name(family)) + "(3)")

    def prose(self, text):
        """Text of the header with what it names in bold."""
        text = escape(re.sub(r"\s+", " ", text))
        for title, reference in self.titles.items():
            text = text.replace(title, reference)
        return re.sub(r"\b(\w+)\(\)",
                      lambda name: bold(name.group(1)) + "()"
                      if name.group(1) in self.known else name.group(), text)

    def page(self, name, names, meaning):
        page = Page(name, 3, self.release, "Library functions")
        page.section("NAME")
        page.paragraph(escape(", ".join([name, *names])) + " \\- "
                       + escape(meaning))
        page.section("SYNOPSIS")
        return page

    def overview(self):
        """libmorvath(3): what the head of the header says."""
        first, *rest = self.about.paragraphs
        page = self.page("libmorvath", [], "a flat view of an OpenBMC platform")
        page.code("#include <morvath.h>\n\n"
                  "cc program.c $(pkg-config --cflags --libs morvath)", False)
        page.section("DESCRIPTION")
        page.paragraph(self.prose(first))
        page.section("FUNCTIONS")
        for family in self.families:
            page.term(f"{bold(page_name(family))}(3)", self.prose(
                family.title + ": " + ", ".join(family.functions) + "."))
        for paragraph in rest:
            title = re.match(r"(\w+(?: \w+)?)\. ", paragraph)
            if title:
                page.section(title.group(1).upper())
                paragraph = paragraph[title.end():]
            self.with_list(page, paragraph)
        self.see_also(page, [])
        return str(page)

    def with_list(self, page, text):
        """A paragraph, perhaps with an indented list at its end."""
        lines = text.split("\n")
        start = next((number for number, line in enumerate(lines)
                      if line.startswith("  ")), len(lines))
        page.paragraph(self.prose(" ".join(lines[:start])))
        items = []
        for line in lines[start:]:
            code = re.match(r"^ +(-?\d)  (.*)", line)
            if code:
                items.append([literal(code.group(1)), code.group(2)])
            elif LISTED.match(line) and not line.startswith("    "):
                items.append([bold(line.strip()), ""])
            elif line.startswith("  "):
                items[-1][1] += " " + line.strip()
            else:
                page_after = " ".join(lines[lines.index(line):])
                break
        else:
            page_after = ""
        for tag, meaning in items:
            page.term(tag, self.prose(sentence(meaning)))
        if page_after:
            page.paragraph(self.prose(page_after))

    def family_page(self, family):
        page = self.page(page_name(family), family.functions,
                         family.title if family.title[:2].isupper()
                         else family.title[:1].lower() + family.title[1:])
        code = [entry.code for entry in family.entries if entry.functions]
        page.code("#include <morvath.h>\n\n" + "\n\n".join(code), False)
        self.records(page, family)
        page.section("DESCRIPTION")
        for paragraph in family.comment.paragraphs:
            page.paragraph(self.prose(paragraph))
        for entry in family.entries:
            if not entry.record:
                self.describe(page, entry)
        self.results(page, family)
        self.ownership(page, family)
        page.section("EXAMPLE")
        page.code(self.example(family))
        self.see_also(page, [("libmorvath", 3)])
        return str(page)

    def records(self, page, family):
        for entry in family.entries:
            if not entry.record:
                continue
            page.section(entry.record)
            for paragraph in entry.comment.paragraphs:
                page.paragraph(self.prose(paragraph))
            for kind, name, meaning in entry.fields:
                page.term(f"{literal(kind)} {bold(name)}".replace("* ", "*"),
                          self.prose(sentence(meaning)))

    def describe(self, page, entry):
        if entry.functions:
            page.subsection(", ".join(bold(name) + "()"
                                      for name in entry.functions))
        elif entry.code:
            page.subsection("Types")
            page.code(entry.code)
        for paragraph in entry.comment.paragraphs:
            page.paragraph(self.prose(paragraph))
        for name, is_output, meaning in entry.comment.parameters:
            direction = " (output)" if is_output else ""
            page.term(bold(name) + direction,
                      self.prose(sentence(meaning)))

    def results(self, page, family):
        page.section("RETURN VALUE")
        codes = set()
        for entry in family.entries:
            for text in entry.comment.returns:
                names = ", ".join(bold(name) + "()"
                                  for name in entry.functions)
                page.term(names, self.prose(sentence(text)))
                codes |= set(re.findall(r"-[1-9]\b", text))
        status = next(text for text in self.about.paragraphs
                      if text.startswith("Status codes."))
        meanings = dict(re.findall(r"^ +(-\d)  (.*)$", status, re.M))
        if not codes:
            page.paragraph("None of them fails with a status code.")
        page.section("ERRORS")
        for code in sorted(codes, key=int, reverse=True):
            page.term(literal(code), self.prose(sentence(meanings[code])))
        for entry in family.entries:
            for text in entry.comment.throws:
                names = ", ".join(bold(name) + "()"
                                  for name in entry.functions)
                page.term(names, "Raises " + self.prose(text.rstrip(".")) + ".")
        page.paragraph("Failures that leave a function as a C++ exception "
                       "are explained in \\fBlibmorvath\\fP(3).")

    def ownership(self, page, family):
        if not any("**" in entry.code for entry in family.entries):
            return
        releases = self.releases(family)
        page.section("OWNERSHIP")
        for record, release in releases.items():
            page.paragraph(self.prose(
                f"Release the texts of each {record} with {release}(), "
                "and the array of them with free()."))
        if not releases:
            owned = next(text for text in self.about.paragraphs
                         if text.startswith("Ownership."))
            page.paragraph(self.prose(owned.split(". ", 1)[1]))

    @staticmethod
    def releases(family):
        """The free function of each record."""
        found = {}
        for entry in family.entries:
            release = re.match(r"void (\w+)\((\w+) \*", entry.code)
            if release:
                found[release.group(2)] = release.group(1)
        return found

    def example(self, family):
        """A program of the examples, one of the comments, or the usual loop."""
        for text in self.examples:
            if any(re.search(rf"\b{name}\(", text)
                   for name in family.functions):
                return re.sub(r"^// SPDX-.*\n", "", text)
        if family.comment.examples:
            return "\n\n".join(family.comment.examples) + "\n"
        record, release = next(iter(self.releases(family).items()))
        entry = next(entry for entry in family.entries
                     if entry.record == record)
        use = next(f"puts(entries[i].{name});"
                   for kind, name, _ in entry.fields if kind == "char *")
        read = re.search(rf"(\w+)\({record} \*\*\w+,\s*int32_t \*\w+\)",
                         "".join(entry.code for entry in family.entries)
                         ).group(1)
        return TABLE_EXAMPLE.format(record=record, read=read, use=use,
                                    free=release)

    @staticmethod
    def see_also(page, pages):
        page.section("SEE ALSO")
        page.paragraph(",\n".join(
            f"{bold(name)}({number})"
            for name, number in [*pages, ("morvath", 1), ("morvath-sim", 1)]))


def snippets(families):
    """The examples of the pages that are not whole programs, for a compiler."""
    pages = LibraryPages(None, families, None, [])
    parts = ["#include <morvath.h>\n\n#include <cstdio>\n#include <cstdlib>\n"
             "#include <cstring>\n"]
    for family in families:
        parts.append(f"void {page_name(family)}();\n"
                     f"void {page_name(family)}()\n{{\n"
                     f"{pages.example(family)}}}\n")
    return "\n".join(parts)


def library_pages(header, release, examples):
    """All pages by their names."""
    about, families = header
    pages = LibraryPages(about, families, release, examples)
    return {"libmorvath": pages.overview(),
            **{page_name(family): pages.family_page(family)
               for family in families}}
