/* SPDX-License-Identifier: BSD-3-Clause
 *
 * An extension of this host: how many texture coordinates a state has. The renderer's interface does not
 * tell, and a scene may ask for any number.
 */
#ifndef HOST_API_TEXTURE_SPACES_H
#define HOST_API_TEXTURE_SPACES_H

#include <shader.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Vectors behind tex_list of the state of the innermost ray, or of a copy of it; 0 for any other state. */
__attribute__((visibility("default"))) int host_texture_spaces(const miState* state);

#ifdef __cplusplus
}
#endif

#endif
