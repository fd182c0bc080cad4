#include "browser/FolderScan.h"
#include "browser/MediaBrowser.h"

#include "Host.h"
#include "QtPrint.h"

#include <QUrlQuery>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace browser
{
namespace
{

/// Names of the items on the page that was loaded, by their stated parameters.
QStringList shown(const QString& address, const char* part)
{
    const QUrlQuery query(address.section('?', 1));
    QStringList values;
    for (int slot = 1; slot <= 8; ++slot)
        values += query.queryItemValue(QString("shot%1_%2").arg(slot).arg(part), QUrl::FullyDecoded);
    return values;
}

QString parameter(const QString& address, const QString& name)
{
    return QUrlQuery(address.section('?', 1)).queryItemValue(name, QUrl::FullyDecoded);
}

class Browser : public BrowserTest
{
protected:
    Browser() : browser(application, host, state) { folder("movies"); }

    /// Movies whose thumbnails are there already, so that none has to be made.
    void movies(const QStringList& names)
    {
        for (const QString& name : names) {
            write("movies/" + name, "FWS");
            pictured(QString("movies/") + name);
        }
    }
    void pictured(const QString& name)
    {
        QFile file(application.CachePath + media::CacheName(path(name), ".jpg"));
        ASSERT_TRUE(file.open(QFile::WriteOnly)) << file.fileName().toStdString();
    }
    BrowserState state;
    MediaBrowser browser;
};

TEST_F(Browser, ListsFoldersThenMediaByName)
{
    movies({"b.swf", "film 10.swf", "Film 9.swf", "A.EXE", "x.Swf", "clip.swf.bak", "picture.jpg",
            ".hidden.swf", "swf"});
    folder("movies/sub");
    folder("movies/.git");
    folder("movies/Clips.swf");
    pictured("movies/Clips.swf");
    browser.NewMediaBrowse(path("movies"));

    // Numbers are numbers, and hidden ones stay so.
    const std::vector<QString> expectedFolders = {"..", "Clips.swf", "sub"};
    const std::vector<QString> expectedMedia = {"A.EXE",      "b.swf",       "Clips.swf",
                                                "Film 9.swf", "film 10.swf", "x.Swf"};
    std::vector<QString> folders, media;
    for (const BrowseItem& item : state.items) {
        if (item.kind == ItemKind::Folder) {
            EXPECT_TRUE(media.empty()) << "folders come first";
            EXPECT_TRUE(item.thumbnail.isEmpty());
            folders.push_back(item.name);
        } else {
            EXPECT_EQ(item.kind == ItemKind::Projector, item.name == "A.EXE");
            media.push_back(item.name);
        }
    }
    EXPECT_EQ(folders, expectedFolders);
    EXPECT_EQ(media, expectedMedia);
    EXPECT_EQ(std::count(media.begin(), media.end(), "Clips.swf"), 1) << "listed as a folder and as a movie";
    EXPECT_EQ(std::count(folders.begin(), folders.end(), "Clips.swf"), 1);
    EXPECT_EQ(parameter(host.address, "Status"), "Найдено медиа файлов: 6");
}

TEST_F(Browser, TheAddressIsSpelledAsThePageKnowsIt)
{
    movies({"a.swf"});
    host.animation = "as set";
    browser.NewMediaBrowse(path("movies"));
    const QString prefix = application.CachePath + media::CacheName(path("movies/"), {});
    EXPECT_EQ(host.address,
              application.GadgetsPath + "browse.swf?Folder=" + media::URLEncode(path("movies/")) +
                  "&Cache=" + media::URLEncode(prefix) + "&Status=" +
                  "%D0%9D%D0%B0%D0%B9%D0%B4%D0%B5%D0%BD%D0%BE%20%D0%BC%D0%B5%D0%B4%D0%B8%D0%B0%20"
                  "%D1%84%D0%B0%D0%B9%D0%BB%D0%BE%D0%B2%3A%20%31" +
                  "&TotalPages=1&curPage=1&noanim=as set&shot1_ItemName=%2E%2E&shot1_ItemType=%33"
                  "&shot2_ItemName=a%2Eswf&shot2_ItemType=%31"
                  "&shot3_ItemName=&shot3_ItemType=%34&shot4_ItemName=&shot4_ItemType=%34"
                  "&shot5_ItemName=&shot5_ItemType=%34&shot6_ItemName=&shot6_ItemType=%34"
                  "&shot7_ItemName=&shot7_ItemType=%34&shot8_ItemName=&shot8_ItemType=%34");
    EXPECT_EQ(host.caption, "Обзор медиа");
    EXPECT_EQ(host.statuses, (QStringList{"Поиск медиа файлов..."}));
    EXPECT_EQ(journal(), "<br>\r\n :: New Media Browse (" + path("movies").toUtf8() + ")<br>\r\n");
}

TEST_F(Browser, CountsPagesOfEight)
{
    struct Case {
        int movies; // and the way up
        int pages;
        int onLastPage;
    };
    constexpr Case kCases[] = {{0, 1, 1}, {6, 1, 7}, {7, 1, 8}, {8, 2, 1}, {15, 2, 8}, {16, 3, 1}};
    int made = 0;
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.movies);
        for (; made < c.movies; ++made) movies({QString("m%1.swf").arg(made)});
        state.page = 1000;
        browser.NewMediaBrowse(path("movies"));
        EXPECT_EQ(state.totalPages, c.pages);
        EXPECT_EQ(state.page, c.pages - 1);
        EXPECT_EQ(parameter(host.address, "TotalPages"), QString::number(c.pages));
        EXPECT_EQ(parameter(host.address, "curPage"), QString::number(c.pages));
        EXPECT_EQ(8 - shown(host.address, "ItemType").count("4"), c.onLastPage);
    }
}

