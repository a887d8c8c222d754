// SPDX-License-Identifier: BSD-3-Clause
// Which parameters the debug shaders read, and in which order: the first ones in init.
#pragma once

#include "orders.h"

inline std::vector<Orders> debugOrders()
{
    const std::string limited = "useLimit limit name enable input";
    const std::string unlimited = "useLimit name enable input";
    const std::vector<Order> orders = {
        {{"useLimit"}, limited},
        {{"useLimit", "enable"}, limited},
        {{}, unlimited},
        {{"enable"}, unlimited},
    };
    std::vector<Order> boolean = orders; // whose input is a flag too
    for (Order order : orders) {
        order.on.emplace_back("input");
        boolean.push_back(order);
    }
    return {
        {"vhDebugBoolean_v1", boolean},
        {"vhDebugScalar_v1", orders},
        {"vhDebugVector_v1", orders},
        {"vhDebugColor_v1", orders},
    };
}
