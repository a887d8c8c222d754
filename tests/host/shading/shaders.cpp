// SPDX-License-Identifier: BSD-3-Clause
// Shaders that behave in every way that the host has to cope with. A library like any other.
#include <shader.h>

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <string>

#define TEST_API extern "C" __attribute__((visibility("default")))

namespace {

std::atomic<int> executions{0};

std::mutex logLock;
std::string logged;

void note(const std::string& event)
{
    const std::lock_guard guard(logLock);
    logged += logged.empty() ? event : "; " + event;
}

template <class T>
T& read(miState* state, T& field)
{
    return *static_cast<T*>(mi_eval(state, &field));
}

std::string text(miTag tag)
{
    const std::string copy = static_cast<const char*>(mi_db_access(tag));
    mi_db_unpin(tag);
    return copy;
}

void*& userSlot(miState* state)
{
    void** slot = nullptr;
    mi_query(miQ_FUNC_USERPTR, state, miNULLTAG, &slot);
    return *slot;
}

} // namespace

TEST_API int test_executions() { return executions.exchange(0); }
TEST_API const char* test_log() { return logged.c_str(); }
TEST_API void test_clear() { logged.clear(); }

// ---- values

struct AddParams {
    miScalar a;
    miScalar b;
};
TEST_API int t_add_version() { return 1; }
TEST_API miBoolean t_add(miScalar* result, miState* state, AddParams* p)
{
    ++executions;
    const miScalar a = read(state, p->a);
    const miScalar b = read(state, p->b);
    *result = a + b;
    return miTRUE;
}

struct Pair {
    miColor color;
    miScalar mask;
};
struct PairParams {
    miColor color;
};
TEST_API int t_pair_version() { return 1; }
TEST_API miBoolean t_pair(Pair* result, miState* state, PairParams* p)
{
    ++executions;
    result->color = read(state, p->color);
    result->mask = result->color.a * 10;
    return miTRUE;
}

struct ColorParams {
    miColor input;
};
TEST_API int t_color_version() { return 1; }
TEST_API miBoolean t_color(miColor* result, miState* state, ColorParams* p)
{
    *result = read(state, p->input);
    return miTRUE;
}

struct SumParams {
    int i_values;
    int n_values;
    miScalar values[1];
};
TEST_API int t_sum_version() { return 1; }
TEST_API miBoolean t_sum(miScalar* result, miState* state, SumParams* p)
{
    const int first = read(state, p->i_values);
    const int count = read(state, p->n_values);
    for (int k = 0; k < count; ++k)
        *result += read(state, p->values[first + k]);
    return miTRUE;
}

// Fails, having written half of what it returns.
TEST_API int t_false_version() { return 1; }
TEST_API miBoolean t_false(miScalar* result, miState*, void*)
{
    *result = 0.5f;
    return miFALSE;
}

// Counts on a result that starts as zero.
TEST_API int t_untouched_version() { return 1; }
TEST_API miBoolean t_untouched(miScalar*, miState*, void*) { return miTRUE; }

// ---- state and cache

TEST_API int t_raster_version() { return 1; }
TEST_API miBoolean t_raster(miScalar* result, miState* state, void*)
{
    ++executions;
    *result = state->raster_x;
    return miTRUE;
}

struct OneParams {
    miScalar input;
};
// The input at raster_x = 1, then at 2 without a flush, then at 2 after one.
TEST_API int t_cache_version() { return 1; }
TEST_API miBoolean t_cache(miVector* result, miState* state, OneParams* p)
{
    state->raster_x = 1;
    result->x = read(state, p->input);
    state->raster_x = 2;
    result->y = read(state, p->input);
    mi_flush_cache(state);
    result->z = read(state, p->input);
    return miTRUE;
}

// Its sum too, but asked for without a look at what is connected.
TEST_API int t_asks_version() { return 1; }
TEST_API miBoolean t_asks(miScalar* result, miState* state, AddParams* p)
{
    *result = *static_cast<miScalar*>(mi_phen_eval(state, &p->a));
    *result += *static_cast<miScalar*>(mi_phen_eval(state, &p->b));
    return miTRUE;
}

// ---- life

