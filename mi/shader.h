/* SPDX-License-Identifier: BSD-3-Clause
 *
 * The renderer's shader interface, as far as this project uses it: our own declarations, binary compatible
 * with the renderer's generations 3.8 to 3.14 on Linux x86-64. Usable from C (11 or later) and C++.
 *
 * Names are the renderer's own, so that shader sources compile unchanged against the renderer's headers;
 * `ghost_flag` is the one exception, its published name being unknown. Fields that nobody here uses keep their
 * place all the same: a record's layout is what this file is for, and every offset that matters is asserted
 * below the record.
 */
#ifndef MI_SHADER_H
#define MI_SHADER_H

#include <assert.h>
#include <stddef.h>

/* Entry points are marked with this; on Linux visibility is the build's business. */
#ifndef DLLEXPORT
#define DLLEXPORT
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- base types ------------------------------------------------------------------------------------- */

typedef int miBoolean;
#define miFALSE 0
#define miTRUE 1

typedef unsigned char miCBoolean;
typedef unsigned char miUchar;
typedef unsigned char miUint1;
typedef signed char miSint1;
typedef short miSint2;
typedef unsigned short miUint2;
typedef unsigned short miUshort;
typedef int miInteger;
typedef int miSint4;
typedef unsigned int miUint;
typedef unsigned int miUint4;
typedef unsigned int miTag;
typedef unsigned int miGeoIndex;
typedef unsigned long miUlong;
typedef long miSlong;
typedef float miScalar;
typedef double miGeoScalar;

#define miNULLTAG 0u

typedef struct miVector { miScalar x, y, z; } miVector;
typedef struct miColor { miScalar r, g, b, a; } miColor;
typedef struct miRange { miScalar min, max; } miRange;

/* Row-major, translation in elements 12 to 14: a point is a row vector on the left. */
typedef miScalar miMatrix[16];

typedef union miPointer { void* p; char bytes[8]; } miPointer;
typedef union miLock { void* lock; char bytes[8]; } miLock;

static_assert(sizeof(miVector) == 12, "three packed floats");
static_assert(sizeof(miColor) == 16, "four packed floats");
static_assert(sizeof(miMatrix) == 64, "sixteen packed floats");
static_assert(sizeof(miPointer) == 8 && sizeof(miLock) == 8 && sizeof(void*) == 8, "LP64 only");

/* ---- enumerations ----------------------------------------------------------------------------------- */

typedef enum miRay_type {
    miRAY_EYE = 0,
    miRAY_TRANSPARENT = 1,
    miRAY_REFLECT = 2,
    miRAY_REFRACT = 3,
    miRAY_LIGHT = 4,
    miRAY_SHADOW = 5,
    miRAY_ENVIRONMENT = 6,
    miRAY_NONE = 7,
    miPHOTON_ABSORB = 8,
    miPHOTON_LIGHT = 9,
    miPHOTON_REFLECT_SPECULAR = 10,
    miPHOTON_REFLECT_GLOSSY = 11,
    miPHOTON_REFLECT_DIFFUSE = 12,
    miPHOTON_TRANSMIT_SPECULAR = 13,
    miPHOTON_TRANSMIT_GLOSSY = 14,
    miPHOTON_TRANSMIT_DIFFUSE = 15,
    miRAY_DISPLACE = 16,
    miRAY_OUTPUT = 17,
    miPHOTON_SCATTER_VOLUME = 18,
    miPHOTON_TRANSPARENT = 19,
    miRAY_FINALGATHER = 20,
    miRAY_LM_VERTEX = 21,
    miRAY_LM_MESH = 22,
    miPHOTON_EMIT_GLOBILLUM = 23,
    miPHOTON_EMIT_CAUSTIC = 24,
    miRAY_PROBE = 25,
    miRAY_HULL = 26,
    miPHOTON_HULL = 27,
    miRAY_NO_TYPES = 28
} miRay_type;

