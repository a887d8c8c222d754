// SPDX-License-Identifier: BSD-3-Clause
// What the grammar's actions call: one builder for each kind of definition.
#pragma once

#include "host/language/camera.h"
#include "host/language/commands.h"
#include "host/language/declarations.h"
#include "host/language/instance.h"
#include "host/language/light.h"
#include "host/language/material.h"
#include "host/language/object.h"
#include "host/language/options.h"
#include "host/language/phenomenon.h"
#include "host/language/shaders.h"
#include "host/language/texture.h"

namespace host::language {

struct Builder {
    explicit Builder(Context& context) : context(context) {}

    Context& context;
    Commands commands{context};
    DeclarationBuilder declaration{context};
    Shaders shaders{context};
    PhenomenonBuilder phenomenon{context, shaders};
    OptionsBuilder options{context};
    CameraBuilder camera{context, shaders};
    LightBuilder light{context, shaders};
    MaterialBuilder material{context, shaders};
    ObjectBuilder object{context};
    InstanceBuilder instance{context, shaders};
    GroupBuilder group{context};
    TextureBuilder texture{context, shaders};
};

} // namespace host::language
