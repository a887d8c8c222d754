// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Marks what other code may call. Everything else stays inside the library.
#define VHL_API __attribute__((visibility("default")))