/* What mi_db_type returns. */
typedef enum miScene_types {
    miSCENE_NONE = 0,
    miSCENE_FUNCTION_DECL = 1,
    miSCENE_FUNCTION = 2,
    miSCENE_MATERIAL = 3,
    miSCENE_LIGHT = 4,
    miSCENE_CAMERA = 5,
    miSCENE_OBJECT = 7,
    miSCENE_INSTANCE = 10,
    miSCENE_GROUP = 11,
    miSCENE_OPTIONS = 12,
    miSCENE_IMAGE = 13,
    miSCENE_STRING = 29,
    miSCENE_USERDATA = 34,
    miSCENE_LIGHTPROFILE = 44
} miScene_types;

typedef enum miLight_type { miLIGHT_ORIGIN = 0, miLIGHT_DIRECTION = 1, miLIGHT_SPOT = 2 } miLight_type;

typedef enum miLight_area {
    miLIGHT_NONE = 0,
    miLIGHT_RECTANGLE = 1,
    miLIGHT_DISC = 2,
    miLIGHT_SPHERE = 3,
    miLIGHT_CYLINDER = 4,
    miLIGHT_OBJECT = 5,
    miLIGHT_USER = 6
} miLight_area;

typedef enum miFunction_type {
    miFUNCTION_C = 0,
    miFUNCTION_PHEN = 1,
    miFUNCTION_C_REQ = 2,
    miFUNCTION_OUTFILE = 3,
    miFUNCTION_DATA = 4,
    miFUNCTION_PASS_SAVE = 5,
    miFUNCTION_PASS_PREP = 6,
    miFUNCTION_PASS_MERGE = 7,
    miFUNCTION_PASS_DELETE = 8,
    miFUNCTION_HARDWARE = 9
} miFunction_type;

typedef enum miQ_type {
    miQ_INST_FUNCTION = 3,
    miQ_INST_GLOBAL_TO_LOCAL = 4,
    miQ_INST_LOCAL_TO_GLOBAL = 5,
    miQ_INST_IDENTITY = 6,
    miQ_INST_ITEM = 7,
    miQ_INST_PARENT = 8,
    miQ_LIGHT_AREA = 24,
    miQ_LIGHT_AREA_SAMPLES_U = 38,
    miQ_LIGHT_AREA_SAMPLES_V = 39,
    miQ_FUNC_USERPTR = 51, /* void**: the address of the current instance's user slot */
    miQ_FUNC_LOCK = 52,
    miQ_DECL_LOCK = 60,
    miQ_TRANS_INTERNAL_TO_WORLD = 72,
    miQ_TRANS_INTERNAL_TO_CAMERA = 73,
    miQ_TRANS_INTERNAL_TO_OBJECT = 74,
    miQ_TRANS_WORLD_TO_INTERNAL = 75,
    miQ_TRANS_CAMERA_TO_INTERNAL = 76,
    miQ_TRANS_OBJECT_TO_INTERNAL = 77,
    miQ_TRANS_WORLD_TO_CAMERA = 78,
    miQ_TRANS_WORLD_TO_OBJECT = 79,
    miQ_TRANS_CAMERA_TO_WORLD = 80,
    miQ_TRANS_OBJECT_TO_WORLD = 81,
    miQ_DECL_VERSION = 89
} miQ_type;

static_assert(sizeof(miRay_type) == 4 && sizeof(miScene_types) == 4 && sizeof(miLight_type) == 4 &&
                  sizeof(miLight_area) == 4 && sizeof(miFunction_type) == 4 && sizeof(miQ_type) == 4,
              "enumerations are int-sized");

/* ---- records ---------------------------------------------------------------------------------------- */

/* One shader with its parameter block, which begins at `parameters` and is longer than declared here. */
typedef struct miFunction {
    miPointer sparep1[7];
    miFunction_type type;
    miUint out_typemap;
    miUint out_interpmap;
    miTag function_decl;
    miTag next_function;
    miTag parameter_indirect;
    miTag interfacephen;
    miBoolean spare0;
    int parameter_size; /* bytes of the block, array payloads included */
    int result_size;    /* bytes of the result */
    int ghost_offs;     /* signed byte distance from a parameter to its ghost tag */
    miTag pass_read;
    miTag pass_write;
    miSint1 pass_maxsamples;
    miCBoolean ghost_flag; /* exactly 1: the ghost tags are to be consulted */
    miCBoolean spare[2];
    miCBoolean no_expl_params;
    miCBoolean cloned;
    miCBoolean spare3[5];
    miUchar label;
    char parameters[8];
} miFunction;

