// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each arithmetic shader reads, and in which order.
#pragma once

#include "orders.h"

/// Every arithmetic shader once.
inline std::vector<Orders> arithmeticOrders()
{
    const std::vector<Order> single = {{{}, "input"}};
    const std::vector<Order> pair = {{{}, "input1 input2"}};
    const std::vector<Order> weighted = {{{}, "input1 input2 weight"}};
    const std::vector<Order> inversion = {{{}, "input maximum"}};
    const std::vector<Order> color = {
        {{"useAlpha"}, "input useAlpha"},
        {{}, "input useAlpha alpha"},
    };
    const std::vector<Order> colorPair = {
        {{"useAlpha1", "useAlpha2"}, "input1 input2 useAlpha1 useAlpha2"},
        {{"useAlpha1"}, "input1 input2 useAlpha1 useAlpha2 alpha2"},
        {{"useAlpha2"}, "input1 input2 useAlpha1 useAlpha2 alpha1"},
        {{}, "input1 input2 useAlpha1 useAlpha2 alpha1 alpha2"},
    };
    const std::vector<Order> weightedColors = {
        {{"useAlpha1", "useAlpha2"}, "input1 input2 useAlpha1 useAlpha2 weight"},
        {{"useAlpha1"}, "input1 input2 useAlpha1 useAlpha2 alpha2 weight"},
        {{"useAlpha2"}, "input1 input2 useAlpha1 useAlpha2 alpha1 weight"},
        {{}, "input1 input2 useAlpha1 useAlpha2 alpha1 alpha2 weight"},
    };
    const std::vector<Order> colorInversion = {
        {{"useAlpha"}, "input maximum useAlpha"},
        {{}, "input maximum useAlpha alpha"},
    };
    return {
        {"vhAddScalar_v1", pair},
        {"vhAddVector_v1", pair},
        {"vhAddColor_v2", colorPair},
        {"vhSubScalar_v1", pair},
        {"vhSubVector_v1", pair},
        {"vhSubColor_v2", colorPair},
        {"vhSubAScalar_v1", pair},
        {"vhSubAVector_v1", pair},
        {"vhSubAColor_v1", pair},
        {"vhSubAColor_v2", colorPair},
        {"vhMultScalar_v1", pair},
        {"vhMultVector_v1", pair},
        {"vhMultColor_v2", colorPair},
        {"vhDivScalar_v1", pair},
        {"vhDivVector_v1", pair},
        {"vhDivColor_v2", colorPair},
        {"vhModScalar_v1", pair},
        {"vhModVector_v1", pair},
        {"vhModColor_v2", colorPair},
        {"vhMaxScalar_v1", pair},
        {"vhMaxVector_v1", pair},
        {"vhMaxColor_v2", colorPair},
        {"vhMinScalar_v1", pair},
        {"vhMinVector_v1", pair},
        {"vhMinColor_v2", colorPair},
        {"vhMixScalar_v1", weighted},
        {"vhMixVector_v1", weighted},
        {"vhMixColor_v2", weightedColors},
        {"vhFloorScalar_v1", single},
        {"vhFloorVector_v1", single},
        {"vhFloorColor_v2", single},
        {"vhCeilScalar_v1", single},
        {"vhCeilVector_v1", single},
        {"vhCeilColor_v2", single},
        {"vhInvertScalar_v1", inversion},
        {"vhInvertVector_v1", inversion},
        {"vhInvertColor_v2", colorInversion},
        {"vhNullScalar_v1", single},
        {"vhNullVector_v1", single},
        {"vhNullColor_v2", color},
        {"vhConstScalar_v1", single},
        {"vhConstVector_v1", single},
        {"vhConstColor_v2", color},
        {"vhVectorNorm_v1", single},
        {"vhNormalizeVector_v1", single},
    };
}
