#!/usr/bin/env bash
# SPDX-License-Identifier: BSD-3-Clause
# The transforms' batch forms beside OpenColorIO's ocioperf, on pictures of one size in one run: a gamma, and a scale and
# a sum as what dCompress does. Usage: bench/transforms.sh BENCH_TRANSFORMS [ROUNDS]
# needs oiiotool and ocioperf, Debian's openimageio-tools and opencolorio-tools
set -euo pipefail
program=$(realpath "$1")
rounds=${2:-30}
for tool in oiiotool ocioperf; do
    command -v $tool >/dev/null || { echo "transforms.sh: no $tool" >&2; exit 1; }
done
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
oiiotool --pattern noise:type=uniform 3840x2160 4 -d float -o in.exr
cat >gamma.ctf <<END
<?xml version="1.0" encoding="UTF-8"?>
<ProcessList id="gamma" version="1.7">
<Exponent inBitDepth="32f" outBitDepth="32f" style="basicFwd"><ExponentParams exponent="2.2"/></Exponent>
</ProcessList>
END
cat >linear.ctf <<END
<?xml version="1.0" encoding="UTF-8"?>
<ProcessList id="linear" version="1.7">
<Matrix inBitDepth="32f" outBitDepth="32f"><Array dim="3 4 3">0.8 0 0 0.1 0 0.8 0 0.1 0 0 0.8 0.1</Array></Matrix>
</ProcessList>
END
# The least of the times that one kind of processing took, as Mpixel/s.
speed() {
    awk -v kind="$1" '$0 ~ kind && match($0, /\[[^]]*/) {
        split(substr($0, RSTART + 1, RLENGTH - 1), ms, ", ")
        printf "%.0f", 3840 * 2160 / ms[2] / 1000
    }' "$2"
}
"$program" "$rounds" >ours
for transform in gamma linear; do
    ocioperf --transform $transform.ctf --image in.exr --iter "$rounds" --test 0 >$transform
done
ours() { awk -v name="$1" '/^from memory/ { here = 1 } here && $1 == name && $2 != "plain" { print $(NF - 1); exit }' ours; }
cat <<END
| Mpixel/s, one core, from memory | ours | ocioperf, into another array | ocioperf, in place |
|---|---|---|---|
| gamma 2.2 | $(ours dGamma) | $(speed 'two buffers' gamma) | $(speed 'in place' gamma) |
| scale and add | $(ours dCompress) | $(speed 'two buffers' linear) | $(speed 'in place' linear) |

END
cat ours
