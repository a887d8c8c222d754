// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/probe.h"

#include "host/inspect/parameters.h"
#include "host/inspect/phenomena.h"
#include "host/render/trace.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace host {

namespace {

std::string vectorText(const miVector& v)
{
    return numberText(v.x) + " " + numberText(v.y) + " " + numberText(v.z);
}

std::string colorText(const miColor& c)
{
    return numberText(c.r) + " " + numberText(c.g) + " " + numberText(c.b) + " " + numberText(c.a);
}

const char* rayName(miRay_type type)
{
    switch (type) {
    case miRAY_EYE:
        return "eye ray";
    case miRAY_TRANSPARENT:
        return "transparency ray";
    case miRAY_REFLECT:
        return "reflection ray";
    case miRAY_REFRACT:
        return "refraction ray";
    case miRAY_LIGHT:
        return "light ray";
    case miRAY_SHADOW:
        return "shadow ray";
    case miRAY_ENVIRONMENT:
        return "environment look-up";
    default:
        return "ray";
    }
}

/// Writes the tree while the sample is taken.
class Writer : public Observer {
public:
    Writer(const Stage& stage, std::string& text) : stage_(stage), text_(text) {}

    void enter(const Function& function, Entry entry, const miState& state) override
    {
        std::string reason = reasonFor(function, entry, state);
        Definitions around = phenomenaAround(function);
        const bool called = !calls_.empty() && calls_.back().state == &state;
        const std::size_t levels =
            entry == Entry::execute ? entered(around, called ? calls_.back().around : Definitions()) : 0;
        ++count_;
        for (std::size_t k = levels; k-- > 0;)
            begin(state, std::exchange(reason, {}) + around[k]->title(), *around[k], entry);
        begin(state, reason + function.title(), function, entry);
        calls_.back().around = std::move(around);
        calls_.back().levels = levels;
    }

    void leave(const Function& function, Entry entry, const void* result, miBoolean returned) override
    {
        if (shown() && entry == Entry::execute) {
            for (const Connection& connection : function.connections())
                if (connection.source && !read(connection))
                    line(connection.field + " = " + sourceText(connection) + ", not read");
            line("gives " + valueText(stage_.database, function.declaration().result, result) +
                 (returned == miTRUE ? "" : ", returns " + std::to_string(int(returned))));
        }
        calls_.resize(calls_.size() - calls_.back().levels - 1);
    }

    void evaluating(const Function&, const Connection& connection) override
    {
        calls_.back().asks = &connection;
    }

    void evaluated(const Function&, const Connection& connection, const void* value, bool remembered) override
    {
        calls_.back().asks = nullptr;
        calls_.back().read.push_back(&connection);
        const bool member = connection.source->declaration().result.type == Type::structure;
        if (shown() && (remembered || member))
            line(connection.field + " = " + deliveredText(stage_.database, connection, value) + ", " +
                 (remembered ? "remembered of " : "of ") + sourceText(connection));
    }

    bool sawNothing() const { return count_ == 0; }
    std::size_t leftOut() const { return count_ > Probe::mostCalls ? count_ - Probe::mostCalls : 0; }

private:
    using Definitions = std::vector<const Function*>;

    /// A call, or a phenomenon that the call above it goes into.
    struct Call {
        const miState* state = nullptr;
        bool shown = false;
        std::string head;                 ///< its first line, empty when that is written
        const Connection* asks = nullptr; ///< what it waits for
        std::vector<const Connection*> read;
        Definitions around;     ///< phenomena, the innermost first
        std::size_t levels = 0; ///< of those the call goes into
    };

    void begin(const miState& state, std::string head, const Function& function, Entry entry)
    {
        Call& call = calls_.emplace_back();
        call.state = &state;
        call.shown = count_ <= Probe::mostCalls;
        call.head = std::move(head);
        if (!call.shown || entry != Entry::execute) // an init that does nothing else is not worth a line
            return;
        for (const Parameter& parameter : parametersOf(stage_.database, function))
            if (!parameter.connection) // what a phenomenon's is connected to has its "=" already
                line(parameter.name + (parameter.text.rfind("= ", 0) == 0 ? " " : " = ") + parameter.text);
    }

