// SPDX-License-Identifier: BSD-3-Clause
#include "tests/harness/call.h"

#include "host/language/read.h"

#include <algorithm>
#include <array>
#include <exception>
#include <mutex>
#include <thread>

namespace test {

namespace {

using host::Declaration;
using host::Field;
using host::Function;
using host::Type;
using host::Value;

// Probes by declared type, in the order of Type.
constexpr std::array<const char*, 14> probeNames = {
    "probe_boolean",        "probe_integer",        "probe_scalar", "probe_vector",
    "probe_color",          "probe_transform",      "probe_string", "probe_color_texture",
    "probe_scalar_texture", "probe_vector_texture", "probe_light",  "probe_material",
    "probe_geometry",       "probe_shader"};

struct World {
    World()
    {
        session.libraries.link(TEST_PROBES, {}, {});
        for (std::size_t type = 0; type < probeNames.size(); ++type)
            session.declarations.add(
                declaration(probeNames[type], field(static_cast<Type>(type), ""),
                            {field(static_cast<Type>(type), "value"), field(Type::string, "name")}));
        session.declarations.add(declaration(
            "probe_pair", structure("", {field(Type::color, "color"), field(Type::scalar, "scalar")}),
            {field(Type::color, "color"), field(Type::scalar, "scalar"), field(Type::string, "name")}));
        session.declarations.add(
            declaration("probe_keeper", field(Type::boolean, ""), {field(Type::string, "text")}));
        trace = reinterpret_cast<const char* (*)()>(session.libraries.symbol("probes_trace"));
        clear = reinterpret_cast<void (*)()>(session.libraries.symbol("probes_clear"));
    }

    host::Session session;
    const char* (*trace)() = nullptr;
    void (*clear)() = nullptr;
    host::Options* options = &session.database.make<host::Options>();
    host::Camera* camera = &session.database.make<host::Camera>();
};

World& world()
{
    static World instance;
    return instance;
}

const Declaration& declared(const std::string& shader)
{
    World& all = world();
    static const bool read = [&all] {
        all.session.libraries.link(TEST_LIBRARY, {}, {});
        host::readScene(all.session, TEST_DECLARATIONS);
        return true;
    }();
    const Declaration* const found = read ? all.session.declarations.find(shader) : nullptr;
    if (!found)
        throw std::logic_error("no shader " + shader + " is declared");
    return *found;
}

const Declaration& added(const Declaration& declaration, const std::string& library)
{
    world().session.libraries.link(library, {}, {});
    return world().session.declarations.add(declaration);
}

const Declaration& find(const std::string& shader)
{
    const Declaration* const found = world().session.declarations.find(shader);
    return found ? *found : declared(shader);
}

miState firstState()
{
    miState state{};
    state.version = MI_STATE_VERSION;
    state.camera = &world().camera->record;
    state.options = &world().options->record;
    state.type = miRAY_EYE;
    state.dist = 1;
    state.ior = state.ior_in = 1;
    state.importance = 1;
    state.face = 'a';
    return state;
}

miTag make(const std::string& name, const Declaration& declaration,
           const std::vector<host::Argument>& arguments)
{
    host::Database& database = world().session.database;
    auto function = std::make_unique<Function>(declaration, arguments, database, host::Location());
    function->name = name;
    return database.add(std::move(function));
}

Value defaultOf(const Field& field)
{
    host::Numbers made;
    const host::Number::Kind kind = field.type == Type::boolean   ? host::Number::Kind::boolean
                                    : field.type == Type::integer ? host::Number::Kind::integer
                                                                  : host::Number::Kind::real;
    for (const double number : field.defaults)
        made.numbers.push_back({number, kind});
    return {{}, made};
}

} // namespace

// ---- Sample

Sample::Sample(Function& function, host::Network& network, const miState& first, int thread)
    : state(first), function_(function), ts_(network, thread)
{
    state.thread = static_cast<short>(thread);
}

void Sample::run(void* result, std::size_t size)
{
    if (size != function_.declaration().result.size)
        throw std::logic_error(function_.title() + " has a result of another size");
    const World& all = world();
    all.clear();
    state.ts = &ts_;
    const host::StateScope scope(state);
    returned_ = host::call(function_, result, state);
    trace_ = all.trace();
}

// ---- Recorder

/// Stands between the host and the entry points of one shader. The entry points are plain C functions, which
/// know nothing of recorders: there is one at a time.
class Call::Recorder {
public:
    explicit Recorder(host::Shader& shader) : shader_(shader)
    {
        if (active)
            throw std::logic_error("one Call at a time can record");
        active = this;
        execute_ = std::exchange(shader.execute, executing);
        init_ = shader.init ? std::exchange(shader.init, initialising) : nullptr;
        exit_ = shader.exit ? std::exchange(shader.exit, exiting) : nullptr;
        version_ = shader.version ? std::exchange(shader.version, telling) : nullptr;
    }

