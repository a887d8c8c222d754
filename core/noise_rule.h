// SPDX-License-Identifier: BSD-3-Clause
// The noise functions step by step. The fast forms are exactly the same, and leave rare cases to these.
#pragma once

#include "noise.h"

namespace VHLNoise {

dScalar inoiseByRule(dVector p);
dScalar inoiseByRule(dColor p);
dScalar cellnoiseByRule(dVector p);
dVector cellularByRule(dVector p, dScalar jitter);

} // namespace VHLNoise
