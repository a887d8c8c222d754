/* SPDX-License-Identifier: BSD-3-Clause
 *
 * What a C programmer would write for the shaders that are measured: the same parameter reads, the same arithmetic
 * and the one user-slot query of the frame, without objects. The yardstick of the benchmarks.
 */
#include <shader.h>

#include <math.h>
#include <stdlib.h>

#define EXPORT __attribute__((visibility("default")))

struct scalars { miScalar input1, input2; };
struct vectors { miVector input; };
struct colors {
    miColor input1;
    miBoolean useAlpha1;
    miScalar alpha1;
    miColor input2;
    miBoolean useAlpha2;
    miScalar alpha2;
    miScalar weight;
};

struct slot {
    miColor input;
    miScalar weight;
    miBoolean enable;
};
struct slots { struct slot slot[16]; };
struct choice {
    miBoolean condition;
    miColor ifTrue, ifFalse;
};

struct particles {
    int count, firstPosition, positionCount;
    miVector position[1];
    int firstColor, colorCount;
    miColor color[1];
    miScalar falloff;
    miBoolean shadow;
};
struct particle {
    miVector position;
    miColor color;
};
struct light {
    int count, size;
    miScalar falloff;
    miBoolean shadow;
    struct particle particle[1];
};

static const miScalar* scalar(miState* state, miScalar* field) { return (const miScalar*)mi_eval(state, field); }

/* The frame's only cost by design; reading the slot keeps the compiler from dropping the call's result. */
static int initialised(miState* state)
{
    void** slot = 0;
    mi_query(miQ_FUNC_USERPTR, state, 0, &slot);
    return *slot == 0;
}

static void operands(miState* state, struct colors* p, miColor* a, miColor* b)
{
    int keep1, keep2;
    *a = *(const miColor*)mi_eval(state, &p->input1);
    *b = *(const miColor*)mi_eval(state, &p->input2);
    keep1 = *(const miBoolean*)mi_eval(state, &p->useAlpha1);
    keep2 = *(const miBoolean*)mi_eval(state, &p->useAlpha2);
    if (!keep1)
        a->a = *scalar(state, &p->alpha1);
    if (!keep2)
        b->a = *scalar(state, &p->alpha2);
}

EXPORT miBoolean plainAddScalar(miScalar* result, miState* state, struct scalars* p)
{
    const miBoolean done = initialised(state);
    const miScalar a = *scalar(state, &p->input1);
    const miScalar b = *scalar(state, &p->input2);
    *result = a + b;
    return done;
}

EXPORT miBoolean plainAddColor(miColor* result, miState* state, struct colors* p)
{
    const miBoolean done = initialised(state);
    miColor a, b;
    operands(state, p, &a, &b);
    result->r = a.r + b.r;
    result->g = a.g + b.g;
    result->b = a.b + b.b;
    result->a = a.a + b.a;
    return done;
}

EXPORT miBoolean plainMixColor(miColor* result, miState* state, struct colors* p)
{
    const miBoolean done = initialised(state);
    miColor a, b;
    miScalar w;
    operands(state, p, &a, &b);
    w = *scalar(state, &p->weight);
    w = (w < 0.0f ? 0.0f : w > 100.0f ? 100.0f : w) / 100.0f;
    result->r = (1.0f - w) * a.r + w * b.r;
    result->g = (1.0f - w) * a.g + w * b.g;
    result->b = (1.0f - w) * a.b + w * b.b;
    result->a = (1.0f - w) * a.a + w * b.a;
    return done;
}

EXPORT miBoolean plainNormalizeVector(miVector* result, miState* state, struct vectors* p)
{
    const miBoolean done = initialised(state);
    const miVector v = *(const miVector*)mi_eval(state, &p->input);
    const float length = (float)sqrt((double)(v.x * v.x + v.y * v.y + v.z * v.z));
    *result = v;
    if (length != 0.0f) {
        const float scale = 1.0f / length;
        result->x *= scale;
        result->y *= scale;
        result->z *= scale;
    }
    return done;
}

