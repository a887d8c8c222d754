// SPDX-License-Identifier: BSD-3-Clause
// Which shaders behind a shader's parameters run, and in which order.
#include "components.h"
#include "evaluation_order.h"
#include "tests/harness/call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

std::vector<std::string> flagsOf(const test::Call& call)
{
    std::vector<std::string> flags;
    for (const host::Field& field : call.declaration().parameters)
        if (field.type == host::Type::boolean)
            flags.push_back(field.name);
    return flags;
}

/// Turns these flags on and the others off.
void setFlags(test::Call& call, const std::vector<std::string>& on)
{
    for (const std::string& flag : flagsOf(call))
        call.set(flag, std::ranges::count(on, flag) != 0);
}

/// The names of the connected parameters that a run evaluates.
std::string evaluated(test::Call& call)
{
    run(call, call.declaration().result.size);
    return call.trace();
}

// Beyond six flags a table names the combinations that differ, and its family's test goes through the rest.
TEST(EvaluationOrder, TableHasEveryCombinationOfFlags)
{
    for (const auto& [shader, orders] : evaluationOrders()) {
        SCOPED_TRACE(shader);
        std::set<std::set<std::string>> combinations;
        for (const Order& order : orders)
            combinations.insert({order.on.begin(), order.on.end()});
        const std::size_t flags = flagsOf(test::Call(shader)).size();
        if (flags <= 6) {
            EXPECT_EQ(combinations.size(), std::size_t{1} << flags);
        }
        EXPECT_EQ(combinations.size(), orders.size());
    }
}

TEST(EvaluationOrder, ConnectedParametersRunInOrderAndOnlyWhenNeeded)
{
    for (const auto& [shader, orders] : evaluationOrders()) {
        SCOPED_TRACE(shader);
        for (const Order& order : orders) {
            test::Call call(shader);
            setFlags(call, order.on);
            call.connectAll();
            EXPECT_EQ(evaluated(call), order.parameters);
        }
    }
}

TEST(EvaluationOrder, AParameterConnectedAloneRunsOnlyWhenNeeded)
{
    for (const auto& [shader, orders] : evaluationOrders()) {
        SCOPED_TRACE(shader);
        for (const Order& order : orders)
            for (const host::Field& field : test::Call(shader).declaration().parameters) {
                test::Call call(shader);
                setFlags(call, order.on);
                call.connect(field.name);
                const bool needed =
                    (' ' + order.parameters + ' ').find(' ' + field.name + ' ') != std::string::npos;
                EXPECT_EQ(evaluated(call), needed ? field.name : "") << "of " << order.parameters;
            }
    }
}

} // namespace
