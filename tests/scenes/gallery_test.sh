#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# Every declared shader has its scene in examples/shaders/ and its picture in docs/pictures/shaders/, and nothing else
# is there; each scene uses its shader, renders without a message, and gives its picture.
# Usage: gallery_test.sh VHRENDER IDIFF ROOT FOLDER [OPTION ...]
#
# With further options for the renderer the pictures are others, and not compared.
#
# Tolerances are those of compare.cmake, which says why. A picture that is the same to the byte, the usual case, is not
# decoded.
set -euo pipefail
vhrender=$1 idiff=$2 root=$3 folder=$4 options=${*:5}
scenes=$root/examples/shaders pictures=$root/docs/pictures/shaders

check() {
    local name=$1 messages
    grep -q "\"$name\"" "$scenes/$name.mi" || { echo "$name.mi does not use its shader"; return 1; }
    grep -q "\"$name.png\"" "$scenes/$name.mi" || { echo "$name.mi has another output"; return 1; }
    messages=$("$vhrender" -threads 1 $options -file_name "$folder/$name.png" "$scenes/$name.mi" 2>&1) ||
        { echo "$name.mi fails: $messages"; return 1; }
    [[ -z $messages ]] || { echo "$name.mi tells: $messages"; return 1; }
    [[ -n $options ]] || cmp -s "$folder/$name.png" "$pictures/$name.png" ||
        "$idiff" -q -fail 0.0157 -failpercent 1 -warn 1 "$folder/$name.png" "$pictures/$name.png" > "$folder/$name.txt" ||
        { echo "$name.mi gives another picture: $folder/$name.png"; return 1; }
}
export -f check
export vhrender idiff scenes pictures folder options

failed=0
mkdir -p "$folder"
declared=$(sed -n '/^declare shader/{n; s/.*"\(.*\)".*/\1/p}' "$root/declarations/vhl.mi" | sort)
for kind in "$scenes mi" "$pictures png"; do
    read -r place ending <<< "$kind"
    diff <(echo "$declared") <(basename -s ".$ending" "$place"/*."$ending" | sort) > "$folder/difference" && continue
    sed -n "s|^< \(.*\)|missing: $place/\1.$ending|p; s|^> \(.*\)|of no shader: $place/\1.$ending|p" "$folder/difference"
    failed=1
done
basename -s .mi "$scenes"/*.mi | xargs -P "$(nproc)" -I NAME bash -c 'check NAME' || failed=1
exit "$failed"
