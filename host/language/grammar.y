/* SPDX-License-Identifier: BSD-3-Clause
 *
 * The scene language. Actions only hand on what was read; what it means is the builders' business.
 */
%require "3.8"
%language "c++"
%skeleton "lalr1.cc"
%define api.namespace {host::language}
%define api.parser.class {Parser}
%define api.token.constructor
%define api.token.raw
%define api.value.type variant
%define api.value.automove
%define api.location.type {host::Location}
%define parse.error custom
%define parse.lac full
%param {host::language::TokenSource& tokens}
%parse-param {host::language::Builder& scene}

%code requires {
#include "host/language/builder.h"

namespace host::language {
class TokenSource;
}
}

%code {
#include "host/language/tokens.h"

// The place of something is that of its first token.
#define YYLLOC_DEFAULT(result, parts, count) (result) = YYRHSLOC(parts, (count) > 0 ? 1 : 0)

namespace host::language {

static Parser::symbol_type yylex(TokenSource& tokens) { return tokens.next(); }

static Field field(Type type, const Name& name)
{
    Field result;
    result.name = name.text;
    result.type = type;
    result.where = name.where;
    return result;
}

/// Of the words of features that are not there.
static bool switchesOn(const std::string& word)
{
    return word == "fastlookup" || word == "only" || word == "opengl";
}

static void append(std::vector<Number>& numbers, const miVector& v)
{
    for (const float x : {v.x, v.y, v.z})
        numbers.push_back({x, Number::Kind::real});
}

} // namespace host::language
}

%initial-action { @$ = tokens.place(); }

%token END_OF_FILE 0 "the end of the text"
%token <std::string> STRING "a string"
%token <std::string> SYMBOL "a name"
%token <int> INTEGER "an integer"
%token <double> FLOAT "a number"
%token <miVector> BINARY_VECTOR "a binary vector"
%token <std::vector<unsigned char>> BYTES "a byte string"
%token BLOCK "a block in brackets"
%token END_NAMESPACE "the end of the namespace"
%token BODY_BEGIN "the beginning of a body"
%token <std::shared_ptr<host::PhenomenonBody>> PHENOMENON_BODY "the body of a phenomenon"
%token OPEN_PARENTHESIS "(" CLOSE_PARENTHESIS ")"
%token OPEN_BRACKET "[" CLOSE_BRACKET "]"
%token OPEN_BRACE "{" CLOSE_BRACE "}"
%token COMMA "," EQUALS "="

/* The keywords, and nothing but keywords: the lexer takes their spelling from here. */
%token
    ACCELERATION "acceleration" APERTURE "aperture" APPLY "apply" APPROXIMATE "approximate" ARRAY "array"
    ASPECT "aspect" AUTOVOLUME "autovolume" BASIS "basis" BIAS "bias" BOOLEAN "boolean" BOX "box" BSP "bsp" BUFFER "buffer" BUMP "bump"
    C "c" CALL "call" CAMERA "camera" CAUSTIC "caustic" CCMESH "ccmesh" CLIP "clip" CODE "code" COLOR "color"
    COLORCLIP "colorclip" COLORPROFILE "colorprofile" COMPRESS "compress" COMPRESSION "compression" CONIC "conic"
    CONTOUR "contour" CONTRAST "contrast" CORNER "corner" CP "cp" CURVE "curve" CUSP "cusp" CYLINDER "cylinder"
    D "d" DART "dart" DATA "data" DATATYPE "datatype" DEBUG "debug" DECLARE "declare" DEFAULT "default" DELAY "delay"
    DELETE "delete" DEPTH "depth" DERIVATIVE "derivative" DESATURATE "desaturate" DETAIL "detail" DIAGNOSTIC "diagnostic"
    DIRECTION "direction" DISC "disc" DISPLACE "displace" DITHER "dither" DOD "dod" DOF "dof" DPI "dpi" ECHO "echo"
    EMITTER "emitter" END "end" ENERGY "energy" ENVIRONMENT "environment" EVEN "even" EXPONENT "exponent"
    FACE "face" FALSE "false" FAN "fan" FIELD "field" FILE "file" FILENAME "filename" FILETYPE "filetype"
    FILTER "filter" FILTERING "filtering" FINALGATHER "finalgather" FOCAL "focal" FRAME "frame"
    FRAMEBUFFER "framebuffer" GAMMA "gamma" GEOMETRY "geometry" GLOBILLUM "globillum" GRID "grid" GROUP "group"
    GUI "gui" HAIR "hair" HARDWARE "hardware" HIDE "hide" HOLE "hole" INCREMENTAL "incremental"
    INFINITE "infinity" INHERITANCE "inheritance" INSTANCE "instance" INSTGROUP "instgroup" INTEGER_TYPE "integer"
    INTERFACE "interface" IRRADIANCE "irradiance" JITTER "jitter" LARGE "large" LENS "lens" LEVEL "level" LIGHT "light"
    LIGHTMAP "lightmap" LIGHTPROFILE "lightprofile" LINK "link" LOCAL "local" LUMINANCE "luminance" M "m"
    MATERIAL "material" MAX "max" MAXDISPLACE "maxdisplace" MEMORY "memory" MERGE "merge" MIN "min" MIXED "mixed"
    MOTION "motion" N "n" NAMESPACE "namespace" NULL_ "null" OBJECT "object" ODD "odd" OFF "off" OFFSET "offset"
    ON "on" OPAQUE "opaque" OPTIONS "options" ORIGIN "origin" OUTPUT "output" OVERRIDE "override" P "p"
    PARALLEL "parallel" PASS "pass" PHENOMENON "phenomenon" PHOTON "photon" PHOTONMAP "photonmap"
    PHOTONS "photons" PHOTONVOL "photonvol" PREMULTIPLIED "premultiplied" PREMULTIPLY "premultiply"
    PRIMARY "primary" PRIORITY "priority" PRIVATE "private" QUALITY "quality" RAY "ray" RECTANGLE "rectangle"
    REFLECTION "reflection" REFRACTION "refraction" REGISTRY "registry" RENDER "render" RESOLUTION "resolution"
    ROOT "root" SAMPLELOCK "samplelock" SAMPLES "samples" SCALAR "scalar" SCALE "scale" SCANLINE "scanline"
    SELECT "select" SESSION "session" SET "set" SHADER "shader" SHADING "shading" SHADOW "shadow"
    SHADOWMAP "shadowmap" SHUTTER "shutter" SIZE "size" SOFTNESS "softness" SPACE "space" SPECTRUM "spectrum" SPHERE "sphere" SPREAD "spread"
    STATE "state" STEPS "steps" STORE "store" STRING_TYPE "string" STRIP "strip" STRUCT "struct"
    SUBDIVISION "subdivision" SURFACE "surface" SYSTEM "system" T "t" TAG "tag" TAGGED "tagged" TASK "task"
    TEXTURE "texture" TIME "time" TOUCH "touch" TRACE "trace" TRANSFORM "transform" TRANSPARENCY "transparency"
    TRAVERSAL "traversal" TRILIST "trilist" TRUE "true" U "u" USEOPACITY "useopacity" USER "user" V "v"
    VECTOR "vector" VERBOSE "verbose" VERSION "version" VISIBLE "visible" VOLUME "volume" WINDOW "window"
    WRITABLE "writable"

