// SPDX-License-Identifier: BSD-3-Clause
// What the fast forms of the noise functions look up. Also for sources that are compiled for one kind of
// processor, so without functions that a linker could take from there for all.
#pragma once

#include <cstddef>
#include <cstdint>

namespace VHLNoise {

/// Ken Perlin's permutation.
inline constexpr std::uint8_t permutation[256] = {
    151, 160, 137, 91,  90,  15,  131, 13,  201, 95,  96,  53,  194, 233, 7,   225, 140, 36,  103, 30,
    69,  142, 8,   99,  37,  240, 21,  10,  23,  190, 6,   148, 247, 120, 234, 75,  0,   26,  197, 62,
    94,  252, 219, 203, 117, 35,  11,  32,  57,  177, 33,  88,  237, 149, 56,  87,  174, 20,  125, 136,
    171, 168, 68,  175, 74,  165, 71,  134, 139, 48,  27,  166, 77,  146, 158, 231, 83,  111, 229, 122,
    60,  211, 133, 230, 220, 105, 92,  41,  55,  46,  245, 40,  244, 102, 143, 54,  65,  25,  63,  161,
    1,   216, 80,  73,  209, 76,  132, 187, 208, 89,  18,  169, 200, 196, 135, 130, 116, 188, 159, 86,
    164, 100, 109, 198, 173, 186, 3,   64,  52,  217, 226, 250, 124, 123, 5,   202, 38,  147, 118, 126,
    255, 82,  85,  212, 207, 206, 59,  227, 47,  16,  58,  17,  182, 189, 28,  42,  223, 183, 170, 213,
    119, 248, 152, 2,   44,  154, 163, 70,  221, 153, 101, 155, 167, 43,  172, 9,   129, 22,  39,  253,
    19,  98,  108, 110, 79,  113, 224, 232, 178, 185, 112, 104, 218, 246, 97,  228, 251, 34,  242, 193,
    238, 210, 144, 12,  191, 179, 162, 241, 81,  51,  145, 235, 249, 14,  239, 107, 49,  192, 214, 31,
    181, 199, 106, 157, 184, 84,  204, 176, 115, 121, 50,  45,  127, 4,   150, 254, 138, 236, 205, 93,
    222, 114, 67,  29,  24,  72,  243, 141, 128, 195, 78,  66,  215, 61,  156, 180};

/// A hash adds values, coordinates and steps of one, all divided by 255, and looks the sum up by 256ths. On
/// the numbers that occur this is a lookup of integers modulo 255: perm(i / 255) is permutation[i % 255] /
/// 255, and i is at most 255 + 255 + 1. Tables that repeat spare the modulo.
inline constexpr int sums = 512;

struct Bytes {
    std::uint8_t entry[sums];
};
inline constexpr Bytes hashTable = [] {
    Bytes table{};
    for (int i = 0; i < sums; ++i)
        table.entry[i] = permutation[i % 255];
    return table;
}();
inline constexpr const std::uint8_t (&hashed)[sums] = hashTable.entry;

/// The same for sums that have been taken modulo 255.
struct Bytes255 {
    std::uint8_t entry[256];
};
inline constexpr Bytes255 hashTable255 = [] {
    Bytes255 table{};
    for (int i = 0; i < 256; ++i)
        table.entry[i] = permutation[i % 255];
    return table;
}();
inline constexpr const std::uint8_t (&hashed255)[256] = hashTable255.entry;

/// The entry of a table of `count` gradients that grad() takes for value / 255.
constexpr int gradient(int value, int count) { return value * count / 255 % count; }

/// From here on there are no numbers for the middle of a cell or those around it.
inline constexpr float noMiddle = 0x1p22f;

/// A component of gradients doubled, by the gradients' codes: whole, and the highest byte, where all of it
/// is.
struct Component {
    float twice[16];
    std::uint8_t highest[16];
};

/// Zero until init_g(), init_g4() and init_neighbor() fill them.
struct Tables {
    /// The gradients that grad(perm(i / 255), ...) takes, by component.
    float three[3][sums];
    float four[4][sums];
    /// The same for batches, as codes; that of i in the upper half of a word, that of i + 1 in the lower.
    /// Batches take twice the gradient, as 2 and -2 have nothing below their highest byte.
    /// A code of three components is a byte, the upper one, and below 16: what to look up in components3.
    std::uint32_t codes3[sums];
    Component components3[3];
    /// The codes of i and of i + 1 once more.
    std::uint8_t bytes3[2][256];
    /// A code of four components is a byte for x and y and one for z and w. Each has two bits for the first
    /// and two for the second: 0, 1, and 2 for -1.
    std::uint32_t codes4[sums];
    /// What the corners' gradients add to eight times the noise in the middle of a cell: for the edges along
    /// z, with x and y 00, 01, 10 and 11, in three cells one after another, the one before in the lowest of
    /// three digits of eight bits. The digits are signed: cells() tells how to read them.
    std::int32_t cells[sums][4];
    bool neighbors;
};
extern Tables tables __attribute__((visibility("hidden")));

/// Eight times cellnoise() of a cell, of the one before and of the one after in z, all plus 8: a byte each,
/// the one before in the lowest. Coordinates are modulo 256.
[[gnu::always_inline]] inline std::uint32_t cells(std::size_t A, std::size_t B, std::size_t Z)
{
    const auto& edges = tables.cells;
    return std::uint32_t(edges[hashed[A] + Z][0] + edges[hashed[A + 1] + Z][1] + edges[hashed[B] + Z][2] +
                         edges[hashed[B + 1] + Z][3] + 0x080808);
}

/// Calls take(column, cells(...)) for the nine columns of three cells around a cell; that at x + i, y + j is
/// column 3 * i + j + 4.
template <class Take>
[[gnu::always_inline]] inline void columns(std::size_t X, std::size_t Y, std::size_t Z, Take take)
{
    if (X - 1 < 254 && Y - 1 < 254 && Z - 1 < 254) [[likely]] {
        // Neighbours share their corners.
        const std::int32_t(*const edges)[4] = tables.cells + Z;
        const auto row = [&](std::size_t x) {
            std::uint32_t four;
            __builtin_memcpy(&four, hashed + hashed[x] + Y - 1, sizeof four);
            return four;
        };
        const auto edge = [&](std::uint32_t hashes, int j, int which) {
            return edges[hashes >> (8 * j) & 255][which];
        };
        std::uint32_t near = row(X - 1);
        for (int i = 0; i < 3; ++i) {
            const std::uint32_t far = row(X + std::size_t(i));
            for (int j = 0; j < 3; ++j)
                take(3 * i + j, std::uint32_t(edge(near, j, 0) + edge(near, j + 1, 1) + edge(far, j, 2) +
                                              edge(far, j + 1, 3) + 0x080808));
            near = far;
        }
    } else {
        // Cells 255 and 0 have the same corners.
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) {
                const std::size_t x = (X + std::size_t(i) - 1) & 255, y = (Y + std::size_t(j) - 1) & 255;
                std::uint32_t three = cells(hashed[x] + y, hashed[x + 1] + y, Z);
                if (Z == 0)
                    three = (three & ~255u) | (three >> 8 & 255);
                else if (Z == 255)
                    three = (three & 0xffff) | (three << 8 & 0xff0000);
                take(3 * i + j, three);
            }
    }
}

} // namespace VHLNoise
