// SPDX-License-Identifier: BSD-3-Clause
// The base classes of every shader.
#pragma once

#include <shader.h>

namespace VHL {

/// The root of every shader class. It holds no data: what an instance keeps from init to exit are members of
/// the shader class. The renderer may run `execute` of one instance in several threads at once, so `execute`
/// only reads what `init` wrote.
template <class ReturnType, class State, class ResultType, class ParamsType, int Version>
class dShader {
public:
    using Result = ResultType;
    using Params = ParamsType;

    virtual ~dShader() = default;

    /// Once for the shader as a whole, on an object that is gone afterwards.
    virtual void initStatic() {}
    virtual void exitStatic() {}

    /// Once for each instance, before its first and after its last evaluation.
    virtual void init(State*, Params*) {}
    virtual void exit(State*, Params*) {}

    /// One evaluation. The value returned is the renderer's boolean: whether there is a result.
    virtual ReturnType execute(Result*, State*, Params*) = 0;

    /// The version that the scene's declaration has to name.
    static constexpr int version() { return Version; }
};

/// What a shader class derives from, directly.
template <class Result, class Params, int Version>
class dMentalRayShader : public dShader<int, miState, Result, Params, Version> {
public:
    void init(miState*, Params*) override {}
    void exit(miState*, Params*) override {}
};

} // namespace VHL