/* A type after "frame buffer 1" and a field after a frame buffer's other properties belong to them. */
%precedence BUFFER FRAMEBUFFER
%precedence STRING FIELD

%type <Name> name opt_name any_word filter_kind
%type <bool> boolean opt_on
%type <Number> number component
%type <double> real
%type <std::vector<Number>> numbers opt_numbers components
%type <FlagMode> mode
%type <std::vector<Name>> names name_list
%type <Type> type simple_type
%type <Field> field result shader_result
%type <std::vector<Field>> fields field_list
%type <std::vector<double>> default
%type <std::string> apply_kind registry_key
%type <int> opt_priority
%type <ExtraRoot::Kind> extra_kind
%type <ShaderUse> shader
%type <std::vector<ShaderUse>> shaders opt_shaders
%type <Argument> argument
%type <std::vector<Argument>> arguments argument_list
%type <Value> value
%type <std::vector<Value>> elements element_list
%type <Texture::Kind> texture_kind
%type <ObjectBuilder::PolygonKind> polygon_kind
%type <bool> words word feature

%%

text:
    scene
|   BODY_BEGIN phenomenon_items         /* of a phenomenon that is being expanded */
;
scene:
    %empty
|   scene command
;

/* ---- small things ------------------------------------------------------------------------------------------- */

name:
    STRING                              { $$ = {$1, @1}; }
|   SYMBOL                              { $$ = {$1, @1}; }
;
opt_name:
    %empty                              { $$ = {"", @$}; }
|   name                                { $$ = $1; }
;
boolean:
    ON                                  { $$ = true; }
|   TRUE                                { $$ = true; }
|   OFF                                 { $$ = false; }
|   FALSE                               { $$ = false; }
;
opt_on:
    %empty                              { $$ = true; }
|   boolean                             { $$ = $1; }
;
mode:
    %empty                              { $$ = {true, 1, @$}; }
|   boolean                             { $$ = {true, $1, @1}; }
|   INTEGER                             { $$ = {false, $1, @1}; }
;
number:
    INTEGER                             { $$ = {static_cast<double>($1), Number::Kind::integer}; }
|   FLOAT                               { $$ = {$1, Number::Kind::real}; }
;
numbers:
    number                              { $$.push_back($1); }
|   numbers number                      { $$ = $1; $$.push_back($2); }
;
opt_numbers:
    %empty                              { }
|   numbers                             { $$ = $1; }
;
real:
    INTEGER                             { $$ = $1; }
|   FLOAT                               { $$ = $1; }
;
names:
    OPEN_BRACKET CLOSE_BRACKET          { }
|   OPEN_BRACKET name_list CLOSE_BRACKET            { $$ = $2; }
|   OPEN_BRACKET name_list COMMA CLOSE_BRACKET      { $$ = $2; }
;
name_list:
    name                                { $$.push_back($1); }
|   name_list COMMA name                { $$ = $1; $$.push_back($3); }
;

/* What follows a keyword whose statement has no effect: true when it switches something on. */
words:
    word                                { $$ = $1; }
|   words word                          { $$ = $1; }
;
word:
    number                              { $$ = false; }
|   boolean                             { $$ = $1; }
|   SYMBOL                              { $$ = switchesOn($1); }
|   BIAS                                { $$ = false; }
|   SCALE                               { $$ = false; }
;

/* ---- commands ----------------------------------------------------------------------------------------------- */

command:
    LINK name                           { scene.commands.link($2); }
|   VERBOSE boolean                     { scene.commands.verbose({"verbose", @1, {{$2 ? 5.0 : 2.0}}}); }
|   VERBOSE INTEGER                     { scene.commands.verbose({"verbose", @1, {{double($2)}}}); }
|   VERSION name                        { scene.commands.minimumVersion($2); }
|   MIN VERSION name                    { scene.commands.minimumVersion($3); }
|   MAX VERSION name                    { scene.commands.maximumVersion($3); }
|   ECHO STRING                         { scene.commands.echo($2); }
|   SYSTEM STRING                       { scene.context.ignored(@1, "the command \"system\""); }
|   MEMORY number                       { scene.context.ignored(@1, "the command \"memory\""); }
|   REGISTRY name                       { scene.commands.registryEntry($2); scene.context.expectation = "a registry line"; }
    registry_lines END REGISTRY         { scene.commands.endRegistryEntry(); scene.context.expectation = "a command"; }
