// SPDX-License-Identifier: BSD-3-Clause
// How a table says which parameters a shader reads, and in which order.
#pragma once

#include <string>
#include <utility>
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

/// The same orders with more flags, all of which are read at the end whatever they are: every combination.
inline std::vector<Order> withFlags(std::vector<Order> orders, const std::vector<std::string>& flags)
{
    for (const std::string& flag : flags) {
        std::vector<Order> both;
        for (Order order : orders) {
            order.parameters += ' ' + flag;
            both.push_back(order);
            order.on.push_back(flag);
            both.push_back(order);
        }
        orders = std::move(both);
    }
    return orders;
}
