// SPDX-License-Identifier: BSD-3-Clause
#include "bare_renderer.h"

#include <geoshader.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <map>

static std::map<void*, BareRenderer::Block>& live()
{
    static std::map<void*, BareRenderer::Block> live;
    return live;
}

BareRenderer& BareRenderer::get()
{
    static BareRenderer renderer;
    return renderer;
}

// The library under test finds these in the running program.
#pragma GCC visibility push(default)
extern "C" {

miBoolean mi_query(const miQ_type query, miState* const, miTag tag, void* const result, ...)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_query");
    if (query != miQ_FUNC_USERPTR || tag != miNULLTAG)
        std::abort();
    *static_cast<void***>(result) = &renderer.userSlot;
    return miTRUE;
}

void* mi_phen_eval(miState*, void* parameter)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_phen_eval");
    return renderer.evaluate(parameter);
}

void* mi_mem_int_allocate(const char* const file, const int line, const int size)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_mem_int_allocate");
    if (size > renderer.largestBlock)
        return nullptr;
    void* const block = std::malloc(std::size_t(size));
    renderer.allocated.push_back(live()[block] = {file, line, size});
    return block;
}

void mi_mem_int_release(const char* const file, const int line, void* block)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_mem_int_release");
    const auto taken = live().extract(block);
    if (!taken)
        std::abort(); // never taken, or given back twice
    renderer.released.push_back({file, line, taken.mapped().size});
    std::free(block);
}

void mi_flush_cache(miState*) { BareRenderer::get().calls.emplace_back("mi_flush_cache"); }

void* mi_db_access(miTag tag)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_db_access");
    ++renderer.pins[tag];
    return renderer.access(tag);
}

void mi_db_unpin(miTag tag)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_db_unpin");
    --renderer.pins[tag];
}

int mi_db_type(miTag tag)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_db_type");
    return renderer.type(tag);
}

void* mi_scene_edit(const miTag tag)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_scene_edit");
    renderer.opened.push_back(tag);
    return renderer.access(tag);
}

void mi_scene_edit_end(const miTag tag)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_scene_edit_end");
    renderer.closed.push_back(tag);
}

const char* mi_api_tag_lookup(miTag tag)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_api_tag_lookup");
    return renderer.lookUp(tag);
}

void mi_opacity_set(miState*, miColor const* const opacity)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_opacity_set");
    renderer.opacity = *opacity;
}

miBoolean mi_trace_eye(miColor* result, miState* state, miVector* origin, miVector* direction)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_trace_eye");
    const miVector from = *origin, towards = *direction;
    state->org = from;
    state->dir = towards;
    return renderer.traceEye(result, from, towards);
}

miBoolean mi_trace_shadow(miColor* const result, miState* const state)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_trace_shadow");
    return renderer.traceShadow(result, state);
}

miBoolean mi_sample_light(miColor* const result, miVector* const dir, float* const dot_nl,
                          miState* const state, const miTag light, int* const samples)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_sample_light");
    return renderer.sampleLight(result, dir, dot_nl, state, light, samples);
}

miBoolean mi_inclusive_lightlist(int* n, miTag** lights, miState*)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_inclusive_lightlist");
    renderer.inclusiveList(n, lights);
    return miTRUE;
}

miBoolean mi_exclusive_lightlist(int* n, miTag** lights, miState*)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_exclusive_lightlist");
    renderer.exclusiveList(n, lights);
    return miTRUE;
}

miBoolean mi_lookup_color_texture(miColor* const result, miState* const, const miTag texture,
                                  miVector* const coord)
{
    BareRenderer& renderer = BareRenderer::get();
    renderer.calls.emplace_back("mi_lookup_color_texture");
    return renderer.lookUpTexture(result, texture, *coord);
}

/// A row vector times rows that are so many numbers apart.
static miVector product(const miVector& v, const float* m, int stride)
{
    const auto column = [&](int i) { return v.x * m[i] + v.y * m[stride + i] + v.z * m[2 * stride + i]; };
    return {column(0), column(1), column(2)};
}

void mi_vector_transform(miVector* const result, miVector const* const v, miMatrix const m)
{
    BareRenderer::get().calls.emplace_back("mi_vector_transform");
    *result = product(*v, m, 4);
}

void mi_vector_to_world(const miState*, miVector* result, const miVector* v)
{
    BareRenderer::get().calls.emplace_back("mi_vector_to_world");
    *result = product(*v, BareRenderer::get().toWorld, 3);
}

void mi_matrix_ident(miMatrix m)
{
    BareRenderer::get().calls.emplace_back("mi_matrix_ident");
    for (int i = 0; i < 16; ++i)
        m[i] = i % 5 == 0 ? 1.0f : 0.0f;
}

static void print(const char* function, const char* format, va_list arguments)
{
    char text[20'000];
    std::vsnprintf(text, sizeof text, format, arguments);
    BareRenderer::get().calls.emplace_back(function);
    BareRenderer::get().messages.emplace_back(text);
}

void mi_info(const char* const format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    print("mi_info", format, arguments);
    va_end(arguments);
}

void mi_warning(const char* const format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    print("mi_warning", format, arguments);
    va_end(arguments);
}
}
#pragma GCC visibility pop
