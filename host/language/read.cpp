// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/read.h"

#include "host/language/builder.h"
#include "host/language/lexer.h"

#include <filesystem>

namespace host {

namespace {

void readFrom(Session& session, std::unique_ptr<language::Source> source)
{
    language::Builder builder(session);
    language::Lexer lexer(session, std::move(source));
    language::Parser(lexer, builder).parse();
}

} // namespace

void readScene(Session& session, const std::string& file)
{
    std::error_code ignored;
    const bool plain =
        std::filesystem::exists(file, ignored) || !std::filesystem::exists(file + ".mi", ignored);
    readFrom(session, std::make_unique<language::Source>(plain ? file : file + ".mi", Location()));
}

void readScene(Session& session, std::FILE* stream, const std::string& name)
{
    readFrom(session, std::make_unique<language::Source>(stream, name));
}

void readScene(Session& session, std::string_view text, const std::string& name)
{
    readFrom(session, std::make_unique<language::Source>(text, name));
}

} // namespace host
