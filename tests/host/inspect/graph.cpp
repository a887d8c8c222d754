// SPDX-License-Identifier: BSD-3-Clause
// The drawing, as Graphviz itself understands it.
#include "host/inspect/graph.h"
#include "tests/harness/folder.h"
#include "tests/harness/program.h"
#include "tests/host/inspect/scene.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace host;

namespace {

struct Drawn {
    std::string file;
    int nodes = 0;
    int edges = 0;
};

/// Writes the graph, and lets Graphviz lay it out.
Drawn drawn(const std::string& shaders, const std::string& elements = {}, const std::string& members = {})
{
    const test::Folder folder;
    Graph graph(folder.path("graph.dot"));
    EXPECT_TRUE(test::look(graph, shaders, 1, elements, members));
    const test::Outcome outcome =
        test::run("/usr/bin/dot", {folder.path(), {"-Tplain", "graph.dot"}, {}, -1});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.messages, "");
    Drawn result{folder.read("graph.dot")};
    std::istringstream lines(outcome.output);
    for (std::string line; std::getline(lines, line);) {
        result.nodes += line.rfind("node ", 0) == 0;
        result.edges += line.rfind("edge ", 0) == 0;
    }
    return result;
}

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(Graph, HasShadersConnectionsAndWhatCallsThem)
{
    const Drawn graph =
        drawn("shader \"s\" \"split\" ( \"in\" .25 .5 .75 1 )\n"
              "shader \"sum\" \"total\" ( \"start\" = \"s.mask\", \"values\" [ 2, = \"s.mask\" ] )\n"
              "shader \"unused\" \"choose\" ( )\n"
              "shader \"surface\" \"choose\" ( \"which\" on, \"first\" = \"sum\" )\n");
    EXPECT_EQ(graph.nodes, 3 + 2); // camera and material
    EXPECT_EQ(graph.edges, 2 + 1 + 1);
    EXPECT_TRUE(contains(graph.file, "in: 0.25 0.5 0.75 1<"));
    EXPECT_TRUE(contains(graph.file, "label=<mask>"));
    EXPECT_TRUE(contains(graph.file, "values: [ 2, = &quot;s.mask&quot; ]<"));
    EXPECT_FALSE(contains(graph.file, "unused"));
}

TEST(Graph, HasLightsOnceForAllTheirInstances)
{
    const Drawn graph = drawn("shader \"surface\" \"choose\" ( )\n",
                              "light \"lamp\" \"choose\" ( ) origin 0 0 0 end light\n"
                              "instance \"lamp-1\" \"lamp\" end instance\n"
                              "instance \"lamp-2\" \"lamp\" end instance\n",
                              "\"lamp-1\" \"lamp-2\"");
    EXPECT_EQ(graph.nodes, 2 + 3);
    EXPECT_EQ(graph.edges, 2);
}

TEST(Graph, LooksIntoPhenomena)
{
    // A single root serves whoever uses the definition; of several, all do, through the definition. It has a
    // box of its own in any case, with its parameters.
    const std::string head =
        "declare phenomenon color \"both\" ( color \"one\", scalar \"two\" )\n"
        "shader \"sum\" \"total\" ( \"start\" = interface \"two\" )\n"
        "shader \"pick\" \"choose\" ( \"first\" = interface \"one\", \"second\" = \"sum\" )\n"
        "root = \"pick\" ";
    const std::string use = " end declare\n"
                            "shader \"s\" \"split\" ( )\n"
                            "shader \"h\" \"both\" ( \"one\" = \"s.rgb\", \"two\" 3 )\n"
                            "shader \"surface\" \"choose\" ( \"which\" on, \"first\" = \"h\" )\n";
    const Drawn one = drawn(head + use);
    EXPECT_EQ(one.nodes, 5 + 2);
    EXPECT_EQ(one.edges, 3 + 1 + 1);
    EXPECT_TRUE(contains(one.file, "start: 3<"));
    const Drawn two = drawn(head + "= \"sum\"" + use);
    EXPECT_EQ(two.nodes, 5 + 2);
    EXPECT_EQ(two.edges, 2 + 2 + 1 + 1);
    EXPECT_TRUE(contains(two.file, "one: = &quot;s&quot;"));
}

TEST(Graph, WithstandsHostileNames)
{
    const std::string name = "<b>&amp;{|}\\\\n\\\"--> \xc3\xa9";
    const Drawn graph = drawn("shader \"" + name + "\" \"split\" ( )\n" +
                              "shader \"surface\" \"total\" ( \"start\" = \"" + name + ".mask\" )\n");
    EXPECT_EQ(graph.nodes, 4);
    EXPECT_EQ(graph.edges, 2);
}

TEST(Graph, CutsLongValuesBetweenCharacters)
{
    std::string values;
    for (int i = 0; i < 1000; ++i)
        values += (i ? ", " : "") + std::to_string(i);
    const Drawn graph = drawn("shader \"surface\" \"total\" ( \"values\" [ " + values + " ] )\n");
    EXPECT_TRUE(contains(graph.file, "values: [ 0, 1, 2, 3"));
    EXPECT_FALSE(contains(graph.file, "999"));
}

TEST(Graph, ThatCannotBeWrittenIsAnError)
{
    Graph graph("/absent/graph.dot");
    EXPECT_THROW(test::look(graph, "shader \"surface\" \"choose\" ( )\n"), Error);
}
