// SPDX-License-Identifier: BSD-3-Clause
// The loops behind the batch forms for processors with AVX2; compiled with flags of its own.
#define VHL_BITS 256
#define VHL_KERNELS avx2
#include "table.h"
