#include "base/FileNames.h"

#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>

namespace base
{
namespace
{

namespace fs = std::filesystem;

constexpr const char* kOldBytes = "\xCA\xE8\xED\xEE"; // windows-1251
constexpr const char* kText = "Кино";

class FileNames : public testing::Test
{
protected:
    FileNames()
    {
        char name[] = "/tmp/file-names-XXXXXX";
        folder = ::mkdtemp(name);
    }
    ~FileNames() override { fs::remove_all(folder); }
    fs::path make(const fs::path& below) const
    {
        fs::create_directories((folder / below).parent_path());
        std::ofstream(folder / below) << below.native();
        return folder / below;
    }
    fs::path folder;
};

TEST_F(FileNames, FindsNamesOfOldBytesByWhatTheyAreShownAs)
{
    const fs::path file = make(fs::path(kOldBytes) / (std::string(kOldBytes) + ".swf"));
    const std::string shown = textOfPath(file.native());
    EXPECT_EQ(shown, (folder / kText / (std::string(kText) + ".swf")).string());
    EXPECT_EQ(pathNamed(shown), file);
    // Only one of the names may be old.
    const fs::path mixed = make(fs::path(kText) / (std::string(kOldBytes) + "2.swf"));
    EXPECT_EQ(pathNamed(textOfPath(mixed.native())), mixed);
}

TEST_F(FileNames, PrefersTheVeryBytes)
{
    make(kOldBytes);
    const fs::path plain = make(kText);
    EXPECT_EQ(pathNamed(plain.string()), plain);
}

TEST_F(FileNames, LeavesNamesAloneThatAreNowhere)
{
    for (const char* name : {"", "absent.swf", "нет/такого.swf", "\xFF\xFE", "日本.swf"})
        EXPECT_EQ(pathNamed(name), fs::path(name)) << name;
}

TEST_F(FileNames, ShowsAnyByteAndFindsItAgain)
{
    for (int byte = 0x80; byte <= 0xFF; ++byte) {
        const fs::path file = make("x" + std::string(1, static_cast<char>(byte)));
        EXPECT_EQ(pathNamed(textOfPath(file.native())), file) << byte;
    }
}

} // namespace
} // namespace base
