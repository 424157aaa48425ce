# SPDX-License-Identifier: Apache-2.0
# bash completion for morvath and the programs beside it, which are asked
# themselves what can follow.

_morvath()
{
    local word=${COMP_WORDS[COMP_CWORD]} line
    # "=" is a word of its own here.
    [[ $word == = ]] && word=
    COMPREPLY=()
    while IFS= read -r line; do
        case $line in
        $'\tFILE')
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            compopt -o filenames 2>/dev/null
            ;;
        $'\tCOMMAND')
            mapfile -t COMPREPLY < <(compgen -c -- "$word")
            ;;
        $'\tCOMMAND '*)
            if declare -F _command_offset >/dev/null; then
                _command_offset $((${line##* } + 1))
            else
                mapfile -t COMPREPLY < <(compgen -f -- "$word")
            fi
            ;;
        *)
            COMPREPLY+=("${line%%$'\t'*}")
            ;;
        esac
    done < <("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" \
        2>/dev/null)
}

# The exporter has options only, all of which its help tells.
_morvath_exporter()
{
    mapfile -t COMPREPLY < <(compgen -W "$("${COMP_WORDS[0]}" --help \
        2>/dev/null | grep -o -e '--[a-z-]*')" -- "${COMP_WORDS[COMP_CWORD]}")
}

complete -F _morvath morvath morvath-sim
complete -F _morvath_exporter morvath-exporter
