# SPDX-License-Identifier: BSD-3-Clause
# Completion for vhpano in bash: options, their words, and files.

_vhpano()
{
    local -A kind=(
        [--from]="latlong angular ball cube fisheye" [--to]="latlong angular ball cube fisheye"
        [--filter]="footprint nearest bilinear bicubic" [--type]="uint8 uint16 half float"
        [--size]=2 [--rotate]=3 [--threads]=1 [--help]=0 [-h]=0 [--version]=0
    )
    local word=$2 found=0 behind=0 i
    for ((i = COMP_CWORD - 1; i > 0; --i)); do
        if [[ ${COMP_WORDS[i]} == -[a-z-]* ]]; then
            found=${kind[${COMP_WORDS[i]}]-0}
            break
        fi
        behind=$((behind + 1))
    done

    COMPREPLY=()
    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "${!kind[*]}" -- "$word")
    elif [[ $found == [a-z]* && $behind -eq 0 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$found" -- "$word")
    elif [[ $found != [1-9] || $behind -ge $found ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
}

complete -F _vhpano vhpano
