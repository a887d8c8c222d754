// SPDX-License-Identifier: BSD-3-Clause
// Messages of the grammar: the place, what was found, what was expected.
#include "tests/host/language/scene.h"

namespace test {

TEST(Syntax, MessagesSayWhatWasFoundAndExpected)
{
    struct Row {
        const char* why;
        const char* text;
        const char* message;
    };
    for (const Row& row : {
             Row{"no command", "foo", "1:1: found the name \"foo\", expected a command"},
             Row{"no command", "\n\n  \"foo\"", "3:3: found the string \"foo\", expected a command"},
             Row{"no command", "1.5", "1:1: found 1.5, expected a command"},
             Row{"no command", "-7", "1:1: found -7, expected a command"},
             Row{"no command", "[", "1:1: found \"[\", expected a command"},
             Row{"keyword in the wrong place", "end camera",
                 "1:1: found the keyword \"end\", expected a command"},
             Row{"misspelt statement", "options \"o\" sampels 1",
                 "1:13: found the name \"sampels\", expected an options statement, a string or \"end\""},
             Row{"another element's statement", "camera \"c\" samples 1",
                 "1:12: found the keyword \"samples\", expected a camera statement or \"end\""},
             Row{"another element's statement", "light \"l\" samples 1",
                 "1:11: found the keyword \"samples\", expected a light statement, a name, \"=\" or \"end\""},
             Row{"another element's statement", "material \"m\" samples 1",
                 "1:14: found the keyword \"samples\", expected a material statement, a name, \"=\" or "
                 "\"end\""},
             Row{"another element's statement", "object \"o\" samples 1 lens",
                 "1:22: found the keyword \"lens\", expected an object statement, a number or \"end\""},
             Row{"a word for a number", "options \"o\" samples x",
                 "1:21: found the name \"x\", expected a number"},
             Row{"cut", "options", "1:8: found the end of the text, expected a name"},
             Row{"cut", "options \"o\"\n",
                 "2:1: found the end of the text, expected an options statement, a string or \"end\""},
             Row{"cut", "camera \"c\" end", "1:15: found the end of the text, expected \"camera\""},
             Row{"wrong end", "camera \"c\" end light",
                 "1:16: found the keyword \"light\", expected \"camera\""},
             Row{"wrong end of a group", "object group end object",
                 "1:18: found the keyword \"object\", expected \"group\""},
             Row{"a long string is cut", "\"0123456789012345678901234567890123456789and more\"",
                 "1:1: found the string \"0123456789012345678901234567890123456789...\", expected a command"},
             Row{"byte string", "'00'", "1:1: found a byte string, expected a command"},
         })
        EXPECT_EQ(errorOf(row.text), row.message) << row.why << ": " << row.text;
}

TEST(Syntax, ReadingStopsAtTheFirstMistakeAndKeepsWhatWasRead)
{
    Scene scene;
    EXPECT_EQ(scene.errorOf("set \"a\" camera \"c\" focal 5 foo end camera set \"b\""),
              "1:28: found the name \"foo\", expected a camera statement, a number or \"end\"");
    EXPECT_TRUE(scene.session.variables.contains("a"));
    EXPECT_FALSE(scene.session.variables.contains("b"));
    EXPECT_EQ(scene.session.database.lookup("c"), miNULLTAG);
    EXPECT_EQ(scene.errorOf("camera \"c\" end camera"), "accepted") << "a session goes on after a mistake";
}

} // namespace test