static_assert(offsetof(miFunction, type) == 56, "miFunction.type");
static_assert(offsetof(miFunction, function_decl) == 68, "miFunction.function_decl");
static_assert(offsetof(miFunction, next_function) == 72, "miFunction.next_function");
static_assert(offsetof(miFunction, parameter_size) == 88, "miFunction.parameter_size");
static_assert(offsetof(miFunction, result_size) == 92, "miFunction.result_size");
static_assert(offsetof(miFunction, ghost_offs) == 96, "miFunction.ghost_offs");
static_assert(offsetof(miFunction, ghost_flag) == 109, "miFunction.ghost_flag");
static_assert(offsetof(miFunction, no_expl_params) == 112, "miFunction.no_expl_params");
static_assert(offsetof(miFunction, label) == 119, "miFunction.label");
static_assert(offsetof(miFunction, parameters) == 120, "miFunction.parameters");
static_assert(sizeof(miFunction) == 128, "miFunction");

typedef struct miCamera {
    miBoolean orthographic;
    float focal;
    float aperture; /* width of the image plane */
    float aspect;   /* width over height */
    miRange clip;
    int x_resolution;
    int y_resolution;
    struct { int xl, yl, xh, yh; } window;
    miTag volume;
    miTag environment;
    miTag lens;
    miTag output;
    int frame;
    float frame_time;
    int frame_field;
    float x_offset;
    float y_offset;
    miTag userdata;
    miTag pass;
    float focus;
    float radius;
    miBoolean pass_mask;
    miTag buffertag;
    int spare[10];
} miCamera;

static_assert(offsetof(miCamera, clip) == 16, "miCamera.clip");
static_assert(offsetof(miCamera, x_resolution) == 24, "miCamera.x_resolution");
static_assert(offsetof(miCamera, y_resolution) == 28, "miCamera.y_resolution");
static_assert(offsetof(miCamera, window) == 32, "miCamera.window");
static_assert(offsetof(miCamera, volume) == 48, "miCamera.volume");
static_assert(offsetof(miCamera, frame) == 64, "miCamera.frame");
static_assert(offsetof(miCamera, x_offset) == 76, "miCamera.x_offset");
static_assert(offsetof(miCamera, buffertag) == 104, "miCamera.buffertag");
static_assert(sizeof(miCamera) == 148, "miCamera");

typedef struct miApprox {
    miScalar cnst[6];
    miUchar sharp;
    miUchar flag;
    miUchar any;
    miUchar view_dep;
    int method;
    int style;
    miUshort subdiv[2];
    miGeoIndex max;
    miScalar grading;
    miUint4 spare[2];
} miApprox;

static_assert(sizeof(miApprox) == 56, "miApprox");

