// SPDX-License-Identifier: BSD-3-Clause
// Noise at many points, once for each set of instructions. Also for sources that are compiled for one kind of
// processor, so without functions that a linker could take from there for all.
#pragma once

#include "processor.h"

#include <cstddef>

namespace VHLNoise {

/// The functions of one set. The coordinates of a point follow one another. Results are those of the
/// functions for one point, to the bit; cellular() gives the distance once.
struct Batch {
    VHL::Processor processor; ///< that it needs
    const char* name;
    void (*inoise3)(const float* points, float* results, std::size_t count);
    void (*inoise4)(const float* points, float* results, std::size_t count);
    void (*cellnoise)(const float* points, float* results, std::size_t count);
    /// An eighth of the jitter has to be exact, and the neighbours filled in.
    void (*cellular)(const float* points, float jitter, float* results, std::size_t count);
};

extern const Batch plainBatch;
extern const Batch avx2Batch;
extern const Batch avx512Batch;

/// The set that batches use, chosen at the first call: the best that the processor and the system have.
const Batch& chosenBatch();
/// For tests: uses another one from now on, or the best again. Returns whether there is such a set here.
bool chooseBatch(const Batch* batch);

// One point, for what is rare.
float one3(const float* point);
float one4(const float* point);
float oneCell(const float* point);
float oneCellular(const float* point, float jitter);

} // namespace VHLNoise