|   NAMESPACE name                      { scene.context.enterNamespace($2); }
    scene END_NAMESPACE                 { scene.context.leaveNamespace(); }
|   SET name                            { scene.commands.set($2); } // before what follows is read: it may ask
    variable_value
|   DEBUG STRING                        { scene.context.ignored(@1, "the command \"debug\""); }
|   DEBUG STRING STRING                 { scene.context.ignored(@1, "the command \"debug\""); }
|   TOUCH name                          { scene.commands.touch($2); }
|   DELETE name                         { scene.commands.remove($2); }
|   PRIVATE
|   SESSION DEPTH INTEGER
|   RENDER name name name               { scene.commands.render($2, $3, $4); }
|   declaration
|   definition
|   INCREMENTAL                         { scene.context.announceIncremental(); }
    definition
|   unsupported_command
;

variable_value:
    %empty
|   STRING                              { scene.commands.setValue($1); }
;

definition:
    shader_definition
|   options
|   camera
|   light
|   material
|   object
|   instance
|   group
|   texture
|   DATA                                { Commands::unsupported("data", @1); }
|   LIGHTPROFILE                        { Commands::unsupported("lightprofile", @1); }
|   SPECTRUM                            { Commands::unsupported("spectrum", @1); }
;

unsupported_command:
    CALL                                { Commands::unsupported("call", @1); }
|   CODE                                { Commands::unsupported("code", @1); }
|   FRAME                               { Commands::unsupported("frame", @1); }
|   ROOT                                { Commands::unsupported("root", @1); }
;

registry_lines:
    %empty
|   registry_lines registry_key STRING  { scene.commands.registryLine($2, $3); }
;
registry_key:
    name                                { $$ = $1.text; }
|   LINK                                { $$ = "link"; }
|   CODE                                { $$ = "code"; }
|   ECHO                                { $$ = "echo"; }
|   SYSTEM                              { $$ = "system"; }
;

/* ---- declarations ------------------------------------------------------------------------------------------- */

declaration:
    DECLARE SHADER shader_result name OPEN_PARENTHESIS fields CLOSE_PARENTHESIS
                                        { scene.declaration.begin($3, $4, $6); }
    traits END DECLARE                  { scene.declaration.end(); }
|   DECLARE result name OPEN_PARENTHESIS fields CLOSE_PARENTHESIS
                                        { scene.declaration.begin($2, $3, $5); scene.declaration.end(); }
|   DECLARE PHENOMENON shader_result name OPEN_PARENTHESIS fields CLOSE_PARENTHESIS
                                        { scene.phenomenon.begin($3, $4, $6); tokens.takeBody(); }
    PHENOMENON_BODY                     { scene.phenomenon.end($9); }
|   DECLARE DATA name OPEN_PARENTHESIS fields CLOSE_PARENTHESIS opt_end_declare
                                        { scene.context.ignored(@1, "the declaration of user data"); }
;

opt_end_declare:
    %empty
|   END DECLARE
;

shader_result:
    result                              { $$ = $1; }
|   SHADER                              { $$.type = Type::shader; $$.where = @1; }
;

result:
    %empty                              { $$.type = Type::color; $$.where = @$; }
|   simple_type                         { $$.type = $1; $$.where = @1; }
|   STRUCT OPEN_BRACE fields CLOSE_BRACE
                                        { $$.type = Type::structure; $$.members = $3; $$.where = @1; }
;

simple_type:
    BOOLEAN                             { $$ = Type::boolean; }
|   INTEGER_TYPE                        { $$ = Type::integer; }
|   SCALAR                              { $$ = Type::scalar; }
|   VECTOR                              { $$ = Type::vector; }
|   COLOR                               { $$ = Type::color; }
|   TRANSFORM                           { $$ = Type::transform; }
|   STRING_TYPE                         { $$ = Type::string; }
|   COLOR TEXTURE                       { $$ = Type::colorTexture; }
|   SCALAR TEXTURE                      { $$ = Type::scalarTexture; }
|   VECTOR TEXTURE                      { $$ = Type::vectorTexture; }
|   LIGHT                               { $$ = Type::light; }
|   MATERIAL                            { $$ = Type::material; }
|   GEOMETRY                            { $$ = Type::geometry; }
|   LIGHTPROFILE                        { $$ = Type::lightProfile; }
|   SPECTRUM                            { $$ = Type::spectrum; }
;

type:
    simple_type                         { $$ = $1; }
|   SHADER                              { $$ = Type::shader; }
|   DATA                                { $$ = Type::data; }
;

fields:
    %empty                              { }
|   field_list                          { $$ = $1; }
|   field_list COMMA                    { $$ = $1; }
;
field_list:
    field                               { $$.push_back($1); }
|   field_list COMMA field              { $$ = $1; $$.push_back($3); }
;
field:
    type name default                   { $$ = field($1, $2); $$.defaults = $3; }
|   ARRAY type name                     { $$ = field($2, $3); $$.isArray = true; }
|   STRUCT name OPEN_BRACE fields CLOSE_BRACE
                                        { $$ = field(Type::structure, $2); $$.members = $4; }
|   ARRAY STRUCT name OPEN_BRACE fields CLOSE_BRACE
                                        { $$ = field(Type::structure, $3); $$.members = $5; $$.isArray = true; }
;
default:
    %empty                              { }
|   DEFAULT components                  { for (const Number& n : $2) $$.push_back(n.value); }
;

traits:
    %empty
|   traits trait
;
trait:
    VERSION INTEGER                     { scene.declaration.version($2); }
|   APPLY apply_kinds
|   SCANLINE any_word
|   TRACE any_word
|   SHADOW any_word
|   FACE any_word
|   TEXTURE INTEGER
|   BUMP INTEGER
|   DERIVATIVE opt_numbers
|   OBJECT SPACE
|   CAMERA SPACE
|   MIXED SPACE
|   PARALLEL
|   VOLUME LEVEL INTEGER
|   GUI opt_name BLOCK
|   HARDWARE BLOCK
;
/* Read once for every definition of the phenomenon. */
phenomenon_items:
    %empty
