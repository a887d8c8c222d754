// SPDX-License-Identifier: BSD-3-Clause
// One operation on floats, carried to every component of a value.
#pragma once

#include "core/evaluate.h"

#include <concepts>

namespace VHL {

/// op on the components of one or more values of a kind, in order; a colour's alpha is a component.
template <class Op, std::same_as<dScalar>... Scalars>
dScalar perComponent(Op op, const Scalars&... s)
{
    return op(float(s)...);
}

template <class Op, std::same_as<dVector>... Vectors>
dVector perComponent(Op op, const Vectors&... v)
{
    return {op(v.x()...), op(v.y()...), op(v.z()...)};
}

template <class Op, std::same_as<dColor>... Colors>
dColor perComponent(Op op, const Colors&... c)
{
    return {op(c.r()...), op(c.g()...), op(c.b()...), op(c.a()...)};
}

} // namespace VHL
