#include "QtPrint.h"
#include "core/Application.h"
#include "player/Cache.h"
#include "player/Placement.h"
#include "player/Status.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace player
{
namespace
{

TEST(GetTime, RoundsSecondsToEvenAndKnowsNoHours)
{
    struct Case {
        const char* name;
        int frames;
        float rate;
        const char* text;
    };
    constexpr Case kCases[] = {
        {"start", 0, 12, "0:00"},
        {"below ten seconds", 60, 12, "0:05"},
        {"halves go to the even second", 750, 12, "1:02"},
        {"a second that rounds up to the minute", 596, 10, "1:00"},
        {"more than an hour", 3725, 1, "62:05"},
        {"no rate", 5, 0, ""},
        {"no rate, no frames", 0, 0, ""},
        {"more minutes than are counted", 2'000'000'000, 1, ""},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(GetTime(c.frames, c.rate), c.text);
    }
}

TEST(Status, CyclesThroughItsModes)
{
    Status status;
    const char* expected[] = {"Прошло времени: 0:10", "Осталось времени: 1:30", "Всего времени: 1:40",
                              "Прошло кадров: 120",   "Осталось кадров: 1080",  "Всего кадров: 1200"};
    for (const char* text : expected) {
        status.update(120, 1200, 12);
        EXPECT_EQ(status.informationText, text);
        status.ToggleTimeMode();
    }
    EXPECT_EQ(status.timeMode(), 0);
    status.setTimeMode(7);
    status.update(1, 1, 1);
    EXPECT_EQ(status.informationText, expected[5]) << "an unknown mode leaves the text";
    status.ToggleTimeMode();
    EXPECT_EQ(status.timeMode(), 0);
}

TEST(ZoomedSize, AddsBordersAfterScalingAndKeepsTheMinimum)
{
    const QMargins borders(10, 20, 10, 30);
    EXPECT_EQ(zoomedSize(200, {550, 400}, borders, {0, 0}), QSize(1120, 850));
    EXPECT_EQ(zoomedSize(50, {101, 101}, {}, {0, 0}), QSize(50, 50))
        << "757.5 twips are 758, and 50 whole pixels";
    EXPECT_EQ(zoomedSize(100, {10, 10}, borders, {320, 200}), QSize(320, 200));
    EXPECT_EQ(zoomedSize(200, {107'000'000, 107'000'000}, borders, {320, 200}), QSize(16384, 16384))
        << "a damaged header must not ask for a window that no system can make";
}

TEST(CleanCache, DeletesByModeAndNothingElse)
{
    const QStringList all{"a.swf", "b.exe", "c.tmp", "d.jpg", "e.txt"};
    const QStringList left[] = {all, {"d.jpg", "e.txt"}, {}, {"a.swf", "b.exe", "c.tmp", "e.txt"}, all};
    for (int mode = 0; mode <= 4; ++mode) {
        SCOPED_TRACE(mode);
        QTemporaryDir folder;
        for (const QString& name : all) {
            QFile file(folder.filePath(name));
            ASSERT_TRUE(file.open(QFile::WriteOnly));
        }
        QDir(folder.path()).mkdir("kept.swf");
        CleanCache(folder.path() + "/", mode);
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), left[mode]);
        EXPECT_TRUE(QDir(folder.filePath("kept.swf")).exists());
    }
    QTemporaryDir folder;
    for (const char* name : {"a.swf", "former.swf", "backups.txt"}) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QFile::WriteOnly));
        file.write("former.swf\ngone.swf\n");
    }
    EXPECT_EQ(CleanCache(folder.path() + "/", 2), 1);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), (QStringList{"backups.txt", "former.swf"}))
        << "what a conversion replaced is nowhere else";
    QFile::remove(folder.filePath("former.swf"));
    EXPECT_EQ(CleanCache(folder.path() + "/", 2), 1) << "a list of nothing";
    CleanCache({}, 2); // no folder is known: nothing may happen to the current one
}

} // namespace
} // namespace player
