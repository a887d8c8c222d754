# SPDX-License-Identifier: BSD-3-Clause
# Completion for vhrender in bash: options, their words, files and folders of the right kind.

_vhrender()
{
    # Options by what stands behind them; a number is how many values.
    local -A kind=(
        [-verbose]="on off" [-v]="on off" [-relocate_strings]="on off" [-lens]="on off" [-motion]="on off"
        [-trace]="on off" [-volume]="on off" [-geometry]="on off" [-displace]="on off" [-premultiply]="on off"
        [-render]="on off" [-shadow]="on off sort segments" [-face]="front back both" [-colorclip]="rgb alpha raw"
        [-focal]="infinity" [-filter]="box triangle gauss mitchell lanczos clip_mitchell clip_lanczos"
        [-output]="on off" [-file_type]="tif png exr jpg"
        [-include_path]=@folder [-I]=@folder [-ld_path]=@folder [-L]=@folder [-texture_path]=@folder
        [-file_dir]=@folder [-file_name]=@file [-o]=@file [-graph]=@file [-link]=@library
        [-threads]=1 [-frame]=1 [-probe]=2 [-resolution]=2 [-window]=4 [-aspect]=1 [-aperture]=1 [-offset]=2
        [-clip]=2 [-samples]=1 [-contrast]=3 [-jitter]=1 [-shutter]=1 [-trace_depth]=1 [-gamma]=1
        [-scanline]=1 [-task_size]=1 [-memory]=1 [-acceleration]=1
        [-help]=0 [-h]=0 [-ignore_version]=0 [-version]=0 [-copyright]=0 [-check]=0 [-profile]=0
    )
    local word=$2 option=none behind=0 dashes i found
    for ((i = COMP_CWORD - 1; i > 0; --i)); do
        if [[ ${COMP_WORDS[i]} == -[a-zA-Z-]* ]]; then
            option=${COMP_WORDS[i]/#--/-}
            break
        fi
        behind=$((behind + 1))
    done
    found=${kind[$option]-0}

    compopt -o filenames 2>/dev/null
    COMPREPLY=()
    if [[ $word == -* ]]; then
        compopt +o filenames 2>/dev/null
        [[ $word == --* ]] && dashes=- || dashes=""
        mapfile -t COMPREPLY < <(compgen -W "${!kind[*]}" -P "$dashes" -- "${word/#--/-}")
        return
    fi
    case $found in
        @library) mapfile -t COMPREPLY < <(compgen -f -X '!*.so' -- "$word"; compgen -d -- "$word") && return ;;
        [1-9]) [[ $behind -lt $found ]] && return ;;
    esac
    if [[ $behind -eq 0 ]]; then
        case $found in
            @folder) mapfile -t COMPREPLY < <(compgen -d -- "$word") && return ;;
            @file) mapfile -t COMPREPLY < <(compgen -f -- "$word") && return ;;
            [a-z]*) mapfile -t COMPREPLY < <(compgen -W "$found" -- "$word") && return ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -f -X '!*.mi' -- "$word"; compgen -d -- "$word")
}

complete -F _vhrender vhrender
