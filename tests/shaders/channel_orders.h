// SPDX-License-Identifier: BSD-3-Clause
// Which parameters the channel shaders read, and in which order.
#pragma once

#include "orders.h"

/// All switches are read, and after each the parameters that belong to it while it is on.
struct Switch {
    std::string name;
    std::string whileOn;
};

/// For every combination of the switches: the parameters before them, then what the switches lead to.
inline std::vector<Order> switchOrders(const std::string& before, const std::vector<Switch>& switches)
{
    std::vector<Order> orders;
    for (unsigned combination = 0; combination < 1u << switches.size(); ++combination) {
        Order order = {{}, before};
        for (std::size_t i = 0; i < switches.size(); ++i) {
            order.parameters += ' ' + switches[i].name;
            if (combination >> i & 1) {
                order.on.push_back(switches[i].name);
                order.parameters += switches[i].whileOn;
            }
        }
        orders.push_back(order);
    }
    return orders;
}

/// Every channel shader once.
inline std::vector<Orders> channelOrders()
{
    return {
        {"vhReorderColor_v1", {{{}, "input order"}}},
        {"vhReorderVector_v1", {{{}, "input order"}}},
        {"vhCopyChannelColor_v1",
         switchOrders("input source", {{"copyR", ""}, {"copyG", ""}, {"copyB", ""}, {"copyA", ""}})},
        {"vhCopyChannelVector_v1",
         switchOrders("input source", {{"copyX", ""}, {"copyY", ""}, {"copyZ", ""}})},
        {"vhSetChannelColor_v1",
         switchOrders("input",
                      {{"setR", " valueR"}, {"setG", " valueG"}, {"setB", " valueB"}, {"setA", " valueA"}})},
        {"vhSetChannelVector_v1",
         switchOrders("input", {{"setX", " valueX"}, {"setY", " valueY"}, {"setZ", " valueZ"}})},
    };
}
