// SPDX-License-Identifier: BSD-3-Clause
// The tables of all families that read a fixed set of parameters.
#pragma once

#include "arithmetic_orders.h"
#include "debug_orders.h"

inline const std::vector<Orders>& evaluationOrders()
{
    static const std::vector<Orders> all = [] {
        std::vector<Orders> made;
        for (const std::vector<Orders>& family : {arithmeticOrders(), debugOrders()})
            made.insert(made.end(), family.begin(), family.end());
        return made;
    }();
    return all;
}
