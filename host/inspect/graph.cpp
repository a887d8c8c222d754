// SPDX-License-Identifier: BSD-3-Clause
#include "host/inspect/graph.h"

#include "host/inspect/parameters.h"
#include "host/system/safe_file.h"

#include <algorithm>

namespace host {

namespace {

/// Characters of a value that are shown.
constexpr std::size_t longestValue = 60;

std::string escaped(std::string_view text)
{
    std::string result;
    for (const char c : text)
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += static_cast<unsigned char>(c) < ' ' ? '?' : c;
        }
    return result;
}

/// Cut at the end, but never within a character of several bytes.
std::string shortened(std::string text)
{
    if (text.size() <= longestValue)
        return text;
    std::size_t end = longestValue;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u)
        --end;
    return text.substr(0, end) + " ...";
}

std::string nodeName(const Element& element) { return "n" + std::to_string(element.tag); }

/// A box with a head and rows beneath, each row a port that edges may end at.
class Box {
public:
    Box(const Element& element, const std::string& name, const std::string& kind, const char* color)
        : text_("    " + nodeName(element) +
                " [label=<<table border=\"0\" cellborder=\"1\" cellspacing=\"0\" cellpadding=\"4\">\n"
                "        <tr><td port=\"head\" bgcolor=\"" +
                color + "\">" + (name.empty() ? "" : "<b>" + escaped(name) + "</b><br/>") + escaped(kind) +
                "</td></tr>\n")
    {
    }

    /// Returns the row's port.
    std::string row(const std::string& name, const std::string& value)
    {
        std::string port = "r" + std::to_string(rows_++);
        text_ += "        <tr><td port=\"" + port + "\" align=\"left\">" + escaped(name) +
                 (value.empty() ? "" : ": " + escaped(shortened(value))) + "</td></tr>\n";
        return port;
    }

    std::string finish() const { return text_ + "    </table>>];\n"; }

private:
    std::string text_;
    int rows_ = 0;
};

class Drawing {
public:
    explicit Drawing(const Database& database) : database_(database) {}

    void add(const Function& function)
    {
        Box box(function, function.name, function.declaration().name, "#dce6f2");
        for (const Parameter& parameter : parametersOf(database_, function)) {
            const std::string port = box.row(parameter.name, parameter.text);
            if (parameter.connection)
                edge(*parameter.connection->source, function, port,
                     parameter.connection->source->name.empty() ? std::string()
                                                                : member(*parameter.connection));
        }
        if (function.expansion)
            for (const Function* const root : function.sources())
                edge(*root, function, box.row("root", {}), {});
        boxes_ += box.finish();
        for (const Function* const called : function.callable())
            edges_ += "    " + nodeName(*called) + ":head -> " + nodeName(function) +
                      ":head [style=dashed, label=\"may be called\"];\n";
    }

    /// What calls shaders without being one.
    class Root {
    public:
        Root(Drawing& drawing, const Element& element)
            : drawing_(drawing), element_(element),
              box_(element, element.name, std::string(kindName(element.kind)), "#f2e3d5")
        {
        }
        Root(const Root&) = delete;
        Root& operator=(const Root&) = delete;
        ~Root() { drawing_.boxes_ += box_.finish(); }

        void list(const char* role, const FunctionList& functions)
        {
            for (std::size_t k = 0; k < functions.size(); ++k)
                drawing_.edge(
                    *functions[k], element_,
                    box_.row(functions.size() > 1 ? role + (" " + std::to_string(k + 1)) : role, {}), {});
        }

    private:
        Drawing& drawing_;
        const Element& element_;
        Box box_;
    };

    std::string text() const
    {
        return "digraph scene {\n"
               "    graph [rankdir=LR, ranksep=0.8];\n"
               "    node [shape=plain, fontname=\"Helvetica\", fontsize=10];\n"
               "    edge [fontname=\"Helvetica\", fontsize=9, color=\"#606060\"];\n" +
               boxes_ + edges_ + "}\n";
    }

private:
    static std::string member(const Connection& connection)
    {
        const std::string source = sourceText(connection); // in quotation marks
        const std::size_t name = connection.source->name.size();
        return source.size() > name + 2 ? source.substr(name + 2, source.size() - name - 3) : std::string();
    }

    void edge(const Function& from, const Element& to, const std::string& port, const std::string& label)
    {
        edges_ += "    " + nodeName(from) + ":head:e -> " + nodeName(to) + ":" + port + ":w" +
                  (label.empty() ? "" : " [label=<" + escaped(label) + ">]") + ";\n";
    }

    const Database& database_;
    std::string boxes_;
    std::string edges_;
};

} // namespace

std::string Graph::text(const Stage& stage, const Network& network)
{
    Drawing drawing(stage.database);
    for (const Function* const function : network.functions())
        drawing.add(*function);
    {
        Drawing::Root camera(drawing, *stage.database.find(stage.cameraLeaf.record.item));
        camera.list("lens", stage.lenses);
        camera.list("environment", stage.environment);
        camera.list("volume", stage.volume);
    }
    std::vector<const Light*> lights;
    for (const LeafLight& leaf : stage.lights.all()) {
        if (std::find(lights.begin(), lights.end(), leaf.light) != lights.end())
            continue;
        lights.push_back(leaf.light);
        Drawing::Root(drawing, *leaf.light).list("shader", leaf.shader);
    }
    for (const auto& [tag, surface] : stage.surfaces.all()) {
        Drawing::Root material(drawing, *stage.database.find(tag));
        material.list("shader", surface.shader);
        material.list("shadow", surface.shadow);
        material.list("environment", surface.environment);
        material.list("volume", surface.volume);
    }
    return drawing.text();
}

bool Graph::ready(const Stage& stage, Network& network)
{
    replaceFile(file_, text(stage, network));
    return true;
}

} // namespace host
