// SPDX-License-Identifier: BSD-3-Clause
#include "host/language/read.h"

#include "host/language/builder.h"
#include "host/language/lexer.h"

#include <filesystem>

namespace host {

namespace {

void readFrom(Session& session, std::unique_ptr<language::Source> source)
{
    language::Context context(session);
    language::Builder builder(context);
    language::Lexer lexer(session, std::move(source));
    try {
        language::Parser(lexer, builder).parse();
    } catch (const UnknownName& unknown) {
        const Location later = lexer.findDefinition(unknown.name, unknown.of);
        if (!later.file)
            throw Error(unknown.what() + unknown.hint);
        throw Error(std::string(unknown.what()) + "; it comes at " + later.text() +
                    ", but must be defined above its use");
    }
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
