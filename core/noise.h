// SPDX-License-Identifier: BSD-3-Clause
// Procedural noise: improved gradient noise in three and four dimensions, sums of octaves, noise per cell and
// cellular noise.
#pragma once

#include "api.h"
#include "color.h"
#include "scalar.h"
#include "vector.h"

#include <cstddef>

/// Call init_noise() once before anything else here. Afterwards everything only reads and is safe from any
/// thread. Before it the gradients are zero, and noise is 0.
///
/// Every result is fixed to the bit: IEEE single precision, operation by operation in the order stated, the
/// same on every processor. Only which NaN a NaN is, is left open.
namespace VHLNoise {

using VHL::dColor;
using VHL::dScalar;
using VHL::dVector;

/// Fills all tables. Not to be run while another thread evaluates noise; running it again changes nothing.
VHL_API void init_noise();

// One table each. init_noise() runs these three.
VHL_API void init_g();
VHL_API void init_g4();
VHL_API void init_neighbor();

/// Smooth step from 0 to 1 with flat ends, per component: t^3 * (t * (6 * t - 15) + 10). Not clamped.
VHL_API dVector fade(dVector t);
VHL_API dColor fade(dColor t);

/// From a at t = 0 to b at t = 1, t * b + (1 - t) * a in between, and no further: a below 0, b above 1.
VHL_API dScalar lerp(dScalar a, dScalar b, dScalar t);
VHL_API dVector lerp(dVector a, dVector b, dScalar t);

VHL_API dScalar dot(dVector a, dVector b);
/// All four channels.
VHL_API dScalar dot(dColor a, dColor b);
VHL_API dScalar length(dVector v);
VHL_API dScalar distance(dVector a, dVector b);

/// The floored remainder a - b * floor(a / b): it has the sign of b, unlike the C library's. b = 0 gives a.
VHL_API dScalar fmod(dScalar a, dScalar b);
VHL_API dVector fmod(dVector a, dVector b);
VHL_API dColor fmod(dColor a, dColor b);

VHL_API dVector vfloor(dVector v);
VHL_API dColor vfloor(dColor v);

/// The permutation of the 256 numbers, looked up with a position in 0..1 that repeats; the result is in 0..1
/// too. A NaN or an infinity looks up the last entry.
VHL_API dScalar perm(dScalar x);

/// The dot product of p and the gradient at the position h in the table. h repeats as in perm().
VHL_API dScalar grad(dScalar h, dVector p);
VHL_API dScalar grad(dScalar h, dColor p);

/// Improved gradient noise (Perlin 2002): about -1 to 1, and 0 where all coordinates are integers. A
/// coordinate that is a NaN or infinite gives a NaN.
///
/// Deliberately not the textbook form: cells repeat every 256 but are normalised by 255, while perm() scales
/// by 256. The mismatch shapes the pattern: corners are hashed modulo 255, so cells 255 and 0 have the same
/// corners and the noise jumps where they meet.
VHL_API dScalar inoise(dVector p);

/// The same in four dimensions; r, g, b and a are x, y, z and w.
///
/// Two oddities are deliberate. Eight of the 32 gradients are pairs of the same vector. And the corner at
/// (0, 1, 0, 0) takes its gradient's product with the offset to (1, 0, 0, 0), so the noise jumps between
/// cells.
VHL_API dScalar inoise(dColor p);

/// One value per unit cell: inoise() at its middle, a multiple of 1/8 in -1..1.
VHL_API dScalar cellnoise(dVector p);

/// The distance to the nearest feature point, in all three components; at most 1000, also where the distance
/// is not a number.
///
/// There is a feature point in every unit cell. Jitter 0 leaves it in the middle; else it moves along the
/// cell's main diagonal, by cellnoise() * jitter on each axis. Only the 27 cells around p are looked at.
VHL_API dVector cellular(dVector p, dScalar jitter);

/// inoise(p * frequency) * amplitude, summed count times; from one to the next the frequency is multiplied by
/// lacunarity and the amplitude by gain. A count below 1 gives 0.
VHL_API dScalar octaves(dVector p, int count, dScalar lacunarity, dScalar gain, dScalar frequency,
                        dScalar amplitude);
/// The same sum of absolute values.
VHL_API dScalar octaves_abs(dVector p, int count, dScalar lacunarity, dScalar gain, dScalar frequency,
                            dScalar amplitude);

// Many points at once: results[i] is what the function above gives for points[i], to the bit, in a fraction
// of the time: in the processor's widest vectors, AVX2 or AVX-512, which is found out at the first call. Any
// size is fine, and arrays need no more alignment than their elements. Points and results must not overlap.

VHL_API void inoise(const dVector* points, dScalar* results, std::size_t size);
VHL_API void inoise(const dColor* points, dScalar* results, std::size_t size);
VHL_API void cellnoise(const dVector* points, dScalar* results, std::size_t size);
/// The distance once.
VHL_API void cellular(const dVector* points, dScalar jitter, dScalar* results, std::size_t size);
VHL_API void octaves(const dVector* points, int count, dScalar lacunarity, dScalar gain, dScalar frequency,
                     dScalar amplitude, dScalar* results, std::size_t size);
VHL_API void octaves_abs(const dVector* points, int count, dScalar lacunarity, dScalar gain,
                         dScalar frequency, dScalar amplitude, dScalar* results, std::size_t size);

} // namespace VHLNoise
