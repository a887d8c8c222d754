// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each shader of mattes and layers reads, and in which order.
#pragma once

#include "orders.h"

inline std::vector<Orders> layerOrders()
{
    return {
        {"vhOver_v1", {{{}, "foreground background"}}},
        {"vhSetAlpha_v1", withFlags({{{}, "input alpha"}}, {"premultiply"})},
        {"vhSwitchMatte_v1", withFlags({{{}, "input matte"}}, {"premultiply"})},
        {"vhMatteMult_v1", {{{}, "input reserved"}}},
        {"vhMatteDiv_v1", {{{}, "input"}}},
        {"vhSetOpacity_v1", withFlags({{{}, "input opacity"}}, {"multiply"})},
    };
}
