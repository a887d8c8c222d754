/* SPDX-License-Identifier: BSD-3-Clause
 *
 * An extension of this host: a warning that names the shader instance, which the renderer's interface does not
 * let a shader do.
 */
#ifndef HOST_API_WARNING_H
#define HOST_API_WARNING_H

#include <shader.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Prints the text behind the instance that is running with this state, and the place of its definition. */
__attribute__((visibility("default"))) void host_warning(const miState* state, const char* text);

#ifdef __cplusplus
}
#endif

#endif
