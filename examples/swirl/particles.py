#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Writes particles.mi: a swirl of 500 particles, as the light "swirl" and as small balls."""
import colorsys
import math

COUNT = 500

places, colors = [], []
for k in range(COUNT):
    share = k / (COUNT - 1)
    # Two arms that wind up and inwards, by turns.
    angle = 4.6 * math.pi * share + (k % 2) * math.pi
    radius = 2.6 * (1 - 0.8 * share) + 0.10 * math.sin(37 * k)
    places.append((radius * math.cos(angle), 0.25 + 2.6 * share + 0.06 * math.cos(53 * k), radius * math.sin(angle)))
    colors.append(colorsys.hsv_to_rgb((0.02 + 0.78 * share) % 1, 0.85, 1))


def vector(numbers):
    return " ".join(f"{number:.3f}" for number in numbers)


def array(items):
    return ",\n".join("        " + vector(item) for item in items)


print(f"""# SPDX-License-Identifier: BSD-3-Clause
# Written by particles.py.

# Alpha is a factor of each particle's light.
light "swirl"
    "vhParticleLight_v1" ( "lightCount" {COUNT}, "falloff" 2, "shadow" on,
    "positions" [
{array(places)}
    ],
    "colors" [
{array(color + (0.035,) for color in colors)}
    ] )
    origin 0 0 0
    user
end light
instance "swirl-i" "swirl" end instance
""")

for k, (place, color) in enumerate(zip(places, colors)):
    print(f'material "glow-{k}" "vhConstColor_v2" ( "input" {vector(color)} 1, "useAlpha" on ) end material')
    print(f'instance "dot-{k}" "dot"  transform 1 0 0 0  0 1 0 0  0 0 1 0  {vector(-x for x in place)} 1  '
          f'material "glow-{k}"  end instance')
print('\ninstgroup "dots"')
for k in range(COUNT):
    print(f'    "dot-{k}"')
print("end instgroup")
