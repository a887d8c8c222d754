// SPDX-License-Identifier: BSD-3-Clause
// The tables of all families that read a fixed set of parameters.
#pragma once

#include "arithmetic_orders.h"
#include "boolean_orders.h"
#include "channel_orders.h"
#include "comparison_orders.h"
#include "conditional_orders.h"
#include "conversion_orders.h"
#include "debug_orders.h"
#include "layer_orders.h"
#include "mixer_orders.h"
#include "range_orders.h"
#include "state_orders.h"

inline const std::vector<Orders>& evaluationOrders()
{
    static const std::vector<Orders> all = [] {
        std::vector<Orders> made;
        for (const std::vector<Orders>& family :
             {arithmeticOrders(), booleanOrders(), channelOrders(), comparisonOrders(), conditionalOrders(),
              conversionOrders(), debugOrders(), layerOrders(), mixerOrders(), rangeOrders(), stateOrders()})
            made.insert(made.end(), family.begin(), family.end());
        return made;
    }();
    return all;
}
