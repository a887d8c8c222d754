// SPDX-License-Identifier: BSD-3-Clause
// vhrender: reads scenes, renders their pictures.
#include "host/cli/command_line.h"
#include "host/inspect/check.h"
#include "host/inspect/graph.h"
#include "host/inspect/probe.h"
#include "host/inspect/profile.h"
#include "host/language/read.h"
#include "host/render/render.h"
#include "host/report/message.h"
#include "host/report/progress.h"
#include "host/session.h"
#include "host/shading/crash.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using Strings = std::vector<std::string>;

/// The words of an environment variable, split at any of `separators`.
Strings environmentList(const char* name, const char* separators)
{
    const char* const value = std::getenv(name);
    return host::splitAt(value ? value : "", separators);
}

/// The command line's folders, then the environment's, then the one beside the program: `<prefix>/<beside>`
/// of
/// `<prefix>/bin/vhrender`.
Strings searchPath(const Strings& given, const char* variable, const char* beside)
{
    Strings path = given;
    const Strings more = environmentList(variable, ":;");
    path.insert(path.end(), more.begin(), more.end());
    std::error_code ignored;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    if (!ignored)
        path.push_back((program.parent_path().parent_path() / beside).string());
    return path;
}

/// What the command line wants to see of one frame.
class Looking {
public:
    explicit Looking(const host::CommandLine& command)
    {
        if (command.graph)
            add(graph_.emplace(*command.graph));
        if (command.check)
            add(check_.emplace());
        if (command.probe)
            add(probe_.emplace((*command.probe)[0], (*command.probe)[1]));
        if (command.profile)
            add(profile_.emplace());
    }

    const std::vector<host::Inspection*>& inspections() const { return inspections_; }

    /// Prints what was seen. `rendered`: there is a picture.
    void print(int frame, bool rendered) const
    {
        const std::string title = "frame " + std::to_string(frame) + ": ";
        if (check_ && !check_->summary().empty())
            put(title + check_->summary() + ", can be rendered\n");
        if (probe_ && !probe_->text().empty())
            put(title + probe_->text());
        if (profile_ && rendered)
            put(title + "times of all threads together\n\n" + profile_->text());
    }

private:
    void add(host::Inspection& inspection) { inspections_.push_back(&inspection); }
    static void put(const std::string& text) { std::fputs(text.c_str(), stdout); }

    std::optional<host::Graph> graph_;
    std::optional<host::SceneCheck> check_;
    std::optional<host::Probe> probe_;
    std::optional<host::Profile> profile_;
    std::vector<host::Inspection*> inspections_;
};

/// Says once when a frame takes the place of a picture that an earlier frame of this run has written.
class WrittenFiles {
public:
    /// `named`: the first of the frame's files is called as the command line says.
    void add(int frame, const Strings& files, bool named)
    {
        for (const std::string& file : files)
            if (!warned_ && files_.count(file) != 0) {
                warned_ = true;
                host::message(host::Level::warning, "RC",
                              "frame " + std::to_string(frame) + " overwrites " + host::inQuotes(file) +
                                  " of an earlier frame; " +
                                  (named && file == files.front()
                                       ? "-file_name is one name for all frames"
                                       : "\"output\" alone clears a camera's list of files"));
            }
        files_.insert(files.begin(), files.end());
    }

private:
    std::set<std::string> files_;
    bool warned_ = false;
};

/// False when the command line does not want this frame.
bool renderFrame(host::Session& session, const host::RenderCommand& render, const host::CommandLine& command,
                 WrittenFiles& written)
{
    const auto* instance = session.database.findAs<host::Instance>(render.camera);
    const auto* camera = instance ? session.database.findAs<host::Camera>(instance->record.item) : nullptr;
    const int frame = camera ? camera->record.frame : 0;
    if (!command.wants(frame))
        return false;

    host::RenderSettings settings;
    settings.threads = command.threads;
    settings.adjustOptions = [&](host::Options& options) { command.adjust(options); };
    Strings files;
    settings.adjustCamera = [&](host::Camera& adjusted) {
        command.adjust(adjusted);
        for (const host::Output& output : adjusted.outputs)
            files.push_back(output.file);
    };
    host::ProgressLine line("rendering frame " + std::to_string(frame));
    settings.progress = [&](double fraction) { line.show(fraction); };
    Looking looking(command);
    settings.inspections = looking.inspections();
    settings.write = !command.probe;
    const auto begin = std::chrono::steady_clock::now();
    try {
        const bool finished = host::render(session, render, settings);
        looking.print(frame, finished);
        if (!finished)
            return true;
    } catch (...) {
        looking.print(frame, false); // a probe up to where a shader failed
        throw;
    }
    if (settings.write)
        written.add(frame, files, command.fileName.has_value());
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "frame %d rendered in %.1f seconds", frame, taken.count());
    host::message(host::Level::progress, "RC", text.data());
    return true;
}

void run(const host::CommandLine& command)
{
    host::Session session;
    session.paths.include = searchPath(command.includePath, "MI_RAY_INCPATH", "include");
    session.paths.library = searchPath(command.libraryPath, "MI_LIBRARY_PATH", "lib");
    session.paths.texture = searchPath(command.texturePath, "MI_RAY_TEXTURE_PATH", "textures");
    session.libraries.ignoreVersions(command.ignoreVersions);
    session.database.relocateStrings(command.relocateStrings);
    if (command.verbosity) {
        host::setVerbosity(*command.verbosity);
        session.keepVerbosity = true;
    }
    int found = 0;
    int rendered = 0;
    WrittenFiles written;
    session.onRender = [&](const host::RenderCommand& render) {
        ++found;
        rendered += renderFrame(session, render, command, written);
    };

    for (const std::string& library : command.libraries)
        session.libraries.link(library, session.paths.library, {});
    if (command.scenes.empty())
        host::readScene(session, stdin, "<standard input>");
    for (const std::string& scene : command.scenes)
        host::readScene(session, scene);
    if (found == 0)
        host::message(host::Level::warning, "RC", "the scene has no render command: nothing was rendered");
    else if (rendered == 0 && command.render)
        throw host::Error("no frame of the scene is among the wanted ones: nothing was rendered");
}

} // namespace

int main(int count, char** values)
{
    host::nameCrashes();
    Strings arguments = environmentList("MI_RAY_OPTIONS", " \t\n");
    arguments.insert(arguments.end(), values + 1, values + count);
    const host::ParsedCommandLine parsed = host::parseCommandLine(arguments);
    if (!parsed.command) {
        if (parsed.status == 0)
            std::fputs(parsed.text.c_str(), stdout);
        else
            std::fprintf(stderr, "vhrender: %s\n", parsed.text.c_str());
        return parsed.status;
    }
    if (parsed.command->scenes.empty() && isatty(STDIN_FILENO)) {
        std::fputs("vhrender: no scene file; vhrender -help tells how it is called\n", stderr);
        return 2;
    }
    try {
        run(*parsed.command);
        return 0;
    } catch (const std::bad_alloc&) {
        host::message(host::Level::fatal, "RC", "out of memory");
    } catch (const std::exception& error) {
        host::message(host::Level::fatal, "RC", error.what());
    }
    return 1;
}
