// SPDX-License-Identifier: BSD-3-Clause
#include "tests/host/render/scene.h"

#include "host/render/vector.h"
#include "tests/harness/values.h"

namespace test {

namespace {

host::Matrix inverseOf(const host::Matrix& matrix)
{
    // Gauss and Jordan, with the largest pivot.
    host::Matrix m = matrix, inverse = host::identityMatrix;
    for (int column = 0; column < 4; ++column) {
        int pivot = column;
        for (int row = column + 1; row < 4; ++row)
            if (std::abs(m[row * 4 + column]) > std::abs(m[pivot * 4 + column]))
                pivot = row;
        const double scale = 1.0 / m[pivot * 4 + column];
        for (int k = 0; k < 4; ++k) {
            std::swap(m[pivot * 4 + k], m[column * 4 + k]);
            std::swap(inverse[pivot * 4 + k], inverse[column * 4 + k]);
            m[column * 4 + k] *= scale;
            inverse[column * 4 + k] *= scale;
        }
        for (int row = 0; row < 4; ++row) {
            const double factor = m[row * 4 + column];
            if (row == column)
                continue;
            for (int k = 0; k < 4; ++k) {
                m[row * 4 + k] -= factor * m[column * 4 + k];
                inverse[row * 4 + k] -= factor * inverse[column * 4 + k];
            }
        }
    }
    return inverse;
}

} // namespace

Scene::Scene()
    : options(session.database.make<host::Options>("opt")),
      camera(session.database.make<host::Camera>("cam")), root(session.database.make<host::Group>("root")),
      cameraInstance(session.database.make<host::Instance>("cam-i"))
{
    session.libraries.link(TEST_SHADERS, {}, {});
    const std::vector<host::Field> parameters = {field(host::Type::integer, "number"),
                                                 field(host::Type::colorTexture, "texture"),
                                                 field(host::Type::color, "color")};
    session.declarations.add(declaration("hook", field(host::Type::color, ""), parameters, 1));
    session.declarations.add(declaration("geometry_hook", field(host::Type::geometry, ""), parameters, 1));
    *reinterpret_cast<Hook*>(session.libraries.symbol("hook_target")) = {dispatch, this};

    options.record.min_samples = options.record.max_samples = 0;
    camera.record.focal = 1.0f;
    camera.record.aperture = 2.0f;
    camera.record.aspect = 1.0f;
    camera.record.x_resolution = camera.record.y_resolution = 8;
    cameraInstance.record.item = camera.tag;
    root.members.push_back(cameraInstance.tag);
}

Scene::~Scene() = default;

miBoolean Scene::dispatch(void* context, int number, void* result, miState* state, HookParameters* parameters)
{
    return static_cast<Scene*>(context)->functions_[std::size_t(number)](result, *state, *parameters);
}

int Scene::number(Function function)
{
    functions_.push_back(std::move(function));
    return int(functions_.size()) - 1;
}

host::Function& Scene::make(const char* hook, int number, const std::string& texture)
{
    std::vector<host::Argument> arguments = {argument("number", number)};
    if (!texture.empty())
        arguments.push_back(argument("texture", texture));
    auto function = std::make_unique<host::Function>(*session.declarations.find(hook), arguments,
                                                     session.database, host::Location());
    host::Function& made = *function;
    session.database.add(std::move(function));
    return made;
}

host::Function& Scene::shader(Shade shade, const std::string& texture)
{
    return make("hook", number([shade](void* result, miState& state, HookParameters&) {
                    return shade(*static_cast<miColor*>(result), state);
                }),
                texture);
}

host::Function& Scene::geometry(std::function<miBoolean(miTag&, miState&)> create)
{
    return make("geometry_hook", number([create](void* result, miState& state, HookParameters&) {
                    return create(*static_cast<miTag*>(result), state);
                }),
                {});
}

host::Material& Scene::material(Shade shade)
{
    auto& material = session.database.make<host::Material>();
    material.shader = {shader(std::move(shade)).tag};
    material.record.shader = material.shader.front();
    return material;
}

host::Material& Scene::plain(const miColor& color)
{
    return material([color](miColor& result, miState&) {
        result = color;
        return miTRUE;
    });
}

host::Light& Scene::pointLight(const miVector& origin, Shade shade)
{
    auto& light = session.database.make<host::Light>();
    light.record.type = miLIGHT_ORIGIN;
    light.record.origin = origin;
    light.hasOrigin = true;
    light.shader = {shader(std::move(shade)).tag};
    light.record.shader = light.shader.front();
    return light;
}

host::Object& Scene::object(const std::vector<miVector>& points,
                            const std::vector<std::vector<std::uint32_t>>& polygons)
{
    auto& object = session.database.make<host::Object>();
    object.visible = true;
    object.shadow = object.reflection = object.refraction = object.transparency = 3;
    object.vectors = points;
    for (std::uint32_t i = 0; i < points.size(); ++i)
        object.vertices.push_back({i});
    for (const auto& corners : polygons) {
        host::Polygon polygon;
        polygon.firstLoop = std::uint32_t(object.loops.size());
        polygon.loopCount = 1;
        object.loops.push_back({std::uint32_t(object.loopVertices.size()), std::uint32_t(corners.size())});
        object.loopVertices.insert(object.loopVertices.end(), corners.begin(), corners.end());
        object.polygons.push_back(polygon);
    }
    return object;
}

host::Object& Scene::square(float h)
{
    return object({{-h, -h, 0}, {h, -h, 0}, {h, h, 0}, {-h, h, 0}}, {{0, 1, 2, 3}});
}

host::Instance& Scene::place(host::Element& element, const miVector& at, host::Group* in)
{
    auto& instance = session.database.make<host::Instance>();
    instance.record.item = element.tag;
    moveTo(instance, at);
    (in ? *in : root).members.push_back(instance.tag);
    return instance;
}

host::Picture Scene::render(int threads, bool facts)
{
    const host::RenderCommand command = {root.tag, cameraInstance.tag, options.tag, {}};
    return host::renderPicture(session, command, camera, options, {threads, facts, progress}).value();
}

miColor Scene::look()
{
    camera.record.x_resolution = camera.record.y_resolution = 1;
    return render().color(0, 0);
}

void moveTo(host::Instance& instance, const miVector& at)
{
    host::Matrix matrix = host::identityMatrix;
    matrix[12] = at.x;
    matrix[13] = at.y;
    matrix[14] = at.z;
    setMatrix(instance, matrix);
}

void setMatrix(host::Instance& instance, const host::Matrix& localToParent)
{
    host::narrow(localToParent, instance.record.tf.local_to_global);
    host::narrow(inverseOf(localToParent), instance.record.tf.global_to_local);
    instance.record.tf.identity = miFALSE;
}

void setMotion(host::Instance& instance, const host::Matrix& localToParent)
{
    instance.hasMotion = true;
    host::narrow(localToParent, instance.motionInverse);
    host::narrow(inverseOf(localToParent), instance.record.motion_transform);
    instance.record.gen_motion = host::givesMotion;
}

} // namespace test
