// SPDX-License-Identifier: BSD-3-Clause
// Crashes of other people's shaders.
#pragma once

namespace host {

/// From now on a crash within a shader (invalid memory access, illegal instruction, arithmetic error, abort)
/// prints one line that names the shader instance. The process then ends as it would have ended without:
/// signal, core file and what others do about signals are as before. Call it once, when the process starts.
void nameCrashes();

} // namespace host
