// SPDX-License-Identifier: BSD-3-Clause
#include "host/cli/command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>

namespace host {

namespace {

using Strings = std::vector<std::string>;

const std::map<std::string, bool> switchWords = {
    {"on", true}, {"off", false}, {"true", true}, {"false", false}};
const std::map<std::string, char> shadowWords = {
    {"off", '\0'}, {"on", '\1'}, {"sort", 'l'}, {"segments", 's'}};
const std::map<std::string, char> faceWords = {{"front", 'f'}, {"back", 'b'}, {"both", 'a'}};
const std::map<std::string, Filter> filterWords = {{"box", Filter::box},
                                                   {"triangle", Filter::triangle},
                                                   {"gauss", Filter::gauss},
                                                   {"mitchell", Filter::mitchell},
                                                   {"lanczos", Filter::lanczos},
                                                   {"clip_mitchell", Filter::clippedMitchell},
                                                   {"clip_lanczos", Filter::clippedLanczos}};
const std::map<std::string, ColorClip> clipWords = {
    {"rgb", ColorClip::rgb}, {"alpha", ColorClip::alpha}, {"raw", ColorClip::raw}};

/// The format word that a file name's extension stands for, empty without one.
std::string formatOf(const std::string& fileName)
{
    static const std::map<std::string, std::string> otherSpellings = {{"tiff", "tif"}, {"jpeg", "jpg"}};
    std::string extension = std::filesystem::path(fileName).extension().string();
    if (extension.size() < 2)
        return {};
    extension.erase(0, 1);
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    const auto other = otherSpellings.find(extension);
    return other == otherSpellings.end() ? extension : other->second;
}

/// Another format may not hold the scene's kind of colour: then it gets its own.
void setFormat(Output& output, const std::string& format)
{
    if (output.format == format)
        return;
    output.format = format;
    output.compression.clear();
    if (output.dataType.rfind("rgb", 0) == 0)
        output.dataType.clear();
}

bool isNumber(const std::string& text)
{
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0';
}

bool isOption(const std::string& text) { return text.size() > 1 && text[0] == '-' && !isNumber(text); }

template <class T>
T wordValue(const std::map<std::string, T>& words, const std::string& word)
{
    const auto found = words.find(word);
    if (found != words.end())
        return found->second;
    std::string choices;
    for (const auto& [name, value] : words)
        choices += (choices.empty() ? "" : ", ") + name;
    throw CLI::ValidationError("'" + word + "' is none of " + choices);
}

template <class T>
T numberValue(const std::string& text)
{
    T value{};
    if (!CLI::detail::lexical_cast(text, value))
        throw CLI::ValidationError("'" + text + "' is not " +
                                   (std::is_integral_v<T> ? "a whole number" : "a number"));
    return value;
}

int numberWithin(const std::string& text, int least, int most)
{
    const int value = numberValue<int>(text);
    if (value < least || value > most)
        throw CLI::ValidationError("'" + text + "' is not from " + std::to_string(least) + " to " +
                                   std::to_string(most));
    return value;
}

/// The option that a spelling stands for: exact, or the only one that begins with it.
CLI::Option* resolve(const CLI::App& app, const std::string& name)
{
    std::vector<CLI::Option*> candidates;
    std::string names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& longName : option->get_lnames()) {
            CLI::Option* const found =
                app.get_option_no_throw("--" + longName) ? const_cast<CLI::Option*>(option) : nullptr;
            if (longName == name)
                return found;
            if (longName.compare(0, name.size(), name) == 0 &&
                std::find(candidates.begin(), candidates.end(), found) == candidates.end()) {
                candidates.push_back(found);
                names += (names.empty() ? "-" : ", -") + longName;
            }
        }
    if (candidates.size() == 1)
        return candidates.front();
    throw CLI::ParseError(candidates.empty() ? "unknown option '-" + name + "'; -help lists them all"
                                             : "option '-" + name + "' is ambiguous: " + names,
                          2);
}

/// Rewrites arguments in the renderer's habits into what CLI11 understands: full option names with two
/// dashes, each followed by exactly its values, scene files last.
Strings normalise(const CLI::App& app, const Strings& arguments)
{
    Strings options;
    Strings scenes;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--" || argument == "-")
            continue;
        if (!isOption(argument)) {
            scenes.push_back(argument);
            continue;
        }
        Strings values;
        std::string name = argument.substr(argument[1] == '-' ? 2 : 1);
        const std::size_t equals = name.find('=');
        if (equals != std::string::npos) {
            values.push_back(name.substr(equals + 1));
            name.resize(equals);
        }
        const CLI::Option* option = nullptr;
        if (argument[1] != '-' || name.size() == 1)
            option = app.get_option_no_throw("-" + name.substr(0, 1));
        if (option && name.size() > 1 && (name[0] == 'I' || name[0] == 'L')) // -Ipath
            values.push_back(name.substr(1));
        else if (!option || name.size() > 1)
            option = resolve(app, name);

        const auto fewest = static_cast<std::size_t>(option->get_items_expected_min());
        const auto most = static_cast<std::size_t>(option->get_items_expected_max());
        const bool list = most >= static_cast<std::size_t>(CLI::detail::expected_max_vector_size);
        while (values.size() < most && i + 1 < arguments.size()) {
            const std::string& next = arguments[i + 1];
            if (isOption(next) || (!list && values.size() >= fewest && !isNumber(next)))
                break;
            values.push_back(next);
            ++i;
        }
        if (values.size() < fewest)
            throw CLI::ParseError(
                "option '-" + option->get_lnames().front() + "' needs " + option->get_type_name(), 2);
        options.push_back("--" + option->get_lnames().front());
        for (std::string& value : values) // "-.5" would read as an option
            options.push_back(value.rfind("-.", 0) == 0 ? "-0" + value.substr(1) : value);
    }
    options.push_back("--");
    options.insert(options.end(), scenes.begin(), scenes.end());
    return options;
}

