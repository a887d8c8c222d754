// SPDX-License-Identifier: BSD-3-Clause
// A shader library finds every function that the interface declares in the program that loads it.
#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

std::set<std::string> declaredIn(const std::string& file)
{
    std::stringstream text;
    text << std::ifstream(std::string(TEST_HEADERS) + "/" + file).rdbuf();
    const std::string all = text.str();
    // A prototype begins its line with the type; calls in inline functions are indented.
    static const std::regex prototype("\n[a-z][A-Za-z_ *]*[ *](mi_[a-z_]+)\\(");
    std::set<std::string> names;
    for (std::sregex_iterator found(all.begin(), all.end(), prototype), end; found != end; ++found)
        names.insert((*found)[1]);
    return names;
}

TEST(Exports, EveryDeclaredFunctionIsFound)
{
    std::set<std::string> names = declaredIn("shader.h");
    names.merge(declaredIn("geoshader.h"));
    names.merge(declaredIn("../host/api/further.h"));
    names.erase("mi_eval"); // inline in the header
    names.insert(
        {"mi_call_shader", "mi_call_shader_x"}); // their kind of call has a type of its own elsewhere
    for (const char* const name :
         {"mi_query", "mi_phen_eval", "mi_vdebug", "mi_sample_light", "mi_matrix_ident", "mi_scene_edit_end",
          "mi_api_tag_lookup", "mi_opacity_set", "mi_matrix_prod", "mi_normal_from_light", "mi_lock"})
        EXPECT_EQ(names.count(name), 1u) << "the headers are not understood: " << name;
    for (const std::string& name : names)
        EXPECT_NE(dlsym(RTLD_DEFAULT, name.c_str()), nullptr) << name;
}

} // namespace
