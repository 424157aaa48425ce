# SPDX-License-Identifier: Apache-2.0
"""Shell completion for a program, from what it describes of itself."""

# What values of these names are; all others are words, or unknown.
FILE = "FILE"
COMMAND = "COMMAND"


def commands_of(program):
    """The program and its commands with the words that lead to them."""
    def walk(command, path):
        yield path, command
        for inner in command["commands"]:
            yield from walk(inner, (*path, inner["name"]))
    return list(walk(program, ()))


def function_name(program, path=()):
    return "_".join(["", program["name"], *path]).replace("-", "_")


def names(things):
    return " ".join(thing["name"] for thing in things)


BASH = """\
# bash completion for {name}

{function}()
{{
    local current=${{COMP_WORDS[COMP_CWORD]}} path= option= word kind= words=
    local -i i position=0 command=0
    for ((i = 1; i < COMP_CWORD; ++i)); do
        word=${{COMP_WORDS[i]}}
        case $path:$word in
{steps}
        *:-*) ;;
        *) ((++position)) ;;
        esac
    done
    if ((command)); then
        {function}_command
        return
    fi
    if ((i > COMP_CWORD)); then
        # "=" is a word of its own.
        [[ $current == = ]] && current=
        case $path:$option in
{values}
        esac
    elif [[ $current == -* ]]; then
        case $path in
{options}
        esac
    else
        case $path:$position in
{positions}
        esac
    fi
    COMPREPLY=($(compgen ${{kind:+-A $kind}} -W "$words" -- "$current"))
    if [[ $kind == file ]]; then
        compopt -o filenames 2>/dev/null
    fi
}}

{function}_command()
{{
    if declare -F _command_offset >/dev/null; then
        _command_offset "$command"
    else
        COMPREPLY=($(compgen -A file -- "${{COMP_WORDS[COMP_CWORD]}}"))
    fi
}}

complete -F {function} {name}
"""


def cases(branches, indent):
    blanks = " " * indent
    return "\n".join(f"{blanks}{pattern}) {action} ;;"
                     for pattern, action in branches)


def bash_value(value):
    if value["value"] in (FILE, COMMAND):
        return f"kind={value['value'].lower()}"
    return f"words='{names(value['choices'])}'"


def bash_steps(path, command):
    """What a word before the one to complete does."""
    here = f"'{' '.join(path)}'"
    for inner in command["commands"]:
        name = inner["name"]
        yield f"{here}:{name}", f"path='{' '.join([*path, name])}'"
    for option in command["options"]:
        if option["value"]:
            yield ("|".join(f"{here}:{name}" for name in option["names"]),
                   "option=$word; [[ ${COMP_WORDS[i + 1]} == = ]] && ((++i)); "
                   "((++i))")
    if any(argument["value"] == COMMAND for argument in command["arguments"]):
        yield f"{here}:--", "((command = i + 1)); break"
        yield f"{here}:[!-]*", "((command = i)); break"


def bash_completion(program):
    steps, values, options, positions = [], [], [], []
    for path, command in commands_of(program):
        here = f"'{' '.join(path)}'"
        steps += bash_steps(path, command)
        for option in command["options"]:
            if option["value"] == FILE or option["choices"]:
                values += [(f"{here}:{name}", bash_value(option))
                           for name in option["names"]]
        flags = [name for option in command["options"]
                 for name in option["names"]]
        options.append((here, f"words='{' '.join(flags)}'"))
        if command["commands"]:
            positions.append((f"{here}:0",
                              f"words='{names(command['commands'])}'"))
        for place, argument in enumerate(command["arguments"]):
            where = "*" if argument["repeated"] else place
            positions.append((f"{here}:{where}", bash_value(argument)))
    return BASH.format(name=program["name"], function=function_name(program),
                       steps=cases(steps, 8), values=cases(values, 8),
                       options=cases(options, 8),
                       positions=cases(positions, 8))


ZSH = """\
{function}()
{{
    local state line
    typeset -A opt_args
    _arguments -C -S {arguments}
{rest}}}
"""

ZSH_COMMANDS = """\
    case $state in
    command)
        local -a commands=(
{commands}
        )
        _describe command commands
        ;;
    rest)
        case $line[1] in
{calls}
        esac
        ;;
    esac
"""


ZSH_HANDOVER = """\
_morvath_handover()
{
    if [[ $words[1] == -- ]]; then
        shift words
        ((--CURRENT))
    fi
    _normal
}

"""


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def zsh_value(value):
    """The part of an argument that says what is completed."""
    special = {FILE: ":_files", COMMAND: ":_morvath_handover"}
    if value["value"] in special:
        return special[value["value"]]
    words = []
    for word in value["choices"]:
        meaning = word["meaning"].replace('"', "")
        words.append(f'{word["name"]}\\:"{meaning}"' if meaning
                     else word["name"])
    if not words:
        return ": "
    both = words[0] != value["choices"][0]["name"]
    return f":(({' '.join(words)}))" if both else f":({' '.join(words)})"


def zsh_option(option):
    about = f"[{option['meaning']}]"
    if option["value"]:
        about = f"={about}:{option['value']}{zsh_value(option)}"
    if len(option["names"]) == 1:
        return quoted(option["names"][0] + about)
    return (f"'({' '.join(option['names'])})'"
            f"{{{','.join(option['names'])}}}{quoted(about)}")


def zsh_argument(place, argument):
    where = "*:" if argument["value"] == COMMAND else (
        "*" if argument["repeated"] else place + 1)
    return quoted(f"{where}:{argument['value']}{zsh_value(argument)}")


def zsh_function(program, path, command):
    arguments = [zsh_option(option) for option in command["options"]]
    arguments += [zsh_argument(place, argument)
                  for place, argument in enumerate(command["arguments"])]
    rest = ""
    if command["commands"]:
        arguments += ["'1: :->command'", "'*:: :->rest'"]
        commands = [quoted(f"{inner['name']}:{inner['meaning']}")
                    for inner in command["commands"]]
        calls = [(inner["name"],
                  function_name(program, (*path, inner["name"])))
                 for inner in command["commands"]]
        rest = ZSH_COMMANDS.format(
            commands="\n".join(" " * 12 + text for text in commands),
            calls=cases(calls, 8))
    separator = " \\\n        "
    return ZSH.format(function=function_name(program, path), rest=rest,
                      arguments=separator + separator.join(arguments))


def zsh_completion(program):
    functions = [zsh_function(program, path, command)
                 for path, command in commands_of(program)]
    return (f"#compdef {program['name']}\n\n" + ZSH_HANDOVER
            + "\n".join(functions)
            + f'\n{function_name(program)} "$@"\n')
