#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# A program's help, its manual page and its completion in bash, zsh and fish name the same options, and completion
# offers the words that the help lists.
# Usage: options_test.sh PROGRAM SOURCE
set -euo pipefail
program=$1 source=$2
name=$(basename "$program")

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() { echo "options_test: $*" >&2; exit 1; }
same() { diff "$folder/help" "$folder/$1" >&2 || fail "$name: the help (<) and $1 (>) name other options"; }

# From the help: one option a line, and "option word" where words are alternatives.
if [[ $name == vhrender ]]; then "$program" -help; else "$program" --help; fi >"$folder/text"
sed -nE 's/^  (-[A-Za-z_,-]+).*/\1/p' "$folder/text" | tr , '\n' | sort >"$folder/help"
[[ $(wc -l <"$folder/help") -ge 10 ]] || fail "the help of $name is not what this test expects"
words=$({
    sed -nE 's/^  (-[A-Za-z],)?(-[a-z_]+) ([A-Za-z0-9-]+\|[^ ]*).*/\2 \3/p' "$folder/text" # -shadow on|off
    sed -nE 's/^  (--type) TYPE +(.*) \(default.*/\1 \2/p; s/^  (--filter) NAME +(.*) \(.*; (.*)/\1 \2, \3/p' "$folder/text" |
        sed 's/ or /,/; s/, /,/g'                                                         # --type TYPE uint8 or half
    sed -nE 's/^  (-filter) TYPE.* +(box, .*);.*/\1 \2/p' "$folder/text" | tr -d ' ' | sed 's/-filter/& /'
} | while read -r option alternatives; do
    tr '|,' '\n\n' <<<"$alternatives" | grep -E '^[a-z]' | sed "s/^/$option /"
done | sort)
[[ -n $words ]] || fail "no option of $name has words"

if [[ $name == vhpano ]]; then # the layouts, from the message about a wrong one
    layouts=$({ "$program" in out --from none --to none 2>&1 || true; } | sed -n 's/.* is none of //p' | tr -d ' ' | tr , '\n')
    [[ -n $layouts ]] || fail "vhpano names no layouts"
    words=$(sort <<<"$words"$'\n'"$(sed 's/^/--from /' <<<"$layouts")"$'\n'"$(sed 's/^/--to /' <<<"$layouts")")
fi

# The manual page. ("Fl -size" is --size.)
page=$source/docs/man/$name.1
sed -nE 's/^\.It Fl ([A-Za-z_-]+)( , Fl ([A-Za-z_-]+))?.*/-\1\n-\3/p' "$page" | grep -v '^-$' | sort >"$folder/page"
same page
variables() { grep -oE "$1"'MI_[A-Z_]+' "$2" | grep -oE 'MI_[A-Z_]+' | sort -u; }
diff <(variables '' "$folder/text") <(variables '^\.It Ev ' "$page") >&2 ||
    fail "$page: other variables (>) than in the help"
for status in 0 1 2; do
    grep -qx "\.It $status" "$page" || fail "$page does not tell of exit status $status"
done
warnings=$(groff -mdoc -ww -Tutf8 "$page" 2>&1 >"$folder/formatted") || fail "groff cannot format $page"
[[ -z $warnings ]] || fail "$page: $warnings"
[[ $(wc -l <"$folder/formatted") -ge 50 ]] || fail "$page is empty"

# bash, by completing.
. "$source/completion/$name.bash"
compopt() { :; }
complete_words() # the words of a command line; the last is being typed
{
    COMP_WORDS=("$name" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    "_$name" "$name" "${!#}" "${COMP_WORDS[COMP_CWORD - 1]}"
    printf '%s\n' "${COMPREPLY[@]}" | sort
}
complete_words - >"$folder/bash"
same bash
offered=$(cut -d' ' -f1 <<<"$words" | sort -u | while read -r option; do
    complete_words "$option" "" | sed "s/^/$option /"
done | sort)
[[ $offered == "$words" ]] || fail "bash offers other words: $(diff <(echo "$words") <(echo "$offered"))"
mkdir "$folder/scenes"
cd "$folder/scenes"
mkdir sub
touch a.mi b.txt c.so
if [[ $name == vhrender ]]; then
    [[ $(complete_words "" | paste -sd' ') == "a.mi sub" ]] || fail "bash offers other scenes"
    [[ $(complete_words -link "" | paste -sd' ') == "c.so sub" ]] || fail "bash offers other libraries"
    [[ $(complete_words -L "" | paste -sd' ') == sub ]] || fail "bash offers other folders"
    [[ $(complete_words -o "" | paste -sd' ') == "a.mi b.txt c.so sub" ]] || fail "bash offers other files"
    [[ $(complete_words -resolution 4 "") == "" ]] || fail "bash offers files as numbers"
    [[ $(complete_words -resolution 4 3 a) == a.mi ]] || fail "bash offers nothing behind numbers"
    [[ $(complete_words --shad) == --shadow ]] || fail "bash does not know two dashes"
else
    [[ $(complete_words a) == a.mi ]] || fail "bash offers no input"
    [[ $(complete_words --size 4 "") == "" ]] || fail "bash offers files as numbers"
fi

# zsh and fish by their text, and by themselves where they are installed.
zsh_file=$source/completion/_$name
grep -oE '\{?(\*|\))?-[A-Za-z_,-]+\}?'"'?\[" "$zsh_file" | tr -d "{}'[*)" | tr , '\n' | sort >"$folder/zsh"
same zsh
fish_file=$source/completion/$name.fish
grep '^complete' "$fish_file" | grep -oE ' -(s|o|l) [A-Za-z_]+' | sed 's/ -[so] /-/; s/ -l /--/' | sort >"$folder/fish"
same fish
if command -v zsh >/dev/null; then
    zsh -n "$zsh_file" || fail "zsh does not read $zsh_file"
fi
if command -v fish >/dev/null; then
    export HOME=$folder XDG_CONFIG_HOME=$folder XDG_DATA_HOME=$folder
    offered=$(cut -d' ' -f1 <<<"$words" | sort -u | while read -r option; do
        fish -c "source '$fish_file'; complete -C '$name $option '" | cut -f1 | sed "s/^/$option /"
    done | sort)
    [[ $offered == "$words" ]] || fail "fish offers other words: $(diff <(echo "$words") <(echo "$offered"))"
fi