TEST_F(Browser, BringsThePageIntoRangeOnlyWhenItIsShown)
{
    QStringList names;
    for (int i = 0; i < 20; ++i) names += QString("%1.swf").arg(i);
    movies(names);
    browser.NewMediaBrowse(path("movies"));
    ASSERT_EQ(state.totalPages, 3);
    struct Case {
        qint32 asked, shown;
    };
    for (const Case& c :
         {Case{-1, 0}, Case{1, 1}, Case{2, 2}, Case{3, 2}, Case{INT32_MAX, 2}, Case{INT32_MIN, 0}}) {
        state.page = c.asked;
        browser.ShowBrowsePage();
        EXPECT_EQ(state.page, c.shown);
        EXPECT_EQ(parameter(host.address, "curPage"), QString::number(c.shown + 1));
    }
    // All pages together show every item once, in order.
    QStringList seen, expected;
    for (state.page = 0; state.page < 3; ++state.page) {
        browser.ShowBrowsePage();
        seen += shown(host.address, "ItemName");
    }
    for (const BrowseItem& item : state.items) expected += item.name;
    seen.removeAll(QString());
    EXPECT_EQ(seen, expected);
}

TEST_F(Browser, AnEmptyRootFolderHasNoPagesAndShowsOneOfEmptySlots)
{
    browser.NewMediaBrowse(path("movies"));
    state.items.clear();
    state.totalPages = 0;
    state.page = -1; // the last of no pages
    browser.ShowBrowsePage();
    EXPECT_EQ(parameter(host.address, "curPage"), "1");
    EXPECT_EQ(shown(host.address, "ItemType").count("4"), 8);
    EXPECT_NE(listFolder("/").front().name, "..");
}

