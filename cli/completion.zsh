#compdef morvath morvath-sim morvath-exporter
# SPDX-License-Identifier: Apache-2.0
# zsh completion for morvath and the programs beside it, which are asked
# themselves what can follow.

# The exporter has options only, all of which its help tells.
if [[ ${words[1]:t} == morvath-exporter ]]; then
    _gnu_generic
    return
fi

local line
local -a found
local -i before
for line in "${(@f)$(${(Q)words[1]} --complete "${(@Q)words[2,CURRENT]}" \
    2>/dev/null)}"; do
    case $line in
    '') ;;
    $'\tFILE')
        compset -P '--*='
        _files
        ;;
    $'\tCOMMAND'*)
        before=${${line#$'\tCOMMAND'}:-$((CURRENT - 2))}
        shift $((before + 1)) words
        ((CURRENT -= before + 1))
        _normal
        ;;
    *)
        found+=("${line%%$'\t'*}:${line#*$'\t'}")
        ;;
    esac
done
if (($#found)); then
    compset -P '--*='
    _describe word found
fi