typedef struct miOptions {
    miBoolean trace;
    int scanline;
    miUint motion;
    miBoolean shadow_sort;
    miBoolean preview_mode;
    int reflection_depth;
    int refraction_depth;
    int trace_depth;
    int min_samples;
    int max_samples;
    miColor contrast;
    miColor time_contrast;
    miTag contour_contrast;
    miTag contour_store;
    miBoolean caustic;
    miBoolean globillum;
    int caustic_accuracy;
    float caustic_radius;
    int globillum_accuracy;
    float globillum_radius;
    float caustic_filter_const;
    float filter_size_x;
    float filter_size_y;
    float jitter;
    float shutter;
    short grid_res[3];
    short grid_max_size;
    short grid_max_depth;
    miSint1 def_min_samples;
    miSint1 def_max_samples;
    int space_max_size;
    int space_max_depth;
    float shutter_delay;
    int no_images;
    miApprox approx;
    miApprox approx_displace;
    miUint spare1[19];
    miTag images_info;
    miTag finalgather_file;
    miCBoolean space_shadow_separate;
    miUchar finalgather_filter;
    char rast_collect_rate;
    char rast_motion_resample;
    char use_shadow_maps;
    miCBoolean rendering_shadow_maps;
    char recompute_shadow_maps;
    char shadow; /* 0 off, 1 on, 'l' sorted, 's' segments */
    char caustic_filter;
    miCBoolean finalgather_rebuild;
    char filter;
    char acceleration;
    char face; /* 'f', 'b', 'a' */
    char field;
    char smethod;
    char render_space; /* 'o', 'c', 'm' */
    miCBoolean pixel_preview;
    miCBoolean task_preview;
    miCBoolean visible_lights;
    miCBoolean shadow_map_motion;
    int task_size;
    miBoolean strips;
    miTag photonmap_file;
    miBoolean photonmap_rebuild;
    int photon_reflection_depth;
    int photon_refraction_depth;
    int photon_trace_depth;
    int space_max_mem;
    miColor caustic_scale;
    miColor globillum_scale;
    miColor finalgather_scale;
    miColor finalgather_sec_scale;
    miUint spare4;
    miColor photonvol_scale;
    miUint spare2[6];
    miTag spectrum_blueprint;
    miTag input_cprof;
    miTag white_cprof;
    miTag render_cprof;
    miTag fb_dir;
    miCBoolean no_lens;
    miCBoolean no_volume;
    miCBoolean no_geometry;
    miCBoolean no_displace;
    miUint1 no_output;
    miCBoolean no_merge;
    miUint1 caustic_flag;
    miUint1 diagnostic_mode;
    int photonvol_accuracy;
    float photonvol_radius;
    miUint1 globillum_flag;
    miCBoolean samplelock;
    miCBoolean autovolume;
    miCBoolean finalgather_view;
    miCBoolean no_hair;
    miUint1 n_motion_vectors;
    miCBoolean no_pass;
    miCBoolean photon_autovolume;
    miCBoolean no_predisplace;
    miUint1 fg_reflection_depth;
    miUint1 fg_refraction_depth;
    miUint1 fg_trace_depth;
    float fg_falloff_start;
    float fg_falloff_stop;
    miTag userdata;
    miBoolean irradiance_particles;
    miUint4 spare5[23];
    int finalgather;
    int finalgather_rays;
    float finalgather_maxradius;
    float finalgather_minradius;
    float diag_photon_density;
    float diag_grid_size;
    miBoolean desaturate;
    miBoolean dither;
    miBoolean nopremult;
    int colorclip;
    float gamma;
    miTag inh_funcdecl;
    miColor luminance_weight;
    int spare0[2];
    miCBoolean inh_is_traversal;
    miUint1 hardware;
    miUint1 hardware_diagnostic;
    miUint1 shadowmap_flags;
    float maxdisplace;
    miScalar shadowmap_bias;
    miUint1 hwshader;
    miCBoolean photonmap_only;
    miUint1 lightmap;
    miUint1 fg_diffuse_depth;
    miTag state_func;
    float fg_presamp_density;
    float rast_shading_samples;
    miUint1 fb_virtual;
    miCBoolean spare3[3];
    miTag string_options;
    int spare[9];
} miOptions;

static_assert(offsetof(miOptions, contrast) == 40, "miOptions.contrast");
static_assert(offsetof(miOptions, shutter) == 120, "miOptions.shutter");
static_assert(offsetof(miOptions, space_max_size) == 136, "miOptions.space_max_size");
static_assert(offsetof(miOptions, approx) == 152, "miOptions.approx");
static_assert(offsetof(miOptions, images_info) == 340, "miOptions.images_info");
static_assert(offsetof(miOptions, shadow) == 355, "miOptions.shadow");
static_assert(offsetof(miOptions, face) == 360, "miOptions.face");
static_assert(offsetof(miOptions, task_size) == 368, "miOptions.task_size");
static_assert(offsetof(miOptions, spectrum_blueprint) == 508, "miOptions.spectrum_blueprint");
static_assert(offsetof(miOptions, photonvol_accuracy) == 536, "miOptions.photonvol_accuracy");
static_assert(offsetof(miOptions, finalgather) == 664, "miOptions.finalgather");
static_assert(offsetof(miOptions, gamma) == 704, "miOptions.gamma");
static_assert(offsetof(miOptions, string_options) == 768, "miOptions.string_options");
static_assert(sizeof(miOptions) == 808, "miOptions");

