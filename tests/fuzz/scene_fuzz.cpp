// SPDX-License-Identifier: BSD-3-Clause
// Any bytes at all as a scene: they are read, or refused with an Error, and nothing else happens.
#include "host/language/read.h"
#include "host/report/message.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    host::setVerbosity(0);
    host::Session session;
    session.linkLibraries = false; // a made-up name may be that of a real library
    session.keepVerbosity = true;
    session.onRender = [](const host::RenderCommand&) {};
    try {
        host::readScene(session, std::string_view(reinterpret_cast<const char*>(bytes), size), "fuzz");
    } catch (const host::Error&) {
        return 0;
    }
    return 0;
}
