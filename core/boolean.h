// SPDX-License-Identifier: BSD-3-Clause
// A truth value.
#pragma once

#include <type_traits>

namespace VHL {

/// One bool, in one byte: a value of its own, unlike the renderer's 32-bit boolean.
class dBoolean {
public:
    constexpr dBoolean(bool value) noexcept : value_(value) {}
    constexpr operator bool() const noexcept { return value_; }

private:
    bool value_;
};

static_assert(sizeof(dBoolean) == 1 && std::is_trivially_copyable_v<dBoolean>);

} // namespace VHL
