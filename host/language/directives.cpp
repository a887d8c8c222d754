// SPDX-License-Identifier: BSD-3-Clause
// Lines that begin with '$': included files and conditional text.
#include "host/language/context.h"
#include "host/language/lexer.h"
#include "host/language/read.h"
#include "host/report/message.h"

namespace host::language {

Lexer::Mode Lexer::directive(std::string_view word)
{
    if (tokenPlace_.column != 1)
        fail("a directive must begin in the first column of its line");
    directive_ = word;
    if (word == "$include" || word == "$lookup" || word == "$ifdef" || word == "$ifndef")
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

int Lexer::argument(const std::string& name, bool alongPathFirst)
{
    modeAfterArgument_ = Mode::tokens;
    if (directive_ == "$include") {
        include(name, sources_.back()->name(), alongPathFirst);
        return 1;
    }
    if (directive_ == "$lookup")
        return lookUp(name);
    std::vector<Conditional>& open = sources_.back()->conditionals;
    if (open.size() >= maximumNesting)
        fail("conditionals are nested deeper than " + std::to_string(maximumNesting) + " levels");
    const bool known = session_.variables.contains(name) || session_.registry.find(name);
    const bool selected = known == (directive_ == "$ifdef");
    open.push_back({tokenPlace_, selected, false});
    if (!selected)
        modeAfterArgument_ = Mode::skipped;
    return 0;
}

int Lexer::lookUp(const std::string& key)
{
    const Registry::Entry* const entry = session_.registry.find(key);
    if (lookingAhead_)
        return 0;
    if (!entry)
        fail("there is no registry entry " + inQuotes(key));
    std::vector<std::string> files;
    for (const auto& [action, value] : entry->actions) {
        if (action == "link" && session_.linkLibraries)
            session_.libraries.link(session_.registry.expand(value, tokenPlace_), session_.paths.library,
                                    tokenPlace_);
        else if (action == "mi")
            files.push_back(value);
        else if (action == "echo")
            message(Level::info, "SCEN", value);
        else if (action == "code")
            fail("registry entry " + inQuotes(key) + " wants \"code\" compiled, which is not supported");
        else if (action == "system")
            message(Level::warning, "SCEN",
                    tokenPlace_.text() + ": the command \"system\" of registry entry " + inQuotes(key) +
                        " is ignored");
    }
    // The first file comes to lie on top.
    const std::string beside = sources_.back()->name();
    for (auto file = files.rbegin(); file != files.rend(); ++file)
        include(*file, beside, false);
    return static_cast<int>(files.size());
}

void Lexer::include(const std::string& given, const std::string& beside, bool alongPathFirst)
{
    const std::string name = session_.registry.expand(given, tokenPlace_);
    if (sources_.size() > maximumIncludes)
        fail("files include one another deeper than " + std::to_string(maximumIncludes) + " levels");
    std::string file;
    for (const std::string& wanted : {name, name + ".mi"}) {
        for (const std::string& folder : session_.paths.include)
            if (file.empty() && alongPathFirst)
                file = findFile(folder + '/' + wanted, {}, {});
        if (file.empty())
            file = findFile(wanted, beside, session_.paths.include);
    }
    if (file.empty())
        fail("cannot find the file " + inQuotes(name) + " to include" +
             lookedIn(name, beside, session_.paths.include));
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