|   phenomenon_items phenomenon_item
;
phenomenon_item:
    shader_definition
|   material
|   light
|   instance
|   group
|   texture
|   trait
|   ROOT shaders                        { scene.phenomenon.root($2, @1); }
|   ROOT MATERIAL name                  { scene.phenomenon.rootMaterial($3); }
|   ROOT LIGHT name                     { scene.phenomenon.rootLight($3); }
|   extra_kind shaders opt_priority     { scene.phenomenon.extra($1, $2, $3); }
|   OUTPUT                              { Commands::unsupported("output", @1); }
|   CONTOUR STORE shader opt_priority   { scene.context.ignored(@1, "contour roots"); }
|   CONTOUR CONTRAST shader opt_priority { scene.context.ignored(@1, "contour roots"); }
;
extra_kind:
    LENS                                { $$ = ExtraRoot::Kind::lens; }
|   ENVIRONMENT                         { $$ = ExtraRoot::Kind::environment; }
|   VOLUME                              { $$ = ExtraRoot::Kind::volume; }
|   GEOMETRY                            { $$ = ExtraRoot::Kind::geometry; }
;
opt_priority:
    %empty                              { $$ = 0; }
|   PRIORITY INTEGER                    { $$ = $2; }
;
any_word:
    SYMBOL                              { $$ = {$1, @1}; }
|   boolean                             { $$ = {$1 ? "on" : "off", @1}; }
;
apply_kinds:
    apply_kind                          { scene.declaration.apply($1); }
|   apply_kinds COMMA apply_kind        { scene.declaration.apply($3); }
;
apply_kind:
    LENS                                { $$ = "lens"; }
|   MATERIAL                            { $$ = "material"; }
|   LIGHT                               { $$ = "light"; }
|   SHADOW                              { $$ = "shadow"; }
|   ENVIRONMENT                         { $$ = "environment"; }
|   VOLUME                              { $$ = "volume"; }
|   TEXTURE                             { $$ = "texture"; }
|   PHOTON                              { $$ = "photon"; }
|   GEOMETRY                            { $$ = "geometry"; }
|   DISPLACE                            { $$ = "displace"; }
|   EMITTER                             { $$ = "emitter"; }
|   OUTPUT                              { $$ = "output"; }
|   LIGHTMAP                            { $$ = "lightmap"; }
|   PHOTONVOL                           { $$ = "photonvol"; }
|   STATE                               { $$ = "state"; }
|   CONTOUR                             { $$ = "contour"; }
;

/* ---- shaders and values ------------------------------------------------------------------------------------- */

shader_definition:
    SHADER name shaders                 { scene.shaders.define($2, $3); }
;
shader:
    name OPEN_PARENTHESIS arguments CLOSE_PARENTHESIS
                                        { $$ = {$1, {}, $3}; }
|   EQUALS name                         { $$ = {{}, $2, {}}; }
|   EQUALS SHADER name name OPEN_PARENTHESIS arguments CLOSE_PARENTHESIS
                                        { $$ = {$4, $3, $6}; }
;
shaders:
    shader                              { $$.push_back($1); }
|   shaders shader                      { $$ = $1; $$.push_back($2); }
;
opt_shaders:
    %empty                              { }
|   shaders                             { $$ = $1; }
;

arguments:
    %empty                              { }
|   argument_list                       { $$ = $1; }
|   argument_list COMMA                 { $$ = $1; }
;
argument_list:
    argument                            { $$.push_back($1); }
|   argument_list COMMA argument        { $$ = $1; $$.push_back($3); }
;
argument:
    name value                          { $$ = {$1.text, @1, $2}; }
;

value:
    components                          { $$ = {@1, Numbers{$1}}; }
|   name                                { $$ = {@1, Word{$1.text}}; }
|   NULL_                               { $$ = {@1, Null{}}; }
|   EQUALS name                         { $$ = {@1, Connect{$2.text}}; }
|   EQUALS INTERFACE name               { $$ = {@1, Interface{$3.text}}; }
|   OPEN_BRACE arguments CLOSE_BRACE    { $$ = {@1, Members{$2}}; }
|   OPEN_BRACKET elements CLOSE_BRACKET { $$ = {@1, Elements{$2}}; }
;
elements:
    %empty                              { }
|   element_list                        { $$ = $1; }
|   element_list COMMA                  { $$ = $1; }
;
element_list:
    value                               { $$.push_back($1); }
|   element_list COMMA value            { $$ = $1; $$.push_back($3); }
;
components:
    component                           { $$.push_back($1); }
|   components component                { $$ = $1; $$.push_back($2); }
|   BINARY_VECTOR                       { append($$, $1); }
|   components BINARY_VECTOR            { $$ = $1; append($$, $2); }
;
component:
    number                              { $$ = $1; }
|   boolean                             { $$ = {$1 ? 1.0 : 0.0, Number::Kind::boolean}; }
;

/* ---- textures ----------------------------------------------------------------------------------------------- */

texture:
    texture_traits texture_kind TEXTURE name
                                        { scene.texture.begin($2, $4); }
    colorprofile texture_contents       { scene.texture.end(); }
;
texture_traits:
    %empty
|   texture_traits LOCAL
|   texture_traits FILTER opt_numbers   { scene.texture.filter({"filter", @2, $3}); }
|   texture_traits WRITABLE             { scene.texture.writable(); }
;
texture_kind:
    COLOR                               { $$ = Texture::Kind::color; }
|   SCALAR                              { $$ = Texture::Kind::scalar; }
|   VECTOR                              { $$ = Texture::Kind::vector; }
;
colorprofile:
    %empty
|   COLORPROFILE name                   { scene.context.ignored(@1, "the colour profiles of textures"); }
;
texture_contents:
    name                                { scene.texture.file($1); }
