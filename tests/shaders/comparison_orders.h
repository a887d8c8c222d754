// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each comparison reads, and in which order: all of them, whatever the first ones are.
#pragma once

#include "orders.h"

/// Every comparison once.
inline std::vector<Orders> comparisonOrders()
{
    const std::vector<Order> relation = {{{}, "input1 input2"}};
    const std::vector<Order> range = withFlags({{{}, "input lower upper"}}, {"includeLower", "includeUpper"});
    std::vector<Orders> all;
    for (const std::string kind : {"Scalar", "Color", "Vector"}) {
        for (const std::string name :
             {"Equal", "NotEqual", "LessThan", "LessThanOrEqual", "GreaterThan", "GreaterThanOrEqual"})
            all.push_back({"vh" + name + kind + "_v1", relation});
        all.push_back({"vhInRange" + kind + "_v1", range});
    }
    all.push_back({"vhInBetweenVector_v1", {{{}, "start input end"}}});
    all.push_back({"vhInRasterPositionRange_v1",
                   withFlags({{{}, "lowerX lowerY upperX upperY"}}, {"includeLower", "includeUpper"})});
    return all;
}
