// SPDX-License-Identifier: BSD-3-Clause
// The loops behind the batch forms for processors with AVX-512 F and DQ; compiled with flags of its own.
#define VHL_BITS 512
#define VHL_KERNELS avx512
#include "table.h"