typedef struct miTransform {
    miTag function;
    float time;
    miMatrix global_to_local;
    miMatrix local_to_global;
    miCBoolean identity;
    miCBoolean spare[3];
    int id;
} miTransform;

static_assert(offsetof(miTransform, global_to_local) == 8, "miTransform.global_to_local");
static_assert(offsetof(miTransform, local_to_global) == 72, "miTransform.local_to_global");
static_assert(sizeof(miTransform) == 144, "miTransform");

/* Visible: 2 on, 1 off, 0 unset. Shadow-like modes: bits 1 and 2 force casting and receiving on, bits 4 and 8
 * force them off; 0 unset. */
typedef struct miInstance {
    miTransform tf;
    miMatrix motion_transform;
    miTag item; /* the instanced element */
    miTag material;
    miTag parent; /* of a leaf instance: the scene instance it was derived from */
    miTag boxes;
    miTag next;
    miTag prev;
    int mtl_array_size;
    miTag light_obj_ring;
    miTag userdata;
    miUint label;
    miTag geogroup;
    miCBoolean off;
    miUint1 gen_motion;
    miUint1 visible;
    miUint1 shadow;
    miUint1 reflection;
    miUint1 refraction;
    miUint1 transparency;
    miUint1 caustic;
    miUint1 globillum;
    miUint1 finalgather;
    char face;
    miCBoolean temp_material;
    miUint1 select;
    miCBoolean mtl_override;
    miUshort history_size;
    miTag approx_list;
    miCBoolean approx_override;
    miUint1 hardware;
    miUint1 shadowmap;
    miCBoolean exclusive;
    miTag light_list;
    miUint1 spare1[3];
    miCBoolean shadow_excl;
    miTag shadow_list;
    miScalar shading_samples;
    int spare[4];
    miTag param_decl;
    int param_size;
    char param[8];
} miInstance;

static_assert(offsetof(miInstance, motion_transform) == 144, "miInstance.motion_transform");
static_assert(offsetof(miInstance, item) == 208, "miInstance.item");
static_assert(offsetof(miInstance, parent) == 216, "miInstance.parent");
static_assert(offsetof(miInstance, off) == 252, "miInstance.off");
static_assert(offsetof(miInstance, light_list) == 276, "miInstance.light_list");
static_assert(offsetof(miInstance, param) == 316, "miInstance.param");
static_assert(sizeof(miInstance) == 324, "miInstance");

typedef struct miLight {
    miLight_type type;
    miLight_area area;
    miScalar exponent;
    unsigned int caustic_store_photons;
    unsigned int global_store_photons;
    miColor energy;
    miTag shader;
    miTag emitter;
    miVector origin;
    miVector direction;
    float spread; /* cosine of the half opening angle */
    union {
        struct { miVector edge_u, edge_v; } rectangle;
        struct { miVector normal; miScalar radius; } disc;
        struct { miScalar radius; } sphere;
        struct { miVector axis; float radius; } cylinder;
        struct { miTag object; } object;
    } primitive;
    short samples_u;
    short samples_v;
    short low_samples_u;
    short low_samples_v;
    short low_level;
    miUint1 shadowmap_flags;
    miUint1 dirlight_has_org;
    miBoolean use_shadow_maps;
    miTag shadowmap_file;
    int shadowmap_resolution;
    float shadowmap_softness;
    int shadowmap_samples;
    miBoolean visible;
    miUint label;
    miTag userdata;
    unsigned int caustic_emit_photons;
    unsigned int global_emit_photons;
    miTag hardware;
    short shmap_h_min;
    short shmap_h_max;
    short shmap_v_min;
    short shmap_v_max;
    miTag emitter_spectrum;
    miScalar shadowmap_bias;
    struct { miTag camera; miScalar f[3]; miSint2 samples; miUchar c[2]; } shmap;
    miTag lightprofile;
    miCBoolean use_lprof;
    miCBoolean photons_only;
    miCBoolean spare1[2];
    int spare4[8];
} miLight;