EXPORT miBoolean plainMixerColor16(miColor* result, miState* state, struct slots* p)
{
    const miBoolean done = initialised(state);
    miColor sum = {0, 0, 0, 0};
    int i;
    for (i = 0; i < 16; ++i) {
        struct slot* const slot = &p->slot[i];
        if (*(const miBoolean*)mi_eval(state, &slot->enable)) {
            const miColor input = *(const miColor*)mi_eval(state, &slot->input);
            const miScalar weight = *scalar(state, &slot->weight);
            sum.r += input.r * weight;
            sum.g += input.g * weight;
            sum.b += input.b * weight;
            sum.a += input.a * weight;
        }
    }
    *result = sum;
    return done;
}

EXPORT miBoolean plainIfThenElseColor(miColor* result, miState* state, struct choice* p)
{
    const miBoolean done = initialised(state);
    if (*(const miBoolean*)mi_eval(state, &p->condition))
        *result = *(const miColor*)mi_eval(state, &p->ifTrue);
    else
        *result = *(const miColor*)mi_eval(state, &p->ifFalse);
    return done;
}

/* Where an instance keeps its data, as the frame does. */
static void** userSlot(miState* state)
{
    void** slot = 0;
    mi_query(miQ_FUNC_USERPTR, state, 0, &slot);
    return slot;
}

EXPORT void plainParticleLight_init(miState* state, struct particles* p, miBoolean* request)
{
    if (!p) {
        *request = miTRUE;
    } else {
        const int size = p->positionCount < p->colorCount ? p->positionCount : p->colorCount;
        struct light* const light = malloc(sizeof *light + sizeof(struct particle) * (size_t)size);
        int k;
        light->count = p->count;
        light->size = size;
        light->falloff = p->falloff;
        light->shadow = p->shadow;
        for (k = 0; k < size; ++k) {
            const miColor c = (&p->color[0])[p->firstColor + k];
            const miColor shining = {c.r * c.a, c.g * c.a, c.b * c.a, c.a};
            light->particle[k].position = (&p->position[0])[p->firstPosition + k];
            light->particle[k].color = shining;
        }
        *userSlot(state) = light;
    }
}

EXPORT void plainParticleLight_exit(miState* state, struct particles* p)
{
    if (p)
        free(*userSlot(state));
}

EXPORT miBoolean plainParticleLight(miColor* result, miState* state, struct particles* p)
{
    const struct light* const light = *userSlot(state);
    const struct particle* particle;
    const miVector normal = state->normal;
    miVector d;
    float length, q;
    (void)p;
    if (state->type != miRAY_LIGHT)
        return 0;
    if (state->count == light->count || state->count >= light->size) {
        state->count = 1;
        return 2;
    }
    particle = &light->particle[state->count];
    state->org = particle->position;
    d.x = state->point.x - particle->position.x;
    d.y = state->point.y - particle->position.y;
    d.z = state->point.z - particle->position.z;
    state->dist = sqrt((double)(d.x * d.x + d.y * d.y + d.z * d.z));
    length = (float)state->dist;
    if (length != 0.0f) {
        const float scale = 1.0f / length;
        d.x *= scale;
        d.y *= scale;
        d.z *= scale;
    }
    state->dir = d;
    state->dot_nd = -(d.x * normal.x + d.y * normal.y + d.z * normal.z);
    if (!(state->dot_nd >= 0.0f) && !(normal.x == 0.0f && normal.y == 0.0f && normal.z == 0.0f)) {
        result->r = result->g = result->b = result->a = 0.0f;
        return 0;
    }
    q = 1.0f + powf(length, light->falloff);
    result->r = particle->color.r / q;
    result->g = particle->color.g / q;
    result->b = particle->color.b / q;
    result->a = 1.0f;
    return light->shadow ? mi_trace_shadow(result, state) : miTRUE;
}

/* The least a node of a chain can do: hand its connected input on. */
EXPORT miBoolean plainPass(miScalar* result, miState* state, struct scalars* p)
{
    *result = *scalar(state, &p->input1);
    return miTRUE;
}
