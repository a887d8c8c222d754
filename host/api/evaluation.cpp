// SPDX-License-Identifier: BSD-3-Clause
// Evaluation of connected parameters.
#include "host/shading/call.h"

void* mi_phen_eval(miState* state, void* parameter) { return host::evaluateConnected(*state, parameter); }

void mi_flush_cache(miState* state) { host::flushResults(*state); }
