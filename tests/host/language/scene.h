// SPDX-License-Identifier: BSD-3-Clause
// Scene text and what came of it.
#pragma once

#include "host/language/read.h"
#include "host/shading/function.h"
#include "tests/harness/messages.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace test {

/// A session that reads text under the name "scene". Libraries are not loaded; messages are kept.
struct Scene {
    Scene();
    explicit Scene(std::string_view text);

    /// Throws host::Error.
    void read(std::string_view text);

    /// What reading the text throws, without "scene:"; "accepted" when it throws nothing.
    std::string errorOf(std::string_view text);

    /// The element of that name and kind; the test fails with an exception when there is none.
    template <class T>
    T& get(const std::string& name)
    {
        if (T* const element = session.database.findAs<T>(session.database.lookup(name)))
            return *element;
        throw std::logic_error("no such element: " + name);
    }

    /// The bytes of a shader's parameter as a T.
    template <class T>
    T parameter(const std::string& shader, const std::string& name)
    {
        return *reinterpret_cast<const T*>(parameterAt(shader, name));
    }
    const char* parameterAt(const std::string& shader, const std::string& name);

    /// The text of a string parameter, through its tag.
    std::string textOf(const std::string& shader, const std::string& name);

    Messages messages{4};
    host::Session session;
    std::vector<host::RenderCommand> renders;
};

/// errorOf in a session of its own.
std::string errorOf(std::string_view text);

inline std::vector<float> list(const miVector& v) { return {v.x, v.y, v.z}; }
inline std::vector<float> list(const miColor& c) { return {c.r, c.g, c.b, c.a}; }
using Floats = std::vector<float>;

} // namespace test
