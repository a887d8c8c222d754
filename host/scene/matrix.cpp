// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/matrix.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace host {

bool invert(const miMatrix matrix, miMatrix result)
{
    // Gauss-Jordan elimination with row pivots.
    std::array<std::array<double, 8>, 4> rows{};
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j)
            rows[i][j] = matrix[4 * i + j];
        rows[i][4 + i] = 1;
    }
    for (std::size_t column = 0; column < 4; ++column) {
        const auto pivot = std::max_element(
            rows.begin() + static_cast<std::ptrdiff_t>(column), rows.end(),
            [=](const auto& a, const auto& b) { return std::abs(a[column]) < std::abs(b[column]); });
        if ((*pivot)[column] == 0 || !std::isfinite((*pivot)[column]))
            return false;
        std::swap(rows[column], *pivot);
        const double scale = rows[column][column];
        for (double& x : rows[column])
            x /= scale;
        for (std::size_t i = 0; i < 4; ++i) {
            const double factor = rows[i][column];
            if (i != column)
                for (std::size_t j = 0; j < 8; ++j)
                    rows[i][j] -= factor * rows[column][j];
        }
    }
    miMatrix inverse;
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 4; ++j) {
            inverse[4 * i + j] = static_cast<float>(rows[i][4 + j]);
            if (!std::isfinite(inverse[4 * i + j]))
                return false;
        }
    std::copy_n(inverse, 16, result);
    return true;
}

} // namespace host
