// SPDX-License-Identifier: BSD-3-Clause
// Messages of shaders.
#include "host/report/message.h"
#include "host/api/warning.h"
#include "host/shading/function.h"

#include <shader.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

void print(host::Level level, const char* format, std::va_list arguments)
{
    host::messageFormat(level, "RC", format, arguments);
}

} // namespace

void mi_fatal(const char* const format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    print(host::Level::fatal, format, arguments);
    va_end(arguments);
    // A shader expects no return, and an exception may not pass through one that is written in C. Destructors
    // are left out too, as other threads are still rendering.
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
}

void mi_error(const char* const format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    print(host::Level::error, format, arguments);
    va_end(arguments);
}

void mi_warning(const char* const format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    print(host::Level::warning, format, arguments);
    va_end(arguments);
}

void host_warning(const miState* const state, const char* const text)
{
    const host::Function& function = host::Function::of(state->shader);
    const std::string place = function.where.text();
    host::message(host::Level::warning, "RC",
                  (function.name.empty() || place.empty() ? std::string() : place + ": ") + function.title() +
                      ": " + text);
}

void mi_info(const char* const format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    print(host::Level::info, format, arguments);
    va_end(arguments);
}

void mi_progress(const char* const format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    print(host::Level::progress, format, arguments);
    va_end(arguments);
}

void mi_debug(const char* const format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    print(host::Level::debug, format, arguments);
    va_end(arguments);
}

void mi_vdebug(const char* const format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    print(host::Level::vdebug, format, arguments);
    va_end(arguments);
}
