# SPDX-License-Identifier: Apache-2.0
"""The manual page of a program, from what it describes of itself."""

from troff import Page, bold, escape, italic, sentence


def option_tag(option):
    names = ", ".join(bold(name) for name in option["names"])
    value = option["value"]
    return names + ("\\ " + italic(value) if value else "")


def argument_tag(argument):
    tag = italic(argument["value"])
    if argument["repeated"]:
        tag += "\\ ..."
    return tag if argument["required"] else f"[{tag}]"


def synopsis(program, path, command):
    words = [bold(word) for word in [program, *path]]
    words += ["[" + option_tag(option) + "]" for option in command["options"]
              if "--help" not in option["names"]]
    words += map(argument_tag, command["arguments"])
    return " ".join(words)


def commands_of(command, path=()):
    """All commands that do something, with the words that lead to them."""
    for inner in command["commands"]:
        words = (*path, inner["name"])
        if inner["commands"]:
            yield from commands_of(inner, words)
        else:
            yield words, inner


def add_command(page, path, command):
    page.subsection(" ".join(map(bold, path)))
    page.paragraph(escape(sentence(command["meaning"])))
    if command["notes"]:
        page.paragraph(escape(" ".join(command["notes"].split())))
    for option in command["arguments"] + command["options"]:
        if "--help" in option["names"]:
            continue
        tag = option_tag(option) if option["names"] else argument_tag(option)
        page.term(tag, escape(sentence(option["meaning"])))
        for word in option["choices"]:
            if word["meaning"]:
                page.lines.append(".RS")
                page.term(bold(word["name"]), escape(sentence(word["meaning"])))
                page.lines.append(".RE")


def add_terms(page, title, terms):
    page.section(title)
    for term in terms:
        page.term(bold(term["name"]), escape(sentence(term["meaning"])))


def command_page(program, date, others, screens):
    name = program["name"]
    page = Page(name, 1, (program["version"], date), "User commands")
    page.section("NAME")
    purpose = program["meaning"].rstrip(".")
    page.paragraph(f"{name} \\- {escape(purpose[:1].lower() + purpose[1:])}")
    page.section("SYNOPSIS")
    for path, command in list(commands_of(program)) or [((), program)]:
        page.lines.append(".br")
        page.lines.append(synopsis(name, path, command))
    page.lines.remove(".br")
    page.section("OPTIONS")
    for option in program["options"]:
        page.term(option_tag(option), escape(sentence(option["meaning"])))
    if program["commands"]:
        page.section("COMMANDS")
    for path, command in commands_of(program):
        add_command(page, path, command)
    add_terms(page, "EXIT STATUS", program["exitStatuses"])
    add_terms(page, "ENVIRONMENT", program["environment"])
    page.section("EXAMPLES")
    for example in program["examples"]:
        page.paragraph(escape(example["meaning"]) + ":")
        page.code(example["name"])
    for screen in screens:
        command, _, shown = screen.removeprefix("$ ").partition("\n")
        page.paragraph(bold(command) + " in a terminal:")
        page.code(shown.rstrip("\n"))
    page.section("SEE ALSO")
    page.paragraph(",\n".join(f"\\fB{other}\\fP({number})"
                              for other, number in others if other != name))
    return str(page)
