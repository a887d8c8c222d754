#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# The table of docs/own.md names exactly the functions that the host exports, with the headers that declare them, and
# what the page declares itself agrees with the host.
# Usage: functions_test.sh SOURCE VHRENDER
set -euo pipefail
host=$(realpath "$2")
cd "$1"
page=docs/own.md

same() # what, expected, found
{
    diff <(sort <<<"$2") <(sort <<<"$3") >&2 || { echo "$page: $1 (<) and its table (>) differ" >&2; exit 1; }
}

more=$(sed -n '/^\/\/ more\.h$/,/^```$/{/^```$/d; p}' $page)
rows=$(grep -oP '^\| `mi_.* \| `\w+\.h`(?=[^|]*\|$)' $page | awk -F' [|] ' '
    { gsub(/[|`, ]+/, " ", $1); gsub(/`/, "", $3); count = split($1, name, " ")
      for (k = 1; k <= count; ++k) print name[k], $3 }')
exported=$(nm -D --defined-only "$host" | awk '$3 ~ /^mi_/ { print $3 }')
[[ $(wc -l <<<"$exported") -ge 40 && -n $more ]] || { echo "not what this test expects: $exported $more" >&2; exit 1; }

declares() { grep -oP '^[a-z][^(]*\b\Kmi_\w+(?=\()' "mi/$1" | sed "s/$/ $1/"; }
same "what headers declare" \
    "$(declares shader.h; declares geoshader.h; grep -oP '\bmi_\w+' <<<"$more" | sed 's/$/ more.h/')" "$rows"
same "what $host exports" "$exported" "$(grep -v '^mi_eval ' <<<"$rows" | cut -d' ' -f1)"

printf '#include <shader.h>\n#include "host/api/further.h"\n%s\n' "$more" |
    cc -fsyntax-only -Wall -Wextra -Werror -Imi -I. -x c - || { echo "$page: more.h is not what the host has" >&2; exit 1; }
