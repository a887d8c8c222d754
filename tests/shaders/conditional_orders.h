// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each conditional shader reads, and in which order.
#pragma once

#include "orders.h"

inline std::vector<Orders> conditionalOrders()
{
    const std::vector<Order> choice = {{{"condition"}, "condition ifTrue"}, {{}, "condition ifFalse"}};
    return {{"vhIfThenElseScalar_v1", choice},
            {"vhIfThenElseVector_v1", choice},
            {"vhIfThenElseColor_v1", choice}};
}
