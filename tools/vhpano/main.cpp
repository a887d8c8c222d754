// SPDX-License-Identifier: BSD-3-Clause
// vhpano: converts panoramic images between layouts.
#include "host/report/guess.h"
#include "host/report/progress.h"
#include "tools/vhpano/convert.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <exception>
#include <map>
#include <new>
#include <string>
#include <vector>

namespace {

const std::map<std::string, vhpano::Filter> filters = {{"footprint", vhpano::Filter::footprint},
                                                       {"nearest", vhpano::Filter::nearest},
                                                       {"bilinear", vhpano::Filter::bilinear},
                                                       {"bicubic", vhpano::Filter::bicubic}};

void print(const std::string& text) { std::fprintf(stderr, "vhpano: %s\n", text.c_str()); }

int fail(const std::string& text, int status)
{
    print(text);
    return status;
}

std::string didYouMean(const std::string& wrong, const std::vector<std::string>& names)
{
    host::Guess guess(wrong);
    for (const std::string& name : names)
        guess.offer(name);
    return guess.text();
}

CLI::Validator oneOf(const std::vector<std::string>& names)
{
    return {[names](const std::string& word) {
                if (std::find(names.begin(), names.end(), word) != names.end())
                    return std::string();
                return "'" + word + "' is none of " + CLI::detail::join(names, ", ") +
                       didYouMean(word, names);
            },
            ""};
}

CLI::Validator wholeNumber(int least, int most)
{
    return {[least, most](const std::string& text) {
                int number = 0;
                const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
                const bool fits = error == std::errc() && end == text.data() + text.size() &&
                                  number >= least && number <= most;
                return fits ? std::string()
                            : "'" + text + "' is no whole number from " + std::to_string(least) + " to " +
                                  std::to_string(most);
            },
            ""};
}

/// What is wrong with the call: an option that is not known goes before what is missing in its place.
std::string reason(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> rest = app.remaining();
    const auto unknown =
        std::find_if(rest.begin(), rest.end(), [](const std::string& word) { return word[0] == '-'; });
    if (unknown != rest.end()) {
        std::vector<std::string> names;
        for (const CLI::Option* const option : app.get_options())
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
        return "'" + *unknown + "' is no option" + didYouMean(*unknown, names);
    }
    if (dynamic_cast<const CLI::ExtrasError*>(&error))
        return "'" + rest.front() + "' is one file too many";
    return error.what();
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
    app.add_option("--from", from, "layout of the input")
        ->required()
        ->type_name("LAYOUT")
        ->check(oneOf(vhpano::layoutNames()));
    app.add_option("--to", to, "layout of the output")
        ->required()
        ->type_name("LAYOUT")
        ->check(oneOf(vhpano::layoutNames()));
    app.add_option("--size", size, "pixels of the output (default: to show as much as the input does)")
        ->expected(2)
        ->type_name("W H")
        ->check(wholeNumber(1, 1 << 20));
    app.add_option(
           "--filter", filter,
           "footprint (default): averages what a pixel covers, bicubic where it covers less than one; "
           "nearest, bilinear, bicubic")
        ->type_name("NAME")
        ->check(oneOf({"footprint", "nearest", "bilinear", "bicubic"}));
    app.add_option("--rotate", rotation,
                   "degrees by which the view turns right, then up, then tilts clockwise")
        ->expected(3)
        ->type_name("YAW PITCH ROLL");
    app.add_option("--type", conversion.type, "uint8, uint16, half or float (default: the input's)")
        ->type_name("TYPE")
        ->check(oneOf({"uint8", "uint16", "half", "float"}));
    app.add_option("--threads", conversion.threads, "threads (default: as many as the machine has)")
        ->type_name("N")
        ->check(wholeNumber(1, 1024));
    try {
        app.parse(count, arguments);
        conversion.from = *vhpano::layoutOf(from);
        conversion.to = *vhpano::layoutOf(to);
        for (const double degrees : rotation)
            if (!(std::abs(degrees) <= 1e6)) // or no number
                throw CLI::ValidationError("--rotate: degrees are from -1000000 to 1000000");
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        return fail(reason(app, error), 2);
    }
    conversion.filter = filters.at(filter);
    if (!size.empty())
        conversion.size = vhpano::Size{size[0], size[1]};
    if (!rotation.empty())
        conversion.rotation = {rotation[0], rotation[1], rotation[2]};

    try {
        host::ProgressLine line("converting");
        const auto warn = [](const std::string& text) { print("warning: " + text); };
        vhpano::convert(conversion, warn, [&](double fraction) { line.show(fraction); });
        return 0;
    } catch (const std::bad_alloc&) {
        return fail("out of memory", 1);
    } catch (const std::exception& error) {
        return fail(error.what(), 1);
    }
}
