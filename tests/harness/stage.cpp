// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/stage.h"

namespace test {

Stage::Stage(const std::string& library)
    : options_(session.database.make<host::Options>()), camera_(session.database.make<host::Camera>())
{
    if (!library.empty())
        session.libraries.link(library, {}, {});
}

const host::Declaration& Stage::declare(const std::string& name, host::Field result,
                                        std::vector<host::Field> parameters, int version)
{
    return session.declarations.add(declaration(name, std::move(result), std::move(parameters), version));
}

host::Function& Stage::make(const std::string& name, const std::string& shader,
                            const std::vector<host::Argument>& arguments)
{
    auto made = std::make_unique<host::Function>(*session.declarations.find(shader), arguments,
                                                 session.database, host::Location());
    host::Function& function = *made;
    function.name = name;
    session.database.add(std::move(made));
    return function;
}

void Stage::prepare(const std::vector<host::Function*>& roots)
{
    finish();
    network_ = std::make_unique<host::Network>(roots, session.libraries);
    miState state{};
    state.version = MI_STATE_VERSION;
    state.camera = &camera_.record;
    state.options = &options_.record;
    network_->setExitState(state);
}

void Stage::finish() { network_.reset(); }

miState Stage::firstState(miTs& thread) const
{
    miState state{};
    state.version = MI_STATE_VERSION;
    state.camera = &camera_.record;
    state.options = &options_.record;
    state.ts = &thread;
    return state;
}

} // namespace test
