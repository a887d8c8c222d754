// SPDX-License-Identifier: BSD-3-Clause
// What becomes of every command and statement of the language: read, read with one warning, or refused. What
// the statements mean is tested with their elements.
#include "tests/host/language/scene.h"

namespace test {

namespace {

const std::string before = R"(declare color "s" ( scalar "x", array color "cs" ) shader "sh" "s" ( )
camera "c" end camera light "l" end light object "o" end object material "m" end material
instance "ci" "c" end instance instance "li" "l" end instance instance "oi" "o" end instance
options "opt" end options instgroup "g" "ci" "li" "oi" end instgroup color texture "t" "f"
)";

struct Row {
    const char* text;
    const char* outcome; // "" read, "!..." refused with this in the message, else one warning with this in it
};

void expectOutcomes(const std::vector<Row>& rows, const std::string& head, const std::string& tail)
{
    for (const Row& row : rows) {
        Scene scene(before);
        const std::string error = scene.errorOf(head + row.text + tail);
        const std::string outcome = row.outcome;
        if (outcome[0] == '!')
            EXPECT_NE(error.find(outcome.substr(1)), std::string::npos) << row.text << ": " << error;
        else
            EXPECT_EQ(error, "accepted") << row.text;
        const bool warns = !outcome.empty() && outcome[0] != '!';
        EXPECT_EQ(scene.messages.lines().size(), warns ? 1u : 0u) << row.text;
        if (warns) {
            EXPECT_EQ(scene.messages.count(outcome), 1) << row.text << ": " << scene.messages.lines().at(0);
        }
    }
}

} // namespace

TEST(Statements, Commands)
{
    expectOutcomes({{"link \"x.so\"", ""},
                    {"code \"f.c\"", "!\"code\" is not supported"},
                    {"version \"3.9\" min version \"3.1\" max version \"4\"", ""},
                    {"verbose on verbose 3", ""},
                    {"system \"ls\"", "the command \"system\" is ignored"},
                    {"memory 100", "the command \"memory\" is ignored"},
                    {"set \"a\" set \"a\" \"b\"", ""},
                    {"registry \"k\" value \"v\" end registry", ""},
                    {"namespace \"n\" end namespace", ""},
                    {"declare data \"d\" ( scalar \"x\" )", "the declaration of user data is ignored"},
                    {"incremental camera \"c\" end camera", ""},
                    {"delete \"o\" touch \"c\"", ""},
                    {"call \"f\" ( )", "!\"call\" is not supported"},
                    {"debug \"x\" debug \"x\" \"y\"", "the command \"debug\" is ignored"},
                    {"private session depth 2", ""},
                    {"root \"g\"", "!\"root\" is not supported"},
                    {"render \"g\" \"ci\" \"opt\"", ""},
                    {"frame 1", "!\"frame\" is not supported"},
                    {"data \"d\"", "!\"data\" is not supported"},
                    {"lightprofile \"d\"", "!\"lightprofile\" is not supported"},
                    {"spectrum \"d\"", "!\"spectrum\" is not supported"}},
                   "", "");
}

TEST(Statements, RequirementsOfShadersAndPhenomena)
{
    const std::vector<Row> rows = {
        {"version 3", ""},
        {"apply lens, material, light, shadow, environment, volume, texture, photon, geometry, displace, "
         "emitter, output, "
         "lightmap, photonvol, state",
         ""},
        {"scanline on trace off shadow sort shadow segments shadow off face front face both", ""},
        {"texture 1 bump 2 derivative derivative 1 2 volume level 3 parallel", ""},
        {"object space camera space mixed space", ""},
        {"gui \"x\" { anything [ 1 ] \"at all\" } gui ( ) hardware ( \"a\" )", ""}};
    expectOutcomes(rows, "declare shader color \"new\" ( ) ", " end declare");
    expectOutcomes(rows, "declare phenomenon color \"new\" ( ) root \"s\" ( ) ",
                   " end declare shader \"n\" \"new\" ( )");
}

TEST(Statements, BodiesOfPhenomena)
{
    expectOutcomes(
        {{"shader \"a\" \"s\" ( ) material \"n\" end material light \"n2\" end light", ""},
         {"instance \"i\" \"l\" end instance instgroup \"g\" \"i\" end instgroup scalar texture \"u\" \"f\"",
          ""},
         {"lens \"s\" ( ) environment = \"sh\" priority 2 volume \"s\" ( ) geometry = \"sh\"", ""},
         {"contour store \"s\" ( ) contour contrast \"s\" ( ) priority 1", "contour roots are ignored"},
         {"output \"s\" ( )", "!\"output\" is not supported"},
         {"output \"+rgba\" \"s\" ( ) priority 1", "!\"output\" is not supported"},
         {"object \"n\" end object", "!found the string \"n\", expected \"space\""},
         {"camera \"n\" end camera", "!found the string \"n\", expected \"space\""},
         {"options \"n\" end options", "!found the keyword \"options\", expected a phenomenon statement"},
         {"render \"g\" \"ci\" \"opt\"", "!found the keyword \"render\""}},
        "declare phenomenon color \"p\" ( ) root \"s\" ( ) ", " end declare");
}

