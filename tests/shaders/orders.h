// SPDX-License-Identifier: BSD-3-Clause
// How a table says which parameters a shader reads, and in which order.
#pragma once

#include <string>
#include <vector>

/// What is read while these flags are on and all others are off.
struct Order {
    std::vector<std::string> on;
    std::string parameters; ///< names with blanks between them
};

struct Orders {
    std::string shader;
    std::vector<Order> orders; ///< one for each combination of the shader's flags
};