|   name OPEN_PARENTHESIS arguments CLOSE_PARENTHESIS
                                        { scene.texture.procedural({$1, {}, $3}); }
|   texture_size
|   texture_contents_bytes
;
texture_size:
    OPEN_BRACKET numbers CLOSE_BRACKET  { scene.texture.size({"texture", @1, $2}); }
;
texture_contents_bytes:
    texture_size BYTES                  { scene.texture.bytes($2); }
|   texture_contents_bytes BYTES        { scene.texture.bytes($2); }
;

/* ---- options ------------------------------------------------------------------------------------------------ */

options:
    OPTIONS name                        { scene.options.begin($2); scene.context.expectation = "an options statement"; }
    options_statements END OPTIONS      { scene.options.end(); scene.context.expectation = "a command"; }
;
options_statements:
    %empty
|   options_statements options_statement
;
options_statement:
    SAMPLES numbers                     { scene.options.samples({"samples", @1, $2}); }
|   CONTRAST numbers                    { scene.options.contrast({"contrast", @1, $2}); }
|   TIME CONTRAST numbers               { scene.options.timeContrast({"time contrast", @1, $3}); }
|   JITTER numbers                      { scene.options.jitter({"jitter", @1, $2}); }
|   FILTER filter_kind opt_numbers      { scene.options.filter($2, false, {"filter", @1, $3}); }
|   FILTER CLIP filter_kind opt_numbers { scene.options.filter($3, true, {"filter", @1, $4}); }
|   TRACE DEPTH numbers                 { scene.options.traceDepth({"trace depth", @1, $3}); }
|   TRACE boolean                       { scene.options.record().trace = $2; }
|   SCANLINE boolean                    { scene.options.scanline($2); }
|   SCANLINE SYMBOL                     { scene.options.scanline({$2, @2}); }
|   SHADOW boolean                      { scene.options.shadow($2); }
|   SHADOW SYMBOL                       { scene.options.shadow({$2, @2}); }
|   FACE SYMBOL                         { scene.options.face({$2, @2}); }
|   OBJECT SPACE                        { scene.options.record().render_space = 'o'; }
|   CAMERA SPACE                        { scene.options.record().render_space = 'c'; }
|   MIXED SPACE                         { scene.options.record().render_space = 'm'; }
|   SHUTTER numbers                     { scene.options.shutter({"shutter", @1, $2}); }
|   SHUTTER DELAY numbers               { scene.options.shutterDelay({"shutter delay", @1, $3}); }
|   MOTION boolean                      { scene.options.record().motion = $2; }
|   MOTION STEPS numbers                { scene.options.motionSteps({"motion steps", @1, $3}); }
|   LENS boolean                        { scene.options.record().no_lens = !$2; }
|   VOLUME boolean                      { scene.options.record().no_volume = !$2; }
|   GEOMETRY boolean                    { scene.options.record().no_geometry = !$2; }
|   DISPLACE boolean                    { scene.options.record().no_displace = !$2; }
|   OUTPUT boolean                      { scene.options.record().no_output = !$2; }
|   HAIR boolean                        { scene.options.record().no_hair = !$2; }
|   PASS boolean                        { scene.options.record().no_pass = !$2; }
|   MERGE boolean                       { scene.options.record().no_merge = !$2; }
|   COLORCLIP SYMBOL                    { scene.options.colorclip({$2, @2}); }
|   PREMULTIPLY boolean                 { scene.options.record().nopremult = !$2; }
|   DESATURATE boolean                  { scene.options.record().desaturate = $2; }
|   DITHER boolean                      { scene.options.record().dither = $2; }
|   GAMMA numbers                       { scene.options.gamma({"gamma", @1, $2}); }
|   STRING boolean                      { scene.options.string($1, $2); }
|   STRING STRING                       { scene.options.string($1, $2); }
|   STRING numbers                      { scene.options.numbers({$1, @1}, {"string option", @1, $2}); }
|   options_without_effect
;
filter_kind:
    SYMBOL                              { $$ = {$1, @1}; }
|   BOX                                 { $$ = {"box", @1}; }
;
options_without_effect:
    STATE shader                        { scene.context.ignored(@1, "the statement \"state\""); }
|   STATE OPEN_BRACKET shader_sequence CLOSE_BRACKET
                                        { scene.context.ignored(@1, "the statement \"state\""); }
|   FRAME BUFFER INTEGER %prec BUFFER   { scene.context.ignored(@1, "the statement \"frame buffer\""); }
|   FRAME BUFFER INTEGER STRING         { scene.context.ignored(@1, "the statement \"frame buffer\""); }
|   MAXDISPLACE numbers
|   MAX DISPLACE numbers
|   SHADING SAMPLES numbers
|   TASK SIZE numbers
|   ACCELERATION acceleration
|   BSP SIZE numbers
|   BSP DEPTH numbers
|   BSP MEMORY numbers
|   BSP SHADOW boolean
|   GRID SIZE numbers
|   GRID DEPTH numbers
|   GRID RESOLUTION numbers
|   APPROXIMATE approximation
|   SAMPLELOCK boolean
|   FIELD any_word
|   FIELD EVEN
|   FIELD ODD
|   FIELD INTEGER
|   INHERITANCE name
|   TRAVERSAL any_word
|   TRAVERSAL STRING
|   LUMINANCE SYMBOL numbers
|   DIAGNOSTIC diagnosed
|   FINALGATHER feature                 { scene.options.feature("finalgather", @1, $2); }
|   GLOBILLUM feature                   { scene.options.feature("globillum", @1, $2); }
|   CAUSTIC feature                     { scene.options.feature("caustic", @1, $2); }
|   IRRADIANCE words                    { scene.options.feature("irradiance", @1, $2); }
|   PHOTON TRACE DEPTH numbers
|   PHOTON AUTOVOLUME boolean           { scene.options.feature("photon autovolume", @1, $3); }
|   PHOTONVOL words                     { scene.options.feature("photonvol", @1, $2); }
|   PHOTONMAP feature
|   SHADOWMAP feature                   { scene.options.feature("shadowmap", @1, $2); }
|   LIGHTMAP words                      { scene.options.feature("lightmap", @1, $2); }
|   AUTOVOLUME boolean                  { scene.options.feature("autovolume", @1, $2); }
;
/* True when it switches the feature on and does not only say how it is. */
feature:
    words                               { $$ = $1; }