    bool shown() const { return calls_.back().shown; }

    bool read(const Connection& connection) const
    {
        const auto& read = calls_.back().read;
        return std::find(read.begin(), read.end(), &connection) != read.end();
    }

    /// What brings the call about.
    std::string reasonFor(const Function& function, Entry entry, const miState& state) const
    {
        if (entry != Entry::execute)
            return entry == Entry::shaderInit ? "init of the shader as a whole, by " : "init of ";
        const Connection* const asks = calls_.empty() ? nullptr : calls_.back().asks;
        if (asks && (asks->source == &function || asks->source->expansion)) // one of a phenomenon's roots
            return asks->field + ": ";
        if (!calls_.empty() && calls_.back().state == &state)
            return "called by tag: ";
        return role(function, state) + ": ";
    }

    /// Why the renderer calls a shader by itself.
    std::string role(const Function& function, const miState& state) const
    {
        if (state.type == miRAY_LIGHT)
            return "light " + elementText(stage_.database, state.light_instance) + ", sample " +
                   std::to_string(state.count) + " from " + vectorText(state.org);
        const std::string ray = rayName(state.type);
        const std::string at = "material " + elementText(stage_.database, state.material) + ", " + ray +
                               " at " + vectorText(state.point);
        if (state.type == miRAY_SHADOW)
            return "shadow of " + at;
        if (isVolume(function))
            return "volume, " + ray + " from " + vectorText(state.org) + " towards " + vectorText(state.dir) +
                   (state.dist > 0.0 ? " as far as " + numberText(float(state.dist)) : "");
        if (state.pri)
            return at;
        return (isIn(stage_.lenses, function) ? "lens, " : "environment, ") + ray + " towards " +
               vectorText(state.dir);
    }

    static bool isIn(const FunctionList& list, const Function& function)
    {
        return std::find(list.begin(), list.end(), &function) != list.end();
    }

    bool isVolume(const Function& function) const
    {
        const auto& surfaces = stage_.surfaces.all();
        return isIn(stage_.volume, function) ||
               std::any_of(surfaces.begin(), surfaces.end(),
                           [&](const auto& entry) { return isIn(entry.second.volume, function); });
    }

    /// Writes a line of the running call, behind the heads that are due.
    void line(const std::string& text)
    {
        for (std::size_t depth = 0; depth < calls_.size(); ++depth)
            if (!calls_[depth].head.empty())
                write(std::exchange(calls_[depth].head, {}), depth);
        write(text, calls_.size());
    }

    void write(const std::string& text, std::size_t depth)
    {
        for (std::size_t i = 0; i < depth; ++i)
            text_ += "|  ";
        text_ += text + "\n";
    }

    const Stage& stage_;
    std::string& text_;
    std::vector<Call> calls_; ///< running
    std::size_t count_ = 0;
};

} // namespace

bool Probe::ready(const Stage& stage, Network& network)
{
    const miCamera& camera = stage.camera.record;
    if (x_ < 0 || y_ < 0 || x_ >= camera.x_resolution || y_ >= camera.y_resolution)
        throw Error("pixel " + std::to_string(x_) + " " + std::to_string(y_) + " is outside the picture, " +
                    std::to_string(camera.x_resolution) + " by " + std::to_string(camera.y_resolution) +
                    " pixels");
    text_ = "pixel " + std::to_string(x_) + " " + std::to_string(y_) + " from the lower left, row " +
            std::to_string(camera.y_resolution - 1 - y_) + " from the top\n";
    Writer writer(stage, text_);
    RenderThread thread(stage, network, 1);
    thread.ts.observer = &writer;
    const SampleResult seen = sample(thread, float(x_) + 0.5f, float(y_) + 0.5f, 0.0f);
    if (writer.sawNothing())
        text_ += "no shader is called: no surface with a shader is hit, and there is no environment\n";
    if (writer.leftOut() > 0)
        text_ += "and " + std::to_string(writer.leftOut()) + " more calls\n";
    text_ += "sample = " + colorText(seen.color) + "\n";
    return false;
}

} // namespace host
