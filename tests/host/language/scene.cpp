// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/language/scene.h"

namespace test {

Scene::Scene()
{
    session.linkLibraries = false;
    session.keepVerbosity = true;
    session.onRender = [this](const host::RenderCommand& command) { renders.push_back(command); };
}

Scene::Scene(std::string_view text) : Scene() { read(text); }

void Scene::read(std::string_view text) { host::readScene(session, text, "scene"); }

std::string Scene::errorOf(std::string_view text)
{
    try {
        read(text);
    } catch (const host::Error& error) {
        const std::string message = error.what();
        return message.rfind("scene:", 0) == 0 ? message.substr(6) : message;
    }
    return "accepted";
}

const char* Scene::parameterAt(const std::string& shader, const std::string& name)
{
    host::Function& function = get<host::Function>(shader);
    const host::Field* const field = function.declaration().parameter(name);
    if (!field)
        throw std::logic_error("no such parameter: " + name);
    return static_cast<const char*>(function.parameters()) + field->offset;
}

std::string Scene::textOf(const std::string& shader, const std::string& name)
{
    const host::Text* const text = session.database.findAs<host::Text>(parameter<miTag>(shader, name));
    return text ? std::string(text->text.c_str()) : "no text";
}

std::string errorOf(std::string_view text) { return Scene().errorOf(text); }

} // namespace test
