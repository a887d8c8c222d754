// SPDX-License-Identifier: BSD-3-Clause
// Compiled for processors with AVX2.
#define VHL_LANES 8
#include "noise_lanes.h"

namespace VHLNoise {

const Batch avx2Batch = {VHL::Processor::avx2, "AVX2", inoise3, inoise4, cellnoise, cellular};

} // namespace VHLNoise
