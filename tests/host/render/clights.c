/* SPDX-License-Identifier: BSD-3-Clause
 *
 * A user area light in plain C, a row of lamps, that keeps a table for each of its instances; a material that
 * it lights; and a geometry shader that turns a light into a user area light. */
#include <geoshader.h>
#include <shader.h>

struct row_light {
    miColor color;
    miInteger lamps;
    miScalar gap;
    miBoolean average;
};

struct row_table {
    int lamps;
    miVector place[1];
};

/* Tables that there are now: a test looks at it. */
DLLEXPORT int row_tables = 0;

static void **row_slot(miState *state)
{
    void **slot;
    mi_query(miQ_FUNC_USERPTR, state, miNULLTAG, &slot);
    return slot;
}

DLLEXPORT int row_light_version(void) { return 1; }

DLLEXPORT miBoolean row_light_init(miState *state, struct row_light *paras, miBoolean *inst_init_req)
{
    struct row_table *table;
    int lamps, k;
    miScalar gap;

    if (!paras) { /* for the shader as a whole */
        *inst_init_req = miTRUE;
        return miTRUE;
    }
    lamps = *(miInteger *)mi_eval(state, &paras->lamps);
    gap = *(miScalar *)mi_eval(state, &paras->gap);
    table = mi_mem_int_allocate(__FILE__, __LINE__,
                                (int)sizeof(struct row_table) + lamps * (int)sizeof(miVector));
    table->lamps = lamps;
    for (k = 0; k < lamps; k++) {
        table->place[k].x = gap * (miScalar)k;
        table->place[k].y = 0;
        table->place[k].z = 0;
    }
    *row_slot(state) = table;
    row_tables++;
    return miTRUE;
}

DLLEXPORT miBoolean row_light_exit(miState *state, struct row_light *paras)
{
    if (paras) {
        void **slot = row_slot(state);
        mi_mem_int_release(__FILE__, __LINE__, *slot);
        *slot = 0;
        row_tables--;
    }
    return miTRUE;
}

static double row_length(const miVector *v)
{
    double square = (double)v->x * v->x + (double)v->y * v->y + (double)v->z * v->z;
    double root = 1;
    int step;
    for (step = 0; step < 60; step++) /* Newton's, so that nothing but the renderer is needed */
        root = 0.5 * (root + square / root);
    return root;
}

DLLEXPORT miBoolean row_light(miColor *result, miState *state, struct row_light *paras)
{
    const struct row_table *table = *row_slot(state);
    const miVector *place;

    if (state->type != miRAY_LIGHT)
        return miFALSE;
    if (state->count == table->lamps) {
        if (!*(miBoolean *)mi_eval(state, &paras->average))
            state->count = 1;
        return 2;
    }
    place = &table->place[state->count];
    state->org.x += place->x; /* from where the light is */
    state->org.y += place->y;
    state->org.z += place->z;
    state->dir.x = state->point.x - state->org.x;
    state->dir.y = state->point.y - state->org.y;
    state->dir.z = state->point.z - state->org.z;
    state->dist = row_length(&state->dir);
    state->dir.x = (miScalar)(state->dir.x / state->dist);
    state->dir.y = (miScalar)(state->dir.y / state->dist);
    state->dir.z = (miScalar)(state->dir.z / state->dist);
    state->dot_nd = -(state->dir.x * state->normal.x + state->dir.y * state->normal.y +
                      state->dir.z * state->normal.z);
    if (state->dot_nd < 0)
        return miFALSE;
    *result = *(miColor *)mi_eval(state, &paras->color);
    return mi_trace_shadow(result, state);
}

struct row_lit {
    miTag light;
};

DLLEXPORT int row_lit_version(void) { return 1; }

DLLEXPORT miBoolean row_lit(miColor *result, miState *state, struct row_lit *paras)
{
    miTag light = *(miTag *)mi_eval(state, &paras->light);
    miColor sum = {0, 0, 0, 1}, color;
    miVector dir;
    float dot_nl;
    int samples = 0;

    while (mi_sample_light(&color, &dir, &dot_nl, state, light, &samples)) {
        sum.r += dot_nl * color.r;
        sum.g += dot_nl * color.g;
        sum.b += dot_nl * color.b;
    }
    if (samples) {
        sum.r /= (float)samples;
        sum.g /= (float)samples;
        sum.b /= (float)samples;
    }
    *result = sum;
    return miTRUE;
}

struct row_maker {
    miTag light;        /* an instance */
    miBoolean careless; /* leaves its edits open */
};

DLLEXPORT int row_maker_version(void) { return 1; }

DLLEXPORT miBoolean row_maker_init(miState *state, struct row_maker *paras, miBoolean *inst_init_req)
{
    miTag tag;
    miInstance *instance;
    miLight *light;

    if (!paras) {
        *inst_init_req = miTRUE;
        return miTRUE;
    }
    tag = *(miTag *)mi_eval(state, &paras->light);
    instance = mi_scene_edit(tag);
    light = mi_scene_edit(instance->item);
    light->area = miLIGHT_USER;
    if (*(miBoolean *)mi_eval(state, &paras->careless))
        return miTRUE;
    mi_scene_edit_end(instance->item);
    mi_scene_edit_end(tag);
    return miTRUE;
}

DLLEXPORT miBoolean row_maker(miTag *result, miState *state, struct row_maker *paras)
{
    (void)result; /* it creates nothing */
    (void)state;
    (void)paras;
    return miTRUE;
}