|   DETAIL                              { $$ = true; }
|   FILE STRING                         { $$ = false; }
|   FILE names                          { $$ = false; }
|   CAMERA name                         { $$ = false; }
|   feature_part                        { $$ = false; }
|   feature_part words                  { $$ = false; }
;
feature_part:
    CONTRAST
|   FILTER
|   FILTER BOX
|   MERGE
|   MOTION
|   SAMPLES
|   TRACE
|   TRACE DEPTH
|   WINDOW
;
diagnosed:
    words
|   SAMPLES boolean
|   PHOTON words
|   PHOTON IRRADIANCE numbers
|   FINALGATHER boolean
|   GRID words
|   GRID OBJECT number
|   GRID CAMERA number
|   BSP words
|   BSP DEPTH
|   BSP SIZE
;
acceleration:
    words
|   BSP
|   LARGE BSP
|   GRID
;
shader_sequence:
    shader
|   shader_sequence shader
|   shader_sequence COMMA shader
;
approximation:
    approximated approximation_words
;
approximated:
    %empty
|   SURFACE
|   CURVE
|   SPACE CURVE
|   SUBDIVISION SURFACE
|   DISPLACE
;
approximations:
    approximation
|   approximations COMMA approximation
;
/* Free-form surfaces, which are not there, are named behind it. */
object_approximation:
    approximation
|   object_approximation STRING
;
approximation_words:
    SYMBOL
|   number
|   approximation_words SYMBOL
|   approximation_words number
;

/* ---- cameras ------------------------------------------------------------------------------------------------ */

camera:
    CAMERA name                         { scene.camera.begin($2); scene.context.expectation = "a camera statement"; }
    camera_statements END CAMERA        { scene.camera.end(); scene.context.expectation = "a command"; }
;
camera_statements:
    %empty
|   camera_statements camera_statement
;
camera_statement:
    FOCAL INFINITE                      { scene.camera.focalInfinity(); }
|   FOCAL numbers                       { scene.camera.focal({"focal", @1, $2}); }
|   APERTURE numbers                    { scene.camera.aperture({"aperture", @1, $2}); }
|   ASPECT numbers                      { scene.camera.aspect({"aspect", @1, $2}); }
|   RESOLUTION numbers                  { scene.camera.resolution({"resolution", @1, $2}); }
|   OFFSET numbers                      { scene.camera.offset({"offset", @1, $2}); }
|   WINDOW numbers                      { scene.camera.window({"window", @1, $2}); }
|   CLIP numbers                        { scene.camera.clip({"clip", @1, $2}); }
|   DOF numbers                         { scene.context.ignored(@1, "the statement \"dof\""); }
|   LENS opt_shaders                    { scene.camera.lens($2); }
|   ENVIRONMENT opt_shaders             { scene.camera.environment($2); }
|   VOLUME opt_shaders                  { scene.camera.volume($2); }
|   FRAME numbers                       { scene.camera.frame({"frame", @1, $2}); }
|   FIELD numbers                       { scene.camera.field({"field", @1, $2}); }
|   OUTPUT                              { scene.camera.clearOutputs(); }
|   OUTPUT output
|   FRAMEBUFFER name framebuffer %prec FRAMEBUFFER
                                        { scene.camera.framebuffer($2); }
|   PASS                                { Commands::unsupported("pass", @1); }
|   DATA data                           { scene.context.ignored(@1, "the user data of elements"); }
;
data:
    NULL_
|   name
;

output:
    name name                           { scene.camera.output({}, $1, $2); }
|   name output_properties name         { scene.camera.output({}, $1, $3); }
|   name name name                      { scene.camera.output($1, $2, $3); }
|   name name output_properties name    { scene.camera.output($1, $2, $4); }
|   name OPEN_PARENTHESIS               { Commands::unsupported("output shader", @1); }
|   name EQUALS                         { Commands::unsupported("output shader", @2); }
|   name name OPEN_PARENTHESIS          { Commands::unsupported("output shader", @2); }
|   EQUALS                              { Commands::unsupported("output shader", @1); }
;
output_properties:
    output_property
|   output_properties output_property
;
output_property:
    QUALITY numbers                     { scene.camera.quality({"quality", @1, $2}); }
|   COMPRESS name                       { scene.camera.compression($2); }
|   DPI number
|   EVEN
|   ODD
|   DOD
;
framebuffer:
    %empty
|   framebuffer framebuffer_property
;
framebuffer_property:
    DATATYPE name                       { scene.camera.dataType($2); }
|   FILENAME name                       { scene.camera.file($2); }
|   FILETYPE name                       { scene.camera.fileType($2); }
|   COMPRESSION name                    { scene.camera.compression($2); }
|   QUALITY numbers                     { scene.camera.quality({"quality", @1, $2}); }
|   FILTERING boolean
|   COLORPROFILE name
|   DOD boolean
|   DPI number
|   FIELD name
|   FIELD numbers                       { scene.camera.field({"field", @1, $2}); }
|   PREMULTIPLIED boolean
|   PRIMARY boolean
|   USER boolean                        { scene.camera.user($2); }
|   USEOPACITY boolean
;

/* ---- lights ------------------------------------------------------------------------------------------------- */

light:
    LIGHT name                          { scene.light.begin($2); scene.context.expectation = "a light statement"; }
    light_statements END LIGHT          { scene.light.end(); scene.context.expectation = "a command"; }