TEST_F(Browser, GoesUpAndKeepsItsFolderWhenThereIsNoOther)
{
    folder("movies/sub");
    write("file.swf", "FWS");
    struct Case {
        const char* name;
        QString asked, expected;
    };
    const Case kCases[] = {
        {"a folder without its separator", path("movies"), path("movies/")},
        {"a folder of the page", path("movies/sub"), path("movies/sub/")},
        {"the way up", path("movies/sub/.."), path("movies/")},
        {"the way up, closed", path("movies/sub/../"), path("movies/")},
        {"up twice", path("movies/.."), path("")},
        {"no such folder", path("nowhere"), path("")},
        {"a file", path("file.swf"), path("")},
        {"nothing", "", path("")},
        {"the root", "/", "/"},
        {"above the root", "/..", "/"},
        {"up to the root", "/usr/..", "/"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        if (c.asked.startsWith("/usr") || c.asked == "/" || c.asked == "/..") {
            EXPECT_EQ(normalisedFolder(c.asked), c.asked == "/.." ? "" : c.expected);
            continue;
        }
        browser.NewMediaBrowse(c.asked);
        EXPECT_EQ(state.folder, c.expected);
    }
    EXPECT_EQ(normalisedFolder("C:\\A\\B\\..\\"), "C:\\A\\");
    EXPECT_EQ(normalisedFolder("C:\\A\\B\\.."), "C:\\A\\");
}

TEST_F(Browser, ReopensWhereItWasLeft)
{
    movies({"a.swf", "b.swf", "c.swf", "d.swf", "e.swf", "f.swf", "g.swf", "h.swf", "i.swf"});
    state.folder = path("movies");
    state.page = 1;
    browser.BrowseMedia();
    EXPECT_EQ(state.folder, path("movies/"));
    EXPECT_EQ(state.page, 1);
    EXPECT_EQ(host.statuses.first(), "Готово");
    EXPECT_TRUE(journal().startsWith("<br>\r\n :: Media Browse<br>\r\n"));
    state = {};
    state.folder = path("movies/");
    browser.ShowBrowsePage();
    EXPECT_EQ(state.totalPages, 2) << "a page that is asked for before a scan brings one about";
    state = {};
    MediaBrowser fresh(application, host, state);
    EXPECT_EQ(state.folder, application.AppPath) << "without a setting it begins in the program's folder";
}

/// What the page makes of an item: the second spelling where there is one.
QString nameForPage(const QString& address, int slot)
{
    const QString text = parameter(address, QString("shot%1_ItemText").arg(slot));
    return text.isEmpty() ? parameter(address, QString("shot%1_ItemName").arg(slot)) : text;
}

TEST_F(Browser, NamesOfAllKindsReachThePageWhole)
{
    const QString names[] = {
        "100%.swf",      "a#b.swf",         "who?.swf",        "a b&c=d+e.swf", "Кино.swf",
        "Ёлка и ёж.swf", "№5 – «да».swf",   "日本.swf",        "中国.swf",      "naïve.swf",
        "😀.swf",         "line\nbreak.swf", "back\\slash.swf", "%41.swf",       QString(120, u'я') + ".swf",
    };
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        folder("odd");
        write("odd/" + name, "FWS");
        pictured("odd/" + name);
        state.page = 0;
        browser.NewMediaBrowse(path("odd"));
        ASSERT_EQ(state.items.size(), 2U);
        EXPECT_EQ(nameForPage(host.address, 2), name);
        const QString given = parameter(host.address, "shot2_ItemShot");
        const QString cache = parameter(host.address, "CacheText").isEmpty()
                                  ? parameter(host.address, "Cache")
                                  : parameter(host.address, "CacheText");
        EXPECT_EQ(given.isEmpty() ? cache + name + ".jpg" : given, state.items[1].thumbnail);
        EXPECT_TRUE(core::fileExists(given.isEmpty() ? cache + name + ".jpg" : given));
        // A question mark would end the path of the page too early.
        EXPECT_EQ(host.address.count('?'), 1);
        QDir(path("odd")).removeRecursively();
    }
    // The stated spelling is there whatever it is worth.
    folder("Ё");
    write("Ё/日本.swf", "FWS");
    pictured("Ё/日本.swf");
    browser.NewMediaBrowse(path("Ё"));
    EXPECT_TRUE(host.address.contains("&shot2_ItemName=%2Eswf&")) << host.address.toStdString();
    EXPECT_EQ(parameter(host.address, "FolderText"), path("Ё/"));
}

TEST_F(Browser, OrdersByNameDateAndSize)
{
    movies({"a.swf", "b.swf", "c.swf"});
    write("movies/b.swf", QByteArray(3000, 'x'));
    write("movies/c.swf", QByteArray(2000, 'x'));
    const auto setAge = [this](const char* name, int hours) {
        std::filesystem::last_write_time(core::filePath(path("movies/") + name),
                                         std::filesystem::file_time_type::clock::now() -
                                             std::chrono::hours(hours));
    };
    setAge("a.swf", 2);
    setAge("b.swf", 3);
    setAge("c.swf", 1);
    for (const char* name : {"a.swf", "b.swf", "c.swf"}) pictured(QString("movies/") + name);
    const std::pair<Order, QStringList> kOrders[] = {{Order::Name, {"..", "a.swf", "b.swf", "c.swf"}},
                                                     {Order::Date, {"..", "c.swf", "a.swf", "b.swf"}},
                                                     {Order::Size, {"..", "b.swf", "c.swf", "a.swf"}}};
    for (const auto& [order, names] : kOrders) {
        state.order = order;
        browser.NewMediaBrowse(path("movies"));
        QStringList found;
        for (const BrowseItem& item : state.items) found += item.name;
        EXPECT_EQ(found, names);
        EXPECT_EQ(parameter(host.address, "order"), order == Order::Name ? QString() : wordOf(order));
        EXPECT_EQ(orderNamed(wordOf(order)), order);
    }
    EXPECT_EQ(orderNamed("colour"), Order::Name);
}

TEST_F(Browser, TellsWhatIsInAFolder)
{
    folder("movies/full");
    folder("movies/empty");
    for (int i = 0; i < 6; ++i) {
        const QString name = QString("movies/full/%1.swf").arg(i);
        write(name, "FWS");
        if (i > 0) pictured(name);
    }
    write("movies/full/text.txt", "");
    browser.NewMediaBrowse(path("movies"));
    ASSERT_EQ(state.items.size(), 3U);
    EXPECT_EQ(parameter(host.address, "shot1_ItemCount"), "") << "the way up tells nothing";
    EXPECT_EQ(parameter(host.address, "shot2_ItemCount"), "");
    EXPECT_EQ(parameter(host.address, "shot3_ItemCount"), "6");
    const QStringList shots = parameter(host.address, "shot3_ItemShots").split('\n');
    EXPECT_EQ(shots.size(), 4);
    for (const QString& shot : shots) EXPECT_TRUE(QFile::exists(shot)) << shot.toStdString();
}

} // namespace
} // namespace browser
