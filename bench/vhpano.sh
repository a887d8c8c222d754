#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# How long vhpano takes for a 4096x2048 panorama by longitude and latitude to a column of cube faces, beside ffmpeg's
# v360 and OpenCV's remap with like interpolation, as far as these are installed.
# Usage: bench/vhpano.sh VHPANO [ROUNDS]     needs oiiotool; Debian's ffmpeg and python3-opencv to compare with
set -euo pipefail
vhpano=$(realpath "$1")
rounds=${2:-5}
remap=$(realpath "$(dirname "$0")")/remap.py
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
oiiotool --pattern noise:type=uniform 512x256 3 --resize 4096x2048 -d uint8 --compression none -o in.tif

names=() commands=() least=()
add() {
    names+=("$1")
    commands+=("$2")
    least+=(1000000)
}
python=/usr/bin/python3 # Debian's, whatever else there is
command -v ffmpeg >/dev/null || { echo "no ffmpeg to compare with: Debian's ffmpeg" >&2; noFfmpeg=1; }
"$python" -c 'import cv2' 2>/dev/null || { echo "no remap to compare with: Debian's python3-opencv" >&2; noRemap=1; }
for filters in "nearest nearest" "bilinear linear" "bicubic cubic"; do
    read -r ours theirs <<<"$filters"
    add "vhpano, $ours" "'$vhpano' in.tif out.tif --from latlong --to cube --filter $ours"
    [[ ${noFfmpeg-} ]] || add "v360, $theirs" "ffmpeg -nostdin -loglevel error -y -i in.tif \
        -vf v360=e:c1x6:interp=$theirs:w=1024:h=6144 -pix_fmt rgb24 -compression_algo raw v360.tif"
    [[ ${noRemap-} ]] || add "remap, $theirs" "'$python' '$remap' in.tif remap.tif $theirs"
done
add "vhpano, footprint" "'$vhpano' in.tif out.tif --from latlong --to cube"

# The least of so many rounds, in milliseconds, all taking turns: other work on the machine only ever adds.
for ((round = 0; round < rounds; ++round)); do
    for i in "${!commands[@]}"; do
        begin=$(date +%s%N)
        eval "${commands[i]}" >"printed$i.$round"
        time=$((($(date +%s%N) - begin) / 1000000))
        ((least[i] = time < least[i] ? time : least[i]))
    done
done

echo "| | seconds | its remap alone |"
echo "|---|---|---|"
for i in "${!commands[@]}"; do
    printf '| %s | %d.%03d | %s |\n' "${names[i]}" $((least[i] / 1000)) $((least[i] % 1000)) \
        "$(cat "printed$i".* | sort -n | head -1)"
done
