#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# How long a scene of a million triangles and 10,000 instances takes to load, and how many primary rays a second are
# traced and shaded then, each by one light without shadow; beside POV-Ray on the same scene, where that is installed
# (Debian's `povray`), and how far the two pictures are apart.
# Usage: bench/large.sh BUILD [ROUNDS]     BUILD: the build folder; KEEP=FILE.tif: keeps vhrender's picture
set -euo pipefail
vhrender=$(realpath "$1")/bin/vhrender
rounds=${2:-3}
here=$(realpath "$(dirname "$0")")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
python3 "$here/large.py" . 708 10000

seconds() { /usr/bin/time -f %e -o time "$@" > log 2>&1 || { cat log >&2; return 1; }; tail -1 time; }
vh() { seconds "$vhrender" -resolution "$1" "$1" large.mi; }
pov() { seconds povray +Ilarge.pov "+W$1" "+H$1" -D -A File_Gamma=1 +Olarge.png +WT"$(nproc)"; }

# Loading is what a picture of one pixel takes; the rays' share is what nine million of them add, the picture's file
# included. The least of so many rounds counts: other work on the machine only ever adds.
measure() {
    local load=999999 large=999999 round
    for ((round = 0; round < rounds; ++round)); do
        load=$(printf '%s\n' "$load" "$("$1" 1)" | sort -g | head -1)
        large=$(printf '%s\n' "$large" "$("$1" 3000)" | sort -g | head -1)
    done
    awk -v name="$2" -v l="$load" -v g="$large" \
        'BEGIN { printf "%-10s loads in %.1f s, %.1f million primary rays a second\n", name, l, 9 / (g - l) }'
}
measure vh vhrender
if command -v povray > /dev/null; then
    measure pov POV-Ray
    oiiotool --diff large.tif large.png | grep 'RMS error' || true # not equal to the last bit
else
    echo "no povray: left out"
fi
[[ -z ${KEEP-} ]] || cp large.tif "$KEEP"