/// Help in the renderer's habit: one dash, and the values as each option names them.
struct HelpText : CLI::Formatter {
    std::string make_option_name(const CLI::Option* option, bool positional) const override
    {
        std::string names = CLI::Formatter::make_option_name(option, positional);
        const std::size_t dashes = names.find("--");
        return dashes == std::string::npos ? names : names.erase(dashes, 1);
    }
    std::string make_option_opts(const CLI::Option* option) const override
    {
        return option->get_type_name().empty() ? std::string() : ' ' + option->get_type_name();
    }
};

class Definition {
public:
    Definition(CLI::App& app, CommandLine& result) : app_(app), result_(result) {}

    void all()
    {
        general();
        inspection();
        camera();
        sampling();
        features();
    }

    bool wantsVersion = false;
    bool wantsCopyright = false;

private:
    /// An option with `fewest` to `most` values, handed to `take` as texts.
    template <class Take>
    CLI::Option* option(const std::string& names, int fewest, int most, const std::string& values,
                        const std::string& help, Take take)
    {
        const std::string spelling = names.substr(names.find("--") + 1);
        const auto taken = [take, spelling](const Strings& texts) {
            try {
                take(texts);
            } catch (const CLI::ValidationError& error) {
                throw CLI::ValidationError("option '" + spelling + "': " + error.what());
            }
        };
        return app_.add_option_function<Strings>(names, taken, help)
            ->type_name(values)
            ->expected(fewest, most)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
            ->group(group_);
    }

    template <class T, std::size_t N>
    void numbers(const std::string& names, const std::string& values, const std::string& help,
                 std::optional<std::array<T, N>>& target)
    {
        option(names, N, N, values, help, [&target](const Strings& texts) {
            std::array<T, N> result{};
            std::transform(texts.begin(), texts.end(), result.begin(), numberValue<T>);
            target = result;
        });
    }

    template <class T>
    void number(const std::string& names, const std::string& value, const std::string& help, T& target)
    {
        using Number = std::conditional_t<std::is_same_v<T, int>, int, float>;
        option(names, 1, 1, value, help, [&target](const Strings& t) { target = numberValue<Number>(t[0]); });
    }

    template <class T, class Target>
    void word(const std::string& names, const std::string& values, const std::string& help,
              const std::map<std::string, T>& words, Target& target)
    {
        option(names, 1, 1, values, help,
               [&words, &target](const Strings& texts) { target = wordValue(words, texts[0]); });
    }

    void text(const std::string& names, const std::string& value, const std::string& help,
              std::optional<std::string>& target)
    {
        option(names, 1, 1, value, help, [&target](const Strings& texts) { target = texts[0]; });
    }

    void flag(const std::string& names, const std::string& help, bool& target)
    {
        app_.add_flag(names, target, help)->group(group_);
    }

    void list(const std::string& names, const std::string& value, const std::string& help, Strings& target,
              bool many)
    {
        CLI::Option* const made = app_.add_option(names, target, help)->type_name(value)->group(group_);
        if (many)
            made->expected(1, CLI::detail::expected_max_vector_size);
        else
            made->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }

