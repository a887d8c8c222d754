# SPDX-License-Identifier: BSD-3-Clause
"""A hilly field of a million triangles with 10,000 stones on it, as a scene for vhrender and one for POV-Ray."""
import math
import random
import sys

folder, side, stones = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
source = random.Random(1)


def height(x, y):
    return 0.3 * math.sin(3 * x) * math.cos(2 * y) + 0.05 * math.sin(17 * x + 11 * y)


cells = side - 1
grid = [(20 * i / cells - 10, 20 * j / cells - 10) for j in range(side) for i in range(side)]
points = [(x, y, height(x, y)) for x, y in grid]
faces = []
for j in range(cells):
    for i in range(cells):
        a = j * side + i
        faces += [(a, a + 1, a + side + 1), (a, a + side + 1, a + side)]

# A stone: two rings of ten and two poles, 40 triangles.
ring = [(0.05 * math.cos(k * math.pi / 5), 0.05 * math.sin(k * math.pi / 5)) for k in range(10)]
stone = [(x, y, z) for z in (-0.015, 0.015) for x, y in ring] + [(0, 0, -0.04), (0, 0, 0.04)]
stone_faces = []
for k in range(10):
    n = (k + 1) % 10
    stone_faces += [(k, n, 10 + n), (k, 10 + n, 10 + k), (20, n, k), (21, 10 + k, 10 + n)]
places = [(source.uniform(-9.9, 9.9), source.uniform(-9.9, 9.9)) for _ in range(stones)]


def mi_object(name, vectors, triangles):
    yield f'object "{name}" visible trace\ngroup\n'
    yield from (f"{x:.6g} {y:.6g} {z:.6g}\n" for x, y, z in vectors)
    yield from (f"v {i}\n" for i in range(len(vectors)))
    yield from (f"c {a} {b} {c}\n" for a, b, c in triangles)
    yield "end group\nend object\n"


with open(f"{folder}/large.mi", "w") as mi:
    mi.write('link "base.so"\n$include <base.mi>\n'
             'options "opt" samples 0 0 object space shadow off end options\n'
             'light "sun" "mib_light_infinite" ( "color" 1 1 1, "shadow" off ) direction -0.8 0 -0.6 end light\n'
             'instance "sun-i" "sun" end instance\n'
             'material "grey" opaque "mib_illum_lambert" ( "diffuse" 0.9 0.9 0.9, "mode" 1, "lights" ["sun-i"] )\n'
             'end material\n'
             'camera "cam" output "rgb" "tif" "large.tif" focal 1 aperture 1 aspect 1 resolution 1000 1000 end camera\n'
             'instance "cam-i" "cam" transform 1 0 0 0 0 0.6 -0.8 0 0 0.8 0.6 0 0 0 -16 1 end instance\n')
    mi.writelines(mi_object("field", points, faces))
    mi.writelines(mi_object("stone", stone, stone_faces))
    mi.write('instance "field-i" "field" material "grey" end instance\n')
    for k, (x, y) in enumerate(places):
        mi.write(f'instance "s{k}" "stone" material "grey" transform 1 0 0 0 0 1 0 0 0 0 1 0 '
                 f"{-x:.6g} {-y:.6g} {-height(x, y):.6g} 1 end instance\n")
    mi.write('instgroup "root" "cam-i" "sun-i" "field-i"\n')
    mi.writelines(f'"s{k}"\n' for k in range(stones))
    mi.write('end instgroup\nrender "root" "cam-i" "opt"\n')


def pov_mesh(name, vectors, triangles):
    yield f"#declare {name} = mesh2 {{ vertex_vectors {{ {len(vectors)}\n"
    yield from (f",<{x:.6g},{y:.6g},{z:.6g}>\n" for x, y, z in vectors)
    yield f"}} face_indices {{ {len(triangles)}\n"
    yield from (f",<{a},{b},{c}>\n" for a, b, c in triangles)
    yield "} texture { pigment { rgb 0.9 } finish { ambient 0 diffuse 1 } } }\n"


# The same view and light: from 16 away along the axis that the camera above looks along.
with open(f"{folder}/large.pov", "w") as pov:
    pov.write("#version 3.7; global_settings { assumed_gamma 1 }\n"
              "light_source { <800, 0, 600> rgb 1 parallel point_at <0, 0, 0> shadowless }\n"
              "camera { location <0, -12.8, 9.6> right x up <0, 0.6, 0.8> direction <0, 0.8, -0.6> }\n")
    pov.writelines(pov_mesh("Field", points, faces))
    pov.writelines(pov_mesh("Stone", stone, stone_faces))
    pov.write("object { Field }\n")
    pov.writelines(f"object {{ Stone translate <{x:.6g},{y:.6g},{height(x, y):.6g}> }}\n" for x, y in places)
