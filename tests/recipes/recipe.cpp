// SPDX-License-Identifier: BSD-3-Clause
#include "tests/recipes/recipe.h"

#include "host/language/read.h"

namespace test {

namespace {

Stage& stage()
{
    static Stage made(VHL_LIBRARY);
    static const bool read = [] {
        host::readScene(made.session, VHL_DECLARATIONS "/vhl.mi");
        host::readScene(made.session, VHL_DECLARATIONS "/recipes.mi");
        return true;
    }();
    return read ? made : throw std::logic_error("unreachable");
}

} // namespace

Recipe::Recipe(const std::string& name)
{
    static int serial = 0;
    const std::string mine = "recipe " + std::to_string(++serial);
    host::Session& session = stage().session;
    host::readScene(session, "shader \"" + mine + "\" \"" + name + "\" ()", "test.mi");
    const auto function = [&](miTag tag) { return session.database.findAs<host::Function>(tag); };
    definition_ = root_ = function(session.database.lookup(mine));
    while (root_->expansion)
        root_ = function(root_->expansion->roots.at(0));
    network_ = std::make_unique<host::Network>(std::vector<host::Function*>{root_}, session.libraries);

    miTs first(*network_, 0);
    state = stage().firstState(first);
    network_->setExitState(state);
    camera_.x_resolution = 200;
    camera_.y_resolution = 100;
    state.camera = &camera_;
    state.type = miRAY_EYE;
    state.dist = 5;
    state.dot_nd = -1;
    state.normal = state.normal_geom = {0, 0, 1};
    state.dir = {0, 0, -1};
    state.org = {0, 0, 5};
    state.tex_list = &uv_;
    atPixel(100, 50);
}

Recipe::~Recipe() = default;

void Recipe::atPixel(float x, float y)
{
    state.raster_x = x;
    state.raster_y = y;
}

void Recipe::atUv(float u, float v) { uv_ = {u, v, 0}; }

void Recipe::run(void* result, std::size_t size)
{
    if (size != root_->declaration().result.size)
        throw std::logic_error(root_->title() + " has a result of another size");
    miTs thread(*network_, 0);
    state.ts = &thread;
    const host::StateScope scope(state);
    if (!host::call(*root_, result, state))
        throw std::logic_error(root_->title() + " has failed");
}

void* Recipe::place(const std::string& parameter, std::size_t size)
{
    const host::Field* const field = definition_->declaration().parameter(parameter);
    if (!field || field->isArray || field->size != size)
        throw std::logic_error(definition_->title() + " has no parameter " + parameter + " of this size");
    return static_cast<std::byte*>(definition_->parameters()) + field->offset;
}

const std::vector<Rgba>& colors()
{
    static const std::vector<Rgba> made = {{0, 0, 0, 1},
                                           {1, 1, 1, 1},
                                           {0.5, 0.5, 0.5, 0.5},
                                           {0.25, 0.5, 0.75, 1},
                                           {0.75, 0.125, 0, 0},
                                           {0.0625, 1, 0.375, 0.25},
                                           {1.5, 0.25, -0.25, 0.75},
                                           {0.9, 0.05, 0.45, 1},
                                           {0.96875, 0.9375, 0.984375, 0.5},
                                           {0.03125, 0.0625, 0.015625, 1}};
    return made;
}

} // namespace test
