// SPDX-License-Identifier: BSD-3-Clause
// `camera "name" ... end camera`.
#pragma once

#include "host/language/shaders.h"
#include "host/language/statement.h"

namespace host::language {

class CameraBuilder {
public:
    CameraBuilder(Context& context, Shaders& shaders) : context_(context), shaders_(shaders) {}

    void begin(const Name& name);
    void end();

    void focal(const Statement& distance);
    void focalInfinity();
    void aperture(const Statement& width);
    void aspect(const Statement& ratio);
    void resolution(const Statement& size);
    void offset(const Statement& pixels);
    void window(const Statement& corners);
    void clip(const Statement& distances);
    void frame(const Statement& numbers);
    void field(const Statement& number);

    // Lists: a statement appends to what is there, its keyword alone clears.
    void lens(std::vector<ShaderUse> uses) { append(camera_->lens, std::move(uses)); }
    void environment(std::vector<ShaderUse> uses) { append(camera_->environment, std::move(uses)); }
    void volume(std::vector<ShaderUse> uses) { append(camera_->volume, std::move(uses)); }
    void output(const Name& dataType, const Name& format, const Name& file);
    void clearOutputs() { camera_->outputs.clear(); }

    // What stands inside an `output` or `framebuffer` statement, which takes it.
    void quality(const Statement& number);
    void compression(const Name& name) { output_.compression = name.text; }
    void dataType(const Name& name) { output_.dataType = name.text; }
    void fileType(const Name& name) { output_.format = name.text; }
    void file(const Name& name) { output_.file = expanded(name); }

    /// The buffer is written by shaders, which nothing here lets them do.
    void user(bool on) { user_ = on; }

    /// A buffer that goes to a file is an output.
    void framebuffer(const Name& name);

private:
    std::string expanded(const Name& file) const
    {
        return context_.session.registry.expand(file.text, file.where);
    }
    void append(ShaderList& list, std::vector<ShaderUse> uses);

    Context& context_;
    Shaders& shaders_;
    Definition<Camera> camera_;
    Output output_;
    bool user_ = false;
};

} // namespace host::language
