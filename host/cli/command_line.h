// SPDX-License-Identifier: BSD-3-Clause
// The command line: the renderer's own options, with one or two dashes, whole or abbreviated.
#pragma once

#include "host/scene/element.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// What the command line says. An empty optional leaves the scene's own value.
struct CommandLine {
    std::vector<std::string> scenes; ///< none: standard input
    std::vector<std::string> libraries;
    std::vector<std::string> includePath;
    std::vector<std::string> libraryPath;
    std::vector<std::string> texturePath;

    std::optional<int> verbosity;
    int threads = 0;
    bool render = true;
    std::optional<std::array<int, 3>> frames; ///< first, last, step
    bool ignoreVersions = false;
    bool relocateStrings = false;

    // Looking inside.
    bool check = false;
    bool profile = false;
    std::optional<std::array<int, 2>> probe; ///< a pixel
    std::optional<std::string> graph;        ///< a file

    // Camera.
    std::optional<std::array<int, 2>> resolution;
    std::optional<std::array<int, 4>> window;
    std::optional<float> aspect;
    std::optional<float> aperture;
    std::optional<float> focal; ///< infinity: orthographic
    std::optional<std::array<float, 2>> offset;
    std::optional<std::array<float, 2>> clip;
    std::optional<std::string> fileName;
    std::optional<std::string> fileType;
    std::optional<std::string> fileDir;
    bool lens = true;

    // Options.
    std::optional<std::array<int, 2>> samples;
    std::optional<miColor> contrast;
    std::optional<Filter> filter;
    std::optional<std::array<float, 2>> filterSize;
    std::optional<float> jitter;
    std::optional<bool> trace;
    std::optional<std::array<int, 3>> traceDepth;
    std::optional<char> shadow;
    std::optional<std::array<float, 2>> shutter; ///< delay, time
    std::optional<bool> motion;
    std::optional<char> face;
    std::optional<float> gamma;
    std::optional<bool> premultiply;
    std::optional<ColorClip> colorClip;
    std::optional<bool> volume;
    std::optional<bool> geometry;
    std::optional<bool> displace;

    /// True when a frame of this number is to be rendered.
    bool wants(int frame) const;
    void adjust(Options& options) const;
    /// Throws Error when a file name is given in a format that no one knows, or when a picture would have
    /// none.
    void adjust(Camera& camera) const;
};

/// What a call with arguments leads to: something to do, or a text to print and an exit status.
struct ParsedCommandLine {
    std::optional<CommandLine> command;
    std::string text;
    int status = 0;
};

/// Reads the arguments, program name excluded. Long options take one dash or two, any abbreviation that only
/// one option begins with, and `-option=value`; a list of any length ends at the next option or at "--". A
/// usage error gives its message and status 2, -help and -version their text and status 0.
ParsedCommandLine parseCommandLine(const std::vector<std::string>& arguments);

} // namespace host