static_assert(offsetof(miLight, area) == 4, "miLight.area");
static_assert(offsetof(miLight, origin) == 44, "miLight.origin");
static_assert(offsetof(miLight, spread) == 68, "miLight.spread");
static_assert(offsetof(miLight, primitive) == 72, "miLight.primitive");
static_assert(offsetof(miLight, samples_u) == 96, "miLight.samples_u");
static_assert(offsetof(miLight, samples_v) == 98, "miLight.samples_v");
static_assert(offsetof(miLight, visible) == 128, "miLight.visible");
static_assert(offsetof(miLight, shmap) == 168, "miLight.shmap");
static_assert(offsetof(miLight, lightprofile) == 188, "miLight.lightprofile");
static_assert(sizeof(miLight) == 228, "miLight");

typedef struct miMaterial {
    miBoolean opaque;
    miTag shader;
    miTag displace;
    miTag shadow;
    miTag volume;
    miTag environment;
    miTag contour;
    miTag photon;
    miTag photonvol;
    miTag lightmap;
    miTag hardware;
    miUint2 builtin_index;
    miUint2 spare;
    miUint4 spare2[2];
} miMaterial;

static_assert(offsetof(miMaterial, shadow) == 12, "miMaterial.shadow");
static_assert(offsetof(miMaterial, environment) == 20, "miMaterial.environment");
static_assert(sizeof(miMaterial) == 56, "miMaterial");

#define MI_STATE_VERSION 2

/* What a shader is told about the sample at hand. Points, directions and normals are in internal space. */
typedef struct miState {
    int version;
    miTag camera_inst;
    const miCamera* camera;
    const miOptions* options;
    miLock global_lock;
    miUint qmc_instance;
    miUint pad;
    struct miTs* ts; /* the renderer's own per-thread data */
    float raster_x;
    float raster_y;
    struct miState* parent;
    miRay_type type;
    miUchar qmc_component;
    miUint1 scanline;
    miCBoolean inv_normal;
    char face;
    void* spare0;
    void* cache;
    int reflection_level;
    int refraction_level;
    miVector org;
    miVector dir;
    double dist;
    float time;
    miScalar ior;
    miScalar ior_in;
    miTag material;
    miTag volume;
    miTag environment;
    miTag refraction_volume;
    miUint label;
    miTag instance;
    miTag light_instance;
    void* pri;
    float importance;
    float bary[4];
    miVector point;
    miVector normal;
    miVector normal_geom;
    miScalar dot_nd;
    double shadow_tol;
    miVector* tex_list;
    miVector* bump_x_list;
    miVector* bump_y_list;
    miVector motion;
    miVector* derivs;
    miVector tex;
    const miFunction* shader; /* the function now running */
    struct miState* child;
    short thread;
    miUshort count; /* area-light sample counter */
    void* user;
    int user_size;
} miState;

static_assert(offsetof(miState, camera_inst) == 4, "miState.camera_inst");
static_assert(offsetof(miState, camera) == 8, "miState.camera");
static_assert(offsetof(miState, options) == 16, "miState.options");
static_assert(offsetof(miState, raster_x) == 48, "miState.raster_x");
static_assert(offsetof(miState, raster_y) == 52, "miState.raster_y");
static_assert(offsetof(miState, parent) == 56, "miState.parent");
static_assert(offsetof(miState, type) == 64, "miState.type");
static_assert(offsetof(miState, inv_normal) == 70, "miState.inv_normal");
static_assert(offsetof(miState, cache) == 80, "miState.cache");
static_assert(offsetof(miState, reflection_level) == 88, "miState.reflection_level");
static_assert(offsetof(miState, org) == 96, "miState.org");
static_assert(offsetof(miState, dir) == 108, "miState.dir");
static_assert(offsetof(miState, dist) == 120, "miState.dist");
static_assert(offsetof(miState, time) == 128, "miState.time");
static_assert(offsetof(miState, label) == 156, "miState.label");
static_assert(offsetof(miState, instance) == 160, "miState.instance");
static_assert(offsetof(miState, pri) == 168, "miState.pri");
static_assert(offsetof(miState, importance) == 176, "miState.importance");
static_assert(offsetof(miState, point) == 196, "miState.point");
static_assert(offsetof(miState, dot_nd) == 232, "miState.dot_nd");
static_assert(offsetof(miState, shadow_tol) == 240, "miState.shadow_tol");
static_assert(offsetof(miState, tex_list) == 248, "miState.tex_list");
static_assert(offsetof(miState, motion) == 272, "miState.motion");
static_assert(offsetof(miState, tex) == 296, "miState.tex");
static_assert(offsetof(miState, shader) == 312, "miState.shader");
static_assert(offsetof(miState, child) == 320, "miState.child");
static_assert(offsetof(miState, thread) == 328, "miState.thread");
static_assert(offsetof(miState, count) == 330, "miState.count");
static_assert(offsetof(miState, user) == 336, "miState.user");
static_assert(sizeof(miState) == 352, "miState");

