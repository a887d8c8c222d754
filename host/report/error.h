// SPDX-License-Identifier: BSD-3-Clause
// What is wrong, and where: the host's one error type.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace host {

/// A name in quotation marks, as messages show it. Control characters, which would play with the reader's
/// terminal, become question marks.
std::string inQuotes(std::string_view text);

/// A place in scene text. Lines and columns count from 1; a null file means "no place in a file".
struct Location {
    const std::string* file = nullptr; ///< interned by `fileName`, so it outlives every element read from it
    int line = 0;
    int column = 0;

    /// "file:line:column", or an empty string without a file.
    std::string text() const;
};

/// One copy of a file name for the life of the process. Safe from any thread.
const std::string* fileName(const std::string& name);

/// Bad input, of whatever kind. `what()` is one line without a trailing full stop or newline, with its place
/// in front when there is one. Nothing else crosses a room's border as an exception.
class Error : public std::runtime_error {
public:
    explicit Error(const std::string& text) : std::runtime_error(text) {}
    Error(const Location& where, const std::string& text);
};

/// A name that nothing has, yet.
class UnknownName : public Error {
public:
    enum class Of { element, shader, declaration };

    UnknownName(std::string itsName, Of ofWhat, const Location& where, const std::string& text,
                std::string itsHint = {})
        : Error(where, text), name(std::move(itsName)), of(ofWhat), hint(std::move(itsHint))
    {
    }

    std::string name;
    Of of;
    std::string hint; ///< to be told behind `what()` when nothing has the name in the end either
};

} // namespace host
