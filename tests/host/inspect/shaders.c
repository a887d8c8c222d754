/* SPDX-License-Identifier: BSD-3-Clause */
/* Shaders that are easy to foretell. */
#include <shader.h>

#include <time.h>

#define EXPORT __attribute__((visibility("default")))

/* Reads `first` or `second`, as `which` says. */
struct choose {
    miBoolean which;
    miColor first;
    miColor second;
};

EXPORT int choose_version(void);
EXPORT miBoolean choose(miColor *, miState *, struct choose *);

int choose_version(void) { return 1; }

miBoolean choose(miColor *result, miState *state, struct choose *parameters)
{
    const miBoolean which = *(miBoolean *)mi_eval(state, &parameters->which);
    *result = *(miColor *)mi_eval(state, which ? &parameters->first : &parameters->second);
    return miTRUE;
}

/* A structure, and false. */
struct split_result {
    miColor rgb;
    miScalar mask;
};

EXPORT int split_version(void);
EXPORT miBoolean split(struct split_result *, miState *, miColor *);

int split_version(void) { return 1; }

miBoolean split(struct split_result *result, miState *state, miColor *input)
{
    result->rgb = *(miColor *)mi_eval(state, input);
    result->mask = 0.5f;
    return miFALSE;
}

/* The sum of a list; its init, for each instance, reads `start`. */
struct total {
    miScalar start;
    int i_values;
    int n_values;
    miScalar values[1];
};

EXPORT int total_version(void);
EXPORT void total_init(miState *, struct total *, miBoolean *);
EXPORT miBoolean total(miColor *, miState *, struct total *);

int total_version(void) { return 1; }

void total_init(miState *state, struct total *parameters, miBoolean *instances)
{
    if (parameters)
        mi_eval(state, &parameters->start);
    else
        *instances = miTRUE;
}

miBoolean total(miColor *result, miState *state, struct total *parameters)
{
    float sum = *(miScalar *)mi_eval(state, &parameters->start);
    for (int k = 0; k < parameters->n_values; ++k)
        sum += *(miScalar *)mi_eval(state, parameters->values + parameters->i_values + k);
    result->r = result->g = result->b = sum;
    result->a = 1.0f;
    return miTRUE;
}

/* Takes `microseconds` by itself, then reads `input` so many times anew. */
struct spend {
    miInteger microseconds;
    miInteger times;
    miColor input;
};

EXPORT int spend_version(void);
EXPORT miBoolean spend(miColor *, miState *, struct spend *);

int spend_version(void) { return 1; }

miBoolean spend(miColor *result, miState *state, struct spend *parameters)
{
    struct timespec begin, now;
    timespec_get(&begin, TIME_UTC);
    do
        timespec_get(&now, TIME_UTC);
    while ((now.tv_sec - begin.tv_sec) * 1000000 + (now.tv_nsec - begin.tv_nsec) / 1000 < parameters->microseconds);
    for (int k = 0; k < parameters->times; ++k) {
        *result = *(miColor *)mi_eval(state, &parameters->input);
        mi_flush_cache(state);
    }
    return miTRUE;
}
