/* SPDX-License-Identifier: BSD-3-Clause
 *
 * The part of the renderer's interface that geometry shaders use. See shader.h.
 */
#ifndef MI_GEOSHADER_H
#define MI_GEOSHADER_H

#include "shader.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The scene name of an element, or a null pointer for one without a name. The text is the renderer's. */
const char* mi_api_tag_lookup(miTag tag);

/* Pins an element for writing; never null. Only outside rendering: in geometry shaders and init calls. */
void* mi_scene_edit(const miTag tag);
void mi_scene_edit_end(const miTag tag);

#ifdef __cplusplus
}
#endif

#endif
