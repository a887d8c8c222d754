/* SPDX-License-Identifier: BSD-3-Clause
 *
 * A library that asks for a function which the host does not have. */
#include <shader.h>

void mi_is_nowhere_to_be_found(void);

__attribute__((visibility("default"))) miBoolean t_broken(miScalar* result)
{
    mi_is_nowhere_to_be_found();
    *result = 0;
    return miTRUE;
}
