// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/base/scene.h"

#include "host/language/read.h"
#include "host/render/render.h"
#include "tests/harness/folder.h"

#include <OpenImageIO/imageio.h>

#include <stdexcept>

namespace {

Picture picture(const std::string& file)
{
    const auto input = OIIO::ImageInput::open(file);
    if (!input)
        throw std::runtime_error(OIIO::geterror());
    Picture result;
    result.width = input->spec().width;
    result.height = input->spec().height;
    if (input->spec().nchannels != 4)
        throw std::runtime_error("not four channels");
    result.pixels.resize(static_cast<std::size_t>(result.width) * static_cast<std::size_t>(result.height));
    const auto rowBytes = static_cast<OIIO::stride_t>(sizeof(miColor)) * result.width;
    miColor* const lastRow = result.pixels.data() + result.pixels.size() - result.width;
    if (!input->read_image(0, 0, 0, 4, OIIO::TypeDesc::FLOAT, lastRow, OIIO::AutoStride, -rowBytes))
        throw std::runtime_error(input->geterror());
    return result;
}

} // namespace

Picture rendered(const std::string& body, const std::string& instances, const std::string& options)
{
    const test::Folder folder;
    const std::string file = folder.path("picture.exr");
    const auto defines = [&](const std::string& shader) {
        return body.find("shader \"" + shader + "\"") != std::string::npos;
    };
    const std::string text = R"(
link "base.so"
$include <base.mi>
)" + body + R"(
options "opt"  samples 0 0  trace depth 4 4 8  shadow on  object space  )" +
                             options + R"( end options
camera "cam"
    output "rgba_fp" "exr" ")" +
                             file + R"("
    focal infinity  aperture 4  aspect 1  resolution 41 41
    )" + (defines("surroundings") ? "environment = \"surroundings\"\n" : "") +
                             (defines("fog") ? "volume = \"fog\"" : "") +
                             R"(
end camera
instance "cam-i" "cam"  transform 1 0 0 0  0 1 0 0  0 0 1 0  0 0 -10 1  end instance
instgroup "root"  "cam-i" )" +
                             instances +
                             R"( end instgroup
render "root" "cam-i" "opt"
)";

    host::Session session;
    session.paths.library = {BASE_LIBRARY_FOLDER};
    session.paths.include = {BASE_INCLUDE_FOLDER};
    session.onRender = [&](const host::RenderCommand& command) { host::render(session, command, {}); };
    host::readScene(session, text, "test.mi");
    return picture(file);
}

std::string square(const std::string& name, float z, const std::string& material, const std::string& flags)
{
    const std::string height = std::to_string(z);
    std::string points;
    for (const char* const corner : {"-5 -5 ", "5 -5 ", "5 5 ", "-5 5 "})
        points += corner + height + "  ";
    return "object \"" + name + "\" " + flags + R"(
    group
        )" +
           points +
           R"(  0 0 0  1 0 0  1 1 0  0 1 0
        v 0 t 4  v 1 t 5  v 2 t 6  v 3 t 7
        c ")" +
           material + R"(" 0 1 2 3
    end group
end object
instance ")" +
           name + "-i\" \"" + name + "\" end instance\n";
}
