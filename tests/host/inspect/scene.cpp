// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/inspect/scene.h"

#include "host/language/read.h"
#include "host/render/render.h"

namespace test {

namespace {

// Ten lines: see firstLine.
const std::string head =
    "link \"" INSPECT_SHADERS "\"\n"
    "declare shader color \"choose\" ( boolean \"which\", color \"first\", color \"second\" )\n"
    "version 1 end declare\n"
    "declare shader struct { color \"rgb\", scalar \"mask\" } \"split\" ( color \"in\" )\n"
    "version 1 end declare\n"
    "declare shader color \"total\" ( scalar \"start\", array scalar \"values\" )\n"
    "version 1 end declare\n"
    "declare shader color \"spend\" ( integer \"microseconds\", integer \"times\",\n"
    "color \"input\" )\n"
    "version 1 end declare\n";

const std::string rest = R"(
options "opt" samples 0 0 object space end options
camera "cam" focal 1 aperture 1 aspect 1 resolution 4 4 end camera
instance "cam-i" "cam" end instance
material "m" = "surface" end material
object "quad" visible trace shadow
    group -2 -2 -1  2 -2 -1  2 2 -1  -2 2 -1
    v 0 v 1 v 2 v 3
    c "m" 0 1 2 3
    end group
end object
instance "quad-i" "quad" end instance
)";

} // namespace

bool look(host::Inspection& inspection, const std::string& shaders, int threads, const std::string& elements,
          const std::string& members)
{
    host::Session session;
    bool finished = false;
    session.onRender = [&](const host::RenderCommand& command) {
        host::RenderSettings settings;
        settings.threads = threads;
        settings.write = false;
        settings.inspections = {&inspection};
        finished = host::render(session, command, settings);
    };
    host::readScene(session,
                    head + shaders + rest + elements + "instgroup \"root\" \"cam-i\" \"quad-i\" " + members +
                        " end instgroup\nrender \"root\" \"cam-i\" \"opt\"\n",
                    "test.mi");
    return finished;
}

} // namespace test
