// SPDX-License-Identifier: BSD-3-Clause
// The elements of a scene: what a tag can name. Plain data, filled by the scene language and by geometry
// shaders, read by the renderer. An element that shaders look into carries the renderer's own record.
#pragma once

#include <shader.h>

#include "host/report/error.h"

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace host {

/// What an element of this kind is called in messages, "object" for example.
std::string_view kindName(miScene_types kind);

/// Everything that has a tag. Elements live in the Database, which owns them; their address never changes
/// while they exist.
struct Element {
    explicit Element(miScene_types kind) : kind(kind) {}
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    virtual ~Element() = default;

    /// What `mi_db_access` returns for this element's tag.
    virtual void* data() = 0;

    const miScene_types kind;
    miTag tag = 0;
    std::string name; ///< empty for an anonymous element
    Location where;   ///< where it was defined, for messages
};

/// Shaders that are called one after another: tags of Function elements.
using ShaderList = std::vector<miTag>;

/// A string parameter's text.
struct Text : Element {
    Text() : Element(miSCENE_STRING) {}
    void* data() override { return text.data(); }

    std::string text; ///< zero-terminated in place; never changed after it was handed out
};

/// `options`. The record holds what shaders may read; the defaults are the renderer's.
struct Options : Element {
    Options();
    void* data() override { return &record; }

    using StringOption = std::variant<bool, int, float, std::string, std::vector<float>>;

    miOptions record{};
    std::map<std::string, StringOption> strings;
};

/// Values of miOptions::filter.
enum class Filter : char {
    box = 'b',
    triangle = 't',
    gauss = 'g',
    mitchell = 'm',
    lanczos = 'l',
    clippedMitchell = 'M',
    clippedLanczos = 'L'
};

/// Values of miOptions::colorclip.
enum class ColorClip : int { rgb = 0, alpha = 1, raw = 2 };

/// One `output` line of a camera.
struct Output {
    std::string dataType; ///< "rgba", "rgb_fp", "z" ...; empty: the format's natural type
    std::string format;   ///< "tif", "png", "exr" ...
    std::string file;
    std::string compression; ///< empty: the format's default
    int quality = -1;        ///< 0 to 100; -1: the format's default
    Location where;
};

/// `camera`.
struct Camera : Element {
    Camera();
    void* data() override { return &record; }

    miCamera record{}; ///< `window` is meaningful only with hasWindow
    bool hasWindow = false;
    ShaderList lens;
    ShaderList environment;
    ShaderList volume;
    std::vector<Output> outputs;
};

/// `light`. Which of origin, direction and spread were given decides the kind, kept in record.type.
struct Light : Element {
    Light();
    void* data() override { return &record; }

    miLight record{};
    bool hasOrigin = false;
    bool hasDirection = false;
    bool hasSpread = false;
    ShaderList shader;
};

/// `material`.
struct Material : Element {
    Material() : Element(miSCENE_MATERIAL) {}
    void* data() override { return &record; }

    miMaterial record{}; ///< each role's tag is the first of its list
    ShaderList shader;
    ShaderList shadow;
    ShaderList volume;
    ShaderList environment;
};

/// One vertex of an object: indices into the object's vector list and into its index lists.
struct Vertex {
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    std::uint32_t point = 0;
    std::uint32_t normal = none;
    std::uint32_t firstTexture = 0; ///< in Object::textureIndices
    std::uint32_t textureCount = 0;
    std::uint32_t firstMotion = 0; ///< in Object::motionIndices
    std::uint32_t motionCount = 0;
};

/// The two bump basis vectors of a texture vector: indices into the object's vector list.
struct BumpBasis {
    std::uint32_t x = Vertex::none;
    std::uint32_t y = Vertex::none;
};

/// The surface's derivatives at a vertex, indices into the object's vector list: two of first order, then
/// three of second order. Vertex::none where not given.
using Derivatives = std::array<std::uint32_t, 5>;
inline constexpr Derivatives noDerivatives = {Vertex::none, Vertex::none, Vertex::none, Vertex::none,
                                              Vertex::none};

/// One polygon: an outline and any number of holes, each a loop of vertex indices, counter-clockwise from the
/// front.
struct Polygon {
    std::uint32_t firstLoop = 0; ///< in Object::loops; the outline, then the holes
    std::uint32_t loopCount = 0;
    miTag material = 0;     ///< 0: the inherited one
    std::int32_t label = 0; ///< in a tagged object: which of the inherited materials
    bool convex = false;    ///< promised by the scene
};

struct Loop {
    std::uint32_t first = 0; ///< in Object::loopVertices
    std::uint32_t count = 0;
};

/// `object`, polygons only. Every index in it has been checked by whoever filled it.
struct Object : Element {
    Object() : Element(miSCENE_OBJECT) {}
    void* data() override { return nullptr; }

    bool visible = false;
    bool tagged = false;
    // Bit 1: seen by such rays (casts shadows); bit 2: casts such rays (receives shadows).
    miUint1 shadow = 2;
    miUint1 reflection = 2;
    miUint1 refraction = 2;
    miUint1 transparency = 2;
    miUint1 finalgather = 2;
    char face = 'a';
    miUint label = 0;

    BumpBasis bumpBasis(const Vertex& vertex, std::uint32_t space) const
    {
        const std::size_t place = std::size_t(vertex.firstTexture) + space;
        return place < bumpBases.size() ? bumpBases[place] : BumpBasis();
    }
    const Derivatives& derivativesOf(std::uint32_t vertex) const
    {
        return vertex < derivatives.size() ? derivatives[vertex] : noDerivatives;
    }

    std::vector<miVector> vectors;
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> textureIndices; ///< in `vectors`
    std::vector<std::uint32_t> motionIndices;  ///< in `vectors`
    std::vector<BumpBasis> bumpBases;          ///< beside `textureIndices`, as far as some have them
    std::vector<Derivatives> derivatives;      ///< beside `vertices`, as far as some have them
    std::vector<Polygon> polygons;
    std::vector<Loop> loops;
    std::vector<std::uint32_t> loopVertices; ///< in `vertices`
};

/// What an instance says of its motion, in record.gen_motion.
inline constexpr miUint1 inheritsMotion = 0, givesMotion = 1, stopsMotion = 2;

/// `instance`, and the leaf instances that the renderer derives from the scene graph. Flags that were not
/// given are 0 in the record ("unset"), see miInstance. `record.tf` holds both matrices of the instance
/// itself.
struct Instance : Element {
    Instance();
    void* data() override { return &record; }

    miInstance record{};
    bool hasMotion = false; ///< record.motion_transform was given; of a leaf: that it moves
    miMatrix motionInverse; ///< of record.motion_transform, as tf.local_to_global is of tf.global_to_local
    miMatrix drift{};       ///< of a leaf: what its local_to_global gains while the shutter is open
    ShaderList geometry;    ///< geometry shaders in place of an item
    std::vector<miTag> materials;
    std::vector<miTag> lights; ///< `light [...]`, with record.exclusive
    bool hasLights = false;
    std::vector<miTag> shadowLights; ///< `light shadow [...]`, with record.shadow_excl
    bool hasShadowLights = false;
};

/// `instgroup`.
struct Group : Element {
    Group() : Element(miSCENE_GROUP) {}
    void* data() override { return members.data(); }

    std::vector<miTag> members; ///< instances
};

/// `color texture` and its kin.
struct Texture : Element {
    enum class Kind { color, scalar, vector };

    Texture() : Element(miSCENE_IMAGE) {}
    void* data() override { return nullptr; }

    Kind textureKind = Kind::color;
    bool filter = false;
    float filterScale = 1.0f;
    bool writable = false;
    std::string file; ///< an image file, or
    ShaderList procedural;
    std::vector<unsigned char> bytes; ///< pixels given in the scene, lowest row first, with
    int width = 0;
    int height = 0;
    int depth = 1; ///< bytes per component
};

} // namespace host