TEST(Statements, Textures)
{
    expectOutcomes(
        {{"color texture \"n\" \"f\"", ""},
         {"local filter 2 writable scalar texture \"n\" \"f\"", ""},
         {"vector texture \"n\" [ 1 1 ] '000000'", ""},
         {"color texture \"n\" [ 1 1 2 ] '000000' '000000'", ""},
         {"color texture \"n\" \"s\" ( \"x\" 1 )", ""},
         {"color texture \"n\" colorprofile \"p\" \"f\"", "the colour profiles of textures are ignored"}},
        "", "");
}

TEST(Statements, Options)
{
    expectOutcomes(
        {{"samples -1 samples 0 2 samples 0 2 0 1 contrast .1 .1 .1 contrast .1 .1 .1 .1 time contrast .1 .1 "
          ".1",
          ""},
         {"jitter 1 filter box filter gauss 2 filter clip mitchell 3 3 filter lanczos", ""},
         {"trace depth 1 trace depth 1 2 trace depth 1 2 3 trace on", ""},
         {"scanline on scanline rasterizer scanline opengl shadow off shadow sort shadow segments", ""},
         {"face front object space camera space mixed space", ""},
         {"shutter 1 shutter delay .5 motion on motion steps 3", ""},
         {"lens off volume off geometry on displace on output on hair off pass on merge on", ""},
         {"colorclip rgb premultiply on desaturate off dither on gamma 2", ""},
         {"state \"s\" ( )", "the statement \"state\" is ignored"},
         {"state [ \"s\" ( ), = \"sh\" ]", "the statement \"state\" is ignored"},
         {"frame buffer 0 \"+rgba\"", "the statement \"frame buffer\" is ignored"},
         {"maxdisplace 1 max displace 1 shading samples 1 task size 4 samplelock on field 1", ""},
         {"field on field even field odd", ""},
         {"acceleration bsp acceleration bsp2 acceleration large bsp acceleration grid bsp size 1 bsp depth "
          "2 bsp memory "
          "3 bsp shadow on grid size 1",
          ""},
         {"approximate parametric 1 1 inheritance \"x\" traversal \"x\" luminance weight .3 .3 .3", ""},
         {"diagnostic off diagnostic samples off diagnostic photon irradiance 1 diagnostic photon density 1 "
          "diagnostic finalgather on",
          ""},
         {"diagnostic grid object 1 diagnostic grid camera 1 diagnostic grid world 1 diagnostic grid off",
          ""},
         {"diagnostic bsp depth diagnostic bsp size diagnostic bsp off", ""},
         {"finalgather off globillum off caustic off shadowmap off lightmap off autovolume off photonvol "
          "accuracy 1",
          ""},
         {"finalgather accuracy view 9 4 1 finalgather file \"f\" finalgather file [ \"f\", \"g\" ]", ""},
         {"finalgather filter 1 finalgather scale 1 1 1 finalgather trace depth 1 1 finalgather bias .1", ""},
         {"finalgather contrast .1 .1 .1 finalgather samples 9 finalgather secondary scale 1 1 1", ""},
         {"globillum accuracy 9 .1 globillum scale 1 1 1 caustic filter box 2 caustic filter cone", ""},
         {"photonmap file \"f\" photonmap rebuild on photon trace depth 1 1 photonvol scale 1 1 1", ""},
         {"shadowmap motion on shadowmap rebuild on shadowmap bias .1 shadowmap merge on shadowmap trace on "
          "shadowmap window 0 0 1 1 shadowmap camera \"c\" shadowmap samples 4",
          ""},
         {"finalgather fastlookup", "\"finalgather\" is not supported: it is ignored"},
         {"shadowmap opengl", "\"shadowmap\" is not supported: it is ignored"},
         {"shadowmap detail", "\"shadowmap\" is not supported: it is ignored"},
         {"\"a\" on \"b\" \"text\" \"c\" 1 \"d\" 1.5 \"e\" 1 2 3 \"f\" 1 2 3 4", ""}},
        "options \"n\" ", " end options");
}

