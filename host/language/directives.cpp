// SPDX-License-Identifier: BSD-3-Clause
// Lines that begin with '$': included files and conditional text.
#include "host/language/context.h"
#include "host/language/lexer.h"
#include "host/language/read.h"

namespace host::language {

Lexer::Mode Lexer::directive(std::string_view word)
{
    if (tokenPlace_.column != 1)
        fail("a directive must begin in the first column of its line");
    directive_ = word;
    if (word == "$include" || word == "$ifdef" || word == "$ifndef")
        return Mode::argument;
    if (word != "$else" && word != "$endif")
        fail(inQuotes(directive_) + " is not supported");

    std::vector<Conditional>& open = sources_.back()->conditionals;
    if (open.empty())
        fail(directive_ + " without $ifdef");
    if (word == "$endif") {
        open.pop_back();
        return Mode::tokens;
    }
    if (open.back().otherwise)
        fail("a second $else for the conditional of " + open.back().where.text());
    open.back().otherwise = true;
    open.back().selected = false;
    return Mode::skipped;
}

Lexer::Mode Lexer::skippedDirective(std::string_view word)
{
    if (tokenPlace_.column != 1)
        return Mode::skipped;
    if (word == "$ifdef" || word == "$ifndef" || word == "$if") {
        ++skippedDepth_;
        return Mode::skipped;
    }
    if (skippedDepth_ > 0) {
        skippedDepth_ -= word == "$endif" ? 1 : 0;
        return Mode::skipped;
    }
    if (word == "$endif") {
        sources_.back()->conditionals.pop_back();
        return Mode::tokens;
    }
    if (word != "$else")
        return Mode::skipped;
    Conditional& conditional = sources_.back()->conditionals.back();
    if (conditional.otherwise)
        fail("a second $else for the conditional of " + conditional.where.text());
    conditional.otherwise = conditional.selected = true;
    return Mode::tokens;
}

bool Lexer::argument(const std::string& name, bool alongPathFirst)
{
    modeAfterArgument_ = Mode::tokens;
    if (directive_ == "$include") {
        include(name, alongPathFirst);
        return true;
    }
    std::vector<Conditional>& open = sources_.back()->conditionals;
    if (open.size() >= maximumNesting)
        fail("conditionals are nested deeper than " + std::to_string(maximumNesting) + " levels");
    const bool selected = session_.variables.contains(name) == (directive_ == "$ifdef");
    open.push_back({tokenPlace_, selected, false});
    if (!selected)
        modeAfterArgument_ = Mode::skipped;
    return false;
}

void Lexer::include(const std::string& name, bool alongPathFirst)
{
    if (sources_.size() > maximumIncludes)
        fail("files include one another deeper than " + std::to_string(maximumIncludes) + " levels");
    std::string file;
    for (const std::string& wanted : {name, name + ".mi"}) {
        for (const std::string& folder : session_.paths.include)
            if (file.empty() && alongPathFirst)
                file = findFile(folder + '/' + wanted, {}, {});
        if (file.empty())
            file = findFile(wanted, sources_.back()->name(), session_.paths.include);
    }
    if (file.empty())
        fail("cannot find the file " + inQuotes(name) + " to include");
    sources_.push_back(std::make_unique<Source>(file, tokenPlace_));
}

void Lexer::checkEnd()
{
    tokenPlace_ = place();
    const std::vector<Conditional>& open = sources_.back()->conditionals;
    if (!open.empty())
        throw Error(open.back().where, "this conditional has no $endif");
}

bool Lexer::leave()
{
    if (sources_.size() == 1)
        return false;
    sources_.pop_back();
    return true;
}

} // namespace host::language
