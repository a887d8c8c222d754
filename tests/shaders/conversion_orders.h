// SPDX-License-Identifier: BSD-3-Clause
// Which parameters each conversion reads, and in which order.
#pragma once

#include "orders.h"

/// Every conversion once.
inline std::vector<Orders> conversionOrders()
{
    const std::vector<Order> single = {{{}, "input"}};
    const std::vector<Order> flag = {{{}, "input"}, {{"input"}, "input"}};
    const std::vector<Order> weighted = {{{}, "input weights"}};
    return {
        {"vhBoolean2Integer_v1", flag},
        {"vhBoolean2Scalar_v1", flag},
        {"vhBoolean2Vector_v1", flag},
        {"vhBoolean2Color_v1", flag},
        {"vhInteger2Boolean_v1", single},
        {"vhInteger2Scalar_v1", single},
        {"vhInteger2Vector_v1", single},
        {"vhInteger2Color_v1", single},
        {"vhScalar2Boolean_v1", single},
        {"vhScalar2Integer_v1", single},
        {"vhScalar2Vector_v1", single},
        {"vhScalar2Color_v1", single},
        {"vhVector2Boolean_v1", single},
        {"vhVector2Integer_v1", weighted},
        {"vhVector2Scalar_v1", weighted},
        {"vhVector2Color_v1", single},
        {"vhVector2Scalars_v1", single},
        {"vhColor2Boolean_v1", single},
        {"vhColor2Integer_v1", weighted},
        {"vhColor2Scalar_v1", weighted},
        {"vhColor2Vector_v1", single},
        {"vhColor2Scalars_v1", single},
        {"vhScalars2Vector_v1", {{{}, "x y z"}}},
        {"vhScalars2Color_v1", {{{}, "r g b a"}}},
    };
}
