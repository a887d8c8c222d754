/* SPDX-License-Identifier: BSD-3-Clause
 *
 * Shaders that crash. */
#include <shader.h>

#include <stdlib.h>

__attribute__((visibility("default"))) miBoolean t_crash(miColor* result)
{
    volatile int* volatile nowhere = 0;
    *nowhere = 1;
    result->r = 1;
    return miTRUE;
}

__attribute__((visibility("default"))) miBoolean t_abort_init(void) { abort(); }

__attribute__((visibility("default"))) miBoolean t_abort(miColor* result)
{
    result->r = 1;
    return miTRUE;
}