/* ---- functions that the renderer exports --------------------------------------------------------------- */

/* One piece of information, written through the pointer; false when it is not available or the code unknown. */
miBoolean mi_query(const miQ_type query, miState* const state, miTag tag, void* const result, ...);

/* Runs the shader that is connected to `parameter`; the pointer is to its value. Shaders call mi_eval. */
void* mi_phen_eval(miState* state, void* parameter);
void mi_flush_cache(miState* state);

void* mi_mem_int_allocate(const char* const file, const int line, const int size);
void mi_mem_int_release(const char* const file, const int line, void* block);

void* mi_db_access(miTag tag);
void mi_db_unpin(miTag tag);
int mi_db_type(miTag tag);

void mi_fatal(const char* const format, ...);
void mi_error(const char* const format, ...);
void mi_warning(const char* const format, ...);
void mi_info(const char* const format, ...);
void mi_progress(const char* const format, ...);
void mi_debug(const char* const format, ...);
void mi_vdebug(const char* const format, ...);

miBoolean mi_trace_eye(miColor* result, miState* state, miVector* origin, miVector* direction);
miBoolean mi_trace_reflection(miColor* result, miState* state, miVector* direction);
miBoolean mi_trace_refraction(miColor* result, miState* state, miVector* direction);
miBoolean mi_trace_transparent(miColor* result, miState* state);
miBoolean mi_trace_environment(miColor* result, miState* state, miVector* direction);
miBoolean mi_trace_shadow(miColor* const result, miState* const state);
miBoolean mi_sample_light(miColor* const result, miVector* const dir, float* const dot_nl, miState* const state,
                          const miTag light, int* const samples);
miBoolean mi_inclusive_lightlist(int* n, miTag** lights, miState* state);
miBoolean mi_exclusive_lightlist(int* n, miTag** lights, miState* state);
miBoolean mi_instance_lightlist(int* n, miTag** lights, miState* state);

miBoolean mi_lookup_color_texture(miColor* const result, miState* const state, const miTag texture,
                                  miVector* const coord);
void mi_opacity_set(miState* state, miColor const* const opacity);

void mi_vector_transform(miVector* const result, miVector const* const v, miMatrix const m);
void mi_vector_to_world(const miState* state, miVector* result, const miVector* v);
void mi_matrix_ident(miMatrix m);

/* The value of the parameter at `parameter`, a field of the running function's block: the field itself unless a
 * shader is connected to it. The rule of generations 3.8 to 3.14: connected means that the ghost flag is exactly 1
 * and the ghost tag is neither 0 nor 0xFFFFFFFE. Every call may run that shader again. */
static inline void* mi_eval(miState* state, void* parameter)
{
    const miFunction* const function = state->shader;
    miTag ghost;
    if (function->ghost_flag != 1)
        return parameter;
    ghost = *(const miTag*)(const void*)((const char*)parameter + function->ghost_offs);
    if (ghost == 0u || ghost == 0xFFFFFFFEu)
        return parameter;
    return mi_phen_eval(state, parameter);
}

#ifdef __cplusplus
}
#endif

#endif
