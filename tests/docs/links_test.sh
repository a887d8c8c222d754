#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Every relative link in these pages, or the pages in these folders, leads to a file.
# Usage: links_test.sh PAGE|FOLDER ...
set -euo pipefail
count=0
dead=0
while IFS= read -r page; do
    while IFS= read -r target; do
        count=$((count + 1))
        target=${target%%#*}
        [[ -z $target || -e $(dirname "$page")/$target ]] || { echo "$page: no $target" >&2; dead=1; }
    done < <(grep -oE '\]\([^() ]+\)' "$page" | sed 's/^](//; s/)$//' | grep -vE '^[a-z]+:')
done < <(find "$@" -name '*.md')
[[ $count -gt 0 ]] || { echo "no links at all" >&2; exit 1; }
exit $dead