    void setFrames(const Strings& texts)
    {
        const int from = numberValue<int>(texts[0]);
        const int to = texts.size() > 1 ? numberValue<int>(texts[1]) : from;
        const int step = texts.size() > 2 ? numberValue<int>(texts[2]) : 1;
        if (step < 1)
            throw CLI::ValidationError("the step between frames must be at least 1");
        result_.frames = {from, to, step};
    }

    void general()
    {
        group_ = "General";
        app_.add_option("scenes", result_.scenes, "scene files, read as one; none: standard input")
            ->type_name("FILE");
        option("-v,--verbose", 1, 1, "on|off|0-7",
               "messages: 1 fatal errors, 2 errors, 3 warnings (default), 4 information, 5 progress, 6-7 "
               "debugging",
               [this](const Strings& texts) {
                   if (isNumber(texts[0]))
                       result_.verbosity = numberWithin(texts[0], 0, 7);
                   else
                       result_.verbosity = wordValue(switchWords, texts[0]) ? 5 : 2;
               });
        option("--threads", 1, 1, "N", "rendering threads (default: as many as the machine has)",
               [this](const Strings& texts) { result_.threads = numberWithin(texts[0], 0, 1024); });
        option("--frame", 1, 3, "FROM [TO [STEP]]", "render only the frames of these numbers",
               [this](const Strings& texts) { setFrames(texts); });
        option("--render", 1, 3, "on|off|FROM [TO [STEP]]", "off: read only; or as -frame",
               [this](const Strings& texts) {
                   if (isNumber(texts[0]))
                       setFrames(texts);
                   else
                       result_.render = wordValue(switchWords, texts[0]);
               });
        list("--link", "LIB... --", "shader libraries to load before the scene", result_.libraries, true);
        list("-I,--include_path", "DIR", "where $include looks; may be repeated", result_.includePath, false);
        list("-L,--ld_path", "DIR", "where link looks; may be repeated", result_.libraryPath, false);
        list("--texture_path", "DIR", "where textures are looked for; may be repeated", result_.texturePath,
             false);
        flag("--ignore_version", "render although a shader's version is not the declared one",
             result_.ignoreVersions);
        word("--relocate_strings", "on|off",
             "on: strings move when nobody has them pinned, to find shaders that keep pointers", switchWords,
             result_.relocateStrings);
        flag("--version", "print the version", wantsVersion);
        flag("--copyright", "print the licence in short", wantsCopyright);
    }

    void inspection()
    {
        group_ = "Looking inside";
        flag("--check", "read, resolve, load and lay out everything; render nothing", result_.check);
        text("--graph", "FILE", "write the shading networks as a Graphviz file", result_.graph);
        numbers(
            "--probe", "X Y",
            "take one sample, of a pixel counted from the lower left, and print all shader calls as a tree",
            result_.probe);
        flag("--profile", "print calls and times of every shader and shader instance", result_.profile);
    }

    void camera()
    {
        group_ = "Camera and picture (override the scene)";
        text("-o,--file_name", "FILE", "name of the first output; its extension chooses the format",
             result_.fileName);
        text("--file_type", "FORMAT", "format of the first output: tif, png, exr, jpg ...", result_.fileType);
        text("--file_dir", "DIR", "folder of all outputs", result_.fileDir);
        numbers("--resolution", "W H", "pixels", result_.resolution);
        numbers("--window", "XL YL XH YH", "part to render, inclusive, origin lower left", result_.window);
        number("--aspect", "R", "width over height of the image plane", result_.aspect);
        number("--aperture", "A", "width of the image plane", result_.aperture);
        option("--focal", 1, 1, "F|infinity", "focal distance; infinity: orthographic",
               [this](const Strings& texts) {
                   result_.focal = texts[0] == "infinity" ? std::numeric_limits<float>::infinity()
                                                          : numberValue<float>(texts[0]);
               });
        numbers("--offset", "X Y", "shift of the picture in pixels", result_.offset);
        numbers("--clip", "NEAR FAR", "clipping distances", result_.clip);
        word("--lens", "on|off", "lens shaders", switchWords, result_.lens);
    }

