#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Paints tile.png, the glazed tile of the example scenes: a star with eight points that continues over its
neighbours. Needs nothing but Python. Usage: tile.py [FILE [SIZE]]"""
import math
import random
import struct
import sys
import zlib

CREAM, INDIGO, RUST, TEAL, GOLD, GROUT = (
    (0.93, 0.87, 0.74), (0.13, 0.19, 0.38), (0.74, 0.32, 0.20), (0.16, 0.44, 0.45), (0.87, 0.66, 0.27),
    (0.35, 0.31, 0.28))


def star(x, y):
    """Distance in the norm whose unit ball is the star made of two crossed squares."""
    square = max(abs(x), abs(y))
    diamond = (abs(x) + abs(y)) / math.sqrt(2)
    return min(square, diamond)


def octagon(x, y):
    """The same two squares, what they have in common."""
    square = max(abs(x), abs(y))
    diamond = (abs(x) + abs(y)) / math.sqrt(2)
    return max(square, diamond)


def paint(x, y):
    """The colour at a place of the tile, both coordinates from -1 to 1."""
    if max(abs(x), abs(y)) > 0.975:
        return GROUT
    centre = star(x, y)
    if centre < 0.56:
        heart = octagon(x, y)
        if heart < 0.10:
            return GOLD
        if heart < 0.24:
            return RUST
        if heart < 0.28:
            return CREAM
        return INDIGO if centre < 0.50 else GOLD
    if centre < 0.60:
        return INDIGO
    corner = star(1 - abs(x), 1 - abs(y))  # a quarter of a star in each corner
    if corner < 0.30:
        return TEAL if corner < 0.25 else GOLD
    if corner < 0.33:
        return INDIGO
    edge = min(abs(x) + 1.4 * (1 - abs(y)), abs(y) + 1.4 * (1 - abs(x)))  # half a lozenge on each edge
    if edge < 0.17:
        return RUST if edge < 0.12 else CREAM
    return INDIGO if edge < 0.19 else CREAM


def glaze(size, cells, seed):
    """Smooth mottling around 1 that continues over the tile's edges."""
    source = random.Random(seed)
    table = [[source.random() for _ in range(cells)] for _ in range(cells)]

    def at(x, y):
        u, v = x * cells / size, y * cells / size
        i, j = int(u), int(v)
        s, t = (w * w * (3 - 2 * w) for w in (u - i, v - j))
        i1, j1 = (i + 1) % cells, (j + 1) % cells
        low = table[j][i] + s * (table[j][i1] - table[j][i])
        high = table[j1][i] + s * (table[j1][i1] - table[j1][i])
        return low + t * (high - low)
    return at


def picture(size, samples=4):
    broad, fine = glaze(size, 5, 1), glaze(size, 23, 2)
    for row in range(size):
        line = bytearray([0])  # PNG's filter byte: none
        for column in range(size):
            total = [0.0, 0.0, 0.0]
            for k in range(samples * samples):
                x = (column + (k % samples + 0.5) / samples) / size * 2 - 1
                y = (row + (k // samples + 0.5) / samples) / size * 2 - 1
                for channel, value in enumerate(paint(x, y)):
                    total[channel] += value
            shade = 0.88 + 0.12 * broad(column, row) + 0.06 * fine(column, row)
            # Few levels make a small file; the eye takes the steps for brush strokes.
            for value in total:
                level = round(value / samples ** 2 * shade * 63) / 63
                line.append(min(255, round(255 * level)))
        yield bytes(line)


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def main():
    name = sys.argv[1] if len(sys.argv) > 1 else "tile.png"
    size = int(sys.argv[2]) if len(sys.argv) > 2 else 512
    with open(name, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)) +
                   chunk(b"IDAT", zlib.compress(b"".join(picture(size)), 9)) + chunk(b"IEND", b""))


main()
