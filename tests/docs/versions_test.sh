#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# The table of docs/upgrading.md names exactly the shaders that are declared in several versions, from each to the next.
# Usage: versions_test.sh SOURCE
set -euo pipefail
cd "$1"
declared=$(grep -oP '^ +\w.* "\Kvh\w+_v\d+(?=" \($)' declarations/vhl.mi | sort -uV | awk '
    { split($0, part, /_v[0-9]+$/); if (part[1] == last) print "| `" before "` | `" $0 "` |"; last = part[1]; before = $0 }')
[[ $(wc -l <<<"$declared") -ge 2 ]] || { echo "vhl.mi is not what this test expects: $declared" >&2; exit 1; }
diff <(echo "$declared" | sort) <(grep -oP '^\| `vh\w+` \| `vh\w+` \|' docs/upgrading.md | sort) >&2 ||
    { echo "docs/upgrading.md has other rows (>) than the declarations ask for (<)" >&2; exit 1; }