    void sampling()
    {
        group_ = "Sampling (override the scene)";
        option("--samples", 1, 2, "[MIN] MAX", "sampling levels: level n takes 4^n samples per pixel",
               [this](const Strings& texts) {
                   const int last = numberValue<int>(texts.back());
                   result_.samples = {texts.size() > 1 ? numberValue<int>(texts[0]) : last - 2, last};
               });
        option("--contrast", 3, 4, "R G B [A]", "difference above which a pixel gets more samples",
               [this](const Strings& texts) {
                   miColor c{numberValue<float>(texts[0]), numberValue<float>(texts[1]),
                             numberValue<float>(texts[2]), 0.0f};
                   c.a = texts.size() > 3 ? numberValue<float>(texts[3]) : (c.r + c.g + c.b) / 3.0f;
                   result_.contrast = c;
               });
        option("--filter", 1, 3, "TYPE [X [Y]]",
               "box, triangle, gauss, mitchell, lanczos, clip_mitchell, clip_lanczos; size in pixels",
               [this](const Strings& texts) {
                   result_.filter = wordValue(filterWords, texts[0]);
                   if (texts.size() > 1) {
                       const float x = numberValue<float>(texts[1]);
                       result_.filterSize = {x, texts.size() > 2 ? numberValue<float>(texts[2]) : x};
                   }
               });
        number("--jitter", "S", "displacement of samples, 0 to 1", result_.jitter);
        option("--shutter", 1, 2, "[DELAY] T", "shutter times; above 0 switches motion on",
               [this](const Strings& texts) {
                   result_.shutter = {texts.size() > 1 ? numberValue<float>(texts[0]) : 0.0f,
                                      numberValue<float>(texts.back())};
               });
        word("--motion", "on|off", "motion blur", switchWords, result_.motion);
    }

    void features()
    {
        group_ = "Features (override the scene)";
        word("--trace", "on|off", "secondary rays", switchWords, result_.trace);
        option("--trace_depth", 1, 3, "REFLECT [REFRACT [SUM]]", "depth of secondary rays",
               [this](const Strings& texts) {
                   const int reflect = numberValue<int>(texts[0]);
                   const int refract = texts.size() > 1 ? numberValue<int>(texts[1]) : reflect;
                   result_.traceDepth = {reflect, refract,
                                         texts.size() > 2 ? numberValue<int>(texts[2]) : reflect + refract};
               });
        word("--shadow", "on|off|sort|segments", "shadows", shadowWords, result_.shadow);
        word("--face", "front|back|both", "sides of surfaces that eye rays see", faceWords, result_.face);
        word("--volume", "on|off", "volume shaders", switchWords, result_.volume);
        word("--geometry", "on|off", "geometry shaders", switchWords, result_.geometry);
        word("--displace", "on|off", "displacement shaders", switchWords, result_.displace);
        number("--gamma", "G", "8- and 16-bit pictures get the power 1/G", result_.gamma);
        word("--premultiply", "on|off", "off: colours are divided by alpha", switchWords,
             result_.premultiply);
        word("--colorclip", "rgb|alpha|raw", "how colours outside 0 to 1 are clipped", clipWords,
             result_.colorClip);
        option("--output", 1, 1, "on|off", "accepted and ignored: there are no output shaders",
               [](const Strings&) {});
        option("--scanline", 1, 1, "MODE", "accepted and ignored: every ray is traced",
               [](const Strings&) {});
        option("--task_size", 1, 1, "N", "accepted and ignored", [](const Strings&) {});
        option("--memory", 1, 1, "N", "accepted and ignored", [](const Strings&) {});
        option("--acceleration", 1, 1, "TYPE", "accepted and ignored", [](const Strings&) {});
    }

    CLI::App& app_;
    CommandLine& result_;
    std::string group_;
};

} // namespace

bool CommandLine::wants(int frame) const
{
    if (!render)
        return false;
    if (!frames)
        return true;
    const auto [first, last, step] = *frames;
    return frame >= first && frame <= last && (frame - first) % step == 0;
}

void CommandLine::adjust(Options& options) const
{
    miOptions& record = options.record;
    if (samples) {
        record.min_samples = (*samples)[0];
        record.max_samples = (*samples)[1];
    }
    if (contrast)
        record.contrast = *contrast;
    if (filter) {
        record.filter = static_cast<char>(*filter);
        record.filter_size_x = filterSize ? (*filterSize)[0] : 0.0f;
        record.filter_size_y = filterSize ? (*filterSize)[1] : 0.0f;
    }
    if (jitter)
        record.jitter = *jitter;
    if (trace)
        record.trace = *trace;
    if (traceDepth) {
        record.reflection_depth = (*traceDepth)[0];
        record.refraction_depth = (*traceDepth)[1];
        record.trace_depth = (*traceDepth)[2];
    }
    if (shadow)
        record.shadow = *shadow;
    if (shutter) {
        record.shutter_delay = (*shutter)[0];
        record.shutter = (*shutter)[1];
        record.motion = record.shutter > 0.0f;
    }
    if (motion)
        record.motion = *motion;
    if (face)
        record.face = *face;
    if (gamma)
        record.gamma = *gamma;
    if (premultiply)
        record.nopremult = !*premultiply;
    if (colorClip)
        record.colorclip = static_cast<int>(*colorClip);
    if (!lens)
        record.no_lens = miTRUE;
    if (volume)
        record.no_volume = !*volume;
    if (geometry)
        record.no_geometry = !*geometry;
    if (displace)
        record.no_displace = !*displace;
    if (samples || filter || jitter || traceDepth || shutter || gamma)
        options.where = {}; // numbers that are wrong now stand in no line of the scene
}

