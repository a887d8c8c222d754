#!/usr/bin/env python3
# SPDX-License-Identifier: BSD-3-Clause
"""Paints captions.png, the sheet behind the tiles of state.mi: a card with a caption for each. Needs nothing
but Python. Usage: captions.py [FILE]"""
import struct
import sys
import zlib

ROWS = (
    ("POINT", "NORMAL", "GEOMETRIC NORMAL", "DOT ND", "INV NORMAL", "TEXTURE COORD", "MOTION"),
    ("ORG", "DIR", "DIST", "TIME", "RASTER POS", "RASTER X", "RASTER Y"),
    ("RAY TYPE", "REFLECTION LEVEL", "REFRACTION LEVEL", "LABEL", "INSTANCE", "RASTER WIDTH",
     "DIST/OF LIGHT RAYS"),
    ("RAY TYPE/SCALAR", "REFLECTION LEVEL/SCALAR", "REFRACTION LEVEL/SCALAR", "LABEL/SCALAR",
     "INSTANCE/SCALAR", "RASTER HEIGHT", "TEXTURE COORD/OF SHADOW RAYS"))

# Five columns of dots a letter, the lowest bit at the top.
LETTERS = {
    "A": "7e1111117e", "B": "7f49494936", "C": "3e41414122", "D": "7f4141221c", "E": "7f49494941",
    "F": "7f09090901", "G": "3e4149497a", "H": "7f0808087f", "I": "00417f4100", "L": "7f40404040",
    "M": "7f020c027f", "N": "7f0408107f", "O": "3e4141413e", "P": "7f09090906", "R": "7f09192946",
    "S": "4649494931", "T": "01017f0101", "U": "3f4040403f", "V": "1f2040201f", "W": "3f4038403f",
    "X": "6314081463", "Y": "0708700807"}

TILE, GAP, DOT = 240, 5, 2  # pixels
GROUND, CARD, INK, FAINT = 2, 22, 235, 150  # grey levels


def write(picture, text, left, top, ink):
    """One line of text, its first letter at the left and top."""
    for i, letter in enumerate(text):
        for column, bits in enumerate(bytes.fromhex(LETTERS.get(letter, ""))):
            for row in (row for row in range(7) if bits >> row & 1):
                x, y = left + (6 * i + column) * DOT, top + row * DOT
                for line in picture[y:y + DOT]:
                    line[x:x + DOT] = bytes([ink]) * DOT


def main():
    width = TILE * len(ROWS[0])
    picture = [bytearray([GROUND]) * width for _ in range(TILE * len(ROWS))]
    for j, captions in enumerate(ROWS):
        for i, caption in enumerate(captions):
            left, top = i * TILE, j * TILE
            for line in picture[top + GAP:top + TILE - GAP]:
                line[left + GAP:left + TILE - GAP] = bytes([CARD]) * (TILE - 2 * GAP)
            lines = caption.split("/")
            for k, text in enumerate(lines):
                indent = (TILE - (6 * len(text) - 1) * DOT) // 2
                write(picture, text, left + indent, top + TILE - 46 + 20 * k, FAINT if k else INK)

    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", width, len(picture), 8, 0, 0, 0, 0)  # 8 bits of grey
    rows = b"".join(b"\0" + line for line in picture)
    with open(sys.argv[1] if len(sys.argv) > 1 else "captions.png", "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
                   chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


main()
