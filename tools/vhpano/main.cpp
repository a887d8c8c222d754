// SPDX-License-Identifier: BSD-3-Clause
// vhpano: converts panoramic images between layouts.
#include "host/report/progress.h"
#include "tools/vhpano/convert.h"

#include <CLI/CLI.hpp>

#include <cmath>
#include <cstdio>
#include <exception>
#include <map>
#include <new>

namespace {

const std::map<std::string, vhpano::Filter> filters = {{"footprint", vhpano::Filter::footprint},
                                                       {"nearest", vhpano::Filter::nearest},
                                                       {"bilinear", vhpano::Filter::bilinear},
                                                       {"bicubic", vhpano::Filter::bicubic}};

/// Reads a layout by name or throws what CLI11 prints.
vhpano::Layout layout(const std::string& name)
{
    if (const auto found = vhpano::layoutOf(name))
        return *found;
    throw CLI::ValidationError("'" + name + "' is no layout; there are " + vhpano::layoutNames());
}

int fail(const std::string& text, int status)
{
    std::fprintf(stderr, "vhpano: %s\n", text.c_str());
    return status;
}

} // namespace

int main(int count, char** arguments)
{
    vhpano::Conversion conversion;
    std::string from, to, filter = "footprint";
    std::vector<int> size;
    std::vector<double> rotation;

    CLI::App app(
        "Converts panoramic images between layouts.\n"
        "Layouts: latlong (longitude by latitude, 2:1), angular (360 degrees in a circle), ball (mirror "
        "ball),\ncube (six faces in a column, 1:6; from the top left, right, up, down, back, ahead), fisheye "
        "(180 degrees\nin a circle).",
        "vhpano");
    app.set_version_flag("--version", "vhpano " VHL_VERSION);
    app.add_option("in", conversion.input, "image to read: EXR, HDR, TIFF, PNG, JPEG ...")->required();
    app.add_option("out", conversion.output, "image to write; its extension chooses the format")->required();
    app.add_option("--from", from, "layout of the input")->required()->type_name("LAYOUT");
    app.add_option("--to", to, "layout of the output")->required()->type_name("LAYOUT");
    app.add_option("--size", size, "pixels of the output (default: to show as much as the input does)")
        ->expected(2)
        ->type_name("W H")
        ->check(CLI::Range(1, 1 << 20));
    app.add_option(
           "--filter", filter,
           "footprint (default): averages what a pixel covers, bicubic where it covers less than one; "
           "nearest, bilinear, bicubic")
        ->type_name("NAME")
        ->check(CLI::IsMember(filters));
    app.add_option("--rotate", rotation,
                   "degrees by which the view turns right, then up, then tilts clockwise")
        ->expected(3)
        ->type_name("YAW PITCH ROLL");
    app.add_option("--type", conversion.type, "uint8, uint16, half or float (default: the input's)")
        ->type_name("TYPE")
        ->check(CLI::IsMember({"uint8", "uint16", "half", "float"}));
    app.add_option("--threads", conversion.threads, "threads (default: as many as the machine has)")
        ->type_name("N")
        ->check(CLI::Range(1, 1024));
    try {
        app.parse(count, arguments);
        conversion.from = layout(from);
        conversion.to = layout(to);
        for (const double degrees : rotation)
            if (!(std::abs(degrees) <= 1e6)) // or no number
                throw CLI::ValidationError("--rotate: degrees are from -1000000 to 1000000");
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        return fail(error.what(), 2);
    }
    conversion.filter = filters.at(filter);
    if (!size.empty())
        conversion.size = vhpano::Size{size[0], size[1]};
    if (!rotation.empty())
        conversion.rotation = {rotation[0], rotation[1], rotation[2]};

    try {
        host::ProgressLine line("converting");
        vhpano::convert(conversion, [&](double fraction) { line.show(fraction); });
        return 0;
    } catch (const std::bad_alloc&) {
        return fail("out of memory", 1);
    } catch (const std::exception& error) {
        return fail(error.what(), 1);
    }
}
