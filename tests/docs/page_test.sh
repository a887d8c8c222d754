#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Does what a page of the manual says: in a copy of examples/, in the page's order, it
# - writes scenes (```mi, the first line `# name.mi`) and C sources (```c, the first line `// name.c` or `// name.h`);
# - puts networks (other ```mi) in the place of the one in smallest.mi, as network.mi, and looks whether it renders;
# - runs commands (```console, lines with `$ `), whose output must be what the page shows below them.
# With UPDATE=1 in the environment the page gets the output instead; read what has changed.
# Usage: page_test.sh PAGE PROGRAMS EXAMPLES
set -eu
page=$(realpath "$1") programs=$(realpath "$2") examples=$(realpath "$3")
interface=$(realpath "$(dirname "$0")/../../mi")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "page_test: $*" >&2; exit 1; }
cp -r "$examples" "$folder/examples"
mkdir "$folder/home"
cd "$folder/examples"

# What pkg-config says is that of an installation, in which there is the renderer's interface.
package=$programs/../vhl.pc
if [[ -e $package ]]; then
    part() { sed -n "s|^$1=\${prefix}/||p" "$package"; }
    mkdir -p "$folder/installed/$(part libdir)/pkgconfig" "$folder/installed/$(part includedir)/vhl"
    cp "$package" "$folder/installed/$(part libdir)/pkgconfig"
    ln -s "$interface" "$folder/installed/$(part includedir)/vhl/mi"
    export PKG_CONFIG_PATH=$folder/installed/$(part libdir)/pkgconfig
fi

unset "${!MI_@}"
run() { env PATH="$programs:$PATH" HOME="$folder/home" TERM=dumb bash -c "$1" 2>&1 </dev/null | sed 's/ *$//'; }

sourceFile() # text of a block
{
    [[ $1 =~ ^//\ ([a-z-]+\.[ch])$'\n' ]] || fail "$page: C without a file's name: $1"
    printf '%s' "$1" >"${BASH_REMATCH[1]}"
}

scene() # text of a block
{
    if [[ $1 =~ ^\#\ ([a-z-]+\.mi)$'\n' ]]; then
        printf '%s' "$1" >"${BASH_REMATCH[1]}"
        return
    fi
    awk -v network="$1" '/^shader /{ if (!n++) printf "%s", network; next } { print }' smallest.mi >network.mi
    local told
    told=$(run "vhrender -v 3 -samples 0 0 -resolution 32 24 -o network.png network.mi")
    [[ $told != *"fatal: "* && -s network.png ]] || fail "$page: this does not render: $1$told"
    rm network.png
}

done=0
kind="" text="" told=""
while IFS= read -r line; do
    case $kind in
        console)
            if [[ $line == '```' ]]; then
                kind=""
            elif [[ $line == '$ '* ]]; then
                printf '%s\n' "$line"
                run "${line#\$ }"
                done=$((done + 1))
                continue
            else
                continue
            fi ;;
        mi | c)
            if [[ $line == '```' ]]; then
                if [[ $kind == c ]]; then sourceFile "$text"; else scene "$text"; fi
                kind=""
                done=$((done + 1))
            else
                text+=$line$'\n'
            fi ;;
        *)
            [[ $line == '```'?* ]] && kind=${line#'```'} && text="" ;;
    esac
    [[ $line == '```' && $kind != console && $kind != mi && $kind != c ]] && kind=""
    printf '%s\n' "$line"
done <"$page" >"$folder/page"
[[ $done -gt 0 ]] || fail "$page: nothing to do"

if [[ ${UPDATE:-} == 1 ]]; then
    cp "$folder/page" "$page"
    exit
fi

# Rays meet surfaces at places that differ in the last digits from processor to processor, and times are never the
# same: three digits count, and of a profile the numbers of calls, in any order.
same()
{
    local row='^ *[^ ].* +([0-9]+) +([0-9]+)( +[0-9]+\.[0-9]+){4}( .*)?$'
    grep -vE "$row" "$1" | sed -E 's/(\.[0-9]{3})[0-9]+/\1/g'
    grep -E "$row" "$1" | sed -E 's/( +[0-9]+\.[0-9]+){4}//' | sort
}
diff <(same "$page") <(same "$folder/page") >&2 || fail "$page: the commands give something else (>)"
