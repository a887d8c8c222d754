// SPDX-License-Identifier: BSD-3-Clause
// `options "name" ... end options`.
#pragma once

#include "host/language/context.h"
#include "host/language/statement.h"

#include <string>

namespace host::language {

class OptionsBuilder {
public:
    explicit OptionsBuilder(Context& context) : context_(context) {}

    void begin(const Name& name);
    void end() { element_.end(context_); }
    miOptions& record() { return element_->record; }

    void samples(const Statement& levels);
    void contrast(const Statement& color);
    void timeContrast(const Statement& color);
    void filter(const Name& kind, bool clip, const Statement& size);
    void jitter(const Statement& amount);
    void gamma(const Statement& value);
    void shutter(const Statement& time);
    void shutterDelay(const Statement& time);
    void motionSteps(const Statement& count);
    void traceDepth(const Statement& depths);
    void scanline(bool on);
    void scanline(const Name& mode);
    void shadow(bool on);
    void shadow(const Name& mode);
    void face(const Name& side);
    void colorclip(const Name& mode);
    void string(const std::string& name, Options::StringOption value);
    void numbers(const Name& name, const Statement& values);

    /// A feature that has no effect here: worth a warning only when it is switched on.
    void feature(const char* name, const Location& where, bool on);

private:
    Context& context_;
    Definition<Options> element_;
};

} // namespace host::language
