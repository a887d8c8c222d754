// SPDX-License-Identifier: BSD-3-Clause
// Geometry shaders: an edit of a light before the scene is rendered.

#include "core/evaluate.h"
#include "core/export.h"

#include <geoshader.h>

#include <array>

struct _vhGeomSetAreaLightType_v1Params {
    miTag areaLight;
    miInteger areaType;
    miTag objectSource;
    miInteger samplesU;
    miInteger samplesV;

    static constexpr auto fields()
    {
        using P = _vhGeomSetAreaLightType_v1Params;
        return std::array{
            VHL_FIELD_AS(P, light, areaLight, "Instance of the light to change."),
            VHL_FIELD_AS(
                P, integer, areaType,
                "0: the light takes the shape of an object, and its instance the object's place. 1: the "
                "light's shader says what its samples are. Any other number: nothing is done.")
                .within(0, 1),
            VHL_FIELD_AS(P, geometry, objectSource,
                         "Instance of the object whose surface becomes the light's shape; for areaType 0."),
            VHL_FIELD_AS(P, integer, samplesU,
                         "Samples in the first direction; the low 16 bits of the number count.")
                .by(3)
                .within(1, 32767),
            VHL_FIELD_AS(P, integer, samplesV, "Samples in the second direction, likewise.")
                .by(3)
                .within(1, 32767)};
    }
};

struct vhGeomSetAreaLightType_v1 final : VHL::dMentalRayShader<miTag, _vhGeomSetAreaLightType_v1Params, 1> {
    /// All is done here, before the renderer looks at the lights. Deliberate: what stops after the instance
    /// is open for changes leaves it open, the light too, for the renderer to close.
    void init(miState* state, Params* params) override
    {
        const int areaType = VHL::evaluate(state, params->areaType);
        if (areaType < 0 || areaType > 1)
            return;
        const miTag instanceTag = VHL::evaluate(state, params->areaLight);
        const int samplesU = VHL::evaluate(state, params->samplesU);
        const int samplesV = VHL::evaluate(state, params->samplesV);
        if (instanceTag == 0) {
            mi_info("vhGeomSetAreaLightType_v1::init - no light specified through areaLight parameter. "
                    "Doing nothing\n");
            return;
        }
        if (mi_db_type(instanceTag) != miSCENE_INSTANCE) {
            mi_info("vhGeomSetAreaLightType_v1::init - object connected to areaLight parameter is not an "
                    "instance of a light. Doing nothing 1\n");
            return;
        }
        miInstance& instance = *static_cast<miInstance*>(mi_scene_edit(instanceTag));
        const miTag lightTag = instance.item;
        if (mi_db_type(lightTag) != miSCENE_LIGHT) {
            mi_info("vhGeomSetAreaLightType_v1::init - object connected to areaLight parameter is not an "
                    "instance of a light. Doing nothing 2\n");
            return;
        }
        miLight& light = *static_cast<miLight*>(mi_scene_edit(lightTag));
        if (areaType == 0) {
            mi_info("vhGeomSetAreaLightType_v1::init - setting area light type to Object\n");
            tellSampling(samplesU, samplesV);
            const miTag* const source = VHL::evaluateAddress(state, params->objectSource);
            if (!source) {
                mi_info(
                    "vhGeomSetAreaLightType_v1::init - object connected to objectSource parameter is null. "
                    "Doing nothing 2\n");
                return;
            }
            const miTag object = *source;
            if (mi_db_type(object) != miSCENE_INSTANCE) {
                mi_info("vhGeomSetAreaLightType_v1::init - object connected to objectSource parameter is not "
                        "an instance. Doing nothing 2\n");
                return;
            }
            light.area = miLIGHT_OBJECT;
            light.primitive.object.object = object;
            // The shape sits where the object's own instance puts it.
            mi_matrix_ident(instance.tf.global_to_local);
            mi_matrix_ident(instance.tf.local_to_global);
        } else {
            mi_info("vhGeomSetAreaLightType_v1::init - setting area light type to User\n");
            tellSampling(samplesU, samplesV);
            light.area = miLIGHT_USER;
        }
        light.samples_u = static_cast<short>(samplesU);
        light.samples_v = static_cast<short>(samplesV);
        mi_scene_edit_end(lightTag);
        mi_scene_edit_end(instanceTag);
    }

    int execute(miTag*, miState*, Params*) override { return 1; }

private:
    static void tellSampling(int samplesU, int samplesV)
    {
        mi_info("vhGeomSetAreaLightType_v1::init - setting area light Sampling to %d %d\n", samplesU,
                samplesV);
    }
};

static constexpr const char* notes =
    R"(For the geometry of an otherwise empty instance, which the renderer makes ready before it looks at the
lights. What it does and why it refuses is told in messages of class info; a light that is refused stays as
it is.

With areaType 1 the light needs a shader for user areas, such as vhParticleLight_v1.)";

VHL_EXPORT_SHADER(
    vhGeomSetAreaLightType_v1, vhGeomSetAreaLightType_v1,
    "Makes an area light of a light in the scene, of an object's shape or of its shader's, and sets its "
    "samples. Makes no geometry.",
    .apply = "geometry", .result = VHL::Kind::geometry,
    .order = "When the shader is made ready, once: areaType; for 0 and 1 areaLight, samplesU, samplesV; for "
             "areaType 0, where a light was found, objectSource. Nothing later.",
    .edges = "Any other areaType: nothing is done or said. No light, or something else than a light's "
             "instance, and for areaType 0 no instance as objectSource: the light stays as it is.",
    .messages =
        "Info, each after \"vhGeomSetAreaLightType_v1::init - \": \"setting area light type to Object\" or "
        "\"setting area light type to User\", and \"setting area light Sampling to 3 3\" with samplesU and "
        "samplesV. Why nothing is done: without areaLight \"no light specified through areaLight "
        "parameter. Doing nothing\"; for something else than an instance \"object connected to areaLight "
        "parameter is not an instance of a light. Doing nothing 1\", for an instance of something else the "
        "same with 2 at its end; for areaType 0, after the two first lines, \"object connected to "
        "objectSource parameter is null. Doing nothing 2\" or \"object connected to objectSource parameter "
        "is not an instance. Doing nothing 2\".",
    .notes = notes)