TEST(Statements, Cameras)
{
    expectOutcomes(
        {{"focal 1 focal infinity aperture 1 aspect 1 resolution 4 4 offset 1 1 window 0 0 1 1 clip 1 2", ""},
         {"dof 1 2", "the statement \"dof\" is ignored"},
         {"lens \"s\" ( ) = \"sh\" = shader \"in\" \"s\" ( ) lens environment = \"sh\" volume volume \"s\" ( "
          ")",
          ""},
         {"frame 1 frame 1 .5 field 2", ""},
         {"output output \"tif\" \"f\" output \"rgba\" \"jpg\" quality 90 \"f\" output \"z\" \"exr\" "
          "compress \"zip\" \"f\"",
          ""},
         {"output \"rgba\" \"jpg\" dpi 72 even \"f\"", ""},
         {"output \"+rgba,+z\" \"s\" ( )", "!\"output shader\" is not supported"},
         {"output \"+rgba\" = \"sh\"", "!\"output shader\" is not supported"},
         {"framebuffer \"b\" datatype \"rgba\" filtering on filename \"f\" filetype \"tif\" compression "
          "\"zip\" quality 1 "
          "colorprofile \"p\" dod on dpi 72 field \"1\" premultiplied on primary on user off useopacity off",
          ""},
         {"pass null", "!\"pass\" is not supported"},
         {"data \"d\"", "the user data of elements are ignored"}},
        "camera \"n\" ", " end camera");
}

TEST(Statements, Materials)
{
    expectOutcomes({{"", ""},
                    {"opaque \"s\" ( ) = \"sh\" shadow \"s\" ( ) volume environment = \"sh\"", ""},
                    {"displace = \"sh\"", "the displacement shaders of materials are ignored"},
                    {"photon = \"sh\"", "the photon shaders of materials are ignored"},
                    {"photonvol = \"sh\"", "the photon volume shaders of materials are ignored"},
                    {"contour = \"sh\"", "the contour shaders of materials are ignored"},
                    {"lightmap = \"sh\"", "the light map shaders of materials are ignored"},
                    {"displace photon photonvol contour lightmap", ""}},
                   "material \"n\" ", " end material");
}

TEST(Statements, Objects)
{
    expectOutcomes(
        {{"visible trace shadow visible off shadow 3 trace off reflection 1 refraction 2 transparency 3 "
          "tagged face back",
          ""},
         {"tag 5 select shadowmap caustic 3 globillum off finalgather 1 samples 1 2 shading samples 1 max "
          "displace 1",
          ""},
         {"ray offset 1 box 0 0 0 1 1 1 motion box transform volume group 1 approximate parametric 1 1", ""},
         {"data \"d\"", "the user data of elements are ignored"},
         {"group 0 0 0 1 0 0 0 1 0 v 0 n 2 d 0 1 t 1 t 1 0 2 m 2 u 1 v 1 v 2 c \"m\" 0 1 2 p 0 1 2 hole 0 1 "
          "2 "
          "strip 0 1 2 fan \"m\" 0 1 2 cp 0 1 2 end group",
          ""},
         {"group 0 0 0 v 0 cusp v 0 conic 1 v 0 corner v 0 dart .5 c 0 1 2 approximate parametric 1 1 \"s\" "
          "\"t\" end group",
          ""},
         {"file \"f\"", "!objects read from files are not supported"},
         {"group trilist", "!triangle lists (\"trilist\") are not supported"},
         {"hair", "!hair is not supported"},
         {"ccmesh", "!subdivision surfaces (\"ccmesh\") are not supported"},
         {"basis \"b\"", "!free-form surfaces are not supported"},
         {"group surface", "!free-form surfaces are not supported"},
         {"subdivision surface", "!subdivision surfaces are not supported"}},
        "object \"n\" ", " end object");
}

TEST(Statements, Instances)
{
    expectOutcomes(
        {{"hide on visible shadow 3 shadowmap on trace reflection 1 refraction 2 transparency 3 caustic "
          "globillum 1",
          ""},
         {"finalgather off face both select shading samples 2 tag 4 approximate parametric 1 1", ""},
         {"approximate [ fine length 1 all, displace parametric 1 ]", ""},
         {"transform transform 1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1 motion transform motion off", ""},
         {"transform \"s\" ( )", "!\"transform shader\" is not supported"},
         {"override material \"m\" material [ \"m\", \"m\" ] material [ ] material", ""},
         {"light [ \"li\" ] light \"exclusive\" [ \"li\" ] light shadow [ ] light shadow \"exclusive\" [ "
          "\"li\" ]",
          ""},
         {"data null", "the user data of elements are ignored"},
         {"( \"x\" 1 )", "the parameters of instances are ignored"}},
        "instance \"n\" \"o\" ", " end instance");
    expectOutcomes({{"geometry \"s\" ( )", ""}, {"geometry = \"sh\" \"s\" ( ) hide off", ""}},
                   "instance \"n\" ", " end instance");
    expectOutcomes(
        {{"\"ci\" tag 4 \"oi\"", ""}, {"data \"d\" \"ci\"", "the user data of elements are ignored"}},
        "instgroup \"n\" ", " end instgroup");
}

} // namespace test
