// SPDX-License-Identifier: BSD-3-Clause
// Commands that are not definitions.
#pragma once

#include "host/language/context.h"
#include "host/language/statement.h"

#include <string>

namespace host::language {

class Commands {
public:
    explicit Commands(Context& context) : context_(context) {}

    void link(const Name& file);
    void verbose(const Statement& level);
    void minimumVersion(const Name& version);
    void maximumVersion(const Name& version);
    void echo(const std::string& text);
    void set(const Name& variable);
    void setValue(std::string value);
    void registryEntry(const Name& key);
    void registryLine(const std::string& key, const std::string& value);
    void endRegistryEntry();
    void remove(const Name& name);
    void touch(const Name& name);
    void render(const Name& root, const Name& camera, const Name& options);

    /// Throws Error.
    [[noreturn]] static void unsupported(const char* what, const Location& where);

private:
    Context& context_;
    std::string variable_; ///< that was set last
    std::string key_;
    Registry::Entry entry_;
};

} // namespace host::language
