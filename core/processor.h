// SPDX-License-Identifier: BSD-3-Clause
// Which of the library's instruction sets the machine has. The library itself asks for no more than x86-64.
#pragma once

namespace VHL {

/// In rising order: who has one has those before it.
enum class Processor {
    plain,       ///< x86-64: vectors of 128 bits
    avx2,        ///< 256 bits: AVX2 and FMA
    avx512,      ///< 512 bits: AVX-512 F and DQ
    avx512Bytes, ///< with bytes in any order: BW, VL and VBMI too
};

/// What this machine and its system have. Found out at the first call; any thread may make it.
///
/// Deliberately not the compiler's own function for this, which brings code along that runs when the library
/// is loaded.
Processor processor() noexcept;

} // namespace VHL
