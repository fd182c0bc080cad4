#include "flash/net/LocalLoader.h"
#include "flash/net/FileSharedObjects.h"

#include <fstream>
#include <gtest/gtest.h>

namespace flash::net
{
namespace
{

namespace fs = std::filesystem;

class Net : public testing::Test
{
protected:
    Net()
    {
        std::string pattern = testing::TempDir() + "netXXXXXX";
        folder = fs::canonical(::mkdtemp(pattern.data()));
        fs::create_directories(folder / "movie/sub");
        put(folder / "secret.txt", "secret");
        put(folder / "movie/a b.txt", "space");
        put(folder / "movie/100%-done.txt", "percent");
        put(folder / "movie/Фильм.txt", "cyrillic");
        put(folder / "movie/sub/deep.txt", "deep");
        put(folder / "movie2.txt", "neighbour");
        fs::create_symlink(folder / "secret.txt", folder / "movie/link.txt");
    }
    ~Net() override { fs::remove_all(folder); }
    static void put(const fs::path& file, std::string_view text) { std::ofstream(file) << text; }
    std::string load(const std::string& url, const std::string& base = {})
    {
        LocalLoader loader(folder / "movie");
        const auto answer = loader.load({url, base, {}, {}});
        return answer ? std::string(answer->bytes.begin(), answer->bytes.end()) : "refused";
    }
    fs::path folder;
};

TEST_F(Net, FindsFilesBesideTheMovieAndBelow)
{
    struct Case {
        const char* name;
        std::string url, base, expected;
    };
    const std::string movieUrl = urlFromPath(folder / "movie/sub/page.swf");
    const Case kCases[] = {
        {"plain name", "a b.txt", "", "space"},
        {"escaped name", "a%20b.txt", "", "space"},
        {"query and fragment are no part of the name", "a b.txt?x=1#y", "", "space"},
        {"a per cent sign that begins no escape", "100%-done.txt", "", "percent"},
        {"escaped UTF-8", "%D0%A4%D0%B8%D0%BB%D1%8C%D0%BC.txt", "", "cyrillic"},
        {"backslashes", "sub\\deep.txt", "", "deep"},
        {"relative to the movie that asks", "deep.txt", movieUrl, "deep"},
        {"up, but still inside", "../a b.txt", movieUrl, "space"},
        {"absolute, inside", "", "", "refused"},
        {"up and out", "../secret.txt", "", "refused"},
        {"up and out, escaped", "..%2Fsecret.txt", "", "refused"},
        {"a link that leads out", "link.txt", "", "refused"},
        {"a neighbour whose name begins alike", "../movie2.txt", "", "refused"},
        {"absolute, outside", (folder / "secret.txt").string(), "", "refused"},
        {"address of a file outside", urlFromPath(folder / "secret.txt"), "", "refused"},
        {"base outside gives no more rights", "secret.txt", urlFromPath(folder / "x.swf"), "refused"},
        {"the network", "http://example.com/a b.txt", "", "refused"},
        {"a folder", "sub", "", "refused"},
        {"a NUL in the name", std::string("a b.txt\0x", 9), "", "refused"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(load(c.url, c.base), c.expected);
    }
    EXPECT_EQ(load(urlFromPath(folder / "movie/a b.txt")), "space");
}

TEST_F(Net, NamesThatLookLikeAddressesAreNamesFirst)
{
    put(folder / "movie/#home#clip.swf.jpg", "hash");
    put(folder / "movie/who?.txt", "asked");
    put(folder / "movie/%41.txt", "literal");
    put(folder / "movie/A.txt", "decoded");
    EXPECT_EQ(load("#home#clip.swf.jpg"), "hash");
    EXPECT_EQ(load("who?.txt"), "asked");
    EXPECT_EQ(load("%41.txt"), "literal");
    EXPECT_EQ(load("%2541.txt"), "literal");
    const auto answer = LocalLoader(folder / "movie").load({"who?.txt", "", {}, {}});
    ASSERT_TRUE(answer);
    EXPECT_EQ(pathFromUrl(answer->url), (folder / "movie/who?.txt").string());
}

TEST_F(Net, TheAnswerKeepsTheQueryForTheMovieThatWasLoaded)
{
    LocalLoader loader(folder / "movie");
    const auto answer = loader.load({"a b.txt?x=1&y=%20", "", {}, {}});
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->url, urlFromPath(folder / "movie/a b.txt") + "?x=1&y=%20");
    EXPECT_EQ(pathFromUrl(answer->url), (folder / "movie/a b.txt").string());
}

TEST_F(Net, SharedObjectsStayInTheirFolderAndTheirQuota)
{
    const fs::path store = folder / "objects/movie";
    FileSharedObjects objects(store);
    const std::vector<std::uint8_t> content(1000, 7);
    for (const char* name : {"", "a b", "x?y", "a:b", "per%cent", "back\\slash"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(objects.write(name, content));
    }
    for (const char* name : {"score", "..", "../../escape", "dir/score", "Очки"}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(objects.write(name, content));
        EXPECT_EQ(objects.read(name), content);
    }
    for (const auto& entry : fs::recursive_directory_iterator(folder / "objects"))
        EXPECT_TRUE(entry.path() == store || entry.path().parent_path() == store) << entry.path();

    const std::vector<std::uint8_t> rest(FileSharedObjects::kQuotaBytes - 5 * content.size());
    EXPECT_TRUE(objects.write("rest", rest));
    EXPECT_TRUE(objects.write("rest", rest)) << "replacing does not count the old content";
    EXPECT_FALSE(objects.write("more", {1}));
    objects.remove("rest");
    EXPECT_TRUE(objects.read("rest").empty());
    EXPECT_TRUE(objects.write("more", {1}));
}

} // namespace
} // namespace flash::net
