#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Completes command lines as the shells do:
# completion.bash BASH_SCRIPT ZSH_SCRIPT PROGRAM...
failures=0
bash_script=$(realpath "$1")
zsh_script=$(realpath "$2")
for program in "${@:3}"; do
    PATH=$(dirname "$(realpath "$program")"):$PATH
done

# Prints what bash finds for the end of a line, which may begin a word.
in_bash() {
    read -ra COMP_WORDS <<<"$1"
    [[ $1 == *' ' ]] && COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    "$(complete -p "${COMP_WORDS[0]}" | grep -o '_morvath[a-z_]*')" 2>/dev/null
    printf '%s\n' "${COMPREPLY[@]}"
}

# The same for zsh, which completes in a terminal only and tells nobody. Its
# editor must be there before a key is pressed; quotes keep words that are
# waited for out of the echo.
zsh_terminal='
    zmodload zsh/zpty
    zpty shell zsh -f -i
    zpty -w shell "PS1= fpath=($1 \$fpath); autoload -U compinit; compinit -u -D
    compadd() {
        local -a found
        if [[ \" \$* \" != *\" -[ADO] \"* ]]; then
            builtin compadd -O found \"\$@\"
            printf \"<%s>\\n\" \$found
        fi
        builtin compadd \"\$@\"
    }
    zle-line-init() { print rea\"\"dy }
    zle -N zle-line-init"
    zpty -r shell shown "*ready*"
    zpty -n -w shell "$2"$'"'\t'"'
    zpty -n -w shell $'"'\C-u'"'"print do\"\"ne"$'"'\n'"'
    zpty -r shell shown "*done*"
    print -r -- $shown'

in_zsh() {
    timeout 60 zsh -fc "$zsh_terminal" - "$scripts" "$1" |
        sed -n 's/.*<\(..*\)>.*/\1/p'
}

# completes SHELL LINE EXPECTED
completes() {
    local -a found
    mapfile -t found < <("in_$1" "$2" | LC_ALL=C sort -u)
    if [[ ${found[*]} != "$3" ]]; then
        echo "$1: '$2' completes to '${found[*]}', not '$3'" >&2
        ((++failures))
    fi
}

. "$bash_script" || exit 1
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT
# Where zsh looks for its completion.
scripts=$folder
cp "$zsh_script" "$scripts/_morvath"
mkdir "$folder/files"
cd "$folder/files" && touch sample.json 'my sample' || exit 1

while IFS='|' read -r line expected; do
    completes bash "$line" "$expected"
done <<'LINES'
morvath |facts get metrics overview sensors set show
morvath s|sensors set show
morvath show p|pcie-slots power-supplies powers processors pwms
morvath show memory --json g|gpus
morvath show --timeout |
morvath show --timeout = 3 --no|--no-legend
morvath get bmc-version bios-v|bios-vendor bios-version
morvath set power-restore-policy Al|AlwaysOff AlwaysOn
morvath set lldp nic0 |
morvath set lldp nic0 port0 |off on
morvath-sim scenario --scenario s|sample.json
morvath-sim scenario --scenario = my|my sample
morvath sensors --class=te|temperatures
morvath sensors --sort |name reading state
morvath-sim run mktem|mktemp
morvath-sim run -- mktemp sa|sample.json
LINES

if command -v zsh >/dev/null; then
    completes zsh 'morvath show memory g' 'gpus'
    completes zsh 'morvath set lldp nic0 port0 ' 'off on'
    completes zsh 'morvath-sim scenario --scenario=sa' 'sample.json'
    completes zsh 'morvath-sim run -- morvath get bmc-v' 'bmc-version'
fi
exit $((failures > 0))
