// SPDX-License-Identifier: BSD-3-Clause
// stb_perlin, compiled by itself and called as ours is.
#define STB_PERLIN_IMPLEMENTATION
#include <stb/stb_perlin.h>
