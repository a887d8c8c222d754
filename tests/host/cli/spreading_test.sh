#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Runs the commands of docs/spreading.md as they stand there, with jobs on this machine only.
# Usage: spreading_test.sh VHRENDER PAGE SCENE
set -euo pipefail
vhrender=$1 page=$2 scene=$3

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
cp "$scene" .
mkdir bin

# A vhrender that notes its calls; before frame $FATAL the machine loses its power, once.
cat >bin/vhrender <<END
#!/bin/bash
echo "\$*" >>calls
if [[ "\$*" == *"-frame \${FATAL:-none}" && ! -e dead ]]; then
    touch dead
    kill -9 "\$(cat parallel.pid)" \$\$
fi
exec "$vhrender" "\$@"
END
chmod +x bin/vhrender
export PATH=$PWD/bin:$PATH PARALLEL_HOME=$PWD
mapfile -t commands < <(sed -n 's/^    //p' "$page")

fail() { echo "spreading_test: $*" >&2; exit 1; }
calls() { grep -c -- "-frame $1\$" calls || true; }
pictures() { find . -maxdepth 1 -name '*turning.*.exr*' | sort | tr '\n' ' '; }

[[ ${#commands[@]} -eq 3 && ${commands[0]} == parallel*-frame* && ${commands[1]} == parallel*-window* ]] ||
    fail "the page has other commands: ${commands[*]}"

# Frames; and again, when all is done.
bash -c "${commands[0]}"
bash -c "${commands[0]}"
for frame in 1 2 3 4; do
    [[ $(calls $frame) -eq 1 ]] || fail "frame $frame was rendered $(calls $frame) times"
    [[ -s turning.$frame.exr ]] || fail "no frame $frame"
done

# Windows: their sum is the picture.
bash -c "${commands[1]}"
bash -c "${commands[2]}"
idiff -q -fail 0 -warn 0 whole.exr turning.1.exr || fail "the windows make another picture"
idiff -q -fail 0 -warn 0 part-0.exr turning.1.exr >/dev/null && fail "a part is the whole"

# A machine that dies in frame 3 of 4, and the same command once more.
rm -f calls frames.log turning.*.exr
FATAL=3 PARALLEL=-j1 bash -c "echo \$\$ >parallel.pid; exec ${commands[0]}" && fail "it did not die"
[[ $(pictures) == "./turning.1.exr ./turning.2.exr " ]] || fail "left behind: $(pictures)"
PARALLEL=-j1 bash -c "${commands[0]}"
[[ $(pictures) == "./turning.1.exr ./turning.2.exr ./turning.3.exr ./turning.4.exr " ]] || fail "only $(pictures)"
for frame in 1 2 4; do
    [[ $(calls $frame) -eq 1 ]] || fail "frame $frame was rendered $(calls $frame) times in all"
done
[[ $(calls 3) -eq 2 ]] || fail "frame 3 was begun $(calls 3) times"
