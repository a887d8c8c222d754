// SPDX-License-Identifier: BSD-3-Clause
// The loops behind the batch forms for every x86-64 processor.
#define VHL_BITS 128
#define VHL_KERNELS plain
#include "table.h"
