// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each range shader reads, and in which order.
#pragma once

#include "orders.h"

/// Every range shader once.
inline std::vector<Orders> rangeOrders()
{
    const std::vector<Order> range = {{{}, "input lower upper"}};
    const std::vector<Order> colorRange = {
        {{"useAlphaLower", "useAlphaUpper"}, "input lower upper useAlphaLower useAlphaUpper"},
        {{"useAlphaLower"}, "input lower upper useAlphaLower useAlphaUpper alphaUpper"},
        {{"useAlphaUpper"}, "input lower upper useAlphaLower useAlphaUpper alphaLower"},
        {{}, "input lower upper useAlphaLower useAlphaUpper alphaLower alphaUpper"},
    };
    const std::vector<Order> threshold = {{{}, "input threshold"}};
    const std::vector<Order> colorThreshold = {
        {{"useAlpha"}, "input threshold useAlpha"},
        {{}, "input threshold useAlpha alpha"},
    };
    return {
        {"vhClampScalar_v1", range},
        {"vhClampVector_v2", withFlags(range, {"clampX", "clampY", "clampZ"})},
        {"vhClampColor_v3", withFlags(colorRange, {"clampR", "clampG", "clampB", "clampA"})},
        {"vhCompressScalar_v1", range},
        {"vhCompressVector_v1", range},
        {"vhCompressColor_v2", colorRange},
        {"vhExpandScalar_v1", range},
        {"vhExpandVector_v1", range},
        {"vhExpandColor_v2", colorRange},
        {"vhThresholdScalar_v1", threshold},
        {"vhThresholdVector_v1", threshold},
        {"vhThresholdColor_v2", colorThreshold},
    };
}
