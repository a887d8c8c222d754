#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# README.md leads to every page about a family of shaders, and docs/README.md to every page of the manual.
# Usage: groups_test.sh SOURCE
set -euo pipefail
cd "$1"
missing=0
for page in docs/reference/*.md; do
    grep -qF "]($page)" README.md || { echo "README.md does not lead to $page" >&2; missing=1; }
done
for page in docs/*.md; do
    name=${page#docs/}
    [[ $name == README.md ]] || grep -qF "]($name)" docs/README.md ||
        { echo "docs/README.md does not lead to $page" >&2; missing=1; }
done
exit $missing
