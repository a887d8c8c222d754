// SPDX-License-Identifier: BSD-3-Clause
// Compiled for processors with AVX-512 F, BW, DQ, VL and VBMI.
#define VHL_LANES 16
#include "noise_lanes.h"

namespace VHLNoise {

const Batch avx512Batch = {VHL::Processor::avx512Bytes, "AVX-512", inoise3, inoise4, cellnoise, cellular};

} // namespace VHLNoise
