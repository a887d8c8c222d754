// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each mixer reads, and in which order.
#pragma once

#include "orders.h"

#include <cstdint>

/// What a mixer with so many slots reads while the slots whose bits are set, the first slot's lowest, are on.
inline Order mixerOrder(int slots, std::uint32_t on)
{
    Order order;
    for (int slot = 1; slot <= slots; ++slot) {
        const std::string number = std::to_string(slot);
        order.parameters += (slot == 1 ? "enable" : " enable") + number;
        if (on >> (slot - 1) & 1) {
            order.on.push_back("enable" + number);
            order.parameters += " input" + number + " weight" + number;
        }
    }
    return order;
}

/// Every combination of 2 and 4 switches; of 8 and 16 none, all, every other and the first and the last
/// alone.
inline std::vector<Orders> mixerOrders()
{
    std::vector<Orders> all;
    for (const int slots : {2, 4, 8, 16}) {
        const std::uint32_t full = (1u << slots) - 1;
        std::vector<std::uint32_t> combinations = {0, full, full / 3, full - full / 3, 1, 1u << (slots - 1)};
        if (slots <= 4) {
            combinations.clear();
            for (std::uint32_t on = 0; on <= full; ++on)
                combinations.push_back(on);
        }
        std::vector<Order> orders;
        for (const std::uint32_t on : combinations)
            orders.push_back(mixerOrder(slots, on));
        for (const char* const kind : {"Color", "Scalar", "Vector"})
            all.push_back({"vhMixer" + (kind + std::to_string(slots)) + "_v1", orders});
    }
    return all;
}
