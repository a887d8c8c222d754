// SPDX-License-Identifier: BSD-3-Clause
// Small scenes, built in place, whose shaders are functions of the test.
#pragma once

#include "host/render/rendering.h"
#include "host/render/vector.h"
#include "tests/host/render/hook.h"

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace test {

using Shade = std::function<miBoolean(miColor& result, miState& state)>;

/// A camera at the origin that looks along -z, 8 by 8 pixels, 90 degrees wide, one sample per pixel; an empty
/// root group.
class Scene {
public:
    Scene();
    ~Scene();

    /// A shader that calls the function; its parameter `texture` names that texture.
    host::Function& shader(Shade shade, const std::string& texture = {});
    host::Function& geometry(std::function<miBoolean(miTag& result, miState& state)> create);

    host::Material& material(Shade shade);
    /// One that shows a colour.
    host::Material& plain(const miColor& color);

    host::Light& pointLight(const miVector& origin, Shade shade);

    using Function = std::function<miBoolean(void*, miState&, HookParameters&)>;

    /// Notes a function of the test, and gives the number by which shaders call it.
    int number(Function function);

    /// An object of polygons without material, visible to all rays, casting and receiving shadows.
    host::Object& object(const std::vector<miVector>& points,
                         const std::vector<std::vector<std::uint32_t>>& polygons);
    /// A square of this half size around the origin, in the plane z = 0, its front towards +z.
    host::Object& square(float half);

    /// An instance of the element in a group (the root, unless another is given), moved by this much.
    host::Instance& place(host::Element& element, const miVector& at = {0, 0, 0}, host::Group* in = nullptr);

    host::Picture render(int threads = 1, bool facts = false);
    /// Renders one picture of one pixel whose centre is the viewing axis.
    miColor look();

    host::Session session;
    host::Options& options;
    host::Camera& camera;
    host::Group& root;
    host::Instance& cameraInstance;
    std::function<void(double)> progress;

private:
    host::Function& make(const char* hook, int number, const std::string& texture);
    static miBoolean dispatch(void* context, int number, void* result, miState* state,
                              HookParameters* parameters);

    std::vector<Function> functions_;
};

/// Moves an instance so that its element stands there.
void moveTo(host::Instance& instance, const miVector& at);
/// Sets both matrices of an instance from the local-to-parent one, which must be invertible.
void setMatrix(host::Instance& instance, const host::Matrix& localToParent);
/// Sets those of the end of the shutter interval.
void setMotion(host::Instance& instance, const host::Matrix& localToParent);

} // namespace test
