// SPDX-License-Identifier: BSD-3-Clause
// Changing a part of the renderer's state for a while.
#pragma once

namespace VHL {

/// Gives a variable back the value that it has now when this object goes, bit by bit.
template <class T>
class Restored {
public:
    explicit Restored(T& variable) : variable_(variable), value_(variable) {}
    ~Restored() { variable_ = value_; }
    Restored(const Restored&) = delete;
    Restored& operator=(const Restored&) = delete;

    const T& value() const { return value_; }

private:
    T& variable_;
    const T value_;
};

} // namespace VHL
