// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/render.h"

#include "host/render/check.h"
#include "host/render/image.h"
#include "host/render/rendering.h"
#include "host/system/large_stack.h"

#include <new>
#include <stdexcept>

namespace host {

namespace {

/// The scene's options and camera are left alone: command-line overrides go into copies.
void copyInto(Options& copy, const Options& original)
{
    copy.name = original.name;
    copy.where = original.where;
    copy.record = original.record;
    copy.strings = original.strings;
}

void copyInto(Camera& copy, const Camera& original)
{
    copy.name = original.name;
    copy.where = original.where;
    copy.record = original.record;
    copy.hasWindow = original.hasWindow;
    copy.lens = original.lens;
    copy.environment = original.environment;
    copy.volume = original.volume;
    copy.outputs = original.outputs;
}

/// The element behind a tag of a render command.
template <class T>
const T& required(const Database& database, miTag tag, const RenderCommand& command, const char* what)
{
    const T* const element = database.findAs<T>(tag);
    if (!element)
        throw Error(command.where, std::string("what is to be rendered has no ") + what);
    return *element;
}

bool renderNow(Session& session, const RenderCommand& command, const RenderSettings& settings)
{
    const Database& database = session.database;
    Options options;
    copyInto(options, required<Options>(database, command.options, command, "options"));
    if (settings.adjustOptions)
        settings.adjustOptions(options);
    const auto& instance = required<Instance>(database, command.camera, command, "camera instance");
    Camera camera;
    copyInto(camera, required<Camera>(database, instance.record.item, command, "camera"));
    if (settings.adjustCamera)
        settings.adjustCamera(camera);

    check(options);
    check(camera);
    pictureWindow(camera);
    ImageFiles files;
    if (settings.write)
        files.prepare(camera, options);
    const std::optional<Picture> picture =
        renderPicture(session, command, camera, options,
                      {settings.threads, files.wantFacts(), settings.progress, settings.inspections});
    if (picture)
        files.write(*picture);
    return picture.has_value();
}

} // namespace

bool render(Session& session, const RenderCommand& command, const RenderSettings& settings)
{
    bool finished = false;
    onLargeStack([&] {
        try {
            finished = renderNow(session, command, settings);
        } catch (const Error&) {
            throw;
        } catch (const std::bad_alloc&) {
            throw Error(command.where, "not enough memory to render this");
        } catch (const std::length_error&) { // more elements than any vector holds
            throw Error(command.where, "not enough memory to render this");
        } catch (const std::exception& other) {
            throw Error(command.where, other.what());
        }
    });
    return finished;
}

} // namespace host