;
light_statements:
    %empty
|   light_statements light_statement
;
light_statement:
    shader                              { scene.light.shader($1); }
|   ORIGIN numbers                      { scene.light.origin({"origin", @1, $2}); }
|   DIRECTION numbers                   { scene.light.direction({"direction", @1, $2}); }
|   SPREAD numbers                      { scene.light.spread({"spread", @1, $2}); }
|   VISIBLE opt_on                      { scene.light.record().visible = $2; }
|   RECTANGLE opt_numbers               { scene.light.rectangle({"rectangle", @1, $2}); }
|   DISC opt_numbers                    { scene.light.disc({"disc", @1, $2}); }
|   SPHERE opt_numbers                  { scene.light.sphere({"sphere", @1, $2}); }
|   CYLINDER opt_numbers                { scene.light.cylinder({"cylinder", @1, $2}); }
|   OBJECT name opt_numbers             { scene.light.object($2, {"object", @1, $3}); }
|   USER opt_numbers                    { scene.light.user({"user", @1, $2}); }
|   TAG numbers                         { scene.light.label({"tag", @1, $2}); }
|   ENERGY numbers                      { scene.light.energy({"energy", @1, $2}); }
|   EXPONENT numbers                    { scene.light.exponent({"exponent", @1, $2}); }
|   DATA data                           { scene.context.ignored(@1, "the user data of elements"); }
|   EMITTER shader                      { scene.context.ignored(@1, "the emitters of lights"); }
|   CAUSTIC PHOTONS numbers
|   GLOBILLUM PHOTONS numbers
|   PHOTONS SYMBOL
|   SHADOWMAP mode
|   SHADOWMAP light_shadowmap
|   LIGHTPROFILE name                   { scene.context.ignored(@1, "the light profiles of lights"); }
;
light_shadowmap:
    RESOLUTION numbers
|   SAMPLES numbers
|   FILE STRING
|   SOFTNESS numbers
|   BIAS numbers
|   DETAIL opt_on
|   DETAIL SAMPLES numbers
|   CAMERA name
|   FILTER filter_kind opt_numbers
|   MERGE boolean
|   TRACE boolean
|   WINDOW numbers
;

/* ---- materials ---------------------------------------------------------------------------------------------- */

material:
    MATERIAL name                       { scene.material.begin($2); scene.context.expectation = "a material statement"; }
    opt_opaque opt_shaders              { scene.material.surface($5); }
    material_statements END MATERIAL    { scene.material.end(); scene.context.expectation = "a command"; }
;
opt_opaque:
    %empty
|   OPAQUE                              { scene.material.opaque(); }
;
material_statements:
    %empty
|   material_statements material_statement
;
material_statement:
    SHADOW opt_shaders                  { scene.material.shadow($2); }
|   VOLUME opt_shaders                  { scene.material.volume($2); }
|   ENVIRONMENT opt_shaders             { scene.material.environment($2); }
|   DISPLACE opt_shaders                { scene.material.unused("displacement", @1, $2); }
|   PHOTON opt_shaders                  { scene.material.unused("photon", @1, $2); }
|   PHOTONVOL opt_shaders               { scene.material.unused("photon volume", @1, $2); }
|   CONTOUR opt_shaders                 { scene.material.unused("contour", @1, $2); }
|   LIGHTMAP opt_shaders                { scene.material.unused("light map", @1, $2); }
|   DATA data                           { scene.context.ignored(@1, "the user data of elements"); }
;

/* ---- objects ------------------------------------------------------------------------------------------------ */

object:
    OBJECT opt_name                     { scene.object.begin($2); scene.context.expectation = "an object statement"; }
    object_statements END OBJECT        { scene.object.end(); scene.context.expectation = "a command"; }
;
object_statements:
    %empty
|   object_statements object_statement
;
object_statement:
    VISIBLE opt_on                      { scene.object.object().visible = $2; }
|   SHADOW mode                         { scene.object.shadow($2); }
|   TRACE mode                          { scene.object.trace($2); }
|   REFLECTION mode                     { scene.object.reflection($2); }
|   REFRACTION mode                     { scene.object.refraction($2); }
|   TRANSPARENCY mode                   { scene.object.transparency($2); }
|   FINALGATHER mode                    { scene.object.finalgather($2); }
|   TAGGED opt_on                       { scene.object.object().tagged = $2; }
|   FACE SYMBOL                         { scene.object.face({$2, @2}); }
|   TAG numbers                         { scene.object.label({"tag", @1, $2}); }
|   SELECT opt_on
|   SHADOWMAP mode
|   CAUSTIC mode
|   GLOBILLUM mode
|   SAMPLES numbers
|   SHADING SAMPLES numbers
|   MAX DISPLACE numbers
|   RAY OFFSET numbers
|   BOX opt_numbers
|   MOTION BOX opt_numbers
|   TRANSFORM opt_numbers
|   VOLUME GROUP opt_numbers
|   HARDWARE BLOCK
|   APPROXIMATE object_approximation
|   DATA data                           { scene.context.ignored(@1, "the user data of elements"); }
|   FILE                                { scene.object.unsupported("objects read from files are", @1); }
|   BASIS                               { scene.object.unsupported("free-form surfaces are", @1); }
|   other_geometry
|   GROUP                               { scene.object.beginGroup(); scene.context.expectation = "a vertex, a polygon"; }
    vectors vertices polygons END GROUP { scene.context.expectation = "an object statement"; }
;
other_geometry:
    SUBDIVISION                         { scene.object.unsupported("subdivision surfaces are", @1); }
