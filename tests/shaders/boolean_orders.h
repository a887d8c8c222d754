// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each boolean shader reads, and in which order. Those with an array read as many as they
// need.
#pragma once

#include "orders.h"

inline std::vector<Orders> booleanOrders()
{
    const std::vector<Order> single = {{{}, "input"}, {{"input"}, "input"}};
    const std::vector<Order> pair = {{{}, "input1 input2"},
                                     {{"input1"}, "input1 input2"},
                                     {{"input2"}, "input1 input2"},
                                     {{"input1", "input2"}, "input1 input2"}};
    return {{"vhNot_v1", single}, {"vhXOr_v1", pair}, {"vhOr_v1", pair}, {"vhAnd_v1", pair}};
}