struct LifeParams {
    miTag name;
    miScalar input;
};
TEST_API int t_life_version()
{
    note("version");
    return 1;
}
TEST_API void t_life_init(miState* state, LifeParams* p, miBoolean* request)
{
    if (!p) {
        note(*request ? "init with request" : "init");
        *request = miTRUE;
        return;
    }
    // The input first: what it is connected to is initialised meanwhile.
    const miScalar input = read(state, p->input);
    note("init " + text(p->name) + " " + std::to_string(static_cast<int>(input)));
    userSlot(state) = p;
}
TEST_API miBoolean t_life(miScalar* result, miState* state, LifeParams* p)
{
    *result = userSlot(state) == p ? read(state, p->input) + 1 : -1000;
    return miTRUE;
}
TEST_API void t_life_exit(miState* state, LifeParams* p)
{
    if (!p) {
        note("exit");
        return;
    }
    const bool valid = state->camera && state->options && state->version == MI_STATE_VERSION &&
                       userSlot(state) == p && state->shader->parameters == static_cast<void*>(p);
    note("exit " + text(p->name) + (valid ? "" : " with a bad state"));
}

// Evaluates its input in its exit, when the input's own exit may have run.
TEST_API int t_late_version() { return 1; }
TEST_API void t_late_init(miState*, OneParams*, miBoolean* request) { *request = miTRUE; }
TEST_API miBoolean t_late(miScalar* result, miState* state, OneParams* p)
{
    *result = read(state, p->input);
    return miTRUE;
}
TEST_API void t_late_exit(miState* state, OneParams* p)
{
    if (p)
        note("late " + std::to_string(static_cast<int>(read(state, p->input))));
}

// Init for the shader as a whole, without a wish for more.
TEST_API int t_whole_version() { return 1; }
TEST_API void t_whole_init(miState*, void* p, miBoolean*) { note(p ? "instance" : "whole"); }
TEST_API miBoolean t_whole(miScalar*, miState*, void*) { return miTRUE; }
TEST_API void t_whole_exit(miState*, void* p) { note(p ? "instance exit" : "whole exit"); }

// ---- failures

TEST_API int t_throw_version() { return 1; }
TEST_API miBoolean t_throw(miScalar*, miState*, void*) { throw std::runtime_error("the shader's own words"); }

TEST_API int t_throw_number_version() { return 1; }
TEST_API miBoolean t_throw_number(miScalar*, miState*, void*) { throw 42; }

TEST_API int t_throw_init_version() { return 1; }
TEST_API void t_throw_init_init(miState*, void* p, miBoolean* request)
{
    *request = miTRUE;
    if (p) {
        note("throwing");
        throw std::runtime_error("bad pattern");
    }
}
TEST_API miBoolean t_throw_init(miScalar*, miState*, void*) { return miTRUE; }
TEST_API void t_throw_init_exit(miState*, void* p) { note(p ? "instance exit" : "whole exit"); }

TEST_API int t_throw_exit_version() { return 1; }
TEST_API void t_throw_exit_init(miState*, void*, miBoolean* request) { *request = miTRUE; }
TEST_API miBoolean t_throw_exit(miScalar*, miState*, void*) { return miTRUE; }
TEST_API void t_throw_exit_exit(miState*, void* p)
{
    note(p ? "instance exit" : "whole exit");
    throw std::runtime_error("no way out");
}

TEST_API miBoolean t_no_version(miScalar*, miState*, void*) { return miTRUE; }

TEST_API int t_second_version() { return 2; }
TEST_API miBoolean t_second(miScalar*, miState*, void*) { return miTRUE; }

// ---- the database and the allocator

struct TagParams {
    miTag tag;
};
TEST_API int t_pin_version() { return 1; }
TEST_API miBoolean t_pin(miScalar*, miState*, TagParams* p)
{
    mi_db_access(p->tag);
    return miTRUE;
}
TEST_API int t_unpin_version() { return 1; }
TEST_API miBoolean t_unpin(miScalar*, miState*, TagParams* p)
{
    mi_db_unpin(p->tag);
    return miTRUE;
}
// The sum of the first bytes behind a tag.
TEST_API int t_peek_version() { return 1; }
TEST_API miBoolean t_peek(miScalar* result, miState*, TagParams* p)
{
    const auto* const bytes = static_cast<const unsigned char*>(mi_db_access(p->tag));
    int sum = 0;
    for (std::size_t k = 0; k < sizeof(miOptions); ++k)
        sum += bytes[k];
    mi_db_unpin(p->tag);
    *result = static_cast<miScalar>(sum);
    return miTRUE;
}

struct CodeParams {
    miInteger code;
    miTag tag;
};
// Asks a query whose answer is one word: {answer, returned value}.
TEST_API int t_query_version() { return 1; }
TEST_API miBoolean t_query(miVector* result, miState* state, CodeParams* p)
{
    int answer = -1;
    result->y = static_cast<miScalar>(mi_query(static_cast<miQ_type>(p->code), state, p->tag, &answer));
    result->x = static_cast<miScalar>(answer);
    return miTRUE;
}