void CommandLine::adjust(Camera& camera) const
{
    namespace fs = std::filesystem;
    miCamera& record = camera.record;
    if (resolution) {
        record.x_resolution = (*resolution)[0];
        record.y_resolution = (*resolution)[1];
        camera.hasWindow = false; // the scene's window is in the scene's pixels
    }
    if (window) {
        record.window = {(*window)[0], (*window)[1], (*window)[2], (*window)[3]};
        camera.hasWindow = true;
    }
    if (aspect)
        record.aspect = *aspect;
    if (aperture)
        record.aperture = *aperture;
    if (focal) {
        record.orthographic = std::isinf(*focal);
        record.focal = record.orthographic ? 1.0f : *focal;
    }
    if (offset) {
        record.x_offset = (*offset)[0];
        record.y_offset = (*offset)[1];
    }
    if (clip)
        record.clip = {(*clip)[0], (*clip)[1]};

    if (fileName || fileType) {
        if (camera.outputs.empty())
            camera.outputs.emplace_back();
        Output& output = camera.outputs.front();
        output.where = {}; // what is wrong with it now stands in no line of the scene
        if (fileName)
            output.file = *fileName;
        const std::string format = fileType ? *fileType : formatOf(output.file);
        if (!format.empty())
            setFormat(output, format);
        if (output.format.empty())
            throw Error("cannot tell the picture format of '" + output.file +
                        "'; give it an extension or use -file_type");
        if (output.file.empty())
            throw Error("no file name for the picture; use -file_name");
    }
    if (fileDir)
        for (Output& output : camera.outputs) {
            output.where = {};
            output.file = (fs::path(*fileDir) / fs::path(output.file).filename()).string();
        }
    if (camera.outputs.empty() && !probe)
        throw Error(camera.where,
                    "camera " + inQuotes(camera.name) + " names no output; give it one or use -file_name");
    if (window || aspect || aperture || focal || offset || clip)
        camera.where = {};
}

ParsedCommandLine parseCommandLine(const std::vector<std::string>& arguments)
{
    CommandLine result;
    CLI::App app(
        "Renders scenes with shader libraries. Options take one dash or two and may be abbreviated; they "
        "override the scene.",
        "vhrender");
    app.set_help_flag("-h,--help", "print this help");
    app.formatter(std::make_shared<HelpText>());
    app.get_formatter()->column_width(38);
    app.footer("Environment: MI_RAY_INCPATH, MI_LIBRARY_PATH, MI_RAY_TEXTURE_PATH: search paths, separated "
               "by ':' or "
               "';'.\n             MI_RAY_OPTIONS: options put before those of the command line.\n"
               "Exit status: 0 when all frames are rendered, 1 after an error that ends the run, 2 for a "
               "wrong call.");
    Definition definition(app, result);
    definition.all();

    ParsedCommandLine parsed;
    try {
        Strings normal = normalise(app, arguments);
        std::reverse(normal.begin(), normal.end()); // CLI11 takes them from the back
        app.parse(normal);
        if (result.profile && (result.probe || result.check))
            throw CLI::ParseError("-profile times a whole picture, and with " +
                                      std::string(result.probe ? "-probe" : "-check") + " there is none",
                                  2);
    } catch (const CLI::CallForHelp&) {
        parsed.text = app.help();
        return parsed;
    } catch (const CLI::ParseError& error) {
        parsed.text = error.what();
        parsed.status = 2;
        return parsed;
    }
    if (definition.wantsVersion)
        parsed.text = "vhrender " VHL_VERSION "\n";
    else if (definition.wantsCopyright)
        parsed.text =
            "Copyright (c) 2026, the maintainers. BSD 3-Clause License: free to use, change and pass on;\n"
            "no warranty. See the file LICENSE.\n";
    else
        parsed.command = std::move(result);
    return parsed;
}

} // namespace host
