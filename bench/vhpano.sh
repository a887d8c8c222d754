#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# How long vhpano takes for a 4096x2048 panorama by longitude and latitude to a column of cube faces, beside ffmpeg's
# v360 with like interpolation. Usage: bench/vhpano.sh VHPANO [ROUNDS]     needs oiiotool and ffmpeg
set -euo pipefail
vhpano=$(realpath "$1")
rounds=${2:-5}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
oiiotool --pattern noise:type=uniform 512x256 3 --resize 4096x2048 -d uint8 --compression none -o in.tif

# The least of so many rounds, in seconds: other work on the machine only ever adds.
least() {
    local best=1000000 begin end
    for ((i = 0; i < rounds; ++i)); do
        begin=$(date +%s%N)
        "$@"
        end=$(date +%s%N)
        ((best = (end - begin) / 1000000 < best ? (end - begin) / 1000000 : best))
    done
    printf '%d.%03d' $((best / 1000)) $((best % 1000))
}

echo "| | seconds |"
echo "|---|---|"
for filter in nearest bilinear bicubic footprint; do
    echo "| vhpano, $filter | $(least "$vhpano" in.tif out.tif --from latlong --to cube --filter $filter) |"
done
for filter in nearest linear cubic; do
    echo "| ffmpeg v360, $filter | $(least ffmpeg -nostdin -loglevel error -y -i in.tif \
        -vf v360=e:c1x6:interp=$filter:w=1024:h=6144 -pix_fmt rgb24 out2.tif) |"
done
