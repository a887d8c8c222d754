/* SPDX-License-Identifier: BSD-3-Clause
 *
 * A shader in C, between others in a chain. */
#include <shader.h>

#define TEST_API __attribute__((visibility("default")))

struct Params {
    miScalar input;
};

TEST_API int t_middle_version(void) { return 1; }

TEST_API miBoolean t_middle(miScalar* result, miState* state, struct Params* p)
{
    const miScalar input = *(const miScalar*)mi_eval(state, &p->input);
    *result = input + 1.0f;
    return miTRUE;
}