    ~Recorder()
    {
        shader_.execute = execute_;
        shader_.init = init_;
        shader_.exit = exit_;
        shader_.version = version_;
        active = nullptr;
    }

    std::vector<std::string> events() const
    {
        const std::lock_guard guard(lock_);
        return events_;
    }

private:
    void note(const char* event)
    {
        const std::lock_guard guard(lock_);
        events_.emplace_back(event);
    }

    static miBoolean executing(void* result, miState* state, void* parameters, void* argument)
    {
        active->note("execute");
        return active->execute_(result, state, parameters, argument);
    }
    static void initialising(miState* state, void* parameters, miBoolean* request)
    {
        active->note(parameters ? "init instance" : "init");
        active->init_(state, parameters, request);
    }
    static void exiting(miState* state, void* parameters)
    {
        active->note(parameters ? "exit instance" : "exit");
        active->exit_(state, parameters);
    }
    static int telling()
    {
        active->note("version");
        return active->version_();
    }

    static inline Recorder* active = nullptr;

    host::Shader& shader_;
    host::Shader::Execute execute_ = nullptr;
    host::Shader::Init init_ = nullptr;
    host::Shader::Exit exit_ = nullptr;
    host::Shader::Version version_ = nullptr;
    mutable std::mutex lock_;
    std::vector<std::string> events_;
};

// ---- Call

Call::Call(const std::string& shader) : declaration_(find(shader)) {}

Call::Call(const Declaration& declaration, const std::string& library)
    : declaration_(added(declaration, library))
{
}

Call::~Call()
{
    drop();
    for (const miTag tag : defined_)
        session().database.remove(tag);
}

host::Session& Call::session() { return world().session; }

void Call::drop()
{
    sample_.reset();
    network_.reset();
    function_ = nullptr;
    for (const miTag tag : elements_)
        session().database.remove(tag);
    elements_.clear();
}

Call& Call::end()
{
    drop();
    return *this;
}

Call& Call::setValue(const std::string& parameter, Value given)
{
    drop();
    fieldOf(parameter);
    arguments_.push_back({parameter, {}, std::move(given)}); // the later one counts
    return *this;
}

Call& Call::connect(const std::string& parameter)
{
    drop();
    connected_.insert(fieldOf(parameter).name);
    return *this;
}

Call& Call::connectAll()
{
    for (const Field& field : declaration_.parameters)
        connect(field.name);
    return *this;
}

Call& Call::define(const std::string& name, const std::string& shader,
                   const std::vector<host::Argument>& arguments)
{
    drop();
    defined_.push_back(make(name, find(shader), arguments));
    return *this;
}

Call& Call::record()
{
    drop();
    if (!recorder_)
        recorder_ = std::make_unique<Recorder>(session().libraries.resolve(declaration_));
    return *this;
}

std::vector<std::string> Call::events() const
{
    return recorder_ ? recorder_->events() : std::vector<std::string>();
}

const Field& Call::fieldOf(const std::string& parameter) const
{
    const Field* const found = declaration_.parameter(parameter);
    if (!found)
        throw std::logic_error(declaration_.name + " has no parameter " + parameter);
    return *found;
}

std::vector<host::Argument> Call::arguments()
{
    std::vector<host::Argument> all = arguments_;
    for (const std::string& parameter : connected_) {
        const auto given = std::find_if(arguments_.rbegin(), arguments_.rend(),
                                        [&](const host::Argument& a) { return a.name == parameter; });
        const Value* const literal = given == arguments_.rend() ? nullptr : &given->value;
        if (!fieldOf(parameter).isArray || literal)
            all.push_back({parameter, {}, probed(fieldOf(parameter), literal, parameter)});
    }
    return all;
}

Value Call::probed(const Field& field, const Value* given, const std::string& path)
{
    if (given && std::holds_alternative<host::Connect>(given->form))
        return *given;
    if (const auto* const elements = given ? std::get_if<host::Elements>(&given->form) : nullptr) {
        Field element = field;
        element.isArray = false;
        host::Elements made;
        for (const Value& each : elements->values)
            made.values.push_back(
                probed(element, &each, path + '[' + std::to_string(made.values.size()) + ']'));
        return {{}, std::move(made)};
    }
    if (field.type == Type::structure) {
        host::Members made;
        const auto* const members = given ? std::get_if<host::Members>(&given->form) : nullptr;
        for (const Field& member : field.members) {
            const Value* literal = nullptr;
            if (members)
                for (const host::Argument& argument : members->arguments)
                    if (argument.name == member.name)
                        literal = &argument.value;
            if (!member.isArray || literal)
                made.arguments.push_back(
                    {member.name, {}, probed(member, literal, path + '.' + member.name)});
        }
        return {{}, std::move(made)};
    }
    return connection(makeProbe(field, given, path));
}

std::string Call::makeProbe(const Field& field, const Value* given, const std::string& path)
{
    static int serial = 0;
    const std::string name = "probe " + std::to_string(++serial) + " of " + path;
    std::vector<host::Argument> arguments = {argument("name", path)};
    if (given)
        arguments.push_back({"value", {}, *given});
    else if (!field.defaults.empty())
        arguments.push_back({"value", {}, defaultOf(field)});
    elements_.push_back(make(name, find(probeNames.at(static_cast<std::size_t>(field.type))), arguments));
    return name;
}

Function& Call::function()
{
    if (!function_) {
        elements_.push_back(make({}, declaration_, arguments()));
        function_ = session().database.findAs<Function>(elements_.back());
    }
    return *function_;
}

host::Network& Call::network()
{
    if (!network_) {
        network_ = std::make_unique<host::Network>(std::vector<Function*>{&function()}, session().libraries);
        network_->setExitState(firstState());
    }
    return *network_;
}

Sample& Call::sample()
{
    if (!sample_)
        sample_ = std::make_unique<Sample>(function(), network(), firstState(), 0);
    return *sample_;
}

void* Call::place(const std::string& parameter, std::size_t size)
{
    const Field& field = fieldOf(parameter);
    if (field.isArray || field.size != size)
        throw std::logic_error("parameter " + parameter + " takes a value of another size");
    sample();
    for (const host::Connection& connection : function().connections())
        if (connection.fieldOffset == field.offset)
            return connection.source->parameters(); // a probe begins with its value
    return static_cast<std::byte*>(function().parameters()) + field.offset;
}

void Call::onThreads(int threads, const std::function<void(Sample&)>& action)
{
    host::Network& shared = network();
    const miState first = sample().state;
    std::mutex lock;
    std::exception_ptr failure;
    std::vector<std::thread> running;
    for (int number = 1; number <= threads; ++number)
        running.emplace_back([&, number] {
            try {
                Sample sample(function(), shared, first, number);
                action(sample);
            } catch (...) {
                const std::lock_guard guard(lock);
                failure = std::current_exception();
            }
        });
    for (std::thread& each : running)
        each.join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace test
