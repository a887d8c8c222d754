# SPDX-License-Identifier: BSD-3-Clause
# Completion for vhpano in fish.
set -l layouts 'latlong angular ball cube fisheye'
complete -c vhpano -s h -l help -d 'print all options'
complete -c vhpano -l version -d 'print the version'
complete -c vhpano -l from -x -a $layouts -d 'layout of the input'
complete -c vhpano -l to -x -a $layouts -d 'layout of the output'
complete -c vhpano -l size -x -d 'W H: pixels of the output'
complete -c vhpano -l filter -x -a 'footprint nearest bilinear bicubic' -d 'how pixels are made'
complete -c vhpano -l rotate -x -d 'YAW PITCH ROLL: degrees'
complete -c vhpano -l type -x -a 'uint8 uint16 half float' -d 'type of the channels'
complete -c vhpano -l threads -x -d 'N: threads'
