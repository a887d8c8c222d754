// SPDX-License-Identifier: BSD-3-Clause
#include "host/scene/search.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class SearchTest : public testing::Test {
protected:
    SearchTest()
    {
        for (const char* const folder : {"beside", "first", "second"})
            fs::create_directories(root / folder / "sub");
        write("beside/b.mi");
        write("first/f.mi");
        write("second/f.mi");
        write("second/b.mi");
        write("second/sub/s.mi");
        fs::create_directories(root / "first" / "s.mi"); // a folder of a file's name
        write("second/s.mi");
    }
    ~SearchTest() override { fs::remove_all(root); }

    void write(const std::string& name) { std::ofstream(root / name) << name; }

    std::string find(const std::string& name)
    {
        const std::string found = host::findFile(name, (root / "beside" / "scene.mi").string(),
                                                 {(root / "first").string(), (root / "second").string()});
        return found.empty() ? found : fs::relative(found, root).string();
    }

    const fs::path root = fs::temp_directory_path() / ("test_search_" + std::to_string(getpid()));
};

TEST_F(SearchTest, BesideTheFileComesBeforeThePathAndThePathIsInOrder)
{
    EXPECT_EQ(find("b.mi"), "beside/b.mi");
    EXPECT_EQ(find("f.mi"), "first/f.mi");
    EXPECT_EQ(find("sub/s.mi"), "second/sub/s.mi");
    EXPECT_EQ(find("nowhere.mi"), "");
}

TEST_F(SearchTest, FoldersAreNotFiles) { EXPECT_EQ(find("s.mi"), "second/s.mi"); }

TEST_F(SearchTest, AnAbsoluteNameIsTakenAsGiven)
{
    EXPECT_EQ(find((root / "second" / "b.mi").string()), "second/b.mi");
    EXPECT_EQ(find((root / "nowhere.mi").string()), "");
}

} // namespace
