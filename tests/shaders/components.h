// SPDX-License-Identifier: BSD-3-Clause
// Shaders of any result, by the numbers in it.
#pragma once

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

/// A value's numbers in order: one of a scalar, three of a vector, four of a color.
using Components = std::vector<float>;

/// Runs a test::Call or a test::Sample of it. `size` is the declared result's, in bytes.
template <class Runner>
Components run(Runner& runner, std::size_t size)
{
    const auto numbers = [](const auto& result) { return Components(result.begin(), result.end()); };
    switch (size) {
    case 4:
        return numbers(runner.template run<std::array<float, 1>>());
    case 12:
        return numbers(runner.template run<std::array<float, 3>>());
    case 16:
        return numbers(runner.template run<std::array<float, 4>>());
    default:
        throw std::logic_error("no scalar, vector or color has " + std::to_string(size) + " bytes");
    }
}