|   SURFACE                             { scene.object.unsupported("free-form surfaces are", @1); }
|   CURVE                               { scene.object.unsupported("free-form surfaces are", @1); }
|   SPACE                               { scene.object.unsupported("space curves are", @1); }
|   TRILIST                             { scene.object.unsupported("triangle lists (\"trilist\") are", @1); }
|   CCMESH                              { scene.object.unsupported("subdivision surfaces (\"ccmesh\") are", @1); }
|   HAIR                                { scene.object.unsupported("hair is", @1); }
;

vectors:
    %empty
|   vectors real real real              { scene.object.vector($2, $3, $4); }
|   vectors BINARY_VECTOR               { scene.object.vector($2); }
;

vertices:
    %empty
|   vertices vertex
;
vertex:
    V INTEGER                           { scene.object.vertex($2, @2); }
|   vertex N INTEGER                    { scene.object.normal($3, @3); }
|   vertex T INTEGER                    { scene.object.texture($3, @3); }
|   vertex T INTEGER INTEGER INTEGER    { scene.object.texture($3, @3); scene.object.bumpBasis($4, @4, $5, @5); }
|   vertex M INTEGER                    { scene.object.motion($3, @3); }
|   vertex U INTEGER                    { scene.object.unused($3, @3); }
|   vertex D derivatives                { scene.object.endDerivatives(@2); }
|   vertex CUSP opt_numbers
|   vertex CONIC opt_numbers
|   vertex CORNER opt_numbers
|   vertex DART opt_numbers
;
/* How many there may be is not the grammar's business: the message then says how many there are. */
derivatives:
    INTEGER                             { scene.object.derivative($1, @1); }
|   derivatives INTEGER                 { scene.object.derivative($2, @2); }
;

polygons:
    %empty
|   polygons polygon                    { scene.object.endPolygon(); }
|   polygons APPROXIMATE object_approximation
|   polygons other_geometry
;
polygon:
    polygon_kind                        { scene.object.beginPolygon($1, {"", @1}); }
|   polygon_kind name                   { scene.object.beginPolygon($1, {$2.text, @1}); }
|   polygon INTEGER                     { scene.object.index($2, @2); }
|   polygon HOLE                        { scene.object.beginHole(@2); }
;
polygon_kind:
    C                                   { $$ = ObjectBuilder::PolygonKind::convex; }
|   CP                                  { $$ = ObjectBuilder::PolygonKind::convex; }
|   P                                   { $$ = ObjectBuilder::PolygonKind::any; }
|   STRIP                               { $$ = ObjectBuilder::PolygonKind::strip; }
|   FAN                                 { $$ = ObjectBuilder::PolygonKind::fan; }
;

/* ---- instances and groups ----------------------------------------------------------------------------------- */

instance:
    INSTANCE name                       { scene.instance.begin($2); scene.context.expectation = "an instance statement"; }
    instance_item instance_statements instance_parameters END INSTANCE
                                        { scene.instance.end(); scene.context.expectation = "a command"; }
;
instance_item:
    %empty
|   name                                { scene.instance.item($1); }
|   GEOMETRY shaders                    { scene.instance.geometry($2); }
;
instance_parameters:
    %empty
|   OPEN_PARENTHESIS arguments CLOSE_PARENTHESIS
                                        { scene.context.ignored(@1, "the parameters of instances"); }
;
instance_statements:
    %empty
|   instance_statements instance_statement
;
instance_statement:
    HIDE opt_on                         { scene.instance.record().off = $2; }
|   VISIBLE mode                        { scene.instance.visible($2); }
|   SHADOW mode                         { scene.instance.shadow($2); }
|   TRACE mode                          { scene.instance.trace($2); }
|   REFLECTION mode                     { scene.instance.reflection($2); }
|   REFRACTION mode                     { scene.instance.refraction($2); }
|   TRANSPARENCY mode                   { scene.instance.transparency($2); }
|   CAUSTIC mode                        { scene.instance.caustic($2); }
|   GLOBILLUM mode                      { scene.instance.globillum($2); }
|   FINALGATHER mode                    { scene.instance.finalgather($2); }
|   SHADOWMAP mode
|   FACE SYMBOL                         { scene.instance.face({$2, @2}); }
|   SELECT opt_on                       { scene.instance.record().select = $2; }
|   SHADING SAMPLES numbers             { scene.instance.shadingSamples({"shading samples", @1, $3}); }
|   TRANSFORM opt_numbers               { scene.instance.transform({"transform", @1, $2}); }
|   TRANSFORM shader                    { Commands::unsupported("transform shader", @1); }
|   MOTION TRANSFORM opt_numbers        { scene.instance.motionTransform({"motion transform", @1, $3}); }
|   MOTION OFF                          { scene.instance.motionOff(); }
|   OVERRIDE                            { scene.instance.record().mtl_override = miTRUE; }
|   MATERIAL                            { scene.instance.materials({}); }
|   MATERIAL name                       { scene.instance.materials({$2}); }
|   MATERIAL names                      { scene.instance.materials($2); }
|   LIGHT names                         { scene.instance.lights($2, false); }
|   LIGHT exclusive names               { scene.instance.lights($3, true); }
|   LIGHT SHADOW names                  { scene.instance.shadowLights($3, false); }
|   LIGHT SHADOW exclusive names        { scene.instance.shadowLights($4, true); }
|   APPROXIMATE approximation
|   APPROXIMATE OPEN_BRACKET approximations CLOSE_BRACKET
|   TAG numbers                         { scene.instance.label({"tag", @1, $2}); }
|   DATA data                           { scene.context.ignored(@1, "the user data of elements"); }
;
exclusive:
    name                                { choose("light", $1.text, @1, {{"exclusive", 1}}); }
;

group:
    INSTGROUP name                      { scene.group.begin($2); scene.context.expectation = "an instance"; }
    members END INSTGROUP               { scene.group.end(); scene.context.expectation = "a command"; }
;
members:
    %empty
|   members name                        { scene.group.member($2); }
|   members TAG INTEGER
|   members DATA data                   { scene.context.ignored(@2, "the user data of elements"); }
;

%%
